#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

/// On every archive before the conversion: gives every "Import::Object" the `descriptionUrl` that older files may lack.
class ImportDescriptionAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};
