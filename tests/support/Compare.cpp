#include "support/Compare.h"

#include <map>
#include <set>
#include <vector>

using nlohmann::json;

namespace Tests {
namespace {

std::string quoted(const QString& text) {
    return '"' + text.toStdString() + '"';
}

std::string placeOf(const QDomNode& node) {
    std::string place;
    for (QDomNode n = node; !n.isNull() && !n.isDocument(); n = n.parentNode()) {
        int number = 1;
        for (QDomNode before = n.previousSibling(); !before.isNull(); before = before.previousSibling())
            number += before.nodeName() == n.nodeName() ? 1 : 0;
        place = '/' + n.nodeName().toStdString() + '[' + std::to_string(number) + ']' + place;
    }
    return place.empty() ? "/" : place;
}

std::vector<QDomNode> contentOf(const QDomNode& node) {
    std::vector<QDomNode> content;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement() || (child.isText() && !child.nodeValue().trimmed().isEmpty()))
            content.push_back(child);
    }
    return content;
}

std::map<QString, QString> attributesOf(const QDomNode& node) {
    std::map<QString, QString> attributes;
    const QDomNamedNodeMap map = node.attributes();
    for (int i = 0; i < map.length(); ++i)
        attributes[map.item(i).nodeName()] = map.item(i).nodeValue();
    return attributes;
}

std::string attributeDifference(const QDomNode& expected, const QDomNode& actual) {
    const auto wanted = attributesOf(expected);
    const auto found = attributesOf(actual);
    std::set<QString> names;
    for (const auto& [name, value] : wanted)
        names.insert(name);
    for (const auto& [name, value] : found)
        names.insert(name);
    for (const QString& name : names) {
        const auto w = wanted.find(name);
        const auto f = found.find(name);
        const std::string want = w == wanted.end() ? "none" : quoted(w->second);
        const std::string have = f == found.end() ? "none" : quoted(f->second);
        if (want != have)
            return placeOf(actual) + " attribute " + name.toStdString() + ": expected " + want + ", got " +
                   have;
    }
    return {};
}

std::string nameOf(const QDomNode& node) {
    if (node.isText())
        return "text " + quoted(node.nodeValue().trimmed());
    std::string name = '<' + node.nodeName().toStdString();
    for (const auto& [key, value] : attributesOf(node))
        name += ' ' + key.toStdString() + '=' + quoted(value);
    return name + '>';
}

std::string jsonDifference(const json& expected, const json& actual, const std::string& place) {
    if (expected.is_object() && actual.is_object()) {
        for (const auto& [key, value] : expected.items()) {
            if (!actual.contains(key))
                return place + '/' + key + ": expected " + value.dump() + ", got none";
            if (auto text = jsonDifference(value, actual[key], place + '/' + key); !text.empty())
                return text;
        }
        for (const auto& [key, value] : actual.items()) {
            if (!expected.contains(key))
                return place + '/' + key + ": expected none, got " + value.dump();
        }
        return {};
    }
    if (expected.is_array() && actual.is_array() && expected.size() == actual.size()) {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            if (auto text = jsonDifference(expected[i], actual[i], place + '/' + std::to_string(i));
                !text.empty())
                return text;
        }
        return {};
    }
    // By text, since 0 and 0.0 are equal as numbers and different as stored values.
    return expected.dump() == actual.dump()
               ? std::string()
               : place + ": expected " + expected.dump() + ", got " + actual.dump();
}

} // namespace

std::string difference(const QDomNode& expected, const QDomNode& actual) {
    if (auto text = attributeDifference(expected, actual); !text.empty())
        return text;
    const auto wanted = contentOf(expected);
    const auto found = contentOf(actual);
    for (std::size_t i = 0; i < std::max(wanted.size(), found.size()); ++i) {
        if (i == wanted.size())
            return placeOf(found[i]) + ": not expected, got " + nameOf(found[i]);
        if (i == found.size())
            return placeOf(wanted[i]) + ": expected " + nameOf(wanted[i]) + ", got nothing";
        const bool sameText =
            !wanted[i].isText() || wanted[i].nodeValue().trimmed() == found[i].nodeValue().trimmed();
        if (wanted[i].nodeName() != found[i].nodeName() || !sameText)
            return placeOf(found[i]) + ": expected " + nameOf(wanted[i]) + ", got " + nameOf(found[i]);
        if (auto text = difference(wanted[i], found[i]); !text.empty())
            return text;
    }
    return {};
}

std::string difference(const json& expected, const json& actual) {
    return jsonDifference(expected, actual, "");
}

} // namespace Tests
