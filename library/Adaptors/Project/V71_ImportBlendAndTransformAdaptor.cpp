#include "Adaptors/Project/V71_ImportBlendAndTransformAdaptor.h"

#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Json.h"

using nlohmann::json;

namespace Project {
namespace {

constexpr int plainBlending = 5;

} // namespace

void V71_ImportBlendAndTransformAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    for (const auto& import : editor.objects("Import::Object")) {
        json& object = *import.object;
        object["blendingMode"] = plainBlending;
        object["transform"] = Archive::createRef(editor.document(), Archive::Internal::identityTransform);
    }
}

} // namespace Project
