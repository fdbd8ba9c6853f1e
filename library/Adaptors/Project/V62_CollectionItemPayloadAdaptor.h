#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 62: a collection item contains its download, so the URL and the size move to it from the object
/// that it refers to.
class V62_CollectionItemPayloadAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
