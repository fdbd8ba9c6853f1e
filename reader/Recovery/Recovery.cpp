#include "Recovery/Recovery.h"

#include "Reader/AdaptorTable.h"
#include "Recovery/DamagedText.h"
#include "Recovery/JsonSalvage.h"
#include "Recovery/XmlSalvage.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

using Bundle::Backend;

namespace Reader {
namespace {

bool isVersionOf(Backend form, long long version) {
    return form == Backend::Xml ? version >= 0 && version <= lastXmlVersion
                                : version >= firstJsonVersion && version <= currentVersion;
}

std::size_t count(std::string_view text, std::string_view part) {
    std::size_t number = 0;
    for (auto place = text.find(part); place != std::string_view::npos;
         place = text.find(part, place + part.size()))
        ++number;
    return number;
}

/// The form that most objects have. Neither form has the marks of the other one in its texts: quotes are escaped.
Backend formOf(std::string_view text) {
    const std::size_t archives = count(text, "<Archive ") + count(text, "<RootObject ");
    return archives > count(text, "\"@meta\"") ? Backend::Xml : Backend::Json;
}

/// Chooses the version: the given one, the one that the file states, or the one that its content shows.
int chooseVersion(Backend form, std::optional<int> given, const std::optional<std::string>& stated,
                  const VersionFacts& facts, RecoveryReport& report) {
    const auto add = [&](const std::string& text) { report.add({Damage::Version, 0, 1, 1, text}); };
    if (given && isVersionOf(form, *given))
        return *given;
    if (given)
        add("The version " + std::to_string(*given) + " is not one of this form of document.");
    int number = -1;
    if (stated) {
        const auto [end, error] = std::from_chars(stated->data(), stated->data() + stated->size(), number);
        const bool isNumber = error == std::errc() && end == stated->data() + stated->size();
        if (isNumber && isVersionOf(form, number))
            return number;
        if (isNumber && number > currentVersion)
            report.newerVersion = number;
        add("The file states a schema version that it can't have: " + *stated + '.');
    } else {
        add("The file states no schema version.");
    }
    report.versionGuess = facts.guess(form);
    return report.versionGuess->version;
}

/// Lists the clips that were in the file and are not in the result.
void noteLostClips(const std::vector<RecoveredClip>& mentioned, const std::vector<SalvagedClip>& kept,
                   RecoveryReport& report) {
    std::unordered_set<ObjectId> known;
    for (const SalvagedClip& clip : kept)
        known.insert(clip.id);
    std::unordered_map<ObjectId, std::size_t> places;
    for (const RecoveredClip& clip : mentioned) {
        if (clip.id != 0 && known.count(clip.id))
            continue;
        const auto [place, isNew] = places.try_emplace(clip.id, report.clipsLost.size());
        if (isNew || clip.id == 0)
            report.clipsLost.push_back(clip);
        else if (report.clipsLost[place->second].name.empty())
            report.clipsLost[place->second].name = clip.name;
    }
}

/// Makes a project of what is whole, and notes what became of the clips.
void mend(Salvage& salvage, RecoveryReport& report) {
    if (!salvage.isDamaged()) {
        report.clipsInPlace = salvage.clips().size();
        return;
    }
    const std::vector<RecoveredClip> mentioned = salvage.mentionedClips();
    const std::vector<SalvagedClip> clips = salvage.clips();
    mendTimelines(salvage, report.version, report);
    salvage.mendReferences();
    noteLostClips(mentioned, clips, report);
}

QByteArray recoverXml(DamagedText& text, std::optional<int> given, RecoveryReport& report) {
    ScannedTree tree = scanXml(text, report);
    if (tree.nodes.empty())
        return {};
    XmlSalvage salvage(std::move(tree), report);
    report.version =
        chooseVersion(Backend::Xml, given, salvage.statedVersion(), salvage.versionFacts(), report);
    salvage.setVersion(report.version);
    salvage.dropDamaged();
    mend(salvage, report);
    return salvage.write();
}

QByteArray recoverJson(DamagedText& text, std::optional<int> given, RecoveryReport& report) {
    ScannedJson document = scanJson(text, report);
    if (!document.hasObjects)
        return {};
    JsonSalvage salvage(std::move(document), report);
    const nlohmann::json stated = salvage.statedVersion();
    report.version = chooseVersion(
        Backend::Json, given,
        stated.is_null() ? std::nullopt
                         : std::optional(stated.is_string() ? stated.get<std::string>() : stated.dump()),
        salvage.versionFacts(), report);
    salvage.setVersion(report.version);
    if (salvage.isDamaged())
        salvage.closeDamaged();
    mend(salvage, report);
    return salvage.write();
}

} // namespace

bool isRecoverable(ErrorKind kind) {
    switch (kind) {
    case ErrorKind::UnknownForm:
    case ErrorKind::BrokenXml:
    case ErrorKind::ForeignEncoding:
    case ErrorKind::NoArchive:
    case ErrorKind::MissingRoot:
    case ErrorKind::BrokenJson:
    case ErrorKind::WrongEnvelope:
    case ErrorKind::NoVersion:
    case ErrorKind::BadVersion:
    case ErrorKind::WrongForm:
    case ErrorKind::TooNew:
        return true;
    default:
        return false;
    }
}

std::optional<Recovered> recover(const QByteArray& bytes, const QString& name, std::optional<int> version) {
    RecoveryReport report;
    DamagedText text(bytes, report);
    const bool isXml = formOf(text.text()) == Backend::Xml;
    const QByteArray result = isXml ? recoverXml(text, version, report) : recoverJson(text, version, report);
    if (result.isEmpty())
        return std::nullopt;
    std::stable_sort(
        report.findings.begin(), report.findings.end(),
        [](const DamageFinding& first, const DamageFinding& second) { return first.byte < second.byte; });
    try {
        return Recovered{parse(result, name, report.version), std::move(report)};
    } catch (const Error&) {
        return std::nullopt; // deeper or larger than documents may be
    }
}

} // namespace Reader
