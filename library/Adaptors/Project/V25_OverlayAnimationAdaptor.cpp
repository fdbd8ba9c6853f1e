#include "Adaptors/Project/V25_OverlayAnimationAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/OverlayItems.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Words = Archive::Words;
using Archive::Internal::OverlayItem;

namespace Project {
namespace {

constexpr Stored::V14::Transform identity{.m11 = 1.0, .m22 = 1.0, .m33 = 1.0};

struct EnvelopeIds {
    long long envelope;
    long long defaultValue;
    long long matrix;
};

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_ids(document) {}

    bool collect();
    void animate();

private:
    EnvelopeIds allotIds();
    QDomElement createEnvelope(const EnvelopeIds& ids);
    void declare(const EnvelopeIds& ids, long long itemId);
    void refer(long long itemId, long long envelopeId);

    QDomDocument m_document;
    Archive::Internal::ObjectIds m_ids;
    Archive::Internal::OverlayItems m_overlays;
};

bool Impl::collect() {
    const QDomElement archive = Archive::Internal::soleArchive(m_document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found or is not unique";
        return false;
    }
    m_overlays = Archive::Internal::collectOverlayItems(archive);
    return true;
}

EnvelopeIds Impl::allotIds() {
    EnvelopeIds ids{};
    ids.envelope = m_ids.next();
    ids.defaultValue = m_ids.next();
    ids.matrix = m_ids.next();
    return ids;
}

QDomElement Impl::createEnvelope(const EnvelopeIds& ids) {
    QDomElement envelope = Archive::createObject(m_document, QStringLiteral("envelope"),
                                                 QStringLiteral("TransformationEnvelope"), ids.envelope);
    QDomElement defaultValue =
        Archive::createObject(m_document, QStringLiteral("defaultValue"),
                              QStringLiteral("Transformation::Object"), ids.defaultValue);
    defaultValue.appendChild(
        Archive::value2element(m_document, QStringLiteral("matrix"), identity, ids.matrix));
    defaultValue.appendChild(Archive::createInt32(m_document, QStringLiteral("opacity"), 100));
    envelope.appendChild(defaultValue);
    envelope.appendChild(Archive::createArray(m_document, QStringLiteral("keyValues"), 0));
    return envelope;
}

void Impl::declare(const EnvelopeIds& ids, long long itemId) {
    QDomElement& predeclarations = m_overlays.predeclarations;
    long long& greatest = m_ids.greatest();
    Archive::addPredeclaration(predeclarations, m_document, QStringLiteral("Types::Transform"),
                               ids.defaultValue, greatest, ids.matrix, {});
    Archive::addPredeclaration(predeclarations, m_document, QStringLiteral("Transformation::Object"),
                               ids.envelope, greatest, ids.defaultValue, {ids.matrix});
    Archive::addPredeclaration(predeclarations, m_document, QStringLiteral("TransformationEnvelope"), itemId,
                               greatest, ids.envelope, {ids.defaultValue});
}

void Impl::refer(long long itemId, long long envelopeId) {
    QDomElement refs = m_overlays.refsOf(itemId);
    if (refs.isNull())
        return;
    // Not a count: an item is taken to have no references yet, and one that has some keeps them uncounted.
    refs.setAttribute(Words::size, QStringLiteral("1"));
    QDomElement item = Archive::createArrayItem(m_document, 1);
    item.appendChild(Archive::createObjectRef(m_document, Words::Data, envelopeId));
    refs.appendChild(item);
}

void Impl::animate() {
    for (OverlayItem& item : m_overlays.items) {
        const EnvelopeIds ids = allotIds();
        // An entry without `Data` gets its predeclarations all the same.
        if (!item.data.isNull())
            item.data.appendChild(createEnvelope(ids));
        declare(ids, item.id);
        refer(item.id, ids.envelope);
    }
}

} // namespace

void V25_OverlayAnimationAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (impl.collect())
        impl.animate();
}

} // namespace Project
