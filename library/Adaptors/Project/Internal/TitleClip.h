#pragma once

#include <QDomElement>

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Project::Internal {

/// The length of the source of a title clip, in milliseconds.
constexpr long long titleDuration = 6000;

/// Declares a title clip of version 46, with a preset that has one empty text, and appends both to the archive. Gives
/// the clip's id.
long long appendTitleClip(Archive::Internal::ArchiveEditor& archive, const QDomElement& top,
                          long long timelineId);

} // namespace Project::Internal
