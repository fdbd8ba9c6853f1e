// An outline tells what a search of the document would, after whatever change.

#include "Archive/Internal/Outline.h"
#include "Archive/Internal/ArrayItems.h"
#include "Archive/Xml.h"
#include "support/Outlines.h"

#include <gtest/gtest.h>

using Archive::Internal::Outline;

namespace Words = Archive::Words;

namespace {

class OutlineTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_document.setContent(QStringLiteral(
            "<Archive><RootRef value='1'/>"
            "<RootObject type='A' objectId='1'><BaseOfObject type='B' objectId='1'/></RootObject>"
            "<RootObject type='C' objectId='7'><BaseOfObject type='D' "
            "objectId='7'/></RootObject></Archive>")));
        m_archive = m_document.documentElement();
        m_first = m_archive.firstChildElement(Words::RootObject);
        m_last = m_archive.lastChildElement(Words::RootObject);
    }

    /// Whether the outline knew all before the change, and tells the truth behind it.
    template <class Change>
    void expectTruthAfter(Change change) {
        Outline outline(m_document);
        Tests::fill(outline, m_document);
        EXPECT_EQ(Tests::difference(outline, m_document), "");
        change();
        EXPECT_EQ(Tests::difference(outline, m_document), "");
        outline.endStep();
        EXPECT_EQ(Tests::difference(outline, m_document), "");
    }

    QDomElement newObject(long long id) {
        QDomElement object = Archive::createObject(m_document, Words::RootObject, QStringLiteral("E"), id);
        object.appendChild(Archive::createObject(m_document, Words::BaseOfObject, QStringLiteral("F"), id));
        return object;
    }

    QDomDocument m_document;
    QDomElement m_archive;
    QDomElement m_first;
    QDomElement m_last;
};

TEST_F(OutlineTest, StandsForItsDocumentOnly) {
    EXPECT_EQ(Outline::of(m_document), nullptr);
    {
        Outline outline(m_document);
        EXPECT_EQ(Outline::of(m_document), &outline);
        EXPECT_EQ(Outline::of(m_first), &outline);
        QDomDocument other;
        other.setContent(QStringLiteral("<Archive/>"));
        EXPECT_EQ(Outline::of(other), nullptr);
        {
            Outline inner(other);
            EXPECT_EQ(Outline::of(m_document), nullptr);
            EXPECT_EQ(Outline::of(other), &inner);
        }
        EXPECT_EQ(Outline::of(m_document), &outline);
    }
    EXPECT_EQ(Outline::of(m_document), nullptr);
}

TEST_F(OutlineTest, TellsNothingBelowOtherElements) {
    Outline outline(m_document);
    EXPECT_EQ(outline.elements(m_first, Words::BaseOfObject), nullptr);
    EXPECT_EQ(outline.elements(m_archive, Words::Item), nullptr);
    ASSERT_NE(outline.elements(m_archive, Words::BaseOfObject), nullptr);
    EXPECT_EQ((*outline.elements(m_archive, Words::BaseOfObject))->size(), 2u);
}

TEST_F(OutlineTest, TakesInWhatIsAppended) {
    expectTruthAfter([&] { m_archive.appendChild(newObject(9)); });
}

TEST_F(OutlineTest, TakesInObjectsThatAreInsertedBeforeOthers) {
    expectTruthAfter([&] { m_archive.insertBefore(newObject(9), m_first); });
}

TEST_F(OutlineTest, TakesInObjectsWithoutBasePartsWhereverTheyStand) {
    const auto bare = [&](long long id) {
        return Archive::createObject(m_document, Words::RootObject, QStringLiteral("E"), id);
    };
    m_first.appendChild(newObject(30));
    expectTruthAfter([&] {
        m_archive.insertBefore(bare(9), m_last);
        QDomElement around = bare(10);
        around.appendChild(bare(11));
        m_archive.insertBefore(around, m_first);
        m_archive.appendChild(bare(12));
    });
    expectTruthAfter([&] {
        Archive::Internal::replaceChild(m_archive, bare(13), m_first);
        Archive::Internal::replaceChild(m_archive, bare(14), m_last);
    });
    expectTruthAfter([&] {
        m_archive.insertBefore(bare(15), m_archive.firstChild());
        m_archive.firstChildElement(Words::RootObject).appendChild(bare(16));
        m_archive.lastChildElement(Words::RootObject).appendChild(bare(17));
    });
    expectTruthAfter([&] {
        QDomElement moved = m_archive.lastChildElement(Words::RootObject);
        Outline::removed(moved);
        m_archive.insertBefore(moved, m_archive.firstChild());
        m_archive.insertBefore(bare(18), moved);
    });
    expectTruthAfter([&] {
        m_archive.insertBefore(bare(19), m_archive.firstChild());
        m_archive.insertBefore(newObject(20), m_archive.firstChild());
    });
}

