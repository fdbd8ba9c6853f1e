#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 69: there are no quizzes any more. Their clips are removed from the timelines, and if that makes a
/// timeline shorter, a title clip fills its end.
class V69_RemoveQuizzesAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
