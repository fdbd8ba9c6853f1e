#pragma once

#include "Recovery/DamagedText.h"

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Reader {

/// An element of a damaged archive. Elements are in a list and refer to each other by their indexes in it.
struct ScannedNode {
    std::string_view tag; ///< of a text, the text as it is in the file
    int parent = -1;
    int firstChild = -1;
    int lastChild = -1;
    int next = -1; ///< sibling
    std::uint32_t firstAttribute = 0;
    std::uint32_t attributes = 0;
    bool isText = false;
    bool isCut = false;  ///< something inside of it is lost, perhaps its end
    bool isLate = false; ///< behind something that its parent lost
    bool isDead = false; ///< is not written
};

/// An attribute; the value is as it is in the file, with entities.
struct ScannedAttribute {
    std::string_view name;
    std::string_view value;
};

/// The elements of one archive. The first one is the `Archive`.
struct ScannedTree {
    std::vector<ScannedNode> nodes;
    std::vector<ScannedAttribute> attributes;
    std::size_t wholeClips = 0;
    std::size_t wholeObjects = 0;
    bool isDamaged = false;

    /// Adds an element, as the last child of the parent unless that is -1.
    int add(std::string_view tag, int parent);
    std::string_view attribute(int node, std::string_view name) const;
};

/// Reads the elements of a damaged archive. An element whose start and end are there, with nothing lost between them,
/// is whole. Of several archives behind one another that with the most clips is taken, and of equal ones the last.
/// Neither time nor memory are more than linear in the size of the text, and depth takes no stack.
/// The tree refers to the text. Gives an empty tree where there is neither an archive nor a root object.
ScannedTree scanXml(DamagedText& text, RecoveryReport& report);

} // namespace Reader
