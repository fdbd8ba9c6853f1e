#include "Adaptors/Project/V12_ClipPreviewAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {
namespace {

/// Adds the object of an image to the archive and gives its id.
long long addImageObject(ArchiveEditor& archive, const QString& imageRef) {
    const long long id = archive.declare("StaticPreview::ImageObject");
    const QDomElement image = archive.appendRootObject("StaticPreview::ImageObject", id);
    archive.fields(archive.appendObject(image, Words::BaseOfObject, "StaticPreview::Object", id))
        .int32("type", 1);
    archive.fields(image).imageRef("image", imageRef);
    return id;
}

} // namespace

void V12_ClipPreviewAdaptor::convert(ArchiveEditor& archive) {
    const Elements clips = archive.rootObjects("Timeline::Clip");
    if (!clips.empty())
        archive.startIds(); // before removing a `preview`, which may have an id of its own
    for (const QDomElement& clip : clips) {
        const QDomElement old = firstDescendant(clip, "preview");
        const QString imageRef = old.attribute(Words::ref);
        archive.remove(old);
        // Quirk: a clip without a preview does not count as one with the preview "empty". It gets an object
        // without an image.
        const bool isEmpty = imageRef == QLatin1String("empty");
        archive.fields(clip).reference("preview", isEmpty ? 0 : addImageObject(archive, imageRef));
    }
}

} // namespace Project
