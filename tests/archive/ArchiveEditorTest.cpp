// After every kind of change, the index of an editor agrees with a search of the document.

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Internal/References.h"
#include "Archive/Xml.h"
#include "support/Index.h"

#include <gtest/gtest.h>

using namespace Archive::Internal;

namespace {

class ArchiveEditorTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_document.setContent(QStringLiteral(
            "<Archive><RootRef value='1'/>"
            "<RootObject type='A' objectId='1'><BaseOfObject type='B' objectId='1'/></RootObject>"
            "<RootObject type='Predeclarator' objectId='3'><predeclarations type='Array' size='2'>"
            "<Item type='Item' index='1'><Data type='Predeclare' objectId='4'><oid value='1'/></Data></Item>"
            "<Item type='Item' index='2'><Data type='Predeclare' objectId='5'><oid value='7'/></Data></Item>"
            "</predeclarations></RootObject>"
            "<RootObject type='C' objectId='7'><BaseOfObject type='D' objectId='7'/></RootObject>"
            "</Archive>")));
        m_root = m_document.documentElement();
        m_first = m_root.firstChildElement(Words::RootObject);
        m_last = m_root.lastChildElement(Words::RootObject);
        m_array = firstDescendant(m_root, Words::predeclarations);
    }

    /// Makes a change while the whole index is cached.
    template <class Change>
    void expectSameAfter(Change change) {
        ArchiveEditor archive(m_document);
        EXPECT_EQ(Tests::indexDifference(archive), "");
        archive.beginStep(Scope::Document);
        change(archive);
        archive.endStep();
        EXPECT_EQ(Tests::indexDifference(archive), "");
    }

    static QDomElement newObject(ArchiveEditor& archive, long long id) {
        const QDomElement object = archive.newObject(Words::RootObject, "E", id);
        archive.appendObject(object, Words::BaseOfObject, "F", id);
        return object;
    }

    QString indexesOfRecords() const {
        QString indexes;
        for (const QDomElement& item : children(m_array, Words::Item))
            indexes += item.attribute(Words::index) + ' ';
        return indexes.trimmed();
    }

    QDomDocument m_document;
    QDomElement m_root;
    QDomElement m_first;
    QDomElement m_last;
    QDomElement m_array;
};

TEST_F(ArchiveEditorTest, AppendsRootObjects) {
    expectSameAfter([&](ArchiveEditor& archive) { archive.append(m_root, newObject(archive, 9)); });
    expectSameAfter([&](ArchiveEditor& archive) {
        // Parts that are added to a root object that is in the archive already.
        const QDomElement one = archive.appendRootObject("E", 10);
        const QDomElement other = archive.appendRootObject("E", 11);
        archive.appendObject(other, Words::BaseOfObject, "F", 11);
        archive.appendObject(one, Words::BaseOfObject, "F", 10);
        archive.appendObject(one, Words::RootObject, "G", 12);
    });
}

TEST_F(ArchiveEditorTest, RemovesOneOfTwoArchives) {
    m_root.appendChild(m_document.createElement(Words::Archive));
    expectSameAfter([&](ArchiveEditor& archive) {
        EXPECT_TRUE(archive.root().isNull());
        archive.remove(m_root.lastChildElement(Words::Archive));
    });
}

TEST_F(ArchiveEditorTest, NamesFieldsByLiteralsAndByTexts) {
    ArchiveEditor archive(m_document);
    archive.beginStep(Scope::Document);
    const auto nameOf = [&](const QDomElement& object) {
        return archive.fields(object).int32("type", 1).last().tagName();
    };
    const QString first = nameOf(m_first);
    const QString second = nameOf(m_last);
    EXPECT_EQ(first, QString("type"));
    EXPECT_EQ(second, QString("type"));
    EXPECT_EQ(archive.fields(m_first).int32(QStringLiteral("kind"), 1).last().tagName(), QString("kind"));
}

TEST_F(ArchiveEditorTest, InsertsRootObjectsAmongOthers) {
    expectSameAfter(
        [&](ArchiveEditor& archive) { archive.placeBefore(m_root, newObject(archive, 9), m_first); });
    expectSameAfter(
        [&](ArchiveEditor& archive) { archive.placeBehind(m_root, newObject(archive, 10), m_first); });
    expectSameAfter(
        [&](ArchiveEditor& archive) { archive.placeBehind(m_root, newObject(archive, 11), m_last); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.placeBehind(m_root, newObject(archive, 12), {}); });
}