TEST_F(OutlineTest, TakesInObjectsInsideOthers) {
    expectTruthAfter([&] { m_first.appendChild(newObject(9)); });
    expectTruthAfter([&] {
        m_archive.appendChild(newObject(10));
        m_first.appendChild(newObject(11));
    });
}

TEST_F(OutlineTest, TakesInWhatComesLaterThanItIsCreated) {
    Outline outline(m_document);
    Tests::fill(outline, m_document);
    QDomElement object = newObject(9);
    m_first.setAttribute(Words::value, 1);
    EXPECT_EQ(Tests::difference(outline, m_document), "");
    m_archive.appendChild(object);
    EXPECT_EQ(Tests::difference(outline, m_document), "");
}

TEST_F(OutlineTest, TakesInIdsOfEmbeddedObjects) {
    expectTruthAfter([&] {
        m_first.appendChild(
            Archive::createObject(m_document, QStringLiteral("rect"), QStringLiteral("R"), 20));
    });
}

TEST_F(OutlineTest, ForgetsWhatIsRemoved) {
    expectTruthAfter([&] { Archive::Internal::removeChild(m_archive, m_last); });
    expectTruthAfter([&] { Archive::Internal::replaceChild(m_archive, newObject(2), m_first); });
}

TEST_F(OutlineTest, ForgetsWhatIsRemovedAgainstTheOrderOfTheDocument) {
    for (long long id = 20; id < 30; ++id)
        m_archive.appendChild(newObject(id));
    expectTruthAfter([&] {
        for (QDomElement object = m_archive.lastChildElement();
             object.attribute(Words::objectId) != QLatin1String("7"); object = m_archive.lastChildElement())
            Archive::Internal::removeChild(m_archive, object);
    });
}

// Too many changes of direction for the order of the document.
TEST_F(OutlineTest, KnowsThePlacesOfWhatWasMovedInAnyOrder) {
    for (long long id = 20; id < 40; ++id)
        m_archive.appendChild(newObject(id));
    expectTruthAfter([&] {
        const auto objects = Archive::Internal::children(m_archive, Words::RootObject);
        for (std::size_t place = objects.size(); place > 2; place -= 2) {
            Outline::removed(objects[place - 1]);
            m_archive.appendChild(objects[place - 1]);
        }
    });
}

TEST_F(OutlineTest, ForgetsWhatStoodInARemovedElement) {
    expectTruthAfter([&] { Archive::removeFirstChild(m_first, Words::BaseOfObject); });
    expectTruthAfter([&] {
        m_last.appendChild(newObject(12));
        Archive::Internal::removeFromParent(m_last);
    });
}

TEST_F(OutlineTest, ForgetsWhatIsNewAndRemovedAtOnce) {
    expectTruthAfter([&] {
        m_archive.appendChild(newObject(12));
        Archive::Internal::removeFromParent(m_archive.lastChildElement());
    });
}

TEST_F(OutlineTest, TakesInWhatIsRemovedAndComesBack) {
    expectTruthAfter([&] {
        Archive::Internal::removeChild(m_archive, m_first);
        m_archive.appendChild(m_first);
    });
    Outline outline(m_document);
    Tests::fill(outline, m_document);
    Archive::Internal::removeChild(m_archive, m_last);
    EXPECT_EQ(Tests::difference(outline, m_document), "");
    m_archive.appendChild(m_last);
    EXPECT_EQ(Tests::difference(outline, m_document), "");
}

