#include "Names.h"

#include "Messages.h"
#include "Reader/AdaptorTable.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <numeric>
#include <utility>

namespace Names {
namespace {

std::string lowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

/// How many characters are to be added, removed, replaced or swapped with their neighbour to get from one to the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> last2;
    std::vector<std::size_t> last(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t(0));
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::vector<std::size_t> row(b.size() + 1, i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool isSame = a[i - 1] == b[j - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], last2[j - 2] + 1);
        }
        last2 = std::exchange(last, std::move(row));
    }
    return last.back();
}

/// What is longer than any name is like none.
constexpr std::size_t longestWord = 100;

constexpr std::string_view ending = "Adaptor";

std::string withoutEnding(const std::string& name) {
    return name.ends_with(ending) ? name.substr(0, name.size() - ending.size()) : name;
}

std::vector<std::string> stepNames() {
    std::vector<std::string> names;
    for (const Reader::AdaptorRow& row : Reader::adaptorTable())
        names.emplace_back(row.className);
    return names;
}

std::vector<std::string> beginningWith(const std::string& beginning, const std::vector<std::string>& names) {
    std::vector<std::string> found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found),
                 [&](const std::string& name) { return name.starts_with(beginning); });
    return found;
}

/// People leave "Adaptor" out.
std::string nearestStep(const std::string& text, const std::vector<std::string>& names) {
    std::vector<std::string> shortNames;
    std::transform(names.begin(), names.end(), std::back_inserter(shortNames), withoutEnding);
    const std::string found = nearest(withoutEnding(text), shortNames);
    const auto place = std::find(shortNames.begin(), shortNames.end(), found);
    return found.empty() ? found : names[static_cast<std::size_t>(place - shortNames.begin())];
}

} // namespace

std::string nearest(std::string_view word, const std::vector<std::string>& candidates) {
    if (word.empty() || word.size() > longestWord)
        return {};
    std::string best;
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t steps = distance(lowerCase(word), lowerCase(candidate));
        if (steps < least && steps < candidate.size()) {
            least = steps;
            best = candidate;
        }
    }
    return best;
}

std::string stepFor(const std::string& text) {
    if (const Reader::AdaptorRow* row = Reader::findAdaptor(text))
        return std::string(row->className);
    const std::vector<std::string> names = stepNames();
    const std::string nameSpace = "Project::";
    const std::string beginning = text.starts_with(nameSpace) ? text.substr(nameSpace.size()) : text;
    std::vector<std::string> found = beginningWith(beginning + '_', names);
    if (found.empty() && !beginning.empty())
        found = beginningWith(beginning, names);
    if (found.size() > 1)
        throw Messages::Failure(Messages::ambiguousStep(text, found));
    if (found.empty())
        throw Messages::Failure(Messages::unknownStep(text, nearestStep(beginning, names)));
    return found.front();
}

} // namespace Names
