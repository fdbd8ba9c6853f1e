#include "Adaptors/Project/V47_TransitionDurationAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Words = Archive::Words;

namespace Project {
namespace {

constexpr long long defaultDuration = 2000;

/// The "Transition::Object" parts below root objects, each as often as there are root objects around it.
Archive::Internal::Elements transitionParts(const QDomDocument& document) {
    Archive::Internal::Elements parts;
    std::size_t openRootObjects = 0;
    Archive::Internal::walkElements(
        document,
        [&](const QDomElement& e) {
            if (e.tagName() == Words::RootObject)
                ++openRootObjects;
            else if (e.tagName() == Words::BaseOfObject &&
                     Archive::typeOf(e) == QLatin1String("Transition::Object"))
                parts.insert(parts.end(), openRootObjects, e);
        },
        [&](const QDomElement& e) {
            if (e.tagName() == Words::RootObject)
                --openRootObjects;
        });
    return parts;
}

} // namespace

void V47_TransitionDurationAdaptor::adapt(QDomDocument& document) {
    // A part that has a length already gets a second one: the format never looked.
    for (QDomElement& part : transitionParts(document))
        part.appendChild(Archive::createInt64(document, QStringLiteral("defaultDuration"), defaultDuration));
}

} // namespace Project
