#include "Archive/Internal/MapEntries.h"

#include "Archive/Internal/Walk.h"

namespace Archive::Internal {

std::vector<MapEntry> mapEntries(const QDomElement& array) {
    std::vector<MapEntry> entries;
    for (const QDomElement& item : children(array, Words::Item))
        entries.push_back({item, item.firstChildElement(Words::Key), item.firstChildElement(Words::Value)});
    return entries;
}

} // namespace Archive::Internal
