#include "Archive/Internal/EffectObject.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

QDomElement innerBase(const QDomElement& effect) {
    return childAt(effect, {Words::BaseOfObject, Words::BaseOfObject});
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

} // namespace Archive::Internal
