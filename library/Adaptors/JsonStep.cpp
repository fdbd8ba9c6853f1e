#include "Adaptors/JsonStep.h"

#include "Archive/Internal/FlatEditor.h"

namespace Bundle {

void JsonStep::adapt(Serialize::Json::FlatObject& document) {
    Archive::Internal::FlatEditor editor(document);
    apply(editor);
}

} // namespace Bundle
