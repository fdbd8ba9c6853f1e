#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 44: strings are never null, so each "StringPtr" becomes a "String", the only type that later
/// readers accept.
class V44_StringPtrToStringAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
