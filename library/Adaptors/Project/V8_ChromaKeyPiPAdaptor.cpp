#include "Adaptors/Project/V8_ChromaKeyPiPAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QSet>

#include <glog/logging.h>

#include <algorithm>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::Elements;
using Archive::Internal::elements;
using Archive::Internal::firstDescendant;

// "effet" is how the tag is spelled.
constexpr Archive::Internal::NumberedEffect cutaway{"Effect::Cutaway", 14, "effet_cutaway", 32769};

const QString chromaKeyId = QStringLiteral("15");

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document) {}

    bool collect();
    void renumberChromaKeys();
    void addCutaways();

private:
    bool isChromaKey(const QDomElement& item) const;

    QDomDocument m_document;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    Elements m_clips;
    Elements m_chromaKeys;
    QSet<int> m_chromaKeyIds; // 32 bits: all ids beyond count as 0
    long long m_greatestId = 0;
};

bool Impl::collect() {
    m_archive = Archive::Internal::soleArchive(m_document);
    if (m_archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return false;
    }
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        if (type == Words::Predeclarator) {
            m_predeclarations = firstDescendant(object, Words::predeclarations);
        } else if (type == QLatin1String("Timeline::Clip")) {
            m_clips.push_back(object);
        } else if (type == QLatin1String("Effect::ChromaKey")) {
            m_chromaKeys.push_back(object);
            m_chromaKeyIds.insert(object.attribute(Words::objectId).toInt());
        }
    }
    if (!m_chromaKeys.empty())
        m_greatestId = Archive::Internal::maxObjectId(m_document);
    return true;
}

void Impl::renumberChromaKeys() {
    for (const QDomElement& chromaKey : m_chromaKeys) {
        const QDomElement base = firstDescendant(chromaKey, Words::BaseOfObject);
        const QDomElement object = firstDescendant(base, Words::BaseOfObject);
        QDomElement uniqueId = firstDescendant(object, QStringLiteral("uniqueId"));
        if (!uniqueId.isNull())
            uniqueId.setAttribute(Words::value, chromaKeyId);
    }
}

bool Impl::isChromaKey(const QDomElement& item) const {
    return m_chromaKeyIds.contains(Archive::valueOf(item, Words::Data).toInt());
}

void Impl::addCutaways() {
    if (m_chromaKeys.empty())
        return;
    for (const QDomElement& clip : m_clips) {
        QDomElement effects = firstDescendant(clip, QStringLiteral("effects"));
        const Elements items = elements(effects, Words::Item);
        // One is enough, however many chroma keys the clip has.
        if (std::any_of(items.begin(), items.end(), [this](const QDomElement& e) { return isChromaKey(e); }))
            Archive::Internal::addNumberedEffect(m_document, m_archive, m_predeclarations, m_greatestId,
                                                 cutaway, effects);
    }
}

} // namespace

void V8_ChromaKeyPiPAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (!impl.collect())
        return;
    impl.renumberChromaKeys();
    impl.addCutaways();
}

} // namespace Project
