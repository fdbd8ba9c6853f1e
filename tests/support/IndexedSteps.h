#pragma once

#include "Reader/AdaptorTable.h"
#include "Reader/Document.h"
#include "support/Index.h"

#include <string>

namespace Tests {

/// Runs all steps that an archive needs with one editor, on a copy. Gives the first step after which the
/// index differs from a search of the document, and the difference. Empty if there is none, and for JSON.
inline std::string indexDifferenceAfterSteps(const Reader::Document& document) {
    if (!document.isXml())
        return {};
    Reader::Document copy = document.clone();
    Archive::Internal::ArchiveEditor archive(copy.xml());
    indexDifference(archive); // fills the index
    const int version = document.version().value_or(0);
    for (const Reader::AdaptorRow* step :
         Reader::stepsFor(Bundle::Backend::Xml, version, Reader::lastXmlVersion)) {
        step->makeXml()->apply(archive);
        if (const std::string difference = indexDifference(archive); !difference.empty())
            return std::string(step->className) + ": " + difference;
    }
    return {};
}

} // namespace Tests
