#pragma once

#include <QByteArray>

#include <cstddef>

namespace Bench {

/// How large a project is to be: at least this. It ends with a whole copy of the sample's clips.
struct Size {
    std::size_t elements = 0;       ///< XML elements, predeclarations included; 0 for any number
    std::size_t bytes = 0;          ///< of text; 0 for any length
    std::size_t clips = 0;          ///< 0 for any number
    std::size_t effectsPerClip = 0; ///< this many times the effects that the sample's clips have; 0 for once
};

/// An archive of that schema version, 3 to 62: a sample project whose clips are repeated. The same size and version
/// give the same text.
QByteArray generateProject(int version, const Size& size);

} // namespace Bench
