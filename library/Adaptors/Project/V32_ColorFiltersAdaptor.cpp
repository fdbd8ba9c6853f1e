#include "Adaptors/Project/V32_ColorFiltersAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"

#include <map>
#include <numeric>
#include <vector>

using namespace Archive::Internal;

namespace Project {
namespace {

struct ColorFilter {
    const char* flag;
    const char* className;
    const char* id;
    const char* tag;
    const char* description;
};

// clang-format off
// Quirk: the contrast has the description of the saturation.
constexpr ColorFilter filters[] = {
    {"magicEnhance", "Effect::MagicEnhance", "2292fad1-77b2-4384-b9fe-c52358e19419", "#TOP_ITEM#MagicEnhance", "Desc MagicEnhance"},
    {"autoContrast", "Effect::AutoContrast", "fe49dfef-2cc8-4a94-976e-6dce9a0d3e55", "#TOP_ITEM#AutoContrast", "Desc AutoSaturation"},
    {"autoSaturation", "Effect::AutoSaturation", "96d1bead-399f-43a1-a448-b1e3ff7ddf80", "#TOP_ITEM#AutoSaturation", "Desc AutoSaturation"},
    {"autoWhiteBalance", "Effect::WhiteBalance", "4b7ee600-1cdf-4a97-9b06-f6c23f35fced", "#TOP_ITEM#AutoWhiteBalance", "Desc AutoWhiteBalance"},
};
// clang-format on

QDomElement effectsOf(const QDomElement& clip) {
    return childOf(clip, "effects");
}

/// Replaces each auto effect by one effect for each flag that is set in it.
class AutoEnhanceSplit {
public:
    explicit AutoEnhanceSplit(ArchiveEditor& archive) : m_archive(archive) {}

    void collectFlags();
    void collectClips();
    bool isOnClips() const { return !m_effectOfClip.empty(); }
    void removeAutoEffects();
    void appendFilters();

private:
    struct Place {
        long long clip;
        long long index;
    };
    struct NewReference {
        long long index; // of the entry before which it is inserted
        long long id;
    };

    void undeclareAutoEffects();
    long long appendFilter(const ColorFilter& filter);
    void insertReferences(const QDomElement& effects, const std::vector<NewReference>& references);

