#include "Recovery/XmlScan.h"

#include "Reader/XmlText.h"
#include "Recovery/Fields.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

namespace Reader {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNamePart(char c) {
    return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

/// Whether the text is the number of a character that XML allows, "#38" or "#x26".
bool isCharacterNumber(std::string_view text) {
    constexpr std::size_t longest = 8;
    const bool isHex = text.starts_with("#x");
    text.remove_prefix(std::min<std::size_t>(text.size(), isHex ? 2 : 1));
    if (text.empty() || text.size() > longest)
        return false;
    unsigned long number = 0;
    for (const char c : text) {
        const int digit = c >= '0' && c <= '9'            ? c - '0'
                          : isHex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : isHex && c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                          : -1;
        if (digit < 0)
            return false;
        number = number * (isHex ? 16 : 10) + static_cast<unsigned long>(digit);
    }
    const bool isControl = number < 0x20 && number != '\t' && number != '\n' && number != '\r';
    const bool isSurrogate = number >= 0xD800 && number < 0xE000;
    return !isControl && !isSurrogate && number != 0xFFFE && number != 0xFFFF && number <= 0x10FFFF;
}

/// Whether each '&' begins an entity that XML knows.
bool hasValidEntities(std::string_view text) {
    constexpr std::array<std::string_view, 5> names = {"amp", "lt", "gt", "quot", "apos"};
    constexpr std::size_t longest = 12;
    for (std::size_t start = text.find('&'); start != std::string_view::npos;
         start = text.find('&', start + 1)) {
        const std::string_view rest = text.substr(start + 1, longest);
        const std::string_view name = rest.substr(0, rest.find(';'));
        const bool isKnown = std::find(names.begin(), names.end(), name) != names.end() ||
                             (name.starts_with('#') && isCharacterNumber(name));
        if (name.size() == rest.size() || !isKnown)
            return false;
    }
    return true;
}

/// Where an element may be.
enum class Role { RootObject, Item, ItemPart, Field };

Role roleOf(std::string_view tag) {
    if (tag == "RootObject")
        return Role::RootObject;
    if (tag == "Item")
        return Role::Item;
    constexpr std::array<std::string_view, 5> parts = {"Data", "Key", "Value", "First", "Second"};
    return std::find(parts.begin(), parts.end(), tag) != parts.end() ? Role::ItemPart : Role::Field;
}

class XmlScan {
public:
    XmlScan(DamagedText& source, RecoveryReport& report)
        : m_source(source), m_text(source.text()), m_report(report) {}

    ScannedTree run();

private:
    void readMarkup();
    bool readTag();
    bool readAttributes(std::size_t& position, std::vector<ScannedAttribute>& attributes) const;
    bool skipTo(std::string_view end, std::size_t from);
    void passText(std::size_t end);
    void lose(Damage damage, std::size_t position, std::size_t length);
    void startElement(std::string_view tag, const std::vector<ScannedAttribute>& attributes, bool isEmpty);
    void endElement(std::string_view tag);
    void findParent(std::string_view tag);
    void pop();
    void popTo(std::size_t size);
    void finishTree();
    std::string placeNow() const;
    bool isTopCut() const { return m_open.size() <= m_cut; }

