#include "bench/Table.h"

#include <cmath>
#include <functional>
#include <iomanip>
#include <numeric>
#include <ostream>
#include <sstream>
#include <string>

namespace Bench {
namespace {

constexpr int nameWidth = 46;
constexpr int timeWidth = 11;
constexpr int shareWidth = 9;

std::string fixed(double number, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << number;
    return text.str();
}

std::string grouped(std::size_t number) {
    std::string text = std::to_string(number);
    for (int place = static_cast<int>(text.size()) - 3; place > 0; place -= 3)
        text.insert(static_cast<std::size_t>(place), ",");
    return text;
}

double megabytes(std::size_t bytes) {
    return static_cast<double>(bytes) / 1e6;
}

double sum(const std::vector<Part>& parts) {
    return std::accumulate(parts.begin(), parts.end(), 0.0,
                           [](double total, const Part& part) { return total + part.milliseconds; });
}

using Pick = std::function<double(const MigrationTimes&)>;

class Table {
public:
    Table(std::ostream& out, const std::vector<MigrationTimes>& projects)
        : m_out(out), m_projects(projects) {}

    void print();

private:
    void head();
    void time(const std::string& name, const Pick& pick);
    void number(const std::string& name, const Pick& pick, int digits, const std::string& unit);
    void parts(std::vector<Part> MigrationTimes::*list);
    void rule() { m_out << std::string(width(), '-') << '\n'; }
    std::string growth(const Pick& pick) const;
    std::size_t width() const {
        return nameWidth + m_projects.size() * (timeWidth + shareWidth) +
               (m_projects.size() > 1 ? static_cast<std::size_t>(timeWidth) : 0);
    }

    std::ostream& m_out;
    const std::vector<MigrationTimes>& m_projects;
};

/// The exponent k for which the time grew as the k-th power of the number of elements, from the first to the
/// last size.
std::string Table::growth(const Pick& pick) const {
    if (m_projects.size() < 2)
        return {};
    const double first = pick(m_projects.front());
    const double last = pick(m_projects.back());
    if (first < 0.05) // too short to be significant
        return "-";
    const double ratio =
        static_cast<double>(m_projects.back().elements) / static_cast<double>(m_projects.front().elements);
    return fixed(std::log(last / first) / std::log(ratio), 2);
}

void Table::head() {
    m_out << std::left << std::setw(nameWidth) << "elements (ms of processor time)" << std::right;
    for (const MigrationTimes& project : m_projects)
        m_out << std::setw(timeWidth + shareWidth) << grouped(project.elements);
    m_out << '\n' << std::left << std::setw(nameWidth) << "" << std::right;
    for (std::size_t column = 0; column < m_projects.size(); ++column)
        m_out << std::setw(timeWidth) << "ms" << std::setw(shareWidth) << "of load";
    if (m_projects.size() > 1)
        m_out << std::setw(timeWidth) << "growth";
    m_out << '\n';
    rule();
}

void Table::time(const std::string& name, const Pick& pick) {
    m_out << std::left << std::setw(nameWidth) << name << std::right;
    for (const MigrationTimes& project : m_projects)
        m_out << std::setw(timeWidth) << fixed(pick(project), 2) << std::setw(shareWidth - 1)
              << fixed(100 * pick(project) / project.load, 1) << '%';
    if (m_projects.size() > 1)
        m_out << std::setw(timeWidth) << growth(pick);
    m_out << '\n';
}

void Table::number(const std::string& name, const Pick& pick, int digits, const std::string& unit) {
    m_out << std::left << std::setw(nameWidth) << name << std::right;
    for (const MigrationTimes& project : m_projects)
        m_out << std::setw(timeWidth) << fixed(pick(project), digits) << std::setw(shareWidth) << unit;
    m_out << '\n';
}

void Table::parts(std::vector<Part> MigrationTimes::*list) {
    const std::vector<Part>& rows = m_projects.front().*list;
    for (std::size_t row = 0; row < rows.size(); ++row)
        time("  " + rows[row].name,
             [=](const MigrationTimes& project) { return (project.*list)[row].milliseconds; });
}

void Table::print() {
    head();
    number(
        "text read", [](const MigrationTimes& p) { return megabytes(p.bytesRead); }, 1, "MB");
    number(
        "text written", [](const MigrationTimes& p) { return megabytes(p.bytesWritten); }, 1, "MB");
    number(
        "lines logged", [](const MigrationTimes& p) { return static_cast<double>(p.logLines); }, 0, "");
    rule();
    time("floor: load into the DOM, write the result", [](const MigrationTimes& p) { return p.floor(); });
    time("  load", [](const MigrationTimes& p) { return p.load; });
    time("  write", [](const MigrationTimes& p) { return p.write; });
    time("bound: floor, create what the steps add, convert",
         [](const MigrationTimes& p) { return p.bound(); });
    time("whole migration: parse, run, save", [](const MigrationTimes& p) { return p.migration; });
    number(
        "  migration / floor", [](const MigrationTimes& p) { return p.migration / p.floor(); }, 2, "");
    number(
        "  migration / bound", [](const MigrationTimes& p) { return p.migration / p.bound(); }, 2, "");
    number(
        "peak memory of loading", [](const MigrationTimes& p) { return megabytes(p.loadMemory); }, 1, "MB");
    number(
        "peak memory of the migration", [](const MigrationTimes& p) { return megabytes(p.migrationMemory); },
        1, "MB");
    number(
        "  migration / loading",
        [](const MigrationTimes& p) {
            return p.loadMemory ? static_cast<double>(p.migrationMemory) / static_cast<double>(p.loadMemory)
                                : 0.0;
        },
        2, "");
    rule();
    time("all steps", [](const MigrationTimes& p) { return sum(p.steps); });
    parts(&MigrationTimes::steps);
    rule();
    time("all other parts", [](const MigrationTimes& p) { return sum(p.others); });
    parts(&MigrationTimes::others);
}

} // namespace

void printTable(std::ostream& out, const std::vector<MigrationTimes>& projects) {
    Table(out, projects).print();
}

} // namespace Bench
