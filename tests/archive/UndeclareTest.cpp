#include "Archive/Internal/ArchiveEditor.h"

#include "Archive/Xml.h"
#include "support/Compare.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using Archive::Internal::ArchiveEditor;

constexpr long long greatestId = 2000;

/// A list of records for the ids given, whose `size` may be wrong.
QDomDocument listOf(const QList<long long>& ids, const QString& size) {
    QDomDocument document;
    QDomElement list = document.createElement("predeclarations");
    document.appendChild(list);
    long long maxId = 1000;
    for (const long long id : ids)
        Archive::addPredeclaration(list, document, "Old", 0, maxId, id, {});
    list.setAttribute("size", size);
    list.setAttribute("objectId", greatestId);
    return document;
}

struct Edit {
    bool isRemoval;
    long long id;
};

void applyOneByOne(QDomDocument& document, const std::vector<Edit>& edits) {
    QDomElement list = document.documentElement();
    long long maxId = greatestId;
    for (const Edit& edit : edits) {
        if (edit.isRemoval)
            Archive::removePredeclare(list, edit.id);
        else
            Archive::addPredeclaration(list, document, "New", 1, maxId, edit.id, {edit.id});
    }
}

void applyTogether(QDomDocument& document, const std::vector<Edit>& edits) {
    ArchiveEditor archive(document);
    archive.setPredeclarations(document.documentElement());
    for (const Edit& edit : edits) {
        if (edit.isRemoval)
            archive.undeclare(edit.id);
        else
            archive.declareAs(edit.id, "New", 1, {edit.id});
    }
    archive.endStep();
}

void expectSameResult(const QList<long long>& ids, const QString& size, const std::vector<Edit>& edits) {
    QDomDocument expected = listOf(ids, size);
    QDomDocument actual = listOf(ids, size);
    applyOneByOne(expected, edits);
    applyTogether(actual, edits);
    EXPECT_EQ(Tests::difference(expected, actual), "");
}

TEST(UndeclareTest, GivesTheSameAsSeparateCalls) {
    std::mt19937 random(1);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const QString sizes[] = {"4", "0", "17", "-3", "none", "", "9223372036854775807"};
    for (int run = 0; run < 1000; ++run) {
        QList<long long> ids;
        for (int count = below(7); count > 0; --count)
            ids.append(1 + below(8));
        std::vector<Edit> edits;
        for (int count = below(12); count > 0; --count)
            edits.push_back({below(2) == 0, below(9)}); // 0 is added as a new id
        SCOPED_TRACE("run " + std::to_string(run));
        expectSameResult(ids, sizes[below(7)], edits);
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(UndeclareTest, ChangesNothingWithoutCalls) {
    QDomDocument document = listOf({5}, "3");
    document.documentElement().firstChildElement().setAttribute("index", "7");
    applyTogether(document, {});
    EXPECT_EQ(document.documentElement().firstChildElement().attribute("index"), "7");
    EXPECT_EQ(document.documentElement().attribute("size"), "3");
}

TEST(UndeclareTest, CountsIdsWithoutAList) {
    const QDomDocument document = Tests::xml("<a objectId='10'/>");
    ArchiveEditor archive(document);
    archive.setPredeclarations({});
    archive.undeclare(3);
    EXPECT_EQ(archive.declare("New"), 11);
    EXPECT_EQ(archive.declareAs(7, "New"), 7);
    EXPECT_EQ(archive.nextId(), 14);
    archive.endStep();
    EXPECT_TRUE(document.documentElement().firstChild().isNull());
}

} // namespace
