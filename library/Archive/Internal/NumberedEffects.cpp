#include "Archive/Internal/NumberedEffects.h"

#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

EffectObject addNumberedEffect(QDomDocument& document, QDomElement& archive, QDomElement& predeclarations,
                               long long& greatestId, const NumberedEffect& kind, QDomElement& effects) {
    const QString className = QString::fromLatin1(kind.className);
    const long long id = addPredeclaration(predeclarations, document, className, 0, greatestId, -1, {});

    EffectObject effect = createEffectObject(document, className, QStringLiteral("Effect::VideoEffect"), id);
    QDomElement& object = effect.object;
    object.appendChild(createUInt32(document, QStringLiteral("id"), kind.id));
    object.appendChild(createString(document, QStringLiteral("tag"), QString::fromLatin1(kind.tag)));
    object.appendChild(createUInt32(document, QStringLiteral("uniqueId"), kind.uniqueId));
    object.appendChild(createString(document, QStringLiteral("description"), QString()));
    archive.appendChild(effect.root);

    if (!effects.isNull())
        appendArrayElement(document, effects).appendChild(createObjectRef(document, Words::Data, id));
    return effect;
}

} // namespace Archive::Internal
