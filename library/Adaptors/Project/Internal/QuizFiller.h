#pragma once

#include "MTime/MTime.h"
#include "Serialize/Json/FlatObject.h"

#include <nlohmann/json.hpp>

namespace Project::Internal {

/// Creates the title clip of version 69 that keeps the length of a timeline whose quizzes at the end are removed. Parts
/// of the clip are in the document and, as copies, in what they are part of.
nlohmann::json* createFillerClip(Serialize::Json::FlatObject& document, unsigned long long timelineId,
                                 const MTime& duration);

/// Creates the timing of that clip, without a track.
nlohmann::json* createFillerTiming(Serialize::Json::FlatObject& document, const MTime& start,
                                   const MTime& duration);

} // namespace Project::Internal