TEST_F(ArchiveEditorTest, InsertsRootObjectsThatContainOthers) {
    expectSameAfter([&](ArchiveEditor& archive) {
        const QDomElement object = newObject(archive, 9);
        archive.appendObject(object, Words::RootObject, "E", 10);
        archive.placeBefore(m_root, object, m_first);
    });
    // One is nested already.
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.placeBefore(m_root, archive.newObject(Words::RootObject, "E", 11), m_first);
    });
}

TEST_F(ArchiveEditorTest, InsertsAppendsAndRemovesRootObjectsInOneStep) {
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.append(m_root, newObject(archive, 9));
        archive.placeBefore(m_root, archive.newObject(Words::RootObject, "E", 10), m_first);
        archive.append(m_root, newObject(archive, 11));
        archive.remove(m_last);
    });
    expectSameAfter([&](ArchiveEditor& archive) {
        // The last listed one is replaced while something else follows it.
        m_root.appendChild(m_document.createComment("end"));
        const QDomElement last = m_root.lastChildElement(Words::RootObject);
        archive.replaceIn(m_root, archive.newObject(Words::RootObject, "E", 12), last);
        archive.append(m_root, newObject(archive, 13));
    });
    expectSameAfter([&](ArchiveEditor& archive) {
        const QDomElement object = archive.newObject(Words::RootObject, "E", 14);
        archive.placeBefore(m_root, object, m_first);
        archive.setType(object, "G");
        archive.remove(object);
        archive.placeBehind(m_root, object, m_first);
    });
}

TEST_F(ArchiveEditorTest, AppendsObjectsInsideOthers) {
    expectSameAfter([&](ArchiveEditor& archive) { archive.append(m_first, newObject(archive, 9)); });
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.append(m_root, newObject(archive, 10));
        archive.append(m_first, newObject(archive, 11));
    });
    expectSameAfter([&](ArchiveEditor& archive) { archive.appendObject(m_first, "rect", "R", 20); });
}

TEST_F(ArchiveEditorTest, AppendsObjectsThatWereCreatedBefore) {
    ArchiveEditor archive(m_document);
    const QDomElement object = newObject(archive, 9);
    EXPECT_EQ(Tests::indexDifference(archive), "");
    archive.append(m_root, object);
    EXPECT_EQ(Tests::indexDifference(archive), "");
}

TEST_F(ArchiveEditorTest, RemovesObjects) {
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(m_last); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.removeField(m_first, Words::BaseOfObject); });
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.append(m_first, newObject(archive, 12));
        archive.remove(m_first);
    });
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.append(m_root, newObject(archive, 12));
        archive.remove(m_root.lastChildElement());
    });
}

TEST_F(ArchiveEditorTest, RemovesObjectsFromTheLastToTheFirst) {
    expectSameAfter([&](ArchiveEditor& archive) {
        for (long long id = 20; id < 30; ++id)
            archive.append(m_root, newObject(archive, id));
    });
    expectSameAfter([&](ArchiveEditor& archive) {
        while (idOf(m_root.lastChildElement()) >= 20)
            archive.remove(m_root.lastChildElement());
    });
}

TEST_F(ArchiveEditorTest, MovesObjects) {
    expectSameAfter([&](ArchiveEditor& archive) { archive.append(m_root, m_first); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.placeBefore(m_root, m_last, m_first); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.append(m_first, m_last); });
    expectSameAfter([&](ArchiveEditor& archive) {
        for (long long id = 20; id < 40; ++id)
            archive.append(m_root, newObject(archive, id));
    });
    expectSameAfter([&](ArchiveEditor& archive) {
        const Elements objects = children(m_root, Words::RootObject);
        for (std::size_t place = objects.size(); place > 2; place -= 2)
            archive.append(m_root, objects[place - 1]);
    });
}

TEST_F(ArchiveEditorTest, RemovesAndAppendsTheSameObject) {
    ArchiveEditor archive(m_document);
    EXPECT_EQ(Tests::indexDifference(archive), "");
    archive.remove(m_first);
    archive.append(m_root, m_first);
    EXPECT_EQ(Tests::indexDifference(archive), "");
    archive.remove(m_last);
    EXPECT_EQ(Tests::indexDifference(archive), "");
    archive.append(m_root, m_last);
    EXPECT_EQ(Tests::indexDifference(archive), "");
}

