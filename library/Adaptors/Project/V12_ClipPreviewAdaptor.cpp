#include "Adaptors/Project/V12_ClipPreviewAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

using namespace Archive::Internal;
namespace Words = Archive::Words;

namespace Project {
namespace {

/// Adds the object of an image to the archive and gives its id.
long long addImageObject(QDomDocument& document, QDomElement& archive, QDomElement& predeclarations,
                         const QString& imageRef, long long& maxId) {
    NewRootObject image =
        declareRootObject(document, predeclarations, QStringLiteral("StaticPreview::ImageObject"), maxId);
    QDomElement base = Archive::createObject(document, Words::BaseOfObject,
                                             QStringLiteral("StaticPreview::Object"), image.id);
    base.appendChild(Archive::createInt32(document, Words::type, 1));
    image.element.appendChild(base);
    image.element.appendChild(Archive::createImageRef(document, QStringLiteral("image"), imageRef));
    archive.appendChild(image.element);
    return image.id;
}

} // namespace

void V12_ClipPreviewAdaptor::adapt(QDomDocument& document) {
    QDomElement archive = soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    const auto objects = typedElements(archive, Words::RootObject);
    Elements clips = ofType(objects, QStringLiteral("Timeline::Clip"));
    if (clips.empty())
        return;
    QDomElement predeclarations = predeclarationsAmong(objects);
    long long maxId = maxObjectId(document); // before a `preview` goes that may have an id of its own

    const QString preview = QStringLiteral("preview");
    for (QDomElement& clip : clips) {
        const QDomElement old = firstDescendant(clip, preview);
        const QString imageRef = old.attribute(Words::ref);
        removeFromParent(old);
        // A clip without a preview is not one with the preview "empty": it gets an image object of no image.
        const long long id = imageRef == QLatin1String("empty")
                                 ? 0
                                 : addImageObject(document, archive, predeclarations, imageRef, maxId);
        clip.appendChild(Archive::createObjectRef(document, preview, id));
    }
}

} // namespace Project
