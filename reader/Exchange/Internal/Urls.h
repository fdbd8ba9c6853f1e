#pragma once

#include <string>

namespace Reader::Exchange {

/// Whether a path begins with the marker of a folder of the installed editor, which is not known here.
bool hasFolderMarker(const std::string& path);

/// A path of a document as a URL: a file URL for an absolute path, also one of Windows; a relative one for a relative
/// path; and what is a URL already as it is, with the characters encoded that a URL can't have.
std::string urlOf(const std::string& path);

} // namespace Reader::Exchange
