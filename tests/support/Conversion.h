#pragma once

#include "Util/XmlToJsonAdaptor.h"
#include "support/Compare.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

/// Functions for tests of the conversion: creating archives and reading the result.
namespace Tests {

inline nlohmann::json convert(const QDomDocument& document) {
    return Util::XmlToJsonAdaptor().adapt(document);
}

/// The converted root object of an archive whose object 2 has these fields.
inline nlohmann::json dataOf(const std::string& fields, const std::string& others = {}) {
    return convert(archive("<RootRef type='ObjectRef' value='2'/><RootObject type='A' objectId='2'>" +
                           fields + "</RootObject>" + others))["data"];
}

/// The value of a converted element with the tag "f".
inline nlohmann::json valueOf(const std::string& attributes, const std::string& content = {},
                              const std::string& others = {}) {
    return dataOf("<f " + attributes + ">" + content + "</f>", others)["f"];
}

inline std::string item(const std::string& content) {
    return "<Item type='Item' index='1'>" + content + "</Item>";
}

inline std::string ref(const std::string& tag, long long id) {
    return "<" + tag + " type='ObjectRef' value='" + std::to_string(id) + "'/>";
}

inline std::string object(const std::string& type, long long id, const std::string& content = {}) {
    return "<RootObject type='" + type + "' objectId='" + std::to_string(id) + "'>" + content +
           "</RootObject>";
}

/// A map from the transition 3 to one pair of clips, with the second reference and the array's size as given.
inline nlohmann::json
transitionEntry(const std::string& second, const std::string& size = "1",
                const std::vector<std::pair<std::string, long long>>& records = {
                    {"A", 2}, {"Transition::Fade", 3}, {"Timeline::Clip", 4}, {"Timeline::Clip", 5}}) {
    const std::string value =
        "<Value type='Array' size='" + size + "'>" + item(ref("First", 4) + second) + "</Value>";
    return convert(archive(ref("RootRef", 2) + predeclarator(records) +
                           object("A", 2, "<f type='Array'>" + item(ref("Key", 3) + value) + "</f>") +
                           object("Transition::Fade", 3, ref("clip", 4)) + object("Timeline::Clip", 4) +
                           object("Timeline::Clip", 5)))["data"]["f"][0];
}

inline void expectSame(const nlohmann::json& expected, const nlohmann::json& actual) {
    EXPECT_EQ(difference(expected, actual), "");
}

} // namespace Tests
