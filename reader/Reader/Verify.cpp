#include "Reader/Verify.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Reader/Contents.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_set>

using nlohmann::json;
namespace Words = Archive::Words;

namespace Reader {
namespace {

using Ids = std::unordered_set<unsigned long long>;

constexpr std::array<std::string_view, 7> names = {
    "dangling-reference", "duplicate-id",         "wrong-size", "wrong-index",
    "not-predeclared",    "stale-predeclaration", "unreachable"};

constexpr std::array<std::string_view, 3> severityNames = {"note", "warning", "error"};

/// `isUsed` says that the project uses the object with the fault.
Severity severityOf(Fault fault, bool isUsed) {
    switch (fault) {
    case Fault::DanglingReference:
        return isUsed ? Severity::Error : Severity::Note;
    case Fault::DuplicateId:
        return isUsed ? Severity::Error : Severity::Warning;
    case Fault::WrongSize:
    case Fault::WrongIndex:
        return isUsed ? Severity::Warning : Severity::Note;
    case Fault::NotPredeclared:
    case Fault::StalePredeclaration:
    case Fault::Unreachable:
        break;
    }
    return Severity::Note;
}

std::string missing(unsigned long long id) {
    return "refers to " + std::to_string(id) + ", and there is no such object";
}

const std::string unreachable = "no references lead to it from the root object";

std::string quoted(const QString& text) {
    return '"' + text.toStdString() + '"';
}

/// Paths are for users: a longer path is reduced to its innermost parts.
constexpr std::size_t longestPath = 24;

/// Joins the names of the levels of a walk from `first` on. `nameAt(level)` gives a name.
template <class NameAt>
std::string joinPath(std::size_t first, std::size_t end, NameAt nameAt) {
    std::string path;
    if (end - first > longestPath) {
        path = "...";
        first = end - longestPath;
    }
    for (; first < end; ++first)
        path += (path.empty() ? "" : "/") + nameAt(first);
    return path;
}

bool isNumber(const QString& text, std::size_t number) {
    bool isRead = false;
    return text.toULongLong(&isRead) == number && isRead;
}

// Archives

/// The ids of the objects in an archive.
struct Inventory {
    Ids objects;
    Ids rootObjects; ///< the possible targets of references
    Ids declared;
};

bool isObject(const QDomElement& e) {
    return e.hasAttribute(Words::objectId) && e.tagName() != Words::BaseOfObject;
}

Inventory takeInventory(const QDomDocument& xml) {
    Inventory inventory;
    const auto enter = [&](const QDomElement& e) {
        if (isObject(e)) {
            inventory.objects.insert(Archive::objectIdOf(e));
            if (e.tagName() == Words::RootObject && !isDeclaring(Archive::typeOf(e)))
                inventory.rootObjects.insert(Archive::objectIdOf(e));
        } else if (e.tagName() == Words::oid &&
                   Archive::typeOf(e.parentNode().toElement()) == Words::Predeclare) {
            inventory.declared.insert(e.attribute(Words::value).toULongLong());
        }
    };
    Archive::Internal::walkElements(xml, enter, [](const QDomElement&) {});
    return inventory;
}

class ArchiveCheck {
public:
    explicit ArchiveCheck(const Document& document)
        : m_document(document), m_inventory(takeInventory(document.xml())),
          m_reachable(findReachable(document)) {}

    std::vector<Finding> run();

private:
    struct Level {
        QString name;
        std::size_t items = 0;    ///< the children that are items, so far
        std::size_t position = 0; ///< position among the items of the parent, from 1; 0 if it is no item
    };
    struct Owner {
        std::string className;
        unsigned long long id;
        std::size_t depth; ///< the depth of its element
    };

    void enter(const QDomElement& e);
    void leave(const QDomElement& e);
    void checkObject(const QDomElement& e);
    void checkReference(const QDomElement& e);
    void checkIndex(const QDomElement& item);
    void checkSize(const QDomElement& array);
    Finding& add(Fault fault, std::string text);
    bool isUsed() const;
    std::string path(std::size_t first) const;

