#include "repairs/OldProject.h"

#include "Archive/Xml.h"
#include "Repairs/Opening.h"

namespace Tests {

std::string real(const std::string& name, double value, const std::string& shown) {
    const std::string number = shown.empty() ? QString::number(value, 'g', 6).toStdString() : shown;
    return "<" + name + " type='double' value='" + number + "' binaryData='" +
           Archive::serializeValue(value).toStdString() + "'/>";
}

OldProject& OldProject::timeline(long long id, const std::string& name, const std::vector<Entry>& entries,
                                 const std::string& more) {
    std::vector<std::string> contents;
    for (const Entry& entry : entries)
        contents.push_back(
            ref("Key", entry.clip) +
            embedded("Value", "Timeline::ClipTiming", entry.timing,
                     (m_version < 27 ? small("track", entry.track) : ref("track", entry.track)) +
                         small("trackLevel", 0) + number("timestamp", entry.timestamp) +
                         number("sourcePosition", 0) + number("sourceDuration", 60000) +
                         number("duration", entry.duration) + entry.more));
    const bool hasLinks = more.find("<links ") != std::string::npos;
    return object("Timeline::Object", id,
                  text("name", name) + list("clips", contents) + (hasLinks ? "" : list("links", {})) + more);
}

OldProject& OldProject::tracks(long long timeline, const std::vector<std::pair<long long, int>>& tracks) {
    for (const auto& [id, type] : tracks)
        object("Timeline::Track", id,
               small("type", type) + field("used", "bool", "1") + field("muted", "bool", "0") +
                   field("hidden", "bool", "0") + field("linked", "bool", "0") + ref("timeline", timeline) +
                   (m_version >= 46 ? field("gapless", "bool", type == 16 ? "1" : "0") : ""));
    return *this;
}

QByteArray OldProject::bytes() const {
    std::vector<std::string> records;
    long long id = 900000;
    for (const Record& record : m_records)
        records.push_back(embedded("Data", "Predeclare", ++id,
                                   text("typeName", record.type) + ref("oid", record.id) + ref("poid", 0) +
                                       Tests::refs("refs", record.refs)));
    const std::string predeclarator =
        m_hasPredeclarator ? embedded("RootObject", "Predeclarator", 1, list("predeclarations", records))
                           : std::string();
    return QByteArray::fromStdString("<?xml version='1.0' encoding='UTF-8'?><Archive schemaVersion='" +
                                     std::to_string(m_version) + "'>" + ref("RootRef", m_root) +
                                     predeclarator + m_objects + "</Archive>");
}

std::vector<std::string> Migrated::repairs() const {
    std::vector<std::string> names;
    for (const Reader::RepairMade& repair : report.repairs)
        names.push_back(repair.name);
    return names;
}

const Reader::RepairMade& Migrated::repair(const std::string& name) const {
    for (const Reader::RepairMade& repair : report.repairs) {
        if (repair.name == name)
            return repair;
    }
    throw std::runtime_error("no repair " + name);
}

Migrated migrateOld(const QByteArray& bytes, bool repair, int to) {
    Reader::MigrationOptions options;
    options.name = QStringLiteral("film");
    options.location = options.target = QStringLiteral("/films/film");
    options.to = to;
    options.repair = repair;
    Migrated result;
    try {
        const auto opened = [&bytes, repair, name = options.name] {
            return repair ? Repairs::open(bytes, name) : Repairs::Opened{Reader::parse(bytes, name), {}};
        };
        Repairs::Opened project = opened();
        options.opening = std::move(project.report);
        options.reread = [&] { return opened().document; };
        Reader::Migration migration(std::move(project.document), options);
        try {
            migration.run();
            result.bytes = migration.save();
        } catch (const Reader::Error& error) {
            result.error = error;
        }
        result.report = migration.report();
    } catch (const Reader::Error& error) {
        result.error = error;
    }
    return result;
}

void expectWhole(const Migrated& migrated) {
    ASSERT_FALSE(migrated.error) << migrated.error->what();
    for (const Reader::Loss& loss : migrated.report.losses)
        EXPECT_TRUE(loss.isIntended || !loss.wasUsed)
            << loss.part.name << ' ' << loss.part.className << ": " << loss.reason << ' ' << loss.step;
    for (const Reader::LogLine& line : migrated.report.log)
        EXPECT_FALSE(line.isError()) << line.step << ": " << line.text;
    EXPECT_EQ(linesOf(Reader::verify(Reader::parse(migrated.bytes, QStringLiteral("result")))),
              std::vector<std::string>());
}

int trackTypeOf(const Project& project, const std::string& timeline, const std::string& clip) {
    const nlohmann::json& object = project.timeline(timeline);
    const nlohmann::json& timing = timingOf(project, timeline, clip);
    if (timing.at("track").is_null())
        return -1;
    const auto id = Serialize::Json::getAnyObjectId(timing.at("track"));
    const nlohmann::json& tracks = object.at("tracks");
    const bool isListed = std::any_of(tracks.begin(), tracks.end(), [&](const nlohmann::json& track) {
        return Serialize::Json::getAnyObjectId(track) == id;
    });
    return isListed ? project.follow(timing.at("track")).at("type").get<int>() : -1;
}

std::vector<std::string> clipNames(const Project& project, const std::string& timeline) {
    std::vector<std::string> names;
    for (const nlohmann::json& entry : project.timeline(timeline).at("clips"))
        names.push_back(project.follow(entry, "clip").at("name").get<std::string>());
    return names;
}

std::vector<std::string> namesOf(const std::vector<Reader::Part>& clips) {
    std::vector<std::string> names;
    for (const Reader::Part& clip : clips)
        names.push_back(clip.name);
    return names;
}

} // namespace Tests
