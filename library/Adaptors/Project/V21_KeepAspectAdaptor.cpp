#include "Adaptors/Project/V21_KeepAspectAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {
namespace {

void removeAspects(ArchiveEditor& archive, const QDomElement& envelope) {
    archive.removeField(childOf(envelope, "defaultValue"), "aspect");
    for (const QDomElement& value : elements(envelope, "value", "Transformation::Object"))
        archive.removeField(value, "aspect");
}

} // namespace

void V21_KeepAspectAdaptor::convert(ArchiveEditor& archive) {
    for (const auto& [object, type] : archive.rootObjects(Scope::Archive)) {
        if (type == QLatin1String("TransformationEnvelope"))
            removeAspects(archive, object);
        else if (type == QLatin1String("Effect::PictureInPicture") || type == QLatin1String("Effect::Crop"))
            archive.removeField(object, "keepAspect");
    }
}

} // namespace Project