TEST_F(ArchiveEditorTest, ReplacesObjects) {
    expectSameAfter([&](ArchiveEditor& archive) { archive.replace(m_first, newObject(archive, 2)); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.replace(m_last, newObject(archive, 8)); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.replace(m_root.lastChildElement(), m_array); });
}

TEST_F(ArchiveEditorTest, ChangesNothingForElementsWithAnotherParent) {
    const QString before = m_document.toString();
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.removeFrom(m_first, m_last);
        archive.replaceIn(m_first, newObject(archive, 5), m_last);
        archive.remove(newObject(archive, 6));
    });
    EXPECT_EQ(m_document.toString(), before);
}

TEST_F(ArchiveEditorTest, AcceptsNullElements) {
    const QString before = m_document.toString();
    expectSameAfter([&](ArchiveEditor& archive) {
        const QDomElement none;
        archive.append(none, newObject(archive, 5));
        archive.append(m_root, none);
        archive.remove(none);
        archive.removeField(none, "a");
        archive.removeItems(none, [](QDomElement&) { return true; });
        archive.replace(none, newObject(archive, 5));
        archive.rename(none, "a");
        archive.setType(none, "a");
        archive.setText(none, "a");
        archive.setField(none, "a", 1);
        archive.setField(m_first, "missing", 1);
        archive.appendReference(none, 1);
        appendUncountedReferences(archive, none, {1});
        archive.fields(none)
            .int32("a", 1)
            .array("b")
            .string("c", "d")
            .transform("e", {}, 6)
            .stringPtr("f", "g");
        archive.fieldsInsteadOf(none).int32("a", 1);
        EXPECT_TRUE(archive.appendItem(none).parentNode().isNull());
    });
    EXPECT_EQ(m_document.toString(), before);
}

TEST_F(ArchiveEditorTest, ChangesTypes) {
    expectSameAfter([&](ArchiveEditor& archive) { archive.setType(m_first, "Z"); });
    expectSameAfter([&](ArchiveEditor& archive) {
        const QDomElement object = newObject(archive, 13);
        archive.setType(object, "W");
        archive.append(m_root, object);
        archive.setType(m_last, "V");
    });
}

TEST_F(ArchiveEditorTest, DoesNotChangeEarlierResults) {
    ArchiveEditor archive(m_document);
    const TypedElements before = archive.rootObjects();
    archive.setType(m_first, "Z");
    archive.remove(m_last);
    EXPECT_EQ(Tests::indexDifference(archive), "");
    EXPECT_EQ(before.begin()->type, QLatin1String("A"));
    EXPECT_EQ(std::distance(before.begin(), before.end()), 3);
}

TEST_F(ArchiveEditorTest, RenamesObjects) {
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.rename(m_last, "content");
        const QDomElement object = newObject(archive, 8);
        archive.append(object, m_last);
        archive.append(m_root, object);
    });
    expectSameAfter([&](ArchiveEditor& archive) { archive.rename(m_last, Words::RootObject); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.rename(m_array, Words::Archive); });
    EXPECT_TRUE(ArchiveEditor(m_document).root().isNull());
}

TEST_F(ArchiveEditorTest, AcceptsElementsOfOtherDocuments) {
    const auto import = [&](const char* text) {
        expectSameAfter([&](ArchiveEditor& archive) {
            QDomDocument other;
            ASSERT_TRUE(other.setContent(QString::fromLatin1(text)));
            archive.append(m_first, other.documentElement());
        });
    };
    import("<x objectId='30'><RootObject objectId='31'/></x>");
    import("<x><BaseOfObject objectId='20'/></x>");
    import("<x><!-- a comment: ids behind it are not found in the tree --></x>");
    import("<x><Archive/></x>");
}

TEST_F(ArchiveEditorTest, UpdatesTheRecords) {
    expectSameAfter([&](ArchiveEditor& archive) {
        EXPECT_EQ(archive.declare("T"), 8);
        EXPECT_EQ(archive.declareAs(7, "T", 2, {1, 3}), 7);
        EXPECT_EQ(archive.nextId(), 11);
    });
    EXPECT_EQ(indexesOfRecords(), "1 2 3 4");
    expectSameAfter([&](ArchiveEditor& archive) { archive.undeclare(7); });
    EXPECT_EQ(indexesOfRecords(), "1 2");
    EXPECT_EQ(m_array.attribute(Words::size), "2");
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(m_array.firstChildElement()); });
    expectSameAfter([&](ArchiveEditor& archive) {
        const QDomElement record = m_array.firstChildElement().firstChildElement();
        archive.remove(record.firstChildElement(Words::oid));
    });
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(m_array); });
}

