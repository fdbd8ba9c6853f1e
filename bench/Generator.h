#pragma once

#include <QByteArray>

#include <cstddef>

namespace Bench {

/// How large a project is to be. It ends with the scene with which it has all that is asked for.
struct Size {
    std::size_t elements = 0;       ///< XML elements, predeclarations included; 0 for any number
    std::size_t bytes = 0;          ///< of text; 0 for any length
    std::size_t clips = 0;          ///< 0 for any number
    std::size_t effectsPerClip = 0; ///< 0 for two on some clips and none on others
};

/// An archive as the editor saved it at that schema version, 3 to 62: one timeline with a clip of video, one of a
/// picture, a title, music and a linked clip for each scene, effects and transitions of every class in turn. The
/// same size and version give the same text.
QByteArray generateProject(int version, const Size& size);

} // namespace Bench
