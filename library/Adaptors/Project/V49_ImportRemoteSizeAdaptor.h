#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 49: an import has a remote size, so every "Import::Object" gets -1 for unknown.
class V49_ImportRemoteSizeAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
