#include "Adaptors/ThemeTransitionsAndSceneAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Words = Archive::Words;
using Archive::Internal::firstDescendant;
using Archive::Internal::rootObjects;
using Archive::Internal::soleArchive;

namespace {

struct SceneBound {
    const char* name;
    long long milliseconds;
};

constexpr SceneBound sceneBounds[] = {
    {"minSceneDuration", 1000},
    {"maxSceneDuration", 4000},
};

void turnIntoList(QDomElement transition) {
    transition.setTagName(QStringLiteral("transitionsList"));
    transition.setAttribute(Words::type, Words::Array);
    // What stands inside stays and is not counted.
    transition.setAttribute(Words::size, QStringLiteral("0"));
}

} // namespace

void ThemeTransitionsAndSceneAdaptor::adapt(QDomDocument& document) {
    for (QDomElement& theme : rootObjects(soleArchive(document), QStringLiteral("Theme::Object"))) {
        const QDomElement transition = firstDescendant(theme, QStringLiteral("transition"));
        if (!transition.isNull())
            turnIntoList(transition);
        for (const SceneBound& bound : sceneBounds) {
            const QString name = QString::fromLatin1(bound.name);
            if (firstDescendant(theme, name).isNull())
                theme.appendChild(Archive::createInt64(document, name, bound.milliseconds));
        }
    }
}
