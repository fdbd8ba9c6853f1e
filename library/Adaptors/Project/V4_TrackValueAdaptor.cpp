#include "Adaptors/Project/V4_TrackValueAdaptor.h"

#include "Archive/Internal/Walk.h"

#include <glog/logging.h>

#include <algorithm>

using Archive::Internal::elements;
using Archive::Internal::firstDescendant;

namespace Project {
namespace {

struct TrackNumber {
    int before;
    int after;
};

// No track had the place of 32. Every other number stays as it is.
// clang-format off
constexpr TrackNumber trackNumbers[] = {
    {1, 16},
    {2, 48},
    {3, 64},
    {4, 80},
    {5, 96},
};
// clang-format on

void renumber(QDomElement& track) {
    const int number = track.attribute(Archive::Words::value).toInt();
    const auto* row = std::find_if(std::begin(trackNumbers), std::end(trackNumbers),
                                   [number](const TrackNumber& r) { return r.before == number; });
    if (row != std::end(trackNumbers))
        track.setAttribute(Archive::Words::value, QString::number(row->after));
}

} // namespace

void V4_TrackValueAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    // Only the first `clips` counts: documents of that time had one timeline.
    const QDomElement clips = firstDescendant(archive, QStringLiteral("clips"));
    for (QDomElement& track : elements(clips, QStringLiteral("track")))
        renumber(track);
}

} // namespace Project