    ArchiveEditor& m_archive;
    Elements m_autoEffects;
    std::map<long long, std::vector<const ColorFilter*>>
        m_filters; ///< by auto effect; no entry for one without flags
    std::map<long long, QDomElement> m_clips;
    std::map<long long, long long> m_effectOfClip; ///< if a clip lists several, the last one
    std::map<long long, Place> m_placeOfEffect;    ///< in the last clip that lists it
};

void AutoEnhanceSplit::collectFlags() {
    m_autoEffects = m_archive.rootObjects("Effect::AutoEnhance");
    for (const QDomElement& effect : m_autoEffects) {
        for (const ColorFilter& filter : filters) {
            if (int64In(effect, filter.flag) != 0)
                m_filters[idOf(effect)].push_back(&filter);
        }
    }
}

void AutoEnhanceSplit::collectClips() {
    for (const QDomElement& clip : m_archive.rootObjects("Timeline::Clip"))
        m_clips[idOf(clip)] = clip;
    for (const auto& [clipId, clip] : m_clips) {
        for (const QDomElement& item : elements(effectsOf(clip), Words::Item)) {
            const long long effectId = int64In(item, Words::Data);
            if (m_filters.count(effectId) == 0)
                continue;
            m_effectOfClip[clipId] = effectId;
            m_placeOfEffect[effectId] = {clipId, item.attribute(Words::index).toLongLong()};
        }
    }
}

void AutoEnhanceSplit::removeAutoEffects() {
    m_archive.startIds(); // so that ids of removed objects are not used again
    undeclareAutoEffects();
    // Quirk: an effect that is no child of the archive stays, but its record is removed.
    for (const QDomElement& effect : m_autoEffects)
        m_archive.removeFrom(m_archive.root(), effect);
    for (const auto& [clipId, effectId] : m_effectOfClip) {
        const long long removal = effectId;
        m_archive.removeItems(effectsOf(m_clips.at(clipId)),
                              [removal](QDomElement& data) { return int64Of(data) == removal; });
    }
}

void AutoEnhanceSplit::undeclareAutoEffects() {
    // Quirk: entries at any depth are read, and in them the first descendants of these names.
    for (const QDomElement& item : elements(m_archive.predeclarations(), Words::Item)) {
        if (textOf(firstDescendant(item, Words::typeName)) == QLatin1String("Effect::AutoEnhance"))
            m_archive.undeclare(int64Of(firstDescendant(item, Words::oid)));
    }
}

void AutoEnhanceSplit::appendFilters() {
    std::map<long long, std::vector<NewReference>> referencesOfClip;
    for (const auto& [effectId, newFilters] : m_filters) {
        const auto place = m_placeOfEffect.find(effectId);
        // In reverse order: each is inserted before the previous one, which restores the order.
        for (auto filter = newFilters.rbegin(); filter != newFilters.rend(); ++filter) {
            const long long id = appendFilter(**filter);
            // Quirk: filters of an effect that no clip lists are added, too, but nothing refers to them.
            if (place != m_placeOfEffect.end())
                referencesOfClip[place->second.clip].push_back({place->second.index, id});
        }
    }
    for (const auto& [clipId, references] : referencesOfClip)
        insertReferences(effectsOf(m_clips.at(clipId)), references);
}

long long AutoEnhanceSplit::appendFilter(const ColorFilter& filter) {
    const long long id = m_archive.declare(filter.className);
    const EffectObject effect = newEffect(m_archive, filter.className, "Effect::VideoEffect", id);
    m_archive.fields(effect.object)
        .string("id", filter.id)
        .string("tag", filter.tag)
        .string("uniqueId", filter.id)
        .string("description", filter.description);
    m_archive.append(m_archive.root(), effect.root);
    return id;
}

/// Inserts references one after the other, each before the entry that has its index at that time, or at the
/// end if none has. An index is a position here: removing the auto effects has numbered the entries from 1,
/// and so does each insertion.
void AutoEnhanceSplit::insertReferences(const QDomElement& effects,
                                        const std::vector<NewReference>& references) {
    const std::size_t oldCount = children(effects, Words::Item).size();
    // The final order of the old entries and of the new ones. New entries are appended first and moved below.
    std::vector<std::size_t> order(oldCount);
    std::iota(order.begin(), order.end(), std::size_t(0));
    for (const NewReference& reference : references) {
        const bool isPosition =
            reference.index >= 1 && reference.index <= static_cast<long long>(order.size());
        order.insert(isPosition ? order.begin() + (reference.index - 1) : order.end(), order.size());
        m_archive.appendReference(effects, reference.id);
    }

    const Elements items = children(effects, Words::Item);
    QDomElement next;
    for (std::size_t position = order.size(); position-- > 0;) {
        const QDomElement& item = items[order[position]];
        if (order[position] >= oldCount && !next.isNull())
            m_archive.placeBefore(effects, item, next);
        m_archive.setIndex(item, static_cast<long long>(position) + 1);
        next = item;
    }
}

void updateManualEffects(ArchiveEditor& archive) {
    for (const QDomElement& effect : archive.rootObjects("Effect::ManualEnhance"))
        archive.setField(innerBase(effect), "uniqueId", "7cbc055b-98bf-4fcc-be7d-f431a05e608a");
}

} // namespace

void V32_ColorFiltersAdaptor::convert(ArchiveEditor& archive) {
    AutoEnhanceSplit split(archive);
    split.collectFlags();
    split.collectClips();
    // Quirk: if no clip lists an auto effect, all of them stay unchanged.
    if (split.isOnClips()) {
        split.removeAutoEffects();
        split.appendFilters();
    }
    updateManualEffects(archive);
}

} // namespace Project
