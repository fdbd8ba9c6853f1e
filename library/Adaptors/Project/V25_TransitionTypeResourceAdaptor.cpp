#include "Adaptors/Project/V25_TransitionTypeResourceAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {
namespace {

using Archive::Internal::elements;
using Archive::Internal::Elements;

// Through the root objects: a transition outside of them is not found, and one inside two nested root objects is
// found twice and gets both fields twice.
Elements collect(const QDomDocument& document) {
    Elements transitions;
    for (const QDomElement& root : elements(document, Archive::Words::RootObject)) {
        for (QDomElement& base :
             elements(root, Archive::Words::BaseOfObject, QStringLiteral("Transition::Object")))
            transitions.push_back(std::move(base));
    }
    return transitions;
}

} // namespace

void V25_TransitionTypeResourceAdaptor::adapt(QDomDocument& document) {
    for (QDomElement& transition : collect(document)) {
        transition.appendChild(Archive::createInt32(document, QStringLiteral("type"), 0));
        transition.appendChild(Archive::createArray(document, QStringLiteral("resources"), 0));
    }
}

} // namespace Project
