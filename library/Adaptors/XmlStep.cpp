#include "Adaptors/XmlStep.h"

#include "Archive/Internal/ArchiveEditor.h"

#include <glog/logging.h>

using Archive::Internal::ArchiveEditor;
using Archive::Internal::Scope;

namespace Bundle {

void XmlStep::adapt(QDomDocument& document) {
    ArchiveEditor archive(document);
    apply(archive);
}

void XmlStep::apply(ArchiveEditor& archive) {
    if (begin(archive))
        convert(archive);
    archive.endStep();
}

bool XmlStep::begin(ArchiveEditor& archive) {
    archive.beginStep(Scope::Document);
    return true;
}

bool ArchiveStep::begin(ArchiveEditor& archive) {
    archive.beginStep(Scope::Archive);
    if (!archive.root().isNull())
        return true;
    LOG(ERROR) << "<Archive> element not found";
    return false;
}

} // namespace Bundle
