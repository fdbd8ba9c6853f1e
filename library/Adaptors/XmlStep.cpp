#include "Adaptors/XmlStep.h"

#include "Archive/Internal/ArchiveEditor.h"

#include <glog/logging.h>

using Archive::Internal::ArchiveEditor;
using Archive::Internal::Scope;

namespace Bundle {
namespace {

/// Logs an error and returns false if the `Archive` is missing.
bool checkArchive(const QDomElement& archive) {
    if (archive.isNull())
        LOG(ERROR) << "<Archive> element not found";
    return !archive.isNull();
}

} // namespace

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
    return checkArchive(archive.root());
}

bool TopArchiveStep::begin(ArchiveEditor& archive) {
    archive.beginStep(Scope::Document);
    return checkArchive(archive.topArchive());
}

} // namespace Bundle
