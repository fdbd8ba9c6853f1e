// Runs the cases of tests/cases/<Class>/<case>/: the adaptor <Class> on before.xml or before.json gives after.* and
// logs the lines of log.txt ("ERROR text"; no file, no line). With adaptors.txt several adaptors run, one to a line;
// the first is <Class>. With throws.txt the last of them throws, and the exception's text ends with that of the file;
// after.* may be missing then. setup.json gives what an adaptor's constructor needs and the editor's folders.
// side-files.json holds all side files that are written, as {name: text}. JSON documents are written flat, as
// {"id": object, ...}.

#include "Adaptors/XmlStep.h"
#include "Serialize/Json/FlatObject.h"
#include "support/Adaptors.h"
#include "support/Compare.h"
#include "support/Documents.h"
#include "support/Files.h"
#include "support/Folders.h"
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
    return Tests::xml(Tests::readFile(file));
}

FlatObject readJson(const fs::path& file) {
    return Tests::flatDocument(Tests::readFile(file));
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

/// The text of the exception that `action` throws; empty where it throws none.
template <class Action>
std::string exceptionOf(Action action) {
    try {
        action();
    } catch (const std::exception& error) {
        const std::string text = error.what();
        EXPECT_FALSE(text.empty());
        return text;
    }
    return {};
}

class CaseTest : public testing::TestWithParam<fs::path> {
protected:
    void SetUp() override {
        if (fs::exists(file("setup.json")))
            m_setup = json::parse(Tests::readFile(file("setup.json")));
        Tests::setFolders(folder(m_setup, "packagesRoot"), folder(m_setup, "aiModelsRoot"),
                          folder(m_setup, "downloadableRoot"));
    }
    void TearDown() override { Tests::setFolders({}, {}, {}); }

    fs::path file(const char* name) const { return GetParam() / name; }

    /// The adaptors of the case in the order in which they run, made by `make`.
    template <class Make>
    auto adaptors(Make make) {
        std::vector<std::string> names = readLines(file("adaptors.txt"));
        const std::string className = GetParam().parent_path().filename().string();
        if (names.empty())
            names = {className};
        EXPECT_EQ(names.front(), className) << "a case is in the folder of its first adaptor";
        std::vector<decltype(make(className, m_setup))> adaptors;
        for (const std::string& name : names) {
            adaptors.push_back(make(name, m_setup));
            if (!adaptors.back())
                throw std::runtime_error("there is no adaptor " + name + " on documents of this form");
        }
        return adaptors;
    }

    json expectedSideFiles() const {
        return fs::exists(file("side-files.json")) ? json::parse(Tests::readFile(file("side-files.json")))
                                                   : json::object();
    }

    /// Runs the adaptors and compares their log, the exception and the side files with what the case expects.
    template <class Adaptors, class Document>
    void run(const Adaptors& adaptors, Document& document) {
        const Tests::Log log;
        std::string thrown;
        for (const auto& adaptor : adaptors) {
            EXPECT_EQ(thrown, "") << "not by the last adaptor";
            thrown = exceptionOf([&] { adaptor->adapt(document); });
        }
        const std::string expected =
            fs::exists(file("throws.txt")) ? trimmed(Tests::readFile(file("throws.txt"))) : "";
        if (expected.empty()) {
            EXPECT_EQ(thrown, "");
        } else {
            EXPECT_TRUE(thrown.ends_with(expected))
                << "expected the exception \"" << expected << "\", got \"" << thrown << "\"";
        }
        EXPECT_EQ(log.lines(), readLines(file("log.txt")));
        EXPECT_EQ(m_setup.value("writtenFiles", json::object()), expectedSideFiles());
    }

    json m_setup = json::object();
};

TEST_P(CaseTest, GivesWhatIsExpected) {
    if (fs::exists(file("before.xml"))) {
        QDomDocument document = readXml(file("before.xml"));
        run(adaptors(Tests::makeXmlAdaptor), document);
        if (fs::exists(file("after.xml")) || !fs::exists(file("throws.txt"))) {
            EXPECT_EQ(Tests::difference(readXml(file("after.xml")), document), "");
        }
    } else {
        FlatObject document = readJson(file("before.json"));
        run(adaptors(Tests::makeJsonAdaptor), document);
        if (fs::exists(file("after.json")) || !fs::exists(file("throws.txt"))) {
            EXPECT_EQ(Tests::difference(toJson(readJson(file("after.json"))), toJson(document)), "");
        }
    }
}

class ArchiveCaseTest : public CaseTest {};

TEST_P(ArchiveCaseTest, GivesTheSameWithACompleteIndex) {
    const auto adaptors = this->adaptors(Tests::makeXmlAdaptor);
    QDomDocument document = readXml(file("before.xml"));
    Archive::Internal::ArchiveEditor archive(document);
    Tests::indexDifference(archive); // fills the index
    for (const auto& adaptor : adaptors) {
        auto* const step = dynamic_cast<Bundle::XmlStep*>(adaptor.get());
        ASSERT_TRUE(step) << "no such step on archives";
        step->apply(archive);
        EXPECT_EQ(Tests::indexDifference(archive), "");
    }
    EXPECT_EQ(Tests::difference(readXml(file("after.xml")), document), "");
}

INSTANTIATE_TEST_SUITE_P(Cases, CaseTest, testing::ValuesIn(allCases()), caseName);
INSTANTIATE_TEST_SUITE_P(Cases, ArchiveCaseTest, testing::ValuesIn(archiveCases()), caseName);

} // namespace
