#pragma once

#include <QByteArray>

#include <cstddef>

namespace Bench {

/// The minimum size of a project. It may be larger, because the sample's clips are copied as a whole.
struct Size {
    std::size_t elements = 0;       ///< XML elements, including predeclarations; 0 for no minimum
    std::size_t bytes = 0;          ///< bytes of text; 0 for no minimum
    std::size_t clips = 0;          ///< 0 for no minimum
    std::size_t effectsPerClip = 0; ///< factor for the number of effects on the sample's clips; 0 means 1
};

/// An archive of that schema version, 3 to 62: a sample project whose clips are repeated. The same size and version
/// give the same text.
QByteArray generateProject(int version, const Size& size);

} // namespace Bench