TEST_F(ArchiveEditorTest, ListsElementsOfTypes) {
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.fields(m_first)
            .stringPtr("name", "a")
            .typed("timing", Words::ClipTiming, "")
            .string("tag", "b");
        archive.appendObject(m_last, Words::Value, Words::ClipTiming, 20);
        archive.newObject(Words::Value, Words::ClipTiming, 21); // never inserted
    });
    const QDomElement name = m_first.firstChildElement("name");
    const QDomElement timing = m_last.firstChildElement(Words::Value);
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.append(m_last, name); // moved
        archive.setType(timing, "A");
        archive.setType(m_array, Words::StringPtr);
        archive.setType(m_array.attributeNode(Words::type), Words::ClipTiming);
    });
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.setType(timing, Words::ClipTiming);
        archive.setType(timing, "A");
        archive.setType(timing, Words::ClipTiming); // listed twice
        archive.remove(name);
        EXPECT_EQ(archive.ofListedType(Words::StringPtr).size(), 0);
        archive.append(m_first, name); // again
    });
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(m_last); });
    expectSameAfter([&](ArchiveEditor& archive) {
        QDomDocument other;
        ASSERT_TRUE(
            other.setContent(QStringLiteral("<x type='StringPtr'><y type='Timeline::ClipTiming'/></x>")));
        archive.append(m_first, other.documentElement());
    });
    expectSameAfter(
        [&](ArchiveEditor& archive) { archive.parse("<Archive type='StringPtr'><x/></Archive>"); });
}

TEST_F(ArchiveEditorTest, FindsRecordsAtAnyDepth) {
    const auto refsOfFirst = [&](ArchiveEditor& archive) {
        const QDomElement data = archive.records().begin()->data;
        if (data.firstChildElement(Words::refs).isNull())
            archive.fields(data).array(Words::refs);
        return data.firstChildElement(Words::refs);
    };
    const auto countOf = [&](ArchiveEditor& archive) {
        const RecordList records = archive.recordsAtAnyDepth(m_array);
        return std::distance(records.begin(), records.end());
    };
    // What is below records and declares nothing is left out.
    expectSameAfter([&](ArchiveEditor& archive) { archive.appendReference(refsOfFirst(archive), 7); });
    expectSameAfter([&](ArchiveEditor& archive) {
        EXPECT_EQ(countOf(archive), 2);
        archive.appendReference(refsOfFirst(archive), 7);
        EXPECT_EQ(countOf(archive), 2);
        archive.declare("A", 0, {1, 7});
        archive.declareAs(-9, "A");
        EXPECT_EQ(countOf(archive), 4);
        archive.undeclare(7);
        archive.records();
        EXPECT_EQ(countOf(archive), 3);
    });
    const QDomElement nested = firstDescendant(m_array, Words::refs).firstChildElement(Words::Item);
    const QDomElement data = nested.firstChildElement(Words::Data);
    const QDomElement refs = nested.parentNode().toElement();
    // A reference becomes a record,
    expectSameAfter([&](ArchiveEditor& archive) { archive.fields(data).int64(Words::oid, 8); });
    // gets another id,
    expectSameAfter([&](ArchiveEditor& archive) { archive.removeField(data, Words::oid); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.fields(data).int64("x", 8); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.rename(data.firstChildElement("x"), Words::oid); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(data.firstChildElement(Words::oid)); });
    // another `Data`,
    QDomElement record;
    expectSameAfter([&](ArchiveEditor& archive) {
        record = archive.newObject(Words::Data, Words::Predeclare, 40);
        archive.fields(record).int64(Words::oid, 9);
        archive.append(nested, record);
    });
    expectSameAfter([&](ArchiveEditor& archive) { archive.placeBefore(nested, record, data); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.append(nested, record); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(data); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.rename(record, "x"); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.rename(record, Words::Data); });
    // or leaves; and others come that hold records.
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.remove(nested);
        EXPECT_EQ(countOf(archive), elements(m_array, Words::Item).size()); // a search
        EXPECT_EQ(countOf(archive), 3);
        archive.append(refs, nested);
        EXPECT_EQ(countOf(archive), elements(m_array, Words::Item).size());
    });
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.remove(nested);
        countOf(archive);
        EXPECT_EQ(countOf(archive), 3);
        const QDomElement list = archive.newArray("list");
        archive.append(list, nested);
        archive.append(refs, list);
        EXPECT_EQ(countOf(archive), elements(m_array, Words::Item).size());
    });
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(nested); });
    // An object 0 counts as the same as what declares nothing.
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.appendReference(refs, 7);
        countOf(archive);
        EXPECT_EQ(countOf(archive), 3);
        archive.remove(archive.appendItem(m_array));
        EXPECT_EQ(countOf(archive), elements(m_array, Words::Item).size());
        EXPECT_EQ(countOf(archive), 3);
        archive.appendItem(m_array);
    });
    expectSameAfter([&](ArchiveEditor& archive) { archive.remove(m_array.lastChildElement()); });
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.appendReference(refs, 7);
        archive.removeField(archive.records().begin()->data, Words::oid);
    });
    expectSameAfter(
        [&](ArchiveEditor& archive) { EXPECT_EQ(countOf(archive), elements(m_array, Words::Item).size()); });
}

