#pragma once

#include "Reader/Verify.h"

#include <string>
#include <vector>

namespace Tests {

/// Findings as lines such as "dangling-reference Timeline::Object 2 clips/Item[1]/Key".
inline std::vector<std::string> linesOf(const std::vector<Reader::Finding>& findings) {
    std::vector<std::string> lines;
    for (const Reader::Finding& finding : findings)
        lines.push_back(std::string(Reader::nameOf(finding.fault)) + ' ' + finding.className + ' ' +
                        std::to_string(finding.id) + (finding.path.empty() ? "" : " ") + finding.path);
    return lines;
}

} // namespace Tests
