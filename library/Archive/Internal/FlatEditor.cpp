#include "Archive/Internal/FlatEditor.h"

#include <algorithm>

namespace Archive::Internal {

std::vector<SelectedObject> FlatEditor::objects(const std::string& className) {
    update();
    const auto found = m_byClass.find(className);
    return found == m_byClass.end() ? std::vector<SelectedObject>() : found->second;
}

std::vector<SelectedObject> FlatEditor::objects(const std::set<std::string>& classNames) {
    std::vector<SelectedObject> selection;
    for (const std::string& className : classNames) {
        const auto some = objects(className);
        selection.insert(selection.end(), some.begin(), some.end());
    }
    std::ranges::sort(selection, {}, &SelectedObject::id);
    return selection;
}

std::map<std::string, std::size_t> FlatEditor::countByClass() {
    update();
    std::map<std::string, std::size_t> counts;
    std::size_t without = m_document->objects.size();
    for (const auto& [className, objects] : m_byClass) {
        counts[className] += objects.size();
        without -= objects.size();
    }
    if (without > 0)
        counts[{}] += without;
    return counts;
}

void FlatEditor::invalidate() {
    m_byClass.clear();
    m_isEmpty = true;
}

void FlatEditor::update() {
    auto& objects = m_document->objects;
    auto entry = m_isEmpty ? objects.begin() : objects.upper_bound(m_lastId);
    for (; entry != objects.end(); ++entry) {
        m_lastId = entry->first;
        m_isEmpty = false;
        if (const std::string* name = Serialize::Json::classNameOf(entry->second))
            m_byClass[*name].push_back({entry->first, &entry->second});
    }
}

} // namespace Archive::Internal