TEST_F(OutlineTest, LeavesInWhatAnotherParentFailsToRemove) {
    expectTruthAfter([&] { Archive::Internal::removeChild(m_first, m_last); });
    expectTruthAfter([&] { Archive::Internal::replaceChild(m_first, newObject(5), m_last); });
}

TEST_F(OutlineTest, KnowsNewTypes) {
    expectTruthAfter([&] { Archive::Internal::setType(m_first, QStringLiteral("Z")); });
    expectTruthAfter([&] {
        Archive::Internal::setType(m_last, QStringLiteral("Y"));
        Archive::Internal::setType(m_first, QStringLiteral("X"));
    });
    expectTruthAfter([&] {
        QDomElement object = newObject(13);
        Archive::Internal::setType(object, QStringLiteral("W"));
        m_archive.appendChild(object);
        Archive::Internal::setType(m_last, QStringLiteral("V"));
    });
}

TEST_F(OutlineTest, LeavesListsAsTheyWereToTheirHolders) {
    Outline outline(m_document);
    const auto before = Archive::Internal::typedElements(m_document, Words::RootObject);
    Archive::Internal::setType(m_first, QStringLiteral("Z"));
    Archive::Internal::removeChild(m_archive, m_last);
    EXPECT_EQ(Tests::difference(outline, m_document), "");
    EXPECT_EQ(before.begin()->type, QLatin1String("A"));
    EXPECT_EQ(before.last(), m_last);
}

TEST_F(OutlineTest, NoticesRootObjectsThatAreRenamed) {
    expectTruthAfter([&] {
        Outline::removed(m_last);
        m_last.setTagName(QStringLiteral("content"));
        QDomElement object = newObject(8);
        object.appendChild(m_last);
        m_archive.appendChild(object);
    });
}

TEST_F(OutlineTest, SearchesAnewWhereObjectsWereMoved) {
    expectTruthAfter([&] {
        Outline::removed(m_first);
        m_archive.appendChild(m_first);
    });
}

TEST_F(OutlineTest, TakesInWhatIsAdopted) {
    expectTruthAfter([&] {
        QDomDocument other;
        other.setContent(QStringLiteral("<x objectId='30'><RootObject objectId='31'/></x>"));
        const QDomElement stranger = other.documentElement();
        m_first.appendChild(stranger);
        Outline::adopted(stranger);
    });
}

TEST_F(OutlineTest, KnowsWhichRecordsAreNumbered) {
    QDomElement predeclarator = newObject(20);
    Archive::Internal::setType(predeclarator, Words::Predeclarator);
    QDomElement records = Archive::createArray(m_document, Words::predeclarations, 0);
    predeclarator.appendChild(records);
    m_archive.appendChild(predeclarator);
    long long greatest = 100;
    const auto add = [&] {
        Archive::addPredeclaration(records, m_document, QStringLiteral("A"), 0, greatest, greatest + 50, {});
    };
    const auto remove = [&](long long id) { Archive::Internal::removePredeclares(records, {id}); };
    const auto idOf = [](const QDomElement& item) { return Archive::Internal::recordIn(item).id; };
    const auto numbered = [&] { return Outline::numberedEntries(records); };
    for (int i = 0; i < 5; ++i)
        add();

    Outline outline(m_document);
    Tests::fill(outline, m_document);
    outline.records(records);
    EXPECT_EQ(numbered(), 0);
    remove(1'000'000);
    EXPECT_EQ(numbered(), 5);
    add();
    EXPECT_EQ(numbered(), 6);
    remove(idOf(records.firstChildElement().nextSiblingElement()));
    EXPECT_EQ(numbered(), 5);
    EXPECT_EQ(records.lastChildElement().attribute(Words::index), "5");
    EXPECT_EQ(Tests::difference(outline, m_document), "");

    Archive::removePredeclare(records, idOf(records.lastChildElement()));
    EXPECT_EQ(numbered(), 4);
    EXPECT_EQ(Tests::difference(outline, m_document), "");

    records.setAttribute(Words::size, QStringLiteral("70"));
    add();
    EXPECT_EQ(records.lastChildElement().attribute(Words::index), "71");
    EXPECT_EQ(numbered(), 4);
    remove(1'000'000);
    EXPECT_EQ(records.lastChildElement().attribute(Words::index), "5");
    EXPECT_EQ(numbered(), 5);

    QDomElement third = records.firstChildElement().nextSiblingElement().nextSiblingElement();
    Archive::Internal::setIndex(third, 9);
    EXPECT_EQ(numbered(), 0);
    remove(1'000'000);
    EXPECT_EQ(third.attribute(Words::index), "3");

    Archive::prependArrayElement(m_document, records);
    EXPECT_EQ(Tests::difference(outline, m_document), "");
}

