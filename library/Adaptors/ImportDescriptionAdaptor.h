#pragma once

#include "Adaptors/XmlStep.h"

/// Runs before the conversion of every archive: adds `descriptionUrl`, which older files may lack, to every
/// "Import::Object".
class ImportDescriptionAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};
