#include "Adaptors/Project/V15_TwoPassStabilizationAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

/// The fields of a clip's stabilization, at any depth; a missing one is an empty text.
struct Stabilization {
    explicit Stabilization(const QDomElement& clip)
        : original(textOf(firstDescendant(clip, "pathOriginal"))),
          stabilized(textOf(firstDescendant(clip, "pathStabilized"))),
          duration(textOf(firstDescendant(clip, "sourceDuration"))) {}

    bool isComplete() const { return !original.isEmpty() && !stabilized.isEmpty() && !duration.isEmpty(); }

    QString original;
    QString stabilized;
    QString duration; ///< in milliseconds
};

/// Adds the object to the archive and gives its id.
long long addObject(ArchiveEditor& archive, const Stabilization& stabilization) {
    const long long id = archive.declare("Stabilization::Object");
    archive.fields(archive.appendRootObject("Stabilization::Object", id))
        .int32("shakiness", 5)
        .int32("accuracy", 15)
        .int32("stepsize", 6)
        .int32("smoothing", 15)
        .int32("optzoom", 1)
        .time("sourcePositionOriginal", MTime())
        .time("sourceDurationOriginal", MTime(stabilization.duration.toLongLong()))
        .stringPtr("pathOriginal", stabilization.original)
        .stringPtr("pathStabilized", stabilization.stabilized);
    return id;
}

} // namespace

void V15_TwoPassStabilizationAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: the records are those in the first descendant of that name, not in the first child.
    archive.setPredeclarations(firstDescendant(archive.root(), Words::predeclarations));
    const Elements clips = archive.rootObjects("Timeline::Clip");
    for (const QDomElement& clip : clips) {
        const Stabilization stabilization(clip);
        if (stabilization.isComplete())
            archive.fields(clip).reference("stabilization", addObject(archive, stabilization));
    }
    // Removed last, so that new ids are above the ids in the removed fields. Quirk: direct children are
    // removed, also if the values were found at a greater depth.
    for (const QDomElement& clip : clips) {
        archive.removeField(clip, "pathStabilized");
        archive.removeField(clip, "pathOriginal");
    }
}

} // namespace Project
