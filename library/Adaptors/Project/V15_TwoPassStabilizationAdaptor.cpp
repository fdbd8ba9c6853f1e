#include "Adaptors/Project/V15_TwoPassStabilizationAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/StringPtr.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::createStringPtr;
using Archive::Internal::firstDescendant;

struct Setting {
    const char* name;
    int value;
};

// clang-format off
constexpr Setting settings[] = {
    {"shakiness", 5},
    {"accuracy", 15},
    {"stepsize", 6},
    {"smoothing", 15},
    {"optzoom", 1},
};
// clang-format on

const QString className = QStringLiteral("Stabilization::Object");
const QString pathOriginal = QStringLiteral("pathOriginal");
const QString pathStabilized = QStringLiteral("pathStabilized");

/// What a clip tells of its stabilization, at any depth; empty texts for what it lacks.
struct Stabilization {
    QString original;
    QString stabilized;
    QString duration;

    explicit Stabilization(const QDomElement& clip)
        : original(valueBelow(clip, pathOriginal)), stabilized(valueBelow(clip, pathStabilized)),
          duration(valueBelow(clip, QStringLiteral("sourceDuration"))) {}

    bool isComplete() const { return !original.isEmpty() && !stabilized.isEmpty() && !duration.isEmpty(); }

private:
    static QString valueBelow(const QDomElement& e, const QString& tag) {
        return firstDescendant(e, tag).attribute(Words::value);
    }
};

QDomElement createObject(QDomDocument& document, const Stabilization& stabilization, long long id) {
    const MTime duration = Archive::extractValue(stabilization.duration, MTime());
    QDomElement object = Archive::createObject(document, Words::RootObject, className, id);
    for (const Setting& setting : settings)
        object.appendChild(Archive::createInt32(document, QString::fromLatin1(setting.name), setting.value));
    object.appendChild(Archive::createMTime(document, QStringLiteral("sourcePositionOriginal"), MTime()));
    object.appendChild(Archive::createMTime(document, QStringLiteral("sourceDurationOriginal"), duration));
    object.appendChild(createStringPtr(document, pathOriginal, stabilization.original));
    object.appendChild(createStringPtr(document, pathStabilized, stabilization.stabilized));
    return object;
}

} // namespace

void V15_TwoPassStabilizationAdaptor::adapt(QDomDocument& document) {
    QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    auto clips = Archive::Internal::rootObjects(archive, QStringLiteral("Timeline::Clip"));
    QDomElement predeclarations = firstDescendant(archive, Words::predeclarations);
    Archive::Internal::ObjectIds ids(document);
    for (QDomElement& clip : clips) {
        const Stabilization stabilization(clip);
        if (!stabilization.isComplete())
            continue;
        const long long id =
            Archive::addPredeclaration(predeclarations, document, className, 0, ids.greatest(), -1, {});
        archive.appendChild(createObject(document, stabilization, id));
        clip.appendChild(Archive::createObjectRef(document, QStringLiteral("stabilization"), id));
    }
    // Only now, so that ids in what goes still count for the greatest id. Direct children go, even where the
    // values stood deeper.
    for (QDomElement& clip : clips) {
        Archive::removeFirstChild(clip, pathStabilized);
        Archive::removeFirstChild(clip, pathOriginal);
    }
}

} // namespace Project
