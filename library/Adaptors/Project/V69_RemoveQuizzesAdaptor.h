#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 69: there are no quizzes any more. Their clips are removed from the timelines, and if that makes a
/// timeline shorter, a title clip fills its end.
class V69_RemoveQuizzesAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
