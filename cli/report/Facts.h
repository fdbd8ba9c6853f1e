#pragma once

#include "Messages.h"
#include "Reader/Explanation.h"
#include "Reader/MigrationReport.h"
#include "Reader/Timeline.h"
#include "Reader/Verify.h"

#include <QByteArray>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ReportPage {

/// A document as bytes; without a hash there is none.
struct File {
    std::string sha256 = {};
    long long size = 0;

    static File of(const QByteArray& bytes);
};

using Timelines = std::vector<Reader::Timeline>;

/// The project behind a part of its migration.
struct State {
    std::string name; ///< of the step or repair; empty for the project as it was read
    bool isRepair = false;
    std::size_t effect = 0;                     ///< place in Facts::effects, of a step
    std::shared_ptr<const Timelines> timelines; ///< those of the state before, where nothing changed
};

struct MediaFile {
    std::string path;
    std::size_t clips;
    Reader::Presence presence;
};

/// What a page says of one migration.
struct Facts {
    std::string name; ///< of the input
    File input = {};
    File result = {};                    ///< what `migrate` writes
    std::string resultName = {};         ///< where `migrate` writes it
    Reader::MigrationReport report = {}; ///< up to the step that failed, where one did
    bool isUpToDate = false;             ///< the document had the version asked for, and nothing was done
    bool isWhole = true;                 ///< whether all is in the result but what was removed on purpose
    std::optional<Messages::Message> failure = {};
    std::vector<State> states =
        {}; ///< the first is the project as it was read; none where it could not be read
    std::vector<Reader::StepEffect> effects = {};
    /// Ids that were given to other objects: those of the result by those of the input.
    std::map<unsigned long long, unsigned long long> redirected = {};
    std::vector<MediaFile> media = {};
    std::vector<Reader::Finding> faultsOfInput = {};
    std::vector<Reader::Finding> faultsOfResult = {};
};

/// Watches a migration for a page. Keeps timelines only, and those once that steps leave as they are.
///
/// Threads: belongs to the thread of its migration.
class Observer {
public:
    /// Begins with the document as it was read.
    explicit Observer(const Reader::Document& document);

    /// MigrationOptions::watch calls it.
    void note(const Reader::MigrationPart& part, const Reader::Document& document);

    /// Moves what was seen to the facts.
    void moveTo(Facts& facts);

private:
    int m_version; ///< that the document has reached
    Reader::Explanation m_explanation;
    std::vector<State> m_states;
    std::map<unsigned long long, unsigned long long> m_redirected;
};

/// The media of a project as it was read; `folder` is that of its file, empty for none.
std::vector<MediaFile> mediaOf(const Timelines& timelines, const QString& folder);

} // namespace ReportPage