TEST_F(ArchiveEditorTest, UndeclaresAsIfOneByOne) {
    // Two equal documents: one is changed by the editor, the other by the plain functions, call by call.
    QDomDocument plain = m_document.cloneNode().toDocument();
    m_array.setAttribute(Words::size, QStringLiteral("70"));
    QDomElement array = firstDescendant(plain, Words::predeclarations);
    array.setAttribute(Words::size, QStringLiteral("70"));
    long long maxId = 7;
    Archive::addPredeclaration(array, plain, "T", 0, maxId, -1, {});
    Archive::removePredeclare(array, 1);
    Archive::addPredeclaration(array, plain, "T", 0, maxId, 1, {});
    Archive::addPredeclaration(array, plain, "T", 0, maxId, 1, {});
    Archive::removePredeclare(array, 8);
    Archive::addPredeclaration(array, plain, "T", 0, maxId, 8, {});

    expectSameAfter([&](ArchiveEditor& archive) {
        archive.declare("T");
        archive.undeclare(1);
        archive.declareAs(1, "T");
        archive.declareAs(1, "T");
        archive.undeclare(8);
        archive.declareAs(8, "T");
    });
    EXPECT_EQ(m_document.toString(), plain.toString());
}

TEST_F(ArchiveEditorTest, RemembersWhichRecordsAreNumbered) {
    ArchiveEditor archive(m_document);
    archive.beginStep(Scope::Document);
    archive.records();
    EXPECT_EQ(archive.numberedRecords(), 0u);
    archive.undeclare(1'000'000);
    archive.records();
    EXPECT_EQ(archive.numberedRecords(), 2u);
    archive.declare("T");
    EXPECT_EQ(archive.numberedRecords(), 3u);
    archive.setIndex(m_array.firstChildElement(), 9);
    EXPECT_EQ(archive.numberedRecords(), 0u);
    archive.undeclare(1'000'000);
    archive.endStep();
    EXPECT_EQ(indexesOfRecords(), "1 2 3");
    EXPECT_EQ(Tests::indexDifference(archive), "");
}

TEST_F(ArchiveEditorTest, UsesThePredeclarationsFromBeforeRemovals) {
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.remove(m_array.parentNode().toElement());
        archive.declare("T"); // removed together with the array
        EXPECT_EQ(archive.predeclarations(), m_array);
    });
    expectSameAfter([&](ArchiveEditor& archive) { EXPECT_TRUE(archive.predeclarations().isNull()); });
}

TEST_F(ArchiveEditorTest, GivesIdsAboveTheGreatestAtTheStart) {
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.startIds();
        archive.remove(m_last);
        EXPECT_EQ(archive.nextId(), 8);
        archive.startIds();
        EXPECT_EQ(archive.nextId(), 6);
        archive.beginStep(Scope::Document);
        EXPECT_EQ(archive.nextId(), 6);
    });
}

TEST_F(ArchiveEditorTest, ScansTheTextIfTheTreeMayHaveOtherIds) {
    expectSameAfter(
        [&](ArchiveEditor& archive) { archive.fields(m_first).string("name", QString(QChar(1))); });
    // The reader of the text stops at the control character: ids behind it do not count.
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.append(m_root, newObject(archive, 50));
        archive.startIds();
        EXPECT_EQ(archive.nextId(), 2);
    });
}

