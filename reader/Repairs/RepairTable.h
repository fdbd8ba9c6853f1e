#pragma once

#include "Reader/AdaptorTable.h"
#include "Reader/Document.h"
#include "Repairs/Repair.h"

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

// Repairs of projects that the steps can't pass, or that lose something in them because a step has an old mistake. They
// are made on request only.
//
// Threads: the table is constant. All functions are thread-safe.

namespace Repairs {

/// A row of the table: a repair, where it looks, and how to create it.
class RepairRow {
public:
    using Places = std::array<std::string_view, 3>;
    using MakeText = std::unique_ptr<TextRepair> (*)();
    using MakeXml = std::unique_ptr<ArchiveRepair> (*)();
    using MakeJson = std::unique_ptr<JsonRepair> (*)();

    constexpr RepairRow(std::string_view rowName, Places rowPlaces, std::string_view sentence, MakeText text,
                        MakeXml xml, MakeJson json)
        : name(rowName), summary(sentence), m_places(rowPlaces), m_makeText(text), m_makeXml(xml),
          m_makeJson(json) {}

    std::string_view name;    ///< in kebab-case
    std::string_view summary; ///< one sentence for users

    /// Class names of the steps before which it looks, or other places; see Repair.h.
    std::vector<std::string_view> places() const;
    bool looksBefore(std::string_view place) const;

    bool hasText() const { return m_makeText != nullptr; }
    bool hasXml() const { return m_makeXml != nullptr; }
    bool hasJson() const { return m_makeJson != nullptr; }

    /// Create the repair for that form, which the row must have.
    std::unique_ptr<TextRepair> makeText() const { return m_makeText(); }
    std::unique_ptr<ArchiveRepair> makeXml() const { return m_makeXml(); }
    std::unique_ptr<JsonRepair> makeJson() const { return m_makeJson(); }

private:
    Places m_places; ///< empty texts at the end
    MakeText m_makeText;
    MakeXml m_makeXml;
    MakeJson m_makeJson;
};

/// All repairs. At one place they are made in this order.
std::span<const RepairRow> repairTable();

/// The repair of that name; null if there is none.
const RepairRow* findRepair(std::string_view name);

/// A text, and the repairs that were made on it.
struct RepairedText {
    QByteArray bytes;
    std::vector<Reader::RepairMade> repairs;
};

/// Makes the repairs of a file's text.
RepairedText repairText(const QByteArray& bytes);

} // namespace Repairs
