#include "Adaptors/Project/V32_ColorFiltersAdaptor.h"

#include "Archive/Internal/ArrayItems.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

#include <map>
#include <numeric>
#include <vector>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::Elements;
using Archive::Internal::elements;
using Archive::Internal::firstDescendant;
using Archive::Internal::idOf;

struct ColorFilter {
    const char* flag;
    const char* className;
    const char* id;
    const char* tag;
    const char* description;
};

// clang-format off
// The contrast carries the description of the saturation: that is what documents say.
constexpr ColorFilter filters[] = {
    {"magicEnhance", "Effect::MagicEnhance", "2292fad1-77b2-4384-b9fe-c52358e19419", "#TOP_ITEM#MagicEnhance", "Desc MagicEnhance"},
    {"autoContrast", "Effect::AutoContrast", "fe49dfef-2cc8-4a94-976e-6dce9a0d3e55", "#TOP_ITEM#AutoContrast", "Desc AutoSaturation"},
    {"autoSaturation", "Effect::AutoSaturation", "96d1bead-399f-43a1-a448-b1e3ff7ddf80", "#TOP_ITEM#AutoSaturation", "Desc AutoSaturation"},
    {"autoWhiteBalance", "Effect::WhiteBalance", "4b7ee600-1cdf-4a97-9b06-f6c23f35fced", "#TOP_ITEM#AutoWhiteBalance", "Desc AutoWhiteBalance"},
};
// clang-format on

const QString autoEnhance = QStringLiteral("Effect::AutoEnhance");
const QString manualEnhanceId = QStringLiteral("7cbc055b-98bf-4fcc-be7d-f431a05e608a");

/// The object that an item's `Data` refers to.
long long targetOf(const QDomElement& item) {
    return Archive::valueOf(item, Words::Data).toLongLong();
}

QDomElement effectsOf(const QDomElement& clip) {
    return clip.firstChildElement(QStringLiteral("effects"));
}

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_ids(document) {}

    bool parse();
    void cleanUpOldAutoEffects();
    void createNewAutoEffects();
    void updateUniqueIds();

private:
    struct Place {
        long long clip;
        long long index;
    };
    struct NewRef {
        long long index; // of the item that it goes ahead of
        long long id;
    };

    void readFlags(const QDomElement& effect);
    void findOnClips();
    void removePredeclarations();
    long long create(const ColorFilter& filter);
    void insertRefs(QDomElement effects, const std::vector<NewRef>& refs);

    QDomDocument m_document;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    std::map<long long, QDomElement> m_clips;
    Elements m_autoEffects;
    Elements m_manualEffects;
    std::map<long long, std::vector<const ColorFilter*>> m_newFilters; // by the auto effect, as added
    std::map<long long, long long> m_effectOfClip;                     // of several the last
    std::map<long long, Place> m_placeOfEffect;                        // on the last clip that lists it
    Archive::Internal::ObjectIds m_ids;
};

bool Impl::parse() {
    m_archive = Archive::Internal::soleArchive(m_document);
    if (m_archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return false;
    }
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        if (type == Words::Predeclarator) {
            m_predeclarations = object.firstChildElement(Words::predeclarations);
        } else if (type == QLatin1String("Timeline::Clip")) {
            m_clips[idOf(object)] = object;
        } else if (type == autoEnhance) {
            m_autoEffects.push_back(object);
            readFlags(object);
        } else if (type == QLatin1String("Effect::ManualEnhance")) {
            m_manualEffects.push_back(object);
        }
    }
    findOnClips();
    return true;
}

void Impl::readFlags(const QDomElement& effect) {
    for (const ColorFilter& filter : filters) {
        if (Archive::extractValue(Archive::valueOf(effect, QString::fromLatin1(filter.flag)), 0) != 0)
            m_newFilters[idOf(effect)].push_back(&filter);
    }
}

void Impl::findOnClips() {
    for (const auto& [clipId, clip] : m_clips) {
        for (const QDomElement& item : elements(effectsOf(clip), Words::Item)) {
            const long long effectId = targetOf(item);
            if (m_newFilters.count(effectId) == 0)
                continue;
            m_effectOfClip[clipId] = effectId;
            m_placeOfEffect[effectId] = {clipId, item.attribute(Words::index).toLongLong()};
        }
    }
}

