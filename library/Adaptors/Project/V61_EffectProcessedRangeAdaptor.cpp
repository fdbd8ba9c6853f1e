#include "Adaptors/Project/V61_EffectProcessedRangeAdaptor.h"

#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Serialize/Json/FlatObject.h"

#include <QHash>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::idOf;

const QString effectClass = QStringLiteral("Effect::Object");
const QString rangeClass = QStringLiteral("Types::Range");

// From the start to -1, the end: all of the clip.
constexpr int rangeFrom = 0;
constexpr int rangeTo = -1;

/// An effect and the record that declares it.
struct Declared {
    QDomElement effect;
    QDomElement record;
};

QHash<long long, QDomElement> collectEffects(const QDomDocument& document) {
    QHash<long long, QDomElement> effects;
    for (const QDomElement& base : Archive::Internal::elements(document, Words::BaseOfObject, effectClass))
        effects[idOf(base)] = base;
    return effects;
}

/// In the order of the records: an effect with two stands here twice, one without not at all.
std::vector<Declared> collectDeclared(const QDomDocument& document, const QDomElement& predeclarations) {
    const auto effects = collectEffects(document);
    std::vector<Declared> declared;
    const auto records = Archive::Internal::recordsOf(predeclarations);
    for (const auto& record : *records) {
        const auto effect = effects.find(record.id);
        if (effect != effects.end())
            declared.push_back({*effect, record.data});
    }
    return declared;
}

QDomElement createRange(QDomDocument& document, long long id) {
    QDomElement range = Archive::createObject(document, QStringLiteral("processedRange"), rangeClass, id);
    range.appendChild(Archive::createMTime(document, QStringLiteral("from"), MTime(rangeFrom)));
    range.appendChild(Archive::createMTime(document, QStringLiteral("to"), MTime(rangeTo)));
    return range;
}

/// The new reference stands first among those of the record.
void prependReference(QDomDocument& document, const QDomElement& record, long long id) {
    QDomElement refs = record.firstChildElement(Words::refs);
    if (refs.isNull())
        return;
    Archive::prependArrayElement(document, refs)
        .appendChild(Archive::createObjectRef(document, Words::Data, id));
}

} // namespace

void V61_EffectProcessedRangeAdaptor::adapt(QDomDocument& document) {
    QDomElement predeclarations = Archive::Internal::predeclarationsAmong(
        Archive::Internal::typedElements(document, Words::RootObject));
    Archive::Internal::ObjectIds ids(document);
    for (Declared& declared : collectDeclared(document, predeclarations)) {
        const long long id = Archive::addPredeclaration(predeclarations, document, rangeClass,
                                                        idOf(declared.effect), ids.greatest(), -1, {});
        declared.effect.appendChild(createRange(document, id));
        prependReference(document, declared.record, id);
    }
}

void V61_EffectProcessedRangeAdaptor::adapt(Serialize::Json::FlatObject& document) {
    for (const auto& selected : Archive::Internal::selectObjects(document, effectClass.toStdString())) {
        nlohmann::json* range = document.createObject(rangeClass.toStdString());
        (*range)["from"] = rangeFrom;
        (*range)["to"] = rangeTo;
        (*selected.object)["processedRange"] = document.createRef(range);
    }
}

} // namespace Project
