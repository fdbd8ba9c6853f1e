#include "Archive/Internal/EffectObject.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

QDomElement innerBase(const QDomElement& effect) {
    return childAt(effect, {Words::BaseOfObject, Words::BaseOfObject});
}

EffectObject newEffect(ArchiveEditor& archive, const QString& className, const QString& baseName, long long id) {
    EffectObject effect;
    effect.root = archive.newObject(Words::RootObject, className, id);
    effect.base = archive.appendObject(effect.root, Words::BaseOfObject, baseName, id);
    effect.object = archive.appendObject(effect.base, Words::BaseOfObject, "Effect::Object", id);
    return effect;
}

EffectObject appendNumberedEffect(ArchiveEditor& archive, const NumberedEffect& kind, const QDomElement& effects) {
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

EffectObject createEffectObject(QDomDocument& doc, const QString& className, const QString& baseName,
                                long long id) {
    EffectObject effect{createObject(doc, Words::RootObject, className, id),
                        createObject(doc, Words::BaseOfObject, baseName, id),
                        createObject(doc, Words::BaseOfObject, QStringLiteral("Effect::Object"), id)};
    effect.base.appendChild(effect.object);
    effect.root.appendChild(effect.base);
    return effect;
}

void appendStrings(QDomDocument& doc, QDomElement& object,
                   std::initializer_list<std::pair<const char*, QString>> fields) {
    for (const auto& [name, value] : fields)
        object.appendChild(createString(doc, QString::fromLatin1(name), value));
}

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
