// Parts of transitions at so great a depth that walking up from each of them would take too long.

#include "Adaptors/Project/V25_TransitionTypeResourceAdaptor.h"
#include "Adaptors/Project/V47_TransitionDurationAdaptor.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

constexpr int levels = 5000;

std::string deep(const std::string& inner) {
    std::string text;
    for (int level = 0; level < levels; ++level)
        text += "<a>";
    text += inner;
    for (int level = 0; level < levels; ++level)
        text += "</a>";
    return text;
}

/// Parts of the ids 2 to 5: below one root object, below two, below one that has ended, below none.
QDomDocument transitions() {
    const std::string other = "<BaseOfObject type='Effect::Object' objectId='6'/>";
    return Tests::archive(
        "<RootObject type='Transition::Fade' objectId='2'>" +
        deep("<BaseOfObject type='Transition::Object' objectId='2'/>" + other +
             "<RootObject type='Transition::Fade' objectId='3'><BaseOfObject type='Transition::Object' "
             "objectId='3'/></RootObject><BaseOfObject type='Transition::Object' objectId='4'/>") +
        "</RootObject>" + deep("<BaseOfObject type='Transition::Object' objectId='5'/>" + other));
}

/// The tags of the children of each part, by its id.
std::map<int, std::string> childrenOfParts(const QDomDocument& document) {
    std::map<int, std::string> result;
    const QDomNodeList parts = document.elementsByTagName("BaseOfObject");
    for (int number = 0; number < parts.length(); ++number) {
        const QDomElement part = parts.item(number).toElement();
        std::string& tags = result[part.attribute("objectId").toInt()];
        for (QDomElement e = part.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
            tags += e.tagName().toStdString() + ' ';
    }
    return result;
}

TEST(DeepParts, AreCountedByTheRootObjectsThatContainThem) {
    QDomDocument document = transitions();
    Project::V47_TransitionDurationAdaptor().adapt(document);
    const std::map<int, std::string> expected = {{2, "defaultDuration "},
                                                 {3, "defaultDuration defaultDuration "},
                                                 {4, "defaultDuration "},
                                                 {5, ""},
                                                 {6, ""}};
    EXPECT_EQ(childrenOfParts(document), expected);
}

TEST(DeepParts, GetTypeAndResources) {
    QDomDocument document = transitions();
    Project::V25_TransitionTypeResourceAdaptor().adapt(document);
    const std::map<int, std::string> expected = {{2, "type resources "},
                                                 {3, "type resources type resources "},
                                                 {4, "type resources "},
                                                 {5, ""},
                                                 {6, ""}};
    EXPECT_EQ(childrenOfParts(document), expected);
}

} // namespace
