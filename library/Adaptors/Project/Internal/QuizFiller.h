#pragma once

#include "MTime/MTime.h"
#include "Serialize/Json/FlatObject.h"

#include <nlohmann/json.hpp>

namespace Project::Internal {

/// Creates a title clip, in the form of version 69, that fills the end of a timeline after quizzes were
/// removed there. Quirk: each part of the clip is in the document and, as a copy, in the object that it is a
/// part of.
nlohmann::json* createFillerClip(Serialize::Json::FlatObject& document, unsigned long long timelineId,
                                 const MTime& duration);

/// Creates the timing of that clip, without a track.
nlohmann::json* createFillerTiming(Serialize::Json::FlatObject& document, const MTime& start,
                                   const MTime& duration);

} // namespace Project::Internal
