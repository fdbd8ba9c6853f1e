#pragma once

#include "Adaptors/XmlStep.h"

/// Before the conversion of every archive: gives every "Import::Object" the `descriptionUrl` that older files may lack.
class ImportDescriptionAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};
