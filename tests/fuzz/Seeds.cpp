// Writes the seeds of the fuzz targets on documents: the inputs of the step cases, each at the version below
// its step, reduced samples, and states of a batch. Usage: Seeds CASES SAMPLES OUTPUT

#include "Reader/JsonText.h"
#include "Reader/XmlText.h"
#include "batch/State.h"

#include <QDomDocument>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

QByteArray read(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return QByteArray::fromStdString({std::istreambuf_iterator<char>(in), {}});
}

void write(const fs::path& file, const QByteArray& bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary).write(bytes.constData(), bytes.size());
}

/// The version of documents before a step; the newest version for other adaptors.
int versionBefore(const std::string& className, int otherwise) {
    return className[0] == 'V' ? std::stoi(className.substr(1)) - 1 : otherwise;
}

/// A project that contains all objects of a flat document from a step's case.
json projectOf(const json& flat, int version) {
    json objects = json::array();
    for (const json& object : flat)
        objects.push_back(object);
    return {{"version", "1.0"},
            {"schemaVersion", version},
            {"data",
             {{"@meta", {{"class_name", "Project::PersistentObject"}, {"object_id", 1000000}}},
              {"objects", std::move(objects)}}}};
}

/// Reduces a document to two entries of each list and the first object of each class.
void thinOut(QDomDocument& document) {
    std::set<QString> classes;
    QDomElement e = document.documentElement().firstChildElement();
    while (!e.isNull()) {
        QDomElement next = e.nextSiblingElement();
        const bool isObject = e.tagName() == QLatin1String("RootObject");
        if (isObject && !classes.insert(e.attribute(QStringLiteral("type"))).second)
            document.documentElement().removeChild(e);
        e = next;
    }
    const QDomNodeList live = document.elementsByTagName(QStringLiteral("Item"));
    std::vector<QDomElement> items;
    for (int i = 0; i < live.size(); ++i)
        items.push_back(live.at(i).toElement());
    for (QDomElement& item : items) {
        if (item.attribute(QStringLiteral("index")).toInt() > 2)
            item.parentNode().removeChild(item);
    }
}

void thinOut(json& value) {
    if (value.is_array() && value.size() > 2)
        value.erase(value.begin() + 2, value.end());
    if (value.is_structured()) {
        for (json& member : value)
            thinOut(member);
    }
}

class Seeds {
public:
    explicit Seeds(fs::path output) : m_output(std::move(output)) {}

    void addCase(const fs::path& folder) {
        const std::string className = folder.parent_path().filename().string();
        const std::string name = className + '-' + folder.filename().string();
        if (const fs::path file = folder / "before.xml"; fs::exists(file)) {
            QDomDocument document;
            if (document.setContent(read(file)))
                addXml(name, document, versionBefore(className, 61));
        } else if (fs::exists(folder / "before.json")) {
            const json flat = json::parse(read(folder / "before.json").toStdString(), nullptr, false);
            if (flat.is_object())
                addJson(name, projectOf(flat, versionBefore(className, 76)));
        }
    }

    void addSample(const fs::path& file) {
        if (file.extension() == ".xml") {
            QDomDocument document;
            document.setContent(read(file));
            thinOut(document);
            addXml(file.stem().string(), document, 0);
        } else if (file.extension() == ".json") {
            json project = json::parse(read(file).toStdString());
            thinOut(project);
            addJson(file.stem().string(), project);
        }
    }

    /// States with some files. Pages are small, so that a change of a byte is likely to change what is read.
    void addStates() {
        const fs::path folder = fs::absolute(m_output / "StateFuzz");
        fs::remove_all(folder);
        fs::create_directories(folder);
        for (const int files : {0, 3, 40}) {
            const std::string path = folder / ("files-" + std::to_string(files));
            {
                Batch::State state(QByteArray::fromStdString(path), Batch::Sqlite::Database::Access::Write);
                state.set("options", "{}");
                for (int number = 0; number < files; ++number)
                    state.put(row(number));
            }
            Batch::Sqlite::Database(QByteArray::fromStdString(path), Batch::Sqlite::Database::Access::Write)
                .run("PRAGMA page_size = 512; VACUUM");
        }
    }

private:
    static Batch::Row row(int number) {
        constexpr Batch::FileState states[] = {Batch::FileState::Waiting, Batch::FileState::Working,
                                               Batch::FileState::Done,    Batch::FileState::Failed,
                                               Batch::FileState::Skipped, Batch::FileState::Current};
        const QByteArray name = QByteArray::number(number) + ".xml";
        Batch::Row row;
        row.path = "/films/" + name;
        row.name = name;
        row.output = name + ".json";
        row.state = states[number % 6];
        row.size = 1000 + number;
        row.from = 27;
        if (row.state == Batch::FileState::Failed) {
            row.kind = "broken-xml";
            row.reason = "the XML is broken";
        }
        return row;
    }
    void addXml(const std::string& name, QDomDocument& document, int version) {
        if (version > 0)
            document.documentElement().setAttribute(QStringLiteral("schemaVersion"), version);
        const QByteArray bytes = Reader::writeXml(document);
        for (const char* target : {"XmlChainFuzz", "ConverterFuzz"})
            write(m_output / target / (name + ".xml"), bytes);
        addProject(name + ".xml", bytes);
    }
    void addJson(const std::string& name, const json& project) {
        const QByteArray bytes = Reader::writeJson(project);
        write(m_output / "JsonChainFuzz" / (name + ".json"), bytes);
        addProject(name + ".json", bytes);
    }
    /// A seed of the targets that take both forms.
    void addProject(const std::string& file, const QByteArray& bytes) {
        for (const char* target : {"ReaderFuzz", "RecoveryFuzz", "RepairsFuzz", "TimelineFuzz", "DiffFuzz",
                                   "ExplainFuzz", "ReportFuzz"})
            write(m_output / target / file, bytes);
    }

    fs::path m_output;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "use: " << argv[0] << " CASES SAMPLES OUTPUT\n";
        return 2;
    }
    Seeds seeds(argv[3]);
    for (const auto& adaptor : fs::directory_iterator(argv[1])) {
        for (const auto& entry : fs::directory_iterator(adaptor.path()))
            seeds.addCase(entry.path());
    }
    for (const auto& entry : fs::directory_iterator(argv[2]))
        seeds.addSample(entry.path());
    seeds.addStates();
    return 0;
}