void Impl::cleanUpOldAutoEffects() {
    // Where no clip lists an auto effect, all of them stay as they are.
    if (m_effectOfClip.empty())
        return;
    m_ids.greatest(); // before anything goes: ids of what goes are not given again
    removePredeclarations();
    for (const QDomElement& effect : m_autoEffects)
        // One that stands elsewhere stays, while its record goes.
        Archive::Internal::removeChild(m_archive, effect);
    for (const auto& [clipId, effectId] : m_effectOfClip) {
        QDomElement effects = effectsOf(m_clips.at(clipId));
        const long long victim = effectId;
        Archive::removeItemsFromList(effects, [victim](QDomElement& data) {
            return data.attribute(Words::value).toLongLong() == victim;
        });
    }
}

void Impl::removePredeclarations() {
    QSet<long long> ids;
    for (const QDomElement& item : elements(m_predeclarations, Words::Item)) {
        if (firstDescendant(item, Words::typeName).attribute(Words::value) == autoEnhance)
            ids.insert(firstDescendant(item, Words::oid).attribute(Words::value).toLongLong());
    }
    Archive::Internal::removePredeclares(m_predeclarations, ids);
}

void Impl::createNewAutoEffects() {
    if (m_effectOfClip.empty())
        return;
    std::map<long long, std::vector<NewRef>> refsOfClip;
    for (const auto& [effectId, newFilters] : m_newFilters) {
        const auto place = m_placeOfEffect.find(effectId);
        // The last comes first: each goes ahead of the one before it, which brings them back into order.
        for (auto filter = newFilters.rbegin(); filter != newFilters.rend(); ++filter) {
            const long long id = create(**filter);
            if (place != m_placeOfEffect.end()) // else no clip lists it, and nothing refers to what it became
                refsOfClip[place->second.clip].push_back({place->second.index, id});
        }
    }
    for (const auto& [clipId, refs] : refsOfClip)
        insertRefs(effectsOf(m_clips.at(clipId)), refs);
}

long long Impl::create(const ColorFilter& filter) {
    const QString className = QString::fromLatin1(filter.className);
    const long long id =
        Archive::addPredeclaration(m_predeclarations, m_document, className, 0, m_ids.greatest(), -1, {});
    auto effect = Archive::Internal::createEffectObject(m_document, className,
                                                        QStringLiteral("Effect::VideoEffect"), id);
    const QString identifier = QString::fromLatin1(filter.id);
    Archive::Internal::appendStrings(m_document, effect.object,
                                     {{"id", identifier},
                                      {"tag", QString::fromLatin1(filter.tag)},
                                      {"uniqueId", identifier},
                                      {"description", QString::fromLatin1(filter.description)}});
    m_archive.appendChild(effect.root);
    return id;
}

/// Inserts one reference after the other where its index stands by then, at the end where none has it. The
/// cleaning up has numbered the items from 1, and so does each insertion: an index is a place.
void Impl::insertRefs(QDomElement effects, const std::vector<NewRef>& refs) {
    Elements items = Archive::Internal::children(effects, Words::Item);
    const std::size_t oldCount = items.size();
    std::vector<std::size_t> order(oldCount);
    std::iota(order.begin(), order.end(), std::size_t(0));
    for (const NewRef& ref : refs) {
        const bool isPlace = ref.index >= 1 && ref.index <= static_cast<long long>(order.size());
        order.insert(isPlace ? order.begin() + (ref.index - 1) : order.end(), items.size());
        QDomElement item = Archive::createArrayItem(m_document, 0);
        item.appendChild(Archive::createObjectRef(m_document, Words::Data, ref.id));
        items.push_back(item);
    }

    QDomElement next;
    for (std::size_t place = order.size(); place-- > 0;) {
        QDomElement& item = items[order[place]];
        if (order[place] >= oldCount && next.isNull())
            effects.appendChild(item);
        else if (order[place] >= oldCount)
            effects.insertBefore(item, next);
        Archive::Internal::setIndex(item, static_cast<long long>(place) + 1);
        next = item;
    }
    const auto size = static_cast<unsigned long long>(effects.attribute(Words::size).toLongLong());
    effects.setAttribute(Words::size, QString::number(static_cast<long long>(size + refs.size())));
}

void Impl::updateUniqueIds() {
    for (const QDomElement& effect : m_manualEffects) {
        Archive::setValueOf(Archive::Internal::innerBase(effect), QStringLiteral("uniqueId"),
                            manualEnhanceId);
    }
}

} // namespace

void V32_ColorFiltersAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (!impl.parse())
        return;
    impl.cleanUpOldAutoEffects();
    impl.createNewAutoEffects();
    impl.updateUniqueIds();
}

} // namespace Project
