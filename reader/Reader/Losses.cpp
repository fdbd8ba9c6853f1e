#include "Reader/Losses.h"

#include "Archive/Internal/FlatEditor.h"
#include "Reader/Error.h"
#include "Reader/Internal/ProjectView.h"
#include "Reader/Migration.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

using Archive::Internal::FlatEditor;
using nlohmann::json;

namespace Reader {
namespace {

/// What a step removes on purpose.
struct IntendedLoss {
    std::string_view step;
    PartKind kind;
    std::string_view reason;
    std::string_view cause = {}; ///< in a word
};

constexpr std::array intendedLosses = {
    IntendedLoss{"V16_PanZoomAdaptor", PartKind::Effect, "it became a crop envelope of its clip"},
    IntendedLoss{"V18_NoiseRemovalAdaptor", PartKind::Effect, "it became a noise suppression"},
    IntendedLoss{"V32_ColorFiltersAdaptor", PartKind::Effect, "each of its corrections became an effect"},
    IntendedLoss{"V40_RemoveQuizFromOverlayAdaptor", PartKind::Title, "it became a quiz"},
    IntendedLoss{"V51_MaskEffectAdaptor", PartKind::Effect, "it was merged into the mask effect of its clip"},
    IntendedLoss{"V69_RemoveQuizzesAdaptor", PartKind::Clip, "projects have no quizzes any more", "quizzes"},
    IntendedLoss{"V69_RemoveQuizzesAdaptor", PartKind::Effect,
                 "it belonged to a quiz, and projects have none any more"},
    IntendedLoss{"V69_RemoveQuizzesAdaptor", PartKind::Title,
                 "it belonged to a quiz, and projects have none any more"},
};

Loss lossAt(const Part& part, const std::string& step) {
    const auto known =
        std::find_if(intendedLosses.begin(), intendedLosses.end(),
                     [&](const IntendedLoss& loss) { return loss.step == step && loss.kind == part.kind; });
    if (known != intendedLosses.end())
        return {part, step, std::string(known->reason), true, true, std::string(known->cause)};
    return {part, step, step.empty() ? "it is not in the result" : "no reference leads to it any more",
            false};
}

/// A part that the document as it was read does not hold.
Loss lossOfUnused(const Part& part) {
    return {part, {}, "nothing in the project used it", false, false};
}

/// The id that an object of the input has in the document now. Ids of an archive are kept in JSON, except those of
/// objects that shared theirs with another.
unsigned long long idIn(const Document& document, unsigned long long id, bool wasXml) {
    if (document.isXml() || !wasXml)
        return id;
    const auto& redirected = document.json().notes.redirected;
    const auto it = redirected.find(id);
    return it == redirected.end() ? id : it->second;
}

/// The ids of the clips in the entries of all timelines, in order.
std::vector<unsigned long long> listedClips(FlatEditor& document, std::size_t expected) {
    std::vector<unsigned long long> ids;
    ids.reserve(expected);
    for (const auto& [id, timeline] : document.objects("Timeline::Object")) {
        for (const json& entry : Archive::Internal::memberOf(*timeline, "clips"))
            ids.push_back(FlatView::targetId(FlatView::clipOf(&entry)));
    }
    return ids;
}

std::vector<unsigned long long> idsOf(const std::vector<Clip>& clips) {
    std::vector<unsigned long long> ids;
    ids.reserve(clips.size());
    for (const Clip& clip : clips)
        ids.push_back(clip.id);
    return ids;
}

/// Looks behind each adaptor for parts that are no longer reached.
class Search {
public:
    explicit Search(std::vector<Loss> losses) : m_losses(std::move(losses)), m_isFound(m_losses.size()) {}

    void look(const MigrationPart& part, const Document& document) {
        if (part.kind == MigrationPart::Kind::Comparison || part.kind == MigrationPart::Kind::Repair)
            return;
        m_wasXml = m_wasXml || document.isXml();
        const auto reachable = findReachable(document);
        for (std::size_t place = 0; place < m_losses.size(); ++place) {
            Loss& loss = m_losses[place];
            if (m_isFound[place] || reachable.count(idIn(document, loss.part.id, m_wasXml)) > 0)
                continue;
            loss = part.kind == MigrationPart::Kind::Adaptor ? lossAt(loss.part, part.name)
                                                             : lossOfUnused(loss.part);
            m_isFound[place] = true;
        }
    }

    std::vector<Loss> take() { return std::move(m_losses); }

private:
    std::vector<Loss> m_losses;
    std::vector<bool> m_isFound;
    bool m_wasXml = false;
};

} // namespace

void LossTracker::start(std::vector<Part> parts, Bundle::Backend form) {
    m_parts = std::move(parts);
    std::erase_if(m_parts, [](const Part& part) { return part.className.empty(); }); // references to nothing
    m_wasXml = form == Bundle::Backend::Xml;
    for (const Part& part : m_parts)
        m_ids.insert(part.id);
}

void LossTracker::noteRemoved(const std::vector<unsigned long long>& ids, const std::string& adaptor) {
    for (const unsigned long long id : ids) {
        if (m_ids.count(id) > 0)
            m_removedBy[id] = adaptor;
    }
}

void LossTracker::noteTimelines(FlatEditor& document, const std::string& adaptor) {
    std::vector<unsigned long long> listed = listedClips(document, m_listed.size());
    if (listed == m_listed)
        return;
    const std::unordered_set<unsigned long long> ids(listed.begin(), listed.end());
    for (const unsigned long long id : m_listed) {
        if (ids.count(id) == 0)
            m_removedBy[id] = adaptor;
    }
    m_listed = std::move(listed);
}

std::vector<Loss> LossTracker::losses(const Document& document) const {
    const auto reachable = findReachable(document);
    std::vector<Loss> losses;
    for (const Part& part : m_parts) {
        if (reachable.count(idIn(document, part.id, m_wasXml)) == 0)
            losses.push_back(lossAt(part, stepOf(part, document)));
    }
    return losses;
}

/// Where nothing was noted of a part itself, it went with its clip.
std::string LossTracker::stepOf(const Part& part, const Document& document) const {
    for (const unsigned long long id : {part.id, part.clip}) {
        for (const unsigned long long known : {id, idIn(document, id, m_wasXml)}) {
            const auto removed = m_removedBy.find(known);
            if (removed != m_removedBy.end())
                return removed->second;
        }
    }
    return {};
}

std::size_t LossTracker::countAddedClips(const Document& document) const {
    std::unordered_set<unsigned long long> known;
    for (const Part& part : m_parts)
        known.insert(idIn(document, part.id, m_wasXml));
    std::size_t added = 0;
    for (const unsigned long long id : document.isXml() ? idsOf(listClips(document)) : m_listed)
        added += id != 0 && known.insert(id).second ? 1 : 0;
    return added;
}

std::vector<Loss> explainLosses(Document document, MigrationOptions options,
                                const std::vector<Loss>& losses) {
    Search search(losses);
    options.reread = nullptr; // the losses of this run are not reported
    options.watch = [&](const MigrationPart& part, const Document& current) { search.look(part, current); };
    try {
        Migration(std::move(document), std::move(options)).run();
    } catch (const Error&) {
        // What was found until then is kept.
    }
    return search.take();
}

} // namespace Reader
