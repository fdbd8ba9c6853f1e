// Documents that are nested deeply, through all commands. There is no clock here: what is slow runs into the limit of
// the test, and what takes stack for each level ends with a signal.

#include "support/ProgramTest.h"

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
                {"trace", file, "--output-dir", "parts", "--force"}};
    }
};

constexpr int levels = 200000;

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

} // namespace
