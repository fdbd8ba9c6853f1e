#include "Archive/Internal/EffectObject.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

QDomElement innerBase(const QDomElement& effect) {
    return childAt(effect, {Words::BaseOfObject, Words::BaseOfObject});
}

EffectObject newEffect(ArchiveEditor& archive, const QString& className, const QString& baseName,
                       long long id) {
    EffectObject effect;
    effect.root = archive.newObject(Words::RootObject, className, id);
    effect.base = archive.appendObject(effect.root, Words::BaseOfObject, baseName, id);
    effect.object = archive.appendObject(effect.base, Words::BaseOfObject, "Effect::Object", id);
    return effect;
}

EffectObject appendNumberedEffect(ArchiveEditor& archive, const NumberedEffect& kind,
                                  const QDomElement& effects) {
    const long long id = archive.declare(kind.className);
    EffectObject effect = newEffect(archive, kind.className, "Effect::VideoEffect", id);
    archive.fields(effect.object)
        .uint32("id", kind.id)
        .string("tag", kind.tag)
        .uint32("uniqueId", kind.uniqueId)
        .string("description", QString());
    archive.append(archive.root(), effect.root);
    archive.appendReference(effects, id);
    return effect;
}

} // namespace Archive::Internal
