#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Bench {

/// The times of a simple step in three forms, in milliseconds of processor time. All three give the same document.
struct PeerTimes {
    std::string step;
    double own = 0;
    double nodeLists = 0; ///< with the DOM's live lists of elements, the obvious way to write a step
    double xslt = 0;      ///< as a stylesheet, run by libxslt
};

/// The times of twelve simple steps on a project with so many elements, and of the way from text to text.
struct PeerTable {
    std::size_t elements = 0;
    std::vector<PeerTimes> steps;
    double load = 0; ///< text into the DOM of this project
    double write = 0;
    double xmlLoad = 0; ///< text into the tree that libxslt uses
    double xmlWrite = 0;
};

/// Measures `runs` times and gives the median of each time. Throws std::runtime_error if the three forms of a step differ
/// in what they give.
PeerTable measurePeers(std::size_t elements, int runs);

} // namespace Bench