    DamagedText& m_source;
    std::string_view m_text;
    RecoveryReport& m_report;
    std::size_t m_position = 0;
    ScannedTree m_tree;
    ScannedTree m_best;
    std::size_t m_trees = 0;
    bool m_hasArchive = false;
    bool m_isEnded = false; ///< the archive's end was read
    std::vector<int> m_open;
    std::size_t m_cut = 0;                     ///< so many of the open elements have lost something
    std::vector<std::size_t> m_openArrays;     ///< places in m_open
    std::vector<std::size_t> m_openContainers; ///< of objects that are closed where they are damaged
    std::unordered_map<std::string_view, std::size_t> m_openTags;
};

ScannedTree XmlScan::run() {
    while (m_position < m_text.size()) {
        const std::size_t next =
            std::min(m_text.find_first_of(std::string_view("<\0", 2), m_position), m_text.size());
        passText(next);
        m_position = next;
        if (next == m_text.size())
            break;
        if (m_text[next] == '<') {
            readMarkup();
        } else {
            m_position = std::min(m_text.find_first_not_of('\0', next), m_text.size());
            lose(Damage::LostBytes, next, m_position - next);
        }
    }
    if (!m_open.empty())
        lose(Damage::CutOff, m_text.size(), 0);
    finishTree();
    if (m_trees > 1)
        m_source.report(m_report, Damage::SeveralDocuments, 0,
                        "The file has " + std::to_string(m_trees) +
                            " copies of a project; the one with the most whole clips was taken.");
    return std::move(m_best);
}

/// Text between elements. Projects have none, but what is there is kept.
void XmlScan::passText(std::size_t end) {
    const std::string_view text = m_text.substr(m_position, end - m_position);
    if (m_open.empty() || text.find_first_not_of(whiteSpace) == std::string_view::npos)
        return;
    if (isTopCut())
        return; // the rest of a tag
    if (!hasValidEntities(text) || text.find("]]>") != std::string_view::npos) {
        lose(Damage::BrokenMarkup, m_position, text.size());
        return;
    }
    m_tree.nodes[static_cast<std::size_t>(m_tree.add(text, m_open.back()))].isText = true;
}

/// Reads from '<' on. What is no markup is lost.
void XmlScan::readMarkup() {
    const std::size_t start = m_position;
    const std::string_view rest = m_text.substr(start);
    bool isRead = false;
    if (rest.starts_with("<?"))
        isRead = skipTo("?>", start + 2);
    else if (rest.starts_with("<!--"))
        isRead = skipTo("-->", start + 4);
    else
        isRead = readTag();
    if (isRead)
        return;
    // Behind the next NUL or before the next '<', whichever is first.
    m_position = std::min(m_text.find_first_of(std::string_view("<\0", 2), start + 1), m_text.size());
    const bool isNul = m_position < m_text.size() && m_text[m_position] == '\0';
    const bool isEnd = m_position == m_text.size();
    if (isNul)
        m_position = std::min(m_text.find_first_not_of('\0', m_position), m_text.size());
    if (!isEnd) // otherwise the text was cut off
        lose(isNul ? Damage::LostBytes : Damage::BrokenMarkup, start, m_position - start);
}

/// Skips a comment or an instruction without NUL characters.
bool XmlScan::skipTo(std::string_view end, std::size_t from) {
    // What is skipped in vain is skipped once only: it is lost up to the next '<'.
    const std::size_t stop = m_text.find_first_of(std::string_view("<\0", 2), from);
    const std::size_t found = m_text.substr(0, std::min(stop, m_text.size())).find(end, from);
    if (found == std::string_view::npos)
        return false;
    m_position = found + end.size();
    return true;
}

bool XmlScan::readTag() {
    std::size_t position = m_position + 1;
    const bool isEnd = position < m_text.size() && m_text[position] == '/';
    position += isEnd ? 1 : 0;
    const std::size_t nameStart = position;
    if (position == m_text.size() || !isNameStart(m_text[position]))
        return false;
    while (position < m_text.size() && isNamePart(m_text[position]))
        ++position;
    const std::string_view tag = m_text.substr(nameStart, position - nameStart);
    std::vector<ScannedAttribute> attributes;
    if (!readAttributes(position, attributes) || position == m_text.size())
        return false;
    const bool isEmpty = m_text[position] == '/';
    position += isEmpty ? 1 : 0;
    if (position == m_text.size() || m_text[position] != '>' || (isEnd && (isEmpty || !attributes.empty())))
        return false;
    m_position = position + 1;
    if (isEnd)
        endElement(tag);
    else
        startElement(tag, attributes, isEmpty);
    return true;
}

/// Reads up to what is no attribute.
bool XmlScan::readAttributes(std::size_t& position, std::vector<ScannedAttribute>& attributes) const {
    while (true) {
        const std::size_t start = position;
        position = std::min(m_text.find_first_not_of(whiteSpace, position), m_text.size());
        if (position == m_text.size() || !isNameStart(m_text[position]))
            return true;
        if (position == start)
            return false; // no space before it
        const std::size_t nameStart = position;
        while (position < m_text.size() && isNamePart(m_text[position]))
            ++position;
        const std::string_view name = m_text.substr(nameStart, position - nameStart);
        position = std::min(m_text.find_first_not_of(whiteSpace, position), m_text.size());
        if (position == m_text.size() || m_text[position] != '=')
            return false;
        position = std::min(m_text.find_first_not_of(whiteSpace, position + 1), m_text.size());
        if (position == m_text.size() || (m_text[position] != '"' && m_text[position] != '\''))
            return false;
        const char quote = m_text[position++];
        const std::array<char, 3> ends = {quote, '<', '\0'};
        const std::size_t end = m_text.find_first_of(std::string_view(ends.data(), ends.size()), position);
        if (end == std::string_view::npos || m_text[end] != quote)
            return false;
        const std::string_view value = m_text.substr(position, end - position);
        position = end + 1;
        const bool isSecond = std::any_of(attributes.begin(), attributes.end(),
                                          [&](const ScannedAttribute& other) { return other.name == name; });
        if (isSecond || !hasValidEntities(value) || attributes.size() == maxXmlAttributes)
            return false;
        attributes.push_back({name, value});
    }
}

/// Something is lost here: all that is open has lost it.
void XmlScan::lose(Damage damage, std::size_t position, std::size_t length) {
    const bool isOutside = m_open.empty() && m_isEnded;
    if (damage == Damage::CutOff)
        m_source.report(m_report, damage, position, "The file ends " + placeNow() + ": it was cut off.");
    else if (damage == Damage::LostBytes)
        m_source.report(m_report, damage, position,
                        std::to_string(length) + " bytes are lost " + placeNow() + '.');
    else
        m_source.report(m_report, damage, position,
                        std::to_string(length) + " bytes are no XML, " + placeNow() + '.');
    if (isOutside)
        return;
    m_tree.isDamaged = true;
    m_cut = m_open.size();
}

/// "inside of the Timeline::Clip 7"
std::string XmlScan::placeNow() const {
    if (m_open.empty())
        return m_isEnded ? "behind the project" : "before the project";
    if (m_open.size() < 2)
        return "between the objects";
    const std::string_view type = m_tree.attribute(m_open[1], "type");
    const std::string_view id = m_tree.attribute(m_open[1], "objectId");
    return type.empty() ? "inside of the archive"
                        : "inside of the " + std::string(type) + ' ' + std::string(id);
}

void XmlScan::startElement(std::string_view tag, const std::vector<ScannedAttribute>& attributes,
                           bool isEmpty) {
    if (tag == "Archive" && (m_hasArchive || !m_open.empty())) {
        if (!m_open.empty())
            lose(Damage::CutOff, m_position, 0);
        finishTree();
    }
    if (tag == "Archive") {
        m_hasArchive = true;
    } else if (m_open.empty()) {
        if (m_isEnded)
            return; // behind the archive
        // The start of the archive is lost.
        m_open.push_back(m_tree.add("Archive", -1));
        m_hasArchive = m_tree.isDamaged = true;
        ++m_openTags["Archive"];
        m_cut = 1;
    }
    findParent(tag);
    const bool isLate = !m_open.empty() && isTopCut();
    const int index = m_tree.add(tag, m_open.empty() ? -1 : m_open.back());
    ScannedNode& node = m_tree.nodes[static_cast<std::size_t>(index)];
    node.isLate = isLate;
    node.firstAttribute = static_cast<std::uint32_t>(m_tree.attributes.size());
    node.attributes = static_cast<std::uint32_t>(attributes.size());
    m_tree.attributes.insert(m_tree.attributes.end(), attributes.begin(), attributes.end());
    const std::string_view type = m_tree.attribute(index, "type");
    if (isEmpty && tag != "Archive")
        return;
    if (type == "Array")
        m_openArrays.push_back(m_open.size());
    if (!fieldsOf(type).empty())
        m_openContainers.push_back(m_open.size());
    m_open.push_back(index);
    ++m_openTags[tag];
    if (isEmpty)
        pop();
}

/// Where the innermost open element has lost something, perhaps its end: closes the elements that can't hold the one
/// that begins.
void XmlScan::findParent(std::string_view tag) {
    if (m_open.empty() || !isTopCut())
        return;
    switch (roleOf(tag)) {
    case Role::RootObject:
        popTo(1);
        break;
    case Role::Item:
        if (!m_openArrays.empty())
            popTo(m_openArrays.back() + 1);
        break;
    case Role::ItemPart:
        break;
    case Role::Field: {
        constexpr std::size_t mostTried = 4;
        const std::size_t first = m_openContainers.size() - std::min(m_openContainers.size(), mostTried);
        for (std::size_t place = m_openContainers.size(); place > first; --place) {
            const std::size_t container = m_openContainers[place - 1];
            const auto fields = fieldsOf(m_tree.attribute(m_open[container], "type"));
            if (std::any_of(fields.begin(), fields.end(),
                            [&](const FieldRow& row) { return row.name == tag; })) {
                popTo(container + 1);
                break;
            }
        }
        break;
    }
    }
}

void XmlScan::endElement(std::string_view tag) {
    const bool isOpen = m_openTags[tag] > 0;
    if (!m_open.empty() && !isTopCut() && m_tree.nodes[static_cast<std::size_t>(m_open.back())].tag == tag) {
        pop();
        return;
    }
    if (m_open.empty())
        return;
    if (!isTopCut()) // it does not belong here
        lose(Damage::BrokenMarkup, m_position, 0);
    if (!isOpen)
        return; // its start is lost
    while (m_tree.nodes[static_cast<std::size_t>(m_open.back())].tag != tag)
        pop();
    pop();
}

void XmlScan::pop() {
    ScannedNode& node = m_tree.nodes[static_cast<std::size_t>(m_open.back())];
    m_open.pop_back();
    --m_openTags[node.tag];
    if (!m_openArrays.empty() && m_openArrays.back() == m_open.size())
        m_openArrays.pop_back();
    if (!m_openContainers.empty() && m_openContainers.back() == m_open.size())
        m_openContainers.pop_back();
    node.isCut = m_open.size() < m_cut;
    m_cut = std::min(m_cut, m_open.size());
    if (m_open.empty())
        m_isEnded = true;
    if (m_open.size() == 1 && node.tag == "RootObject" && !node.isCut) {
        const int index = static_cast<int>(&node - m_tree.nodes.data());
        ++m_tree.wholeObjects;
        m_tree.wholeClips += m_tree.attribute(index, "type") == clipClassName ? 1 : 0;
    }
}

void XmlScan::popTo(std::size_t size) {
    while (m_open.size() > size)
        pop();
}

/// Keeps the tree if it is the best so far, and begins another.
void XmlScan::finishTree() {
    popTo(0);
    if (m_tree.nodes.empty())
        return;
    ++m_trees;
    const auto worth = [](const ScannedTree& tree) { return std::pair(tree.wholeClips, tree.wholeObjects); };
    if (m_best.nodes.empty() || worth(m_tree) >= worth(m_best))
        m_best = std::move(m_tree);
    m_tree = {};
    m_hasArchive = m_isEnded = false;
    m_cut = 0;
    m_openTags.clear();
}

} // namespace

int ScannedTree::add(std::string_view tag, int parent) {
    const int index = static_cast<int>(nodes.size());
    nodes.emplace_back();
    nodes.back().tag = tag;
    nodes.back().parent = parent;
    if (parent < 0)
        return index;
    ScannedNode& holder = nodes[static_cast<std::size_t>(parent)];
    if (holder.lastChild < 0)
        holder.firstChild = index;
    else
        nodes[static_cast<std::size_t>(holder.lastChild)].next = index;
    holder.lastChild = index;
    return index;
}

std::string_view ScannedTree::attribute(int node, std::string_view name) const {
    const ScannedNode& element = nodes[static_cast<std::size_t>(node)];
    for (std::uint32_t number = 0; number < element.attributes; ++number) {
        const ScannedAttribute& candidate = attributes[element.firstAttribute + number];
        if (candidate.name == name)
            return candidate.value;
    }
    return {};
}

ScannedTree scanXml(DamagedText& text, RecoveryReport& report) {
    return XmlScan(text, report).run();
}

} // namespace Reader
