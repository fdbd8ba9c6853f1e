#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 69: there are no quizzes any more; their clips leave the timelines, and a plain title fills the end where
/// they made a timeline longer.
class V69_RemoveQuizzesAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