    const Document& m_document;
    const Inventory m_inventory;
    const std::unordered_set<unsigned long long> m_reachable;
    Ids m_seen;
    std::vector<Level> m_levels;
    std::vector<Owner> m_owners; ///< the objects that contain the current element, innermost last
    std::size_t m_declarator =
        0; ///< depth of the Predeclarator that contains the current element; 0 if there is none
    std::vector<Finding> m_findings;
};

std::vector<Finding> ArchiveCheck::run() {
    Archive::Internal::walkElements(
        m_document.xml(), [this](const QDomElement& e) { enter(e); },
        [this](const QDomElement& e) { leave(e); });
    return std::move(m_findings);
}

void ArchiveCheck::enter(const QDomElement& e) {
    Level level{e.tagName()};
    if (level.name == Words::Item && !m_levels.empty())
        level.position = ++m_levels.back().items;
    m_levels.push_back(std::move(level));
    if (m_declarator == 0 && Archive::typeOf(e) == Words::Predeclarator)
        m_declarator = m_levels.size();
    if (isObject(e))
        checkObject(e);
    if (Archive::typeOf(e) == Words::ObjectRef)
        checkReference(e);
    if (m_levels.back().position > 0)
        checkIndex(e);
}

void ArchiveCheck::leave(const QDomElement& e) {
    if (Archive::typeOf(e) == Words::Array)
        checkSize(e);
    if (m_declarator == m_levels.size())
        m_declarator = 0;
    if (!m_owners.empty() && m_owners.back().depth == m_levels.size())
        m_owners.pop_back();
    m_levels.pop_back();
}

void ArchiveCheck::checkObject(const QDomElement& e) {
    const unsigned long long id = Archive::objectIdOf(e);
    m_owners.push_back({Archive::typeOf(e).toStdString(), id, m_levels.size()});
    if (!m_seen.insert(id).second)
        add(Fault::DuplicateId, "another object has its id");
    if (isDeclaring(Archive::typeOf(e)))
        return;
    if (!m_inventory.declared.count(id)) {
        Finding& finding = add(Fault::NotPredeclared, "no predeclaration names it");
        // Steps look up the records of root objects; embedded objects are often left out.
        if (e.tagName() == Words::RootObject && isUsed())
            finding.severity = Severity::Warning;
    }
    if (e.tagName() == Words::RootObject && !m_reachable.count(id))
        add(Fault::Unreachable, unreachable);
}

/// Predeclarations may name embedded objects; all other references name root objects.
void ArchiveCheck::checkReference(const QDomElement& e) {
    const unsigned long long id = e.attribute(Words::value).toULongLong();
    const bool isDeclaration = m_declarator > 0;
    if (id != 0 && !(isDeclaration ? m_inventory.objects : m_inventory.rootObjects).count(id))
        add(isDeclaration ? Fault::StalePredeclaration : Fault::DanglingReference, missing(id)).to = id;
}

void ArchiveCheck::checkIndex(const QDomElement& item) {
    const QString index = item.attribute(Words::index);
    const std::size_t position = m_levels.back().position;
    if (!isNumber(index, position))
        add(Fault::WrongIndex,
            "index is " + quoted(index) + ", the item is number " + std::to_string(position));
}

void ArchiveCheck::checkSize(const QDomElement& array) {
    const QString size = array.attribute(Words::size);
    const std::size_t items = m_levels.back().items;
    if (!isNumber(size, items))
        add(Fault::WrongSize, "size is " + quoted(size) + ", the items are " + std::to_string(items));
}

Finding& ArchiveCheck::add(Fault fault, std::string text) {
    static const Owner none{"", 0, 0};
    const Owner& owner = m_owners.empty() ? none : m_owners.back();
    return m_findings.emplace_back(Finding{fault, severityOf(fault, isUsed()), owner.className, owner.id,
                                           path(owner.depth), std::move(text)});
}

/// Whether the project uses the root object that contains the current element. Predeclarations are not used.
bool ArchiveCheck::isUsed() const {
    return !m_owners.empty() && m_reachable.count(m_owners.front().id) > 0;
}

std::string ArchiveCheck::path(std::size_t first) const {
    return joinPath(first, m_levels.size(), [this](std::size_t number) {
        const Level& level = m_levels[number];
        return level.name.toStdString() +
               (level.position == 0 ? std::string() : '[' + std::to_string(level.position) + ']');
    });
}

// JSON

std::string classOf(const json& object) {
    const std::string* name = Serialize::Json::classNameOf(object);
    return name ? *name : std::string();
}

/// Walks through an object of a flat document without recursion and finds dangling references.
class ObjectCheck {
public:
    ObjectCheck(const Serialize::Json::FlatObject& flat,
                const std::unordered_set<unsigned long long>& reachable, std::vector<Finding>& findings)
        : m_flat(flat), m_reachable(reachable), m_findings(findings) {}

