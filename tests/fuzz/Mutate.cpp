#include "Mutate.h"

#include "Fuzz.h"
#include "Reader/Error.h"
#include "Reader/JsonText.h"
#include "Reader/XmlText.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <vector>

using nlohmann::json;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace Fuzz {
namespace {

std::size_t below(std::size_t bound, Random& random) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

template <class List>
const auto& anyOf(const List& list, Random& random) {
    return list[below(std::size(list), random)];
}

// Infinity, NaN and an incomplete double, texts at the limits of number types, markup, a time and a pair.
const char* const texts[] = {"0",
                             "1",
                             "-1",
                             "2",
                             "16",
                             "64",
                             "2147483648",
                             "4294967295",
                             "9223372036854775807",
                             "-9223372036854775808",
                             "18446744073709551615",
                             "1e308",
                             "nan",
                             "",
                             "abc",
                             "0.5;0.25",
                             ";",
                             "f/AAAAAAAAA=",
                             "f/gAAAAAAAA=",
                             "P+A=",
                             "content_1.svg",
                             "<svg><text>a</text></svg>",
                             "#PACKAGES_ROOT#/a",
                             "empty"};

const char* const attributes[] = {"value", "type",       "objectId", "size",
                                  "index", "binaryData", "ref",      "isNull"};

// XML

std::vector<QDomElement> elementsOf(const QDomDocument& document) {
    std::vector<QDomElement> elements;
    QDomElement e = document.documentElement();
    while (!e.isNull()) {
        elements.push_back(e);
        QDomElement next = e.firstChildElement();
        while (next.isNull() && !e.isNull()) {
            next = e.nextSiblingElement();
            e = e.parentNode().toElement();
        }
        e = next;
    }
    return elements;
}

QDomDocument documentOf(const QByteArray& bytes) {
    try {
        return Reader::parseXml(bytes, QString());
    } catch (const Reader::Error&) {
        return {};
    }
}

bool isBelow(QDomNode node, const QDomNode& top) {
    while (!node.isNull() && node != top)
        node = node.parentNode();
    return !node.isNull();
}

/// Nests an element in many copies of itself.
void bury(QDomElement e, std::size_t depth) {
    QDomNode parent = e.parentNode();
    QDomElement top = e.cloneNode(false).toElement();
    parent.replaceChild(top, e);
    for (QDomElement place = top; depth > 0; --depth) {
        const QDomNode next = depth == 1 ? QDomNode(e) : e.cloneNode(false);
        place.appendChild(next);
        place = next.toElement();
    }
}

void changeAttribute(QDomElement e, const QDomElement& other, Random& random) {
    const QString attribute = QString::fromLatin1(anyOf(attributes, random));
    switch (below(4, random)) {
    case 0:
        e.setAttribute(attribute, QString::fromUtf8(anyOf(texts, random)));
        break;
    case 1:
        e.removeAttribute(attribute);
        break;
    case 2:
        e.setAttribute(attribute, other.attribute(attribute));
        break;
    default: // a reference to another object, or an id that is taken
        e.setAttribute(below(3, random) ? QStringLiteral("value") : QStringLiteral("objectId"),
                       other.attribute(QStringLiteral("objectId"), other.attribute(QStringLiteral("value"))));
    }
}

void changeTree(QDomDocument& document, const std::vector<QDomElement>& donors, Random& random) {
    const std::vector<QDomElement> elements = elementsOf(document);
    const QDomElement archive = elements.front();
    QDomElement e = anyOf(elements, random);
    QDomElement other = anyOf(elements, random);
    const bool isTop = e == archive;
    switch (below(12, random)) {
    case 0:
        if (!isTop)
            e.parentNode().removeChild(e);
        break;
    case 1:
        if (!isTop)
            e.parentNode().insertAfter(e.cloneNode(), e);
        break;
    case 2:
        if (!isTop && !isBelow(other, e))
            other.appendChild(e);
        break;
    case 3:
        if (other != archive)
            e.insertBefore(other.cloneNode(), e.firstChild());
        break;
    case 4:
        if (!isTop)
            e.setTagName(other.tagName() == archive.tagName() ? QStringLiteral("Item") : other.tagName());
        break;
    case 5:
        document.documentElement().setAttribute(QStringLiteral("schemaVersion"),
                                                static_cast<int>(below(63, random)));
        break;
    case 6:
        if (!isTop && !donors.empty()) {
            const QDomElement donated = anyOf(donors, random);
            if (donated.tagName() != archive.tagName())
                e.parentNode().appendChild(document.importNode(donated, true));
        }
        break;
    case 7:
        if (!isTop && below(20, random) == 0)
            bury(e, 1 + below(300, random));
        break;
    case 8:
        e.setAttribute(QStringLiteral("type"), other.attribute(QStringLiteral("type")));
        break;
    default:
        changeAttribute(e, other, random);
    }
}

// JSON

/// All values of a document but its "version", and all keys.
struct JsonParts {
    std::vector<json*> values;
    std::vector<std::string> keys;
};

JsonParts partsOf(json& root) {
    JsonParts parts;
    std::vector<json*> open = {&root};
    while (!open.empty()) {
        json* value = open.back();
        open.pop_back();
        parts.values.push_back(value);
        if (value->is_object()) {
            for (auto it = value->begin(); it != value->end(); ++it) {
                if (it.key() == "version")
                    continue;
                parts.keys.push_back(it.key());
                open.push_back(&*it);
            }
        } else if (value->is_array()) {
            for (json& member : *value)
                open.push_back(&member);
        }
    }
    return parts;
}

constexpr double numbers[] = {0.5, -1e308, 1e19, -0.0};

json scalar(Random& random) {
    switch (below(8, random)) {
    case 0:
        return nullptr;
    case 1:
        return below(2, random) == 0;
    case 2:
        return anyOf(numbers, random);
    case 3:
        return std::numeric_limits<std::uint64_t>::max();
    case 4:
        return std::numeric_limits<std::int64_t>::min();
    case 5:
        return static_cast<std::int64_t>(below(100, random)) - 2;
    case 6:
        return json::object({{"@meta_reference", below(60, random)}});
    default:
        return anyOf(texts, random);
    }
}

void changeJson(json& document, const std::vector<json*>& donors, Random& random) {
    const JsonParts parts = partsOf(document);
    json& value = *anyOf(parts.values, random);
    const json& other = *anyOf(parts.values, random);
    switch (below(9, random)) {
    case 0:
        if (value.is_structured() && !value.empty() && &value != &document)
            value.erase(std::next(value.begin(), static_cast<std::ptrdiff_t>(below(value.size(), random))));
        break;
    case 1:
        if (value.is_array() && !value.empty())
            value.push_back(json(anyOf(value, random)));
        break;
    case 2:
        if (&value != &document)
            value = json(other);
        break;
    case 3:
        if (value.is_object() && !parts.keys.empty() && &value != &document)
            value[anyOf(parts.keys, random)] = json(other);
        break;
    case 4:
        document["schemaVersion"] = 57 + below(21, random);
        break;
    case 5:
        if (&value != &document && !donors.empty())
            value = *anyOf(donors, random);
        break;
    case 6:
        if (&value != &document && below(20, random) == 0) {
            for (std::size_t depth = below(2000, random); depth > 0; --depth)
                value = json::array({std::move(value)});
        }
        break;
    default:
        if (&value != &document)
            value = scalar(random);
    }
}

/// Copying a value needs stack for each level.
bool isDeep(const QByteArray& bytes) {
    constexpr int greatest = 3000;
    int depth = 0;
    for (const char c : bytes) {
        depth += c == '[' || c == '{' ? 1 : c == ']' || c == '}' ? -1 : 0;
        if (depth > greatest)
            return true;
    }
    return false;
}

json jsonOf(const QByteArray& bytes) {
    return isDeep(bytes) ? json() : json::parse(bytes.begin(), bytes.end(), nullptr, false);
}

} // namespace

QByteArray mutateXml(const QByteArray& bytes, const QByteArray& donor, Random& random) {
    QDomDocument document = documentOf(bytes);
    if (document.documentElement().isNull())
        return {};
    const QDomDocument other = documentOf(donor);
    const std::vector<QDomElement> donors = elementsOf(other);
    for (std::size_t changes = 1 + below(4, random); changes > 0; --changes)
        changeTree(document, donors, random);
    return Reader::writeXml(document);
}

QByteArray mutateJson(const QByteArray& bytes, const QByteArray& donor, Random& random) {
    json document = jsonOf(bytes);
    if (!document.is_object())
        return {};
    json other = jsonOf(donor);
    const std::vector<json*> donors = donor.isEmpty() ? std::vector<json*>() : partsOf(other).values;
    for (std::size_t changes = 1 + below(4, random); changes > 0; --changes)
        changeJson(document, donors, random);
    try {
        return Reader::writeJson(document);
    } catch (const json::exception&) {
        return {};
    }
}

QByteArray mutateProject(const QByteArray& bytes, const QByteArray& donor, Random& random) {
    return bytes.trimmed().startsWith('<') ? mutateXml(bytes, donor, random)
                                           : mutateJson(bytes, donor, random);
}

std::size_t mutateOrElse(Mutation mutate, std::uint8_t* data, std::size_t size, std::size_t most,
                         unsigned int seed) {
    Random random(seed);
    if (below(3, random) == 0)
        return LLVMFuzzerMutate(data, size, most);
    const QByteArray result = mutate(bytesOf(data, size), {}, random);
    if (result.isEmpty() || static_cast<std::size_t>(result.size()) > most)
        return LLVMFuzzerMutate(data, size, most);
    std::copy(result.begin(), result.end(), data);
    return static_cast<std::size_t>(result.size());
}

std::size_t crossOver(Mutation mutate, std::span<const std::uint8_t> first,
                      std::span<const std::uint8_t> second, std::span<std::uint8_t> out, unsigned int seed) {
    Random random(seed);
    const QByteArray result =
        mutate(bytesOf(first.data(), first.size()), bytesOf(second.data(), second.size()), random);
    if (static_cast<std::size_t>(result.size()) > out.size())
        return 0;
    std::copy(result.begin(), result.end(), out.begin());
    return static_cast<std::size_t>(result.size());
}

} // namespace Fuzz
