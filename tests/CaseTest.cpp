// Runs the cases of tests/cases/<Class>/<case>/: one adaptor on before.xml or before.json gives after.* and logs
// the lines of log.txt ("ERROR text"; no file, no line). With throws.txt it throws, and the exception's text
// contains that of the file; after.* may be missing then. setup.json gives what an adaptor's constructor needs and
// the editor's folders. side-files.json holds all side files that the adaptor writes, as {name: text}. JSON
// documents are written flat, as {"id": object, ...}.

#include "Adaptors/XmlStep.h"
#include "Serialize/Json/FlatObject.h"
#include "Settings/Settings.h"
#include "support/Adaptors.h"
#include "support/Compare.h"
#include "support/Files.h"
#include "support/Index.h"
#include "support/Log.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <QDomDocument>

#include <algorithm>
#include <sstream>

namespace fs = std::filesystem;
using nlohmann::json;
using Serialize::Json::FlatObject;

namespace {

std::vector<fs::path> allCases() {
    std::vector<fs::path> cases;
    for (const auto& adaptor : fs::directory_iterator(Tests::casesFolder())) {
        if (!adaptor.is_directory())
            continue;
        for (const auto& entry : fs::directory_iterator(adaptor.path())) {
            if (entry.is_directory())
                cases.push_back(entry.path());
        }
    }
    std::sort(cases.begin(), cases.end());
    return cases;
}

std::vector<fs::path> archiveCases() {
    std::vector<fs::path> cases = allCases();
    std::erase_if(cases, [](const fs::path& folder) { return !fs::exists(folder / "after.xml"); });
    return cases;
}

std::string caseName(const testing::TestParamInfo<fs::path>& info) {
    std::string name = info.param.parent_path().filename().string() + "_" + info.param.filename().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

QDomDocument readXml(const fs::path& file) {
    QDomDocument document;
    QString error;
    int line = 0;
    if (!document.setContent(QByteArray::fromStdString(Tests::readFile(file)), &error, &line))
        throw std::runtime_error(file.string() + ":" + std::to_string(line) + ": " + error.toStdString());
    return document;
}

FlatObject readJson(const fs::path& file) {
    FlatObject document;
    const json objects = json::parse(Tests::readFile(file)); // items() borrows: a temporary would be gone
    for (const auto& [id, object] : objects.items())
        document.objects.emplace(std::stoull(id), object);
    return document;
}

json toJson(const FlatObject& document) {
    json result = json::object();
    for (const auto& [id, object] : document.objects)
        result[std::to_string(id)] = object;
    return result;
}

std::vector<std::string> readLines(const fs::path& file) {
    std::vector<std::string> lines;
    std::istringstream in(fs::exists(file) ? Tests::readFile(file) : std::string());
    for (std::string line; std::getline(in, line);) {
        if (!line.empty())
            lines.push_back(line);
    }
    return lines;
}

std::string trimmed(std::string text) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

QString folder(const json& setup, const char* key) {
    return QString::fromStdString(setup.value(key, std::string()));
}

class CaseTest : public testing::TestWithParam<fs::path> {
protected:
    void SetUp() override {
        if (fs::exists(file("setup.json")))
            m_setup = json::parse(Tests::readFile(file("setup.json")));
        Settings::setLegacyPackageDeploymentPath(folder(m_setup, "packagesRoot"));
        Settings::setAiModelsPath(folder(m_setup, "aiModelsRoot"));
        Settings::setDownloadableResourcesPath(folder(m_setup, "downloadableRoot"));
    }

    fs::path file(const char* name) const { return GetParam() / name; }
    std::string adaptorName() const { return GetParam().parent_path().filename().string(); }

    json expectedSideFiles() const {
        return fs::exists(file("side-files.json")) ? json::parse(Tests::readFile(file("side-files.json")))
                                                   : json::object();
    }

    /// Runs the adaptor and compares its log, its exception and its side files with what the case expects.
    template <class Adaptor, class Document>
    void run(Adaptor& adaptor, Document& document) {
        const Tests::Log log;
        std::string thrown;
        try {
            adaptor.adapt(document);
        } catch (const std::exception& error) {
            thrown = error.what();
            EXPECT_FALSE(thrown.empty());
        }
        const std::string expected =
            fs::exists(file("throws.txt")) ? trimmed(Tests::readFile(file("throws.txt"))) : "";
        if (expected.empty()) {
            EXPECT_EQ(thrown, "");
        } else {
            EXPECT_TRUE(thrown.find(expected) != std::string::npos)
                << "expected the exception \"" << expected << "\", got \"" << thrown << "\"";
        }
        EXPECT_EQ(log.lines(), readLines(file("log.txt")));
        EXPECT_EQ(m_setup.value("writtenFiles", json::object()), expectedSideFiles());
    }

    json m_setup = json::object();
};

TEST_P(CaseTest, GivesWhatIsExpected) {
    if (fs::exists(file("before.xml"))) {
        const auto adaptor = Tests::makeXmlAdaptor(adaptorName(), m_setup);
        ASSERT_TRUE(adaptor) << "no such XML adaptor";
        QDomDocument document = readXml(file("before.xml"));
        run(*adaptor, document);
        if (fs::exists(file("after.xml")) || !fs::exists(file("throws.txt"))) {
            EXPECT_EQ(Tests::difference(readXml(file("after.xml")), document), "");
        }
    } else {
        const auto adaptor = Tests::makeJsonAdaptor(adaptorName(), m_setup);
        ASSERT_TRUE(adaptor) << "no such JSON adaptor";
        FlatObject document = readJson(file("before.json"));
        run(*adaptor, document);
        if (fs::exists(file("after.json")) || !fs::exists(file("throws.txt"))) {
            EXPECT_EQ(Tests::difference(toJson(readJson(file("after.json"))), toJson(document)), "");
        }
    }
}

class ArchiveCaseTest : public CaseTest {};

TEST_P(ArchiveCaseTest, DoesTheSameWithAnIndexThatIsFull) {
    const auto adaptor = Tests::makeXmlAdaptor(adaptorName(), m_setup);
    auto* const step = dynamic_cast<Bundle::XmlStep*>(adaptor.get());
    ASSERT_TRUE(step) << "no such step on archives";
    QDomDocument document = readXml(file("before.xml"));
    Archive::Internal::ArchiveEditor archive(document);
    Tests::indexDifference(archive); // fills the index
    step->apply(archive);
    EXPECT_EQ(Tests::indexDifference(archive), "");
    EXPECT_EQ(Tests::difference(readXml(file("after.xml")), document), "");
}

INSTANTIATE_TEST_SUITE_P(Cases, CaseTest, testing::ValuesIn(allCases()), caseName);
INSTANTIATE_TEST_SUITE_P(Cases, ArchiveCaseTest, testing::ValuesIn(archiveCases()), caseName);

} // namespace
