// The side file adaptors, where case files are not enough: which files are requested, which bytes are
// written, and that the adaptors can be copied.

#include "Adaptors/OverlayFileContentReadAdaptor.h"
#include "Adaptors/OverlayFileContentWriteAdaptor.h"
#include "Serialize/Json/FlatObject.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <QStringList>

#include <functional>
#include <type_traits>

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace {

static_assert(std::is_copy_assignable_v<OverlayFileContentReadAdaptor>);
static_assert(std::is_copy_assignable_v<OverlayFileContentWriteAdaptor>);
static_assert(std::is_move_assignable_v<OverlayFileContentReadAdaptor>);
static_assert(std::is_move_assignable_v<OverlayFileContentWriteAdaptor>);

json& addItem(FlatObject& document, const QByteArray& encodedText) {
    json* item = document.createObject("Overlay::Item");
    (*item)["encodedText"] = encodedText.toStdString();
    return *item;
}

TEST(OverlayFileContent, OnlySideFilesAreRequested) {
    FlatObject document;
    addItem(document, "content_2.svg");
    addItem(document, "TWFu");
    addItem(document, "content_");
    QStringList names;
    OverlayFileContentReadAdaptor adaptor([&](const QString& name) {
        names.append(name);
        return QByteArray();
    });
    adaptor.adapt(document);
    EXPECT_EQ(names, QStringList({"content_2.svg", "content_"}));
}

TEST(OverlayFileContent, BytesThatAreNoTextAreReadCompletely) {
    FlatObject document;
    const json& item = addItem(document, "content_1.svg");
    OverlayFileContentReadAdaptor adaptor([](const QString&) { return QByteArray("\xff\x00\xfe", 3); });
    adaptor.adapt(document);
    EXPECT_EQ(item.at("encodedText"), "/wD+");
}

TEST(OverlayFileContent, BytesThatAreNoTextAreWrittenAsUtf8) {
    FlatObject document;
    addItem(document, QByteArray("<svg \xff/>").toBase64());
    QByteArray written;
    OverlayFileContentWriteAdaptor adaptor([&](const QString&, const QByteArray& content) {
        written = content;
        return true;
    });
    adaptor.adapt(document);
    EXPECT_EQ(written, QByteArray("<svg \xef\xbf\xbd/>"));
}

TEST(OverlayFileContent, ATextWithANulGoesOutWhole) {
    const QByteArray text("<svg>a\0b\0</svg>\0", 16);
    FlatObject document;
    const json& item = addItem(document, text.toBase64());
    QByteArray written;
    OverlayFileContentWriteAdaptor adaptor([&](const QString&, const QByteArray& content) {
        written = content;
        return true;
    });
    adaptor.adapt(document);
    EXPECT_EQ(written, text);
    EXPECT_EQ(item.at("encodedText"), "content_1.svg");
}

TEST(OverlayFileContent, ANulIsNoEndOfAName) {
    FlatObject document;
    const json& continued = addItem(document, QByteArray("a.svg\0b", 7).toBase64());
    const json& name = addItem(document, QByteArray("<svg\0b.svg", 10).toBase64());
    const json& leading = addItem(document, QByteArray("\0<svg/>", 7).toBase64());
    OverlayFileContentWriteAdaptor adaptor([](const QString& file, const QByteArray&) {
        ADD_FAILURE() << file.toStdString();
        return true;
    });
    adaptor.adapt(document);
    EXPECT_EQ(continued.at("encodedText"), QByteArray("a.svg\0b", 7).toBase64().toStdString());
    EXPECT_EQ(name.at("encodedText"), std::string("<svg\0b.svg", 10));
    EXPECT_EQ(leading.at("encodedText"), QByteArray("\0<svg/>", 7).toBase64().toStdString());
}

TEST(OverlayFileContent, AFileWithANulComesBackWholeInXml) {
    QDomDocument document;
    ASSERT_TRUE(document.setContent(
        QStringLiteral("<Archive><RootObject type=\"Overlay::Preset\"><items type=\"Array\" size=\"1\">"
                       "<Item type=\"Item\" index=\"1\"><Data type=\"Overlay::Item\">"
                       "<text type=\"FileContent\" value=\"content_1.svg\"/>"
                       "<encodedText type=\"FileContent\" value=\"content_1.svg\"/>"
                       "</Data></Item></items></RootObject></Archive>")));
    OverlayFileContentReadAdaptor adaptor([](const QString&) { return QByteArray("a\0\xc3\xa4\0", 5); });
    adaptor.adapt(document);
    const auto valueOf = [&](const char* name) {
        return document.elementsByTagName(name).at(0).toElement().attribute("value");
    };
    const QChar expected[] = {'a', QChar(0), QChar(0xe4), QChar(0)};
    EXPECT_EQ(valueOf("text"), QString(expected, 4));
    EXPECT_EQ(valueOf("encodedText"), QString("YQDDpAA="));
}

TEST(OverlayFileContent, ATextWithANulIsTheSameThereAndBack) {
    const QByteArray text("<?xml version=\"1.0\"?>\0<svg/>", 28);
    FlatObject document;
    const json& item = addItem(document, text.toBase64());
    QByteArray file;
    OverlayFileContentWriteAdaptor write([&](const QString&, const QByteArray& content) {
        file = content;
        return true;
    });
    write.adapt(document);
    EXPECT_EQ(item.at("encodedText"), "content_1.svg");
    OverlayFileContentReadAdaptor read([&](const QString&) { return file; });
    read.adapt(document);
    EXPECT_EQ(item.at("encodedText"), text.toBase64().toStdString());
}

TEST(OverlayFileContent, EachRunNumbersFromOne) {
    QStringList names;
    OverlayFileContentWriteAdaptor adaptor([&](const QString& name, const QByteArray&) {
        names.append(name);
        return true;
    });
    for (int run = 0; run < 2; ++run) {
        FlatObject document;
        addItem(document, QByteArray("<svg/>").toBase64());
        adaptor.adapt(document);
    }
    EXPECT_EQ(names, QStringList({"content_1.svg", "content_1.svg"}));
}

TEST(OverlayFileContent, CopiesCallTheSameFunction) {
    int calls = 0;
    const OverlayFileContentReadAdaptor original([&](const QString&) {
        ++calls;
        return QByteArray();
    });
    OverlayFileContentReadAdaptor copy = original;
    FlatObject document;
    addItem(document, "content_1.svg");
    copy.adapt(document);
    EXPECT_EQ(calls, 1);
}

TEST(OverlayFileContent, WithoutAFunctionTheCallFails) {
    FlatObject document;
    addItem(document, "content_1.svg");
    OverlayFileContentReadAdaptor reader{std::function<QByteArray(const QString&)>()};
    EXPECT_THROW(reader.adapt(document), std::bad_function_call);
}

} // namespace
