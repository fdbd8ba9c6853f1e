#include "Adaptors/Project/V21_KeepAspectAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Words = Archive::Words;
using Archive::Internal::elements;

namespace Project {
namespace {

void dropAspects(const QDomElement& envelope) {
    const QString aspect = QStringLiteral("aspect");
    QDomElement defaultValue = envelope.firstChildElement(QStringLiteral("defaultValue"));
    Archive::removeFirstChild(defaultValue, aspect);
    for (QDomElement& value :
         elements(envelope, QStringLiteral("value"), QStringLiteral("Transformation::Object")))
        Archive::removeFirstChild(value, aspect);
}

} // namespace

void V21_KeepAspectAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    for (auto [object, type] : Archive::Internal::typedElements(archive, Words::RootObject)) {
        if (type == QLatin1String("TransformationEnvelope"))
            dropAspects(object);
        else if (type == QLatin1String("Effect::PictureInPicture") || type == QLatin1String("Effect::Crop"))
            Archive::removeFirstChild(object, QStringLiteral("keepAspect"));
    }
}

} // namespace Project
