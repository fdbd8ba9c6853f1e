#pragma once

#include <QtGlobal>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Reader {

/// What can be wrong with the bytes of a file.
enum class Damage {
    CutOff,           ///< the end is missing
    LostBytes,        ///< a block of NUL bytes, or of bytes that no text has
    BrokenMarkup,     ///< text that does not follow the rules of XML or JSON
    BadCharacters,    ///< bytes that are no characters, or characters that no project holds
    Encoding,         ///< the declared encoding is wrong, or none is declared and it is not UTF-8
    SeveralDocuments, ///< two copies of a project behind one another
    Version,          ///< the schema version is missing or wrong
    LostStructure,    ///< an object that leads to others was lost, and the smallest such object was made
};

/// The name of a damage in JSON output, "cut-off".
std::string_view nameOf(Damage damage);

/// A damaged place.
///
/// Threads: a plain value.
struct DamageFinding {
    Damage damage = Damage::CutOff;
    qint64 byte = 0;   ///< in the file, from 0
    qint64 line = 1;   ///< in the text, from 1
    qint64 column = 1; ///< in bytes of UTF-8, from 1
    std::string text;  ///< a sentence for people
};

struct RecoveredClip {
    unsigned long long id = 0;
    std::string name; ///< empty where it is not known
};

/// A schema version, or several that the content of a document allows.
struct VersionGuess {
    int version = 0;                  ///< the one to use: the lowest
    int highest = 0;                  ///< the highest that is possible
    std::vector<std::string> reasons; ///< such as "a Timeline::Clip has `labels`: version 28 or later"
};

/// What recover() found and did.
///
/// Threads: a plain value.
struct RecoveryReport {
    std::vector<DamageFinding> findings; ///< in the order of the file; not more than mostFindings
    std::size_t findingsLeftOut = 0;     ///< how many more there were

    std::size_t objectsWhole = 0;
    std::size_t objectsClosed = 0;  ///< they lead to others; what they still had was kept
    std::size_t objectsDropped = 0; ///< damaged, and of no use without what they lost
    std::size_t objectsMade = 0;    ///< to take the place of objects that lead to others
    std::size_t entriesDropped = 0; ///< entries of lists, such as of a timeline's transitions
    std::size_t referencesCleared = 0;
    std::size_t predeclarationsMended = 0; ///< records added, changed or removed
    std::size_t countsMended = 0;          ///< `size` and `index` of lists
    std::size_t charactersReplaced = 0;    ///< by U+FFFD

    std::size_t clipsInPlace = 0;            ///< whole, at their time and on their track
    std::vector<RecoveredClip> clipsMoved;   ///< whole, but their time is lost: they are at the end
    std::vector<RecoveredClip> clipsReduced; ///< damaged and kept, because scenes inside of them are whole
    std::vector<RecoveredClip> clipsLost;

    int version = 0;
    std::optional<VersionGuess>
        versionGuess; ///< none where the file states the version, or the caller gave it
    std::optional<int>
        newerVersion; ///< the version that the file states, where that is above the newest one that is known
    std::string encoding; ///< the one that was used, "UTF-8"

    /// How many findings are listed.
    static constexpr std::size_t mostFindings = 1000;

    /// Whether the document holds all that the file held before it was damaged, as far as that is known.
    bool isComplete() const;
    std::size_t clipsKept() const { return clipsInPlace + clipsMoved.size() + clipsReduced.size(); }
    void add(DamageFinding finding);
};

} // namespace Reader
