#include "Adaptors/Project/V34_NoPreviewAdaptor.h"

#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;
namespace Words = Archive::Words;

namespace Project {
namespace {

void removePreviewObjects(QDomElement archive, const TypedElements& objects) {
    QSet<long long> ids;
    for (const QString& type :
         {QStringLiteral("StaticPreview::ImageObject"), QStringLiteral("StaticPreview::WaveformObject")}) {
        for (const QDomElement& object : ofType(objects, type)) {
            ids.insert(static_cast<long long>(Archive::objectIdOf(object)));
            removeChild(archive, object); // one that stands elsewhere stays, while its record goes
        }
    }
    QDomElement predeclarations = predeclarationsAmong(objects);
    removePredeclares(predeclarations, ids);
}

} // namespace

void V34_NoPreviewAdaptor::adapt(QDomDocument& document) {
    // Not the sole `Archive` but the document's own, and none is no error.
    const QDomElement archive = document.firstChildElement(Words::Archive);
    if (archive.isNull())
        return;
    const auto objects = typedElements(archive, Words::RootObject);
    removePreviewObjects(archive, objects);
    for (QDomElement& clip : ofType(objects, QStringLiteral("Timeline::Clip")))
        Archive::removeFirstChild(clip, QStringLiteral("preview"));
}

} // namespace Project
