#pragma once

#include <string_view>

/// The files of this folder that are part of pages. CMake makes their definitions.
namespace ReportAssets {

extern const std::string_view baseStyle;  ///< base.css: colours, texts and tables of all pages
extern const std::string_view pageStyle;  ///< page.css
extern const std::string_view pageScript; ///< page.js
extern const std::string_view tableStyle; ///< table.css: the table of a batch

} // namespace ReportAssets
