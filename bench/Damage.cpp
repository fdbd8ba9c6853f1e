#include "bench/Damage.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Reader/Contents.h"
#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Reader/Verify.h"
#include "Reader/XmlText.h"
#include "Repairs/Opening.h"
#include "bench/Generator.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>

namespace Words = Archive::Words;
using Archive::Internal::Elements;

namespace Bench {
namespace {

using Id = unsigned long long;

const QString name = QStringLiteral("project");

/// The version of the sample that JSON projects are made of: it has scenes, and no quizzes, which later versions remove.
constexpr int sourceOfJson = 12;

Id valueIn(const QDomElement& parent, const QString& field) {
    return parent.firstChildElement(field).attribute(Words::value).toULongLong();
}

/// Whether an entry of a list refers to one of the objects.
bool refersTo(const QDomElement& item, const std::set<Id>& ids) {
    const Elements references = Archive::Internal::elements(item, Words::Key);
    const auto isOfThem = [&](const QDomElement& e) {
        return ids.count(e.attribute(Words::value).toULongLong()) > 0;
    };
    bool refers = std::any_of(references.begin(), references.end(), isOfThem);
    for (const QString& tag : {Words::First, Words::Second, QStringLiteral("master")}) {
        const Elements others = Archive::Internal::elements(item, tag);
        refers = refers || std::any_of(others.begin(), others.end(), isOfThem);
    }
    return refers;
}

/// Removes the last clips of the main timeline, and all that nothing leads to afterwards.
void removeClips(QDomDocument& archive, std::size_t surplus) {
    const QDomElement top = archive.documentElement();
    Elements timelines = Archive::Internal::rootObjects(archive, QStringLiteral("Timeline::Object"));
    std::set<Id> scenes;
    for (const QDomElement& clip :
         Archive::Internal::rootObjects(archive, QStringLiteral("Timeline::Clip"))) {
        if (valueIn(clip, QStringLiteral("nestedTimeline")) != 0)
            scenes.insert(Archive::objectIdOf(clip));
    }
    std::set<Id> removed;
    const Elements items = Archive::Internal::children(
        timelines.front().firstChildElement(QStringLiteral("clips")), Words::Item);
    for (auto item = items.rbegin(); item != items.rend() && removed.size() < surplus; ++item) {
        const Id clip = valueIn(*item, Words::Key);
        if (!scenes.count(clip))
            removed.insert(clip);
    }
    for (QDomElement list = timelines.front().firstChildElement(); !list.isNull();
         list = list.nextSiblingElement()) {
        int count = 0;
        for (QDomElement& item : Archive::Internal::children(list, Words::Item)) {
            if (refersTo(item, removed))
                list.removeChild(item);
            else
                item.setAttribute(Words::index, ++count);
        }
        if (list.hasAttribute(Words::size))
            list.setAttribute(Words::size, count);
    }
    const auto reachable = Reader::findReachable(Reader::Document(archive));
    std::set<Id> objects;
    for (QDomElement object : Archive::Internal::children(top, Words::RootObject)) {
        if (Archive::typeOf(object) != Words::Predeclarator && !reachable.count(Archive::objectIdOf(object)))
            top.ownerDocument().documentElement().removeChild(object);
    }
    const auto note = [&](const QDomElement& e) {
        if (e.hasAttribute(Words::objectId))
            objects.insert(Archive::objectIdOf(e));
    };
    Archive::Internal::walkElements(archive, note, [](const QDomElement&) {});
    for (QDomElement& list : Archive::Internal::elements(archive, Words::predeclarations)) {
        int count = 0;
        for (QDomElement& item : Archive::Internal::children(list, Words::Item)) {
            const QDomElement record = item.firstChildElement(Words::Data);
            if (!objects.count(valueIn(record, Words::oid))) {
                list.removeChild(item);
                continue;
            }
            item.setAttribute(Words::index, ++count);
            QDomElement refs = record.firstChildElement(Words::refs);
            int kept = 0;
            for (QDomElement& entry : Archive::Internal::children(refs, Words::Item)) {
                if (objects.count(valueIn(entry, Words::Data)))
                    entry.setAttribute(Words::index, ++kept);
                else
                    refs.removeChild(entry);
            }
            refs.setAttribute(Words::size, kept);
        }
        list.setAttribute(Words::size, count);
    }
}

QByteArray migrated(Reader::Document document, int to, bool repair = false) {
    Reader::MigrationOptions options;
    options.name = options.location = options.target = name;
    options.to = to;
    options.repair = repair;
    Reader::Migration migration(std::move(document), options);
    migration.run();
    return migration.save();
}

ClipIds clipsOf(const Reader::Document& document) {
    ClipIds ids;
    for (const Reader::Clip& clip : Reader::listClips(document))
        ids.insert(clip.id);
    return ids;
}

Id numberBehind(const QByteArray& bytes, int position) {
    Id number = 0;
    for (; position < bytes.size() && bytes.at(position) >= '0' && bytes.at(position) <= '9'; ++position)
        number = number * 10 + static_cast<Id>(bytes.at(position) - '0');
    return number;
}

ClipIds wholeClipsOfXml(const QByteArray& bytes) {
    const QByteArray start = "<RootObject ";
    const QByteArray end = "</RootObject>";
    ClipIds ids;
    for (int from = bytes.indexOf(start); from >= 0; from = bytes.indexOf(start, from + 1)) {
        const int to = bytes.indexOf(end, from);
        if (to < 0)
            break;
        const QByteArray object = bytes.mid(from, to + end.size() - from);
        const QByteArray tag = object.left(object.indexOf('>'));
        const int id = tag.indexOf("objectId=\"");
        const bool isWhole = !object.contains('\0') && object.indexOf(start, 1) < 0;
        if (isWhole && id >= 0 && tag.contains("type=\"Timeline::Clip\""))
            ids.insert(numberBehind(tag, id + static_cast<int>(std::strlen("objectId=\""))));
    }
    return ids;
}

/// The position behind the end of the object that starts there; -1 where it does not end, or has NUL bytes.
int endOfObject(const QByteArray& bytes, int start) {
    int depth = 0;
    bool isString = false;
    for (int position = start; position < bytes.size(); ++position) {
        const char c = bytes.at(position);
        if (c == '\0')
            return -1;
        if (isString && c == '\\')
            ++position;
        else if (c == '"')
            isString = !isString;
        else if (!isString)
            depth += c == '{' ? 1 : c == '}' ? -1 : 0;
        if (depth == 0)
            return position + 1;
    }
    return -1;
}

ClipIds wholeClipsOfJson(const QByteArray& bytes) {
    const QByteArray start = "{\"@meta\":{\"class_name\":\"Timeline::Clip\",\"object_id\":";
    ClipIds ids;
    for (int from = bytes.indexOf(start); from >= 0; from = bytes.indexOf(start, from + 1)) {
        if (endOfObject(bytes, from) > 0)
            ids.insert(numberBehind(bytes, from + start.size()));
    }
    return ids;
}

std::map<Id, long long> timesOf(const Reader::Document& document) {
    std::map<Id, long long> times;
    for (const Reader::Part& part : Reader::listParts(document)) {
        if (part.kind == Reader::PartKind::Clip)
            times.emplace(part.id, part.time.value_or(0));
    }
    return times;
}

/// The clips that are at another time than in the healthy project, but for those that are reported as moved.
std::string wrongTimes(const Reader::Document& document, const Reader::RecoveryReport& report,
                       const Healthy& healthy) {
    ClipIds moved;
    for (const Reader::RecoveredClip& clip : report.clipsMoved)
        moved.insert(clip.id);
    for (const Reader::RecoveredClip& clip : report.clipsReduced)
        moved.insert(clip.id);
    std::string text;
    for (const auto& [id, time] : timesOf(document)) {
        const auto before = healthy.times.find(id);
        if (before != healthy.times.end() && before->second != time && !moved.count(id))
            text += ' ' + std::to_string(id);
    }
    return text;
}

std::string faultsOf(const Reader::Document& document) {
    std::string text;
    for (const Reader::Finding& finding : Reader::verify(document)) {
        if (finding.severity != Reader::Severity::Note)
            text += std::string(Reader::nameOf(finding.fault)) + " in " + finding.className + ' ' +
                    std::to_string(finding.id) + ' ' + finding.path + ": " + finding.text + "; ";
    }
    return text;
}

std::string missing(const ClipIds& expected, const ClipIds& found) {
    std::string text;
    for (const Id id : expected)
        text += found.count(id) ? "" : ' ' + std::to_string(id);
    return text;
}

ClipIds common(const ClipIds& first, const ClipIds& second) {
    ClipIds ids;
    std::set_intersection(first.begin(), first.end(), second.begin(), second.end(),
                          std::inserter(ids, ids.end()));
    return ids;
}

} // namespace

QByteArray projectWithClips(int version, std::size_t clips) {
    const bool isJson = version > Reader::lastXmlVersion;
    const int source = isJson ? sourceOfJson : version;
    // The migration of the sample adds a clip.
    const std::size_t added = isJson ? 1 : 0;
    QDomDocument archive = Reader::parseXml(generateProject(source, {0, 0, clips, 0}), name);
    removeClips(archive, clipsOf(Reader::Document(archive)).size() + added - clips);
    QByteArray project = Reader::writeXml(archive);
    if (isJson)
        project = migrated(Reader::parse(project, name), version);
    if (clipsOf(Reader::parse(project, name)).size() != clips)
        throw std::logic_error("a generated project has another number of clips");
    return project;
}

QByteArray withLostBlock(QByteArray project, int place) {
    const int end = std::min(place + blockSize, project.size());
    for (int position = place; position < end; ++position)
        project[position] = '\0';
    return project;
}

ClipIds wholeClips(const QByteArray& bytes) {
    return bytes.contains("<RootObject ") ? wholeClipsOfXml(bytes) : wholeClipsOfJson(bytes);
}

Healthy::Healthy(const QByteArray& project)
    : clips(clipsOf(Reader::parse(project, name))), times(timesOf(Reader::parse(project, name))),
      migrated(clipsOf(
          Reader::parse(Bench::migrated(Reader::parse(project, name), Reader::currentVersion), name))) {}

Rescue rescue(const QByteArray& damaged, const Healthy& healthy) {
    Rescue result;
    const ClipIds whole = common(wholeClips(damaged), healthy.clips);
    result.whole = whole.size();
    try {
        Repairs::Opened opened = Repairs::open(damaged, name);
        const Reader::RecoveryReport report = opened.report.recovery.value_or(Reader::RecoveryReport());
        const ClipIds clips = clipsOf(opened.document);
        result.recovered = common(clips, healthy.clips).size();
        result.inPlace = opened.report.recovery ? report.clipsInPlace : result.recovered;
        if (const std::string lost = missing(whole, clips); !lost.empty())
            result.problem += "recovery loses the clips" + lost + "; ";
        if (const std::string wrong = wrongTimes(opened.document, report, healthy); !wrong.empty())
            result.problem += "these clips are at another time:" + wrong + "; ";
        if (const std::string faults = faultsOf(opened.document); !faults.empty())
            result.problem += "the recovered document has faults: " + faults;
        const Reader::Document document =
            Reader::parse(migrated(std::move(opened.document), Reader::currentVersion, true), name);
        if (const std::string lost = missing(common(whole, healthy.migrated), clipsOf(document));
            !lost.empty())
            result.problem += "the migration loses the clips" + lost + "; ";
        if (const std::string faults = faultsOf(document); !faults.empty())
            result.problem += "the migrated document has faults: " + faults;
    } catch (const std::exception& error) {
        result.problem += std::string("it fails: ") + error.what();
    }
    return result;
}

} // namespace Bench