TEST_F(OutlineTest, LeavesTheGreatestIdOpenBehindTextsThatReadersStumbleOver) {
    expectTruthAfter([&] {
        m_first.appendChild(Archive::createString(m_document, QStringLiteral("name"), QString(QChar(1))));
    });
    expectTruthAfter([&] {
        QDomDocument other;
        other.setContent(QStringLiteral("<x><!-- a comment --></x>"));
        const QDomElement stranger = other.documentElement();
        m_first.appendChild(stranger);
        Outline::adopted(stranger);
    });
}

TEST_F(OutlineTest, KnowsWhetherTypesAreShownAsLongAsTextsAreHarmless) {
    const auto shows = [&](auto change) {
        Archive::Internal::TreeFacts facts;
        facts.archives = 1;
        facts.showsTypes = true;
        Outline outline(m_document, facts);
        change();
        return outline.showsTypes();
    };
    EXPECT_TRUE(shows([] {}));
    EXPECT_TRUE(shows([&] { m_archive.appendChild(newObject(9)); }));
    EXPECT_TRUE(shows([&] {
        m_archive.appendChild(Archive::createString(m_document, QStringLiteral("s"), QStringLiteral("a b")));
    }));
    EXPECT_FALSE(shows([&] {
        m_archive.appendChild(
            Archive::createString(m_document, QStringLiteral("s"), QStringLiteral("a\x7F")));
    }));
    EXPECT_FALSE(shows([&] {
        QDomDocument other;
        other.setContent(QStringLiteral("<b mytype='StringPtr'/>"));
        const QDomElement e = other.documentElement();
        m_archive.appendChild(e);
        Outline::adopted(e);
    }));
    EXPECT_TRUE(shows([&] {
        QDomDocument other;
        other.setContent(QStringLiteral("<b type='StringPtr'/>"));
        const QDomElement e = other.documentElement();
        m_archive.appendChild(e);
        Outline::adopted(e);
    }));
    EXPECT_FALSE(shows([&] { Outline::forget(m_document); }));
    Outline outline(m_document);
    EXPECT_FALSE(outline.showsTypes());
}

TEST_F(OutlineTest, SearchesAnewInAnotherContent) {
    expectTruthAfter([&] {
        m_document.setContent(QStringLiteral("<Archive><RootObject objectId='3'/></Archive>"));
        Outline::forget(m_document);
    });
    expectTruthAfter([&] {
        m_document.setContent(QStringLiteral("<Archive/>"));
        Outline::forget(m_document);
    });
}

TEST_F(OutlineTest, LeavesDocumentsWithoutASoleArchiveToSearches) {
    for (const char* text : {"<x><Archive/></x>", "<Archive><Archive/></Archive>", "<x/>"}) {
        QDomDocument document;
        document.setContent(QString::fromLatin1(text));
        Outline outline(document);
        EXPECT_FALSE(outline.soleArchive()) << text;
        EXPECT_EQ(outline.elements(document, Words::RootObject), nullptr) << text;
        EXPECT_EQ(Tests::difference(outline, document), "") << text;
    }
}

TEST_F(OutlineTest, StaysTrueInDeepDocuments) {
    QDomElement at = m_first;
    for (int depth = 0; depth < 3000; ++depth) {
        QDomElement object = m_document.createElement(Words::RootObject);
        at.appendChild(object);
        at = object;
    }
    expectTruthAfter([&] { at.appendChild(newObject(50)); });
}

} // namespace
