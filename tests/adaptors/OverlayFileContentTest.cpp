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