TEST_F(ArchiveEditorTest, KeepsScannedIdsUpToDate) {
    m_first.appendChild(m_document.createComment(QStringLiteral("the tree is not searched")));
    expectSameAfter([&](ArchiveEditor& archive) {
        archive.startIds();
        EXPECT_EQ(archive.nextId(), 8);
        archive.append(m_root, newObject(archive, 50));
        archive.startIds();
        EXPECT_EQ(archive.nextId(), 51);
        archive.remove(m_root.lastChildElement());
        archive.startIds();
        EXPECT_EQ(archive.nextId(), 8);
    });
}

TEST_F(ArchiveEditorTest, ReportsWhetherTheTextShowsTypes) {
    const auto shows = [&](auto change) {
        TreeFacts facts;
        facts.archives = 1;
        facts.showsTypes = true;
        ArchiveEditor archive(m_document, facts);
        change(archive);
        return archive.showsTypes();
    };
    const auto import = [&](const char* text) {
        return shows([&](ArchiveEditor& archive) {
            QDomDocument other;
            ASSERT_TRUE(other.setContent(QString::fromLatin1(text)));
            archive.append(m_root, other.documentElement());
        });
    };
    EXPECT_TRUE(shows([](ArchiveEditor&) {}));
    EXPECT_TRUE(shows([&](ArchiveEditor& archive) { archive.fields(m_first).string("s", "a b"); }));
    EXPECT_FALSE(shows([&](ArchiveEditor& archive) { archive.fields(m_first).string("s", "a\x7F"); }));
    EXPECT_FALSE(shows([&](ArchiveEditor& archive) { archive.setText(m_first, "a\x7F"); }));
    EXPECT_FALSE(import("<b mytype='StringPtr'/>"));
    EXPECT_TRUE(import("<b type='StringPtr'/>"));
    EXPECT_FALSE(shows([](ArchiveEditor& archive) { archive.invalidate(); }));
    EXPECT_FALSE(ArchiveEditor(m_document).showsTypes());
}

TEST_F(ArchiveEditorTest, ReplacesTheContent) {
    expectSameAfter(
        [&](ArchiveEditor& archive) { archive.parse("<Archive><RootObject objectId='3'/></Archive>"); });
    expectSameAfter([&](ArchiveEditor& archive) { archive.parse("<Archive/>"); });
}

TEST_F(ArchiveEditorTest, SearchesDocumentsWithoutExactlyOneArchiveAtTheTop) {
    for (const char* text : {"<x><Archive><RootObject/></Archive><RootObject/></x>",
                             "<Archive><Archive/><RootObject/></Archive>", "<x><RootObject/></x>"}) {
        ASSERT_TRUE(m_document.setContent(QString::fromLatin1(text)));
        const QDomElement top = m_document.documentElement();
        expectSameAfter([&](ArchiveEditor& archive) { archive.append(top, newObject(archive, 5)); });
        expectSameAfter(
            [&](ArchiveEditor& archive) { archive.append(top.firstChildElement(), newObject(archive, 6)); });
    }
    ASSERT_TRUE(
        m_document.setContent(QStringLiteral("<x><Archive><RootObject/></Archive><RootObject/></x>")));
    ArchiveEditor archive(m_document);
    const TypedElements inArchive = archive.rootObjects(Scope::Archive);
    EXPECT_EQ(std::distance(inArchive.begin(), inArchive.end()), 1);
}

TEST_F(ArchiveEditorTest, WorksInDeepDocuments) {
    QDomElement deepest = m_first;
    for (int depth = 0; depth < 3000; ++depth) {
        QDomElement object = m_document.createElement(Words::RootObject);
        deepest.appendChild(object);
        deepest = object;
    }
    expectSameAfter([&](ArchiveEditor& archive) { archive.append(deepest, newObject(archive, 50)); });
}

TEST_F(ArchiveEditorTest, BuildsFields) {
    expectSameAfter([&](ArchiveEditor& archive) {
        const QDomElement object = archive.appendRootObject("E", 9);
        archive.fields(object).int32("a", 1).boolean("b", true).reference("c", 7).array("d");
        archive.settingFields(object).int32("b", 2).int32("e", 3);
        archive.fieldsInsteadOf(object.firstChildElement("c")).string("f", "x").string("g", "y");
        archive.fieldsBehind(object, object.firstChildElement("a")).uint32("h", 4).uint32("i", 5);
        archive.fieldsBehind(object, {}).uint32("j", 6);
        QString names;
        for (QDomElement e = object.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
            names += e.tagName();
        EXPECT_EQ(names, "ahibfdegj");
        EXPECT_EQ(int32In(object, "b"), 2);
    });
}

} // namespace
