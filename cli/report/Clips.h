#pragma once

#include "report/Facts.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ReportPage {

/// What became of a clip.
enum class Fate {
    Kept,
    Changed, ///< kept, with another name, kind, place or length
    Removed, ///< as a schema version intended
    Lost,    ///< as none intended
    LeftOut, ///< nothing in the project used it
    Added,
};

/// The fate as a word for people, such as "left out".
std::string_view nameOf(Fate fate);

/// A clip of the project before or after its migration.
struct Clip {
    /// The clip on one side; null where it is not there.
    struct Side {
        const Reader::Timeline* timeline = nullptr;
        const Reader::TimelineClip* clip = nullptr;
    };

    Fate fate = Fate::Kept;
    Side before = {};
    Side after = {};
    std::string step = {};                           ///< behind which it was gone or there; may be empty
    std::string reason = {};                         ///< why it is gone, a part of a sentence; may be empty
    std::vector<std::string> changes = {};           ///< "now at 0:05"
    std::vector<const Reader::Loss*> lostParts = {}; ///< its effects and titles
    std::vector<const Reader::LogLine*> lines = {};  ///< what steps reported about it

    const Side& shown() const { return before.clip ? before : after; }
    bool isGone() const { return fate == Fate::Removed || fate == Fate::Lost || fate == Fate::LeftOut; }
    bool hasErrors() const;
};

/// All clips of a migration: those of the project as it was read, then those that were added. The facts must outlive
/// them.
class Clips {
public:
    explicit Clips(const Facts& facts);

    const std::vector<Clip>& all() const { return m_clips; }
    std::size_t count(Fate fate) const;

    /// The place in all() of an entry of a timeline as it was read, or of the last state; none for another.
    std::optional<std::size_t> placeOf(const Reader::TimelineClip* clip) const;

    /// Whether the result shows the timeline of the last state. One that nothing refers to any more is not saved.
    bool isInResult(const Reader::Timeline& timeline) const;

    /// The id that an object of the input has in the result.
    unsigned long long idAfter(unsigned long long idBefore) const;

private:
    void addBefore();
    void addAfter();
    void decide(Clip& clip) const;
    std::string stepThatRemoved(unsigned long long id) const;
    std::string stepThatAdded(unsigned long long id) const;
    void addReports();

    const Facts& m_facts;
    std::vector<Clip> m_clips;
    std::unordered_map<const Reader::TimelineClip*, std::size_t> m_places;
    std::unordered_map<unsigned long long, const Reader::Loss*> m_lostClips; ///< by id
    std::unordered_set<unsigned long long>
        m_usedTimelines; ///< of the project as it was read, by id in the result
    /// Ids of the clips in each state that has timelines of its own, with the state's name.
    std::vector<std::pair<std::string, std::unordered_map<unsigned long long, std::size_t>>> m_idsOfStates;
};

// Texts, not yet escaped for HTML.

/// "0:05", "1:02:03.500"
std::string timeText(long long milliseconds);

/// "0:05–0:12.500"
std::string rangeText(const Reader::TimelineClip& clip);

/// `Clip Beach, track main, 0:05–0:12, video`: what a clip is called for people who don't see it.
std::string nameFor(const Reader::TimelineClip& clip, const Reader::Timeline& timeline);

/// What became of it: "removed by V69: projects have no quizzes any more".
std::string fateText(const Clip& clip);

/// "V69" for "V69_RemoveQuizzesAdaptor"; other names as they are.
std::string shortStep(const std::string& step);

} // namespace ReportPage
