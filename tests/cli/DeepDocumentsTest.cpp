// Documents that are nested deeply, through all commands. There is no clock here: what is slow runs into the limit of
// the test, and what takes stack for each level ends with a signal.

#include "support/ProgramTest.h"
#include "support/Sanitizers.h"

#include <nlohmann/json.hpp>

namespace {

using namespace Tests;

class DeepDocuments : public ProgramTest {
protected:
    std::vector<QStringList> commands(const QString& file) const {
        return {{"info", file},
                {"verify", file},
                {"migrate", file, "-o", "out", "--force"},
                {"run", "V72_TrackTypeAdaptor", file, "-o", "out", "--force"},
                {"trace", file, "--output-dir", "parts", "--force"},
                {"trace", file, "--output-dir", "parts", "--force", "--diff"},
                {"explain", file},
                {"diff", file, file},
                {"diff", file, file, "--raw"}};
    }
};

// Recursion this deep overflows the stack, however small its frames are. With sanitizers they are larger.
constexpr int levels = isSanitized ? 50000 : 200000;

QByteArray deepValue(bool isArray) {
    return isArray ? QByteArray("[").repeated(levels) + QByteArray("]").repeated(levels)
                   : QByteArray("{\"a\":").repeated(levels) + "1" + QByteArray("}").repeated(levels);
}

const QByteArray note = R"({"@meta":{"class_name":"Note","object_id":2}})";

TEST_F(DeepDocuments, ADeepSchemaVersionIsNoVersion) {
    for (const bool isArray : {true, false}) {
        write("film",
              R"({"version":"1.0","schemaVersion":)" + deepValue(isArray) + ",\"data\":" + note + "}");
        for (const QStringList& command : commands("film"))
            expectFailure(command, 11, "is no version number");
    }
}

TEST_F(DeepDocuments, ADeepVersionIsAWrongEnvelope) {
    for (const bool isArray : {true, false}) {
        write("film", R"({"version":)" + deepValue(isArray) + ",\"schemaVersion\":76,\"data\":" + note + "}");
        for (const QStringList& command : commands("film"))
            expectFailure(command, 10, "\"version\" is ");
    }
}

TEST_F(DeepDocuments, DeepValuesAreKept) {
    for (const bool isArray : {true, false}) {
        const QByteArray deep = deepValue(isArray);
        const auto document = [&](const QByteArray& version) {
            return R"({"data":{"@meta":{"class_name":"Note","object_id":2},"deep":)" + deep + R"(},"more":)" +
                   deep + R"(,"schemaVersion":)" + version + R"(,"version":"1.0"})";
        };
        write("film", document("71"));
        for (const QStringList& command : commands("film")) {
            const Outcome outcome = run(command);
            EXPECT_EQ(outcome.exitCode, 0)
                << command.join(' ').toStdString() << ": " << outcome.err.left(500).toStdString();
            if (command.first() == "migrate") {
                EXPECT_EQ(read("out"), document("77") + '\n');
            }
        }
    }
}

/// Objects in one another: `opening` with an id in place of "%1", then all that is in it, then `closing`.
struct Shape {
    const char* opening;
    const char* closing;
};

const Shape shapes[] = {
    {"<RootObject type='Effect::Blur' objectId='%1'><BaseOfObject type='Effect::VideoEffect' objectId='%1'>"
     "<BaseOfObject type='Effect::Object' objectId='%1'><tag type='String' "
     "value='Blur'/></BaseOfObject></BaseOfObject>",
     "</RootObject>"},
    {"<RootObject type='Effect::Blur' objectId='%1'><BaseOfObject type='Effect::VideoEffect' objectId='%1'>"
     "<BaseOfObject type='Effect::Object' objectId='%1'><tag type='String' value='Blur'/>",
     "</BaseOfObject></BaseOfObject></RootObject>"},
    {"<RootObject type='Timeline::Clip' objectId='%1'><effects type='Array' size='1'><Item type='Item' "
     "index='1'>"
     "<Data type='Effect::Blur' objectId='%1'><tag type='String' value='Blur'/>",
     "</Data></Item></effects></RootObject>"},
    {"<BaseOfObject type='Effect::Object' objectId='%1'><tag type='String' value='Blur'/>",
     "</BaseOfObject>"},
    {"<Data type='Effect::Blur' objectId='%1'><tag type='String' value='Blur'/>", "</Data>"},
};

QByteArray nested(const Shape& shape, int chains, int depth) {
    QByteArray text;
    int id = 1000;
    for (int chain = 0; chain < chains; ++chain) {
        for (int level = 0; level < depth; ++level)
            text += QByteArray(shape.opening).replace("%1", QByteArray::number(++id));
        text += QByteArray(shape.closing).repeated(depth);
    }
    return text;
}

TEST_F(DeepDocuments, ObjectsInOneAnotherAreMigrated) {
    for (const Shape& shape : shapes) {
        for (const QByteArray version : {"27", "62"}) {
            for (const auto& [chains, depth] : {std::pair(1, 1000), std::pair(20, 50), std::pair(600, 1)}) {
                write("film", archive(nested(shape, chains, depth), " schemaVersion='" + version + "'"));
                for (const QStringList& command :
                     {QStringList{"info", "film"}, QStringList{"migrate", "film", "-o", "out", "--force"}}) {
                    const Outcome outcome = run(command);
                    // Version 57 loses the clip, since the root object is no project content.
                    EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 22)
                        << shape.opening << ' ' << version.toStdString() << ' ' << depth << ": "
                        << outcome.err.left(500).toStdString();
                }
                const int verified = run({"verify", "film"}).exitCode;
                EXPECT_TRUE(verified == 0 || verified == 17) << verified;
            }
        }
    }
}

TEST_F(DeepDocuments, TooManyObjectsInOneAnotherAreRefused) {
    for (const Shape& shape : shapes) {
        write("film", archive(nested(shape, 20, 1900)));
        expectFailure({"migrate", "film"}, 9, "too many elements are nested deeper than");
    }
    expectFailure({"info", "film"}, 9, "too many elements are nested deeper than");
    expectFailure({"verify", "film"}, 9, "too many elements are nested deeper than");
}

} // namespace
