#include "Adaptors/Project/V38_OverlayDropShadowAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/OverlayItems.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Words = Archive::Words;
using Archive::Internal::OverlayItem;

namespace Project {
namespace {

constexpr unsigned int shadowColor = 0xB43F3F3F;
constexpr int featuredPresetType = 3;
constexpr int shadowFeature = 4;

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_ids(document) {}

    bool collect();
    void addShadows();
    void setFeatures();

private:
    QDomElement createShadow(long long id);

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
    std::erase_if(m_overlays.items, [](const OverlayItem& item) {
        return Archive::typeOf(item.data) != QLatin1String("Overlay::Item");
    });
    return true;
}

QDomElement Impl::createShadow(long long id) {
    QDomElement shadow = Archive::createObject(m_document, QStringLiteral("dropShadow"),
                                               QStringLiteral("Overlay::DropShadow"), id);
    shadow.appendChild(Archive::createBool(m_document, QStringLiteral("enabled"), false));
    shadow.appendChild(Archive::createUInt32(m_document, QStringLiteral("color"), shadowColor));
    shadow.appendChild(Archive::createInt32(m_document, QStringLiteral("offsetX"), 4));
    shadow.appendChild(Archive::createInt32(m_document, QStringLiteral("offsetY"), 4));
    shadow.appendChild(Archive::createInt32(m_document, QStringLiteral("blurRadius"), 1));
    return shadow;
}

void Impl::addShadows() {
    for (OverlayItem& item : m_overlays.items) {
        const long long shadowId = m_ids.next();
        item.data.appendChild(createShadow(shadowId));
        Archive::addPredeclaration(m_overlays.predeclarations, m_document,
                                   QStringLiteral("Overlay::DropShadow"), item.id, m_ids.greatest(), shadowId,
                                   {});
        QDomElement refs = m_overlays.refsOf(item.id);
        Archive::appendArrayElement(m_document, refs)
            .appendChild(Archive::createObjectRef(m_document, Words::Data, shadowId));
    }
}

void Impl::setFeatures() {
    const QString features = QStringLiteral("features");
    for (const OverlayItem& item : m_overlays.items) {
        if (item.presetType != featuredPresetType)
            continue;
        const int mask = Archive::valueOf(item.data, features).toInt() | shadowFeature;
        Archive::setValueOf(item.data, features, QString::number(mask));
    }
}

} // namespace

void V38_OverlayDropShadowAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (!impl.collect())
        return;
    impl.addShadows();
    impl.setFeatures();
}

} // namespace Project