    void run(unsigned long long id, const json& object);

private:
    struct Level {
        const json* container;
        json::const_iterator next;
    };

    void enter(const json& value);
    std::string nameAt(std::size_t level) const;

    const Serialize::Json::FlatObject& m_flat;
    const std::unordered_set<unsigned long long>& m_reachable;
    std::vector<Finding>& m_findings;
    unsigned long long m_id = 0;
    const json* m_object = nullptr;
    std::vector<Level> m_levels;
};

void ObjectCheck::run(unsigned long long id, const json& object) {
    m_id = id;
    m_object = &object;
    enter(object);
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (level.next == level.container->end())
            m_levels.pop_back();
        else
            enter(*level.next++);
    }
}

void ObjectCheck::enter(const json& value) {
    const unsigned long long target = linkTarget(value);
    if (target != 0 && !m_flat.objects.count(target))
        m_findings.push_back(
            {Fault::DanglingReference, severityOf(Fault::DanglingReference, m_reachable.count(m_id) > 0),
             classOf(*m_object), m_id,
             joinPath(0, m_levels.size(), [this](std::size_t level) { return nameAt(level); }),
             missing(target), target});
    if (value.is_structured())
        m_levels.push_back({&value, value.begin()});
}

/// The key of the current member, or its number from 0.
std::string ObjectCheck::nameAt(std::size_t number) const {
    const Level& level = m_levels[number];
    const auto member = std::prev(level.next);
    return level.container->is_object() ? member.key() : std::to_string(member - level.container->begin());
}

std::vector<Finding> verifyJson(const Document& document) {
    const JsonDocument& project = document.json();
    std::vector<Finding> findings;
    const auto reachable = findReachable(document);
    const auto blame = [&](Fault fault, unsigned long long id, std::string text) {
        const auto it = project.flat.objects.find(id);
        const std::string className = it == project.flat.objects.end() ? std::string() : classOf(it->second);
        findings.push_back(
            {fault, severityOf(fault, reachable.count(id) > 0), className, id, {}, std::move(text)});
    };
    for (const unsigned long long id : project.notes.duplicateIds)
        blame(Fault::DuplicateId, id, "another object had its id");
    ObjectCheck check(project.flat, reachable, findings);
    for (const auto& [id, object] : project.flat.objects) {
        check.run(id, object);
        if (!reachable.count(id))
            blame(Fault::Unreachable, id, unreachable);
    }
    return findings;
}

} // namespace

std::string_view nameOf(Fault fault) {
    return names[static_cast<std::size_t>(fault)];
}

std::string_view nameOf(Severity severity) {
    return severityNames[static_cast<std::size_t>(severity)];
}

std::optional<Severity> severityNamed(std::string_view name) {
    const auto found = std::find(severityNames.begin(), severityNames.end(), name);
    if (found == severityNames.end())
        return std::nullopt;
    return static_cast<Severity>(found - severityNames.begin());
}

std::vector<Finding> verify(const Document& document) {
    std::vector<Finding> findings = document.isXml() ? ArchiveCheck(document).run() : verifyJson(document);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.fault < b.fault; });
    return findings;
}

} // namespace Reader
