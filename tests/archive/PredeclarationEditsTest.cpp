#include "Archive/Internal/PredeclarationEdits.h"

#include "Archive/Xml.h"
#include "support/Compare.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using Archive::Internal::PredeclarationEdits;

/// A list of records for the ids given, whose `size` may be wrong.
QDomDocument listOf(const QList<long long>& ids, const QString& size) {
    QDomDocument document;
    QDomElement list = document.createElement("predeclarations");
    document.appendChild(list);
    long long maxId = 1000;
    for (const long long id : ids)
        Archive::addPredeclaration(list, document, "Old", 0, maxId, id, {});
    list.setAttribute("size", size);
    return document;
}

struct Edit {
    bool isRemoval;
    long long id;
};

void applyOneByOne(QDomDocument& document, const std::vector<Edit>& edits) {
    QDomElement list = document.documentElement();
    long long maxId = 2000;
    for (const Edit& edit : edits) {
        if (edit.isRemoval)
            Archive::removePredeclare(list, edit.id);
        else
            Archive::addPredeclaration(list, document, "New", 1, maxId, edit.id, {edit.id});
    }
}

void applyTogether(QDomDocument& document, const std::vector<Edit>& edits) {
    PredeclarationEdits together(document, document.documentElement());
    long long maxId = 2000;
    for (const Edit& edit : edits) {
        if (edit.isRemoval)
            together.remove(edit.id);
        else
            together.add("New", 1, maxId, edit.id, {edit.id});
    }
    together.finish();
}

void expectSameResult(const QList<long long>& ids, const QString& size, const std::vector<Edit>& edits) {
    QDomDocument expected = listOf(ids, size);
    QDomDocument actual = listOf(ids, size);
    applyOneByOne(expected, edits);
    applyTogether(actual, edits);
    EXPECT_EQ(Tests::difference(expected, actual), "");
}

TEST(PredeclarationEditsTest, GivesWhatOneCallEachGives) {
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

TEST(PredeclarationEditsTest, LeavesAListAloneWithoutEdits) {
    QDomDocument document = listOf({5}, "3");
    document.documentElement().firstChildElement().setAttribute("index", "7");
    applyTogether(document, {});
    EXPECT_EQ(document.documentElement().firstChildElement().attribute("index"), "7");
    EXPECT_EQ(document.documentElement().attribute("size"), "3");
}

TEST(PredeclarationEditsTest, CountsIdsWithoutAList) {
    QDomDocument document;
    PredeclarationEdits edits(document, QDomElement());
    long long maxId = 10;
    edits.remove(3);
    EXPECT_EQ(edits.add("New", 0, maxId, -1, {}), 11);
    EXPECT_EQ(edits.add("New", 0, maxId, 7, {}), 7);
    edits.finish();
    EXPECT_EQ(maxId, 13);
    EXPECT_TRUE(document.firstChild().isNull());
}

} // namespace
