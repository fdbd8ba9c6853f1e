#include "Adaptors/Project/V71_ImportBlendAndTransformAdaptor.h"

#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Json.h"

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace Project {
namespace {

constexpr int plainBlending = 5;

} // namespace

void V71_ImportBlendAndTransformAdaptor::adapt(FlatObject& document) {
    for (const auto& import : Archive::Internal::selectObjects(document, "Import::Object")) {
        json& object = *import.object;
        object["blendingMode"] = plainBlending;
        object["transform"] = Archive::createRef(document, Archive::Internal::identityTransform);
    }
}

} // namespace Project
