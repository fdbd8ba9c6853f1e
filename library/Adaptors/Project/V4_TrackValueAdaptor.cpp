#include "Adaptors/Project/V4_TrackValueAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct TrackNumber {
    int before;
    int after;
};

// clang-format off
// Quirk: no track becomes 32. Any other number is kept.
constexpr TrackNumber trackNumbers[] = {
    {1, 16},
    {2, 48},
    {3, 64},
    {4, 80},
    {5, 96},
};
// clang-format on

void renumber(ArchiveEditor& archive, const QDomElement& track) {
    const int number = int32Of(track);
    for (const TrackNumber& row : trackNumbers) {
        if (row.before == number)
            archive.setText(track, QString::number(row.after));
    }
}

} // namespace

void V4_TrackValueAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: only the first `clips` is converted: documents of that time had one timeline.
    for (const QDomElement& track : elements(firstDescendant(archive.root(), "clips"), "track"))
        renumber(archive, track);
}

} // namespace Project
