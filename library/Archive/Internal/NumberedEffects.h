#pragma once

// For this project's own use.

#include "Archive/Internal/EffectObject.h"

#include <QDomDocument>

namespace Archive::Internal {

/// What an effect was called while its identifiers were numbers: before version 23.
struct NumberedEffect {
    const char* className;
    unsigned int id;
    const char* tag;
    unsigned int uniqueId;
};

/// Makes a video effect under the next two ids, its own and that of its record, declares it, appends it to
/// the archive and lists it last in a clip's `effects`.
EffectObject addNumberedEffect(QDomDocument& document, QDomElement& archive, QDomElement& predeclarations,
                               long long& greatestId, const NumberedEffect& kind, QDomElement& effects);

} // namespace Archive::Internal
