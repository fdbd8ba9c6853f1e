#include "Reader/Comparison.h"

#include "Archive/Internal/JsonValues.h"
#include "FS/FS.h"
#include "Reader/ClipMatching.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

using nlohmann::json;

namespace Reader {
namespace {

using Kind = Difference::Kind;

constexpr std::string_view pathFields[] = {"path",           "resourcePath", "pathOriginal",
                                           "pathStabilized", "aiModelPath",  "location"};

/// Whether two paths lead to one file: as they are written, or seen from the folders of their projects.
class Paths {
public:
    Paths(QString before, QString after) : m_before(std::move(before)), m_after(std::move(after)) {}

    bool areSame(const std::string& before, const std::string& after) const {
        return before == after || normal(m_before, before) == normal(m_after, after);
    }

private:
    /// A path that starts with "#" has a marker in front, and no folder is known for that.
    static QString normal(const QString& folder, const std::string& text) {
        const QString path = QString::fromStdString(text);
        return path.isEmpty() || path.startsWith(QLatin1Char('#'))
                   ? path
                   : FS::normalizedPath(folder.isEmpty() ? path : FS::fromRelativePath(folder, path));
    }

    QString m_before;
    QString m_after;
};

/// What a difference in an object is reported as.
struct Context {
    Kind kind = Kind::ObjectChanged;
    std::optional<Difference::Subject> clip = {};
    std::string className = {}; ///< of the effect or transition
    std::string name = {};
    unsigned long long idBefore = 0;
    unsigned long long idAfter = 0;
    std::string path = {}; ///< from the effect, transition or clip to the object, with a "/" behind it
    std::vector<Difference>* differences = nullptr;
};

/// Two objects that are the same.
struct Pair {
    unsigned long long before;
    unsigned long long after;
    Context context;
};

/// Compares objects field by field, from pairs that are known to be the same on to what they refer to.
class ObjectComparison {
public:
    ObjectComparison(const ComparedProject& before, const ComparedProject& after)
        : m_before(before.objects), m_after(after.objects), m_paths(before.folder, after.folder) {}

    /// Two objects are the same. Later calls for one of them are left out.
    void match(unsigned long long before, unsigned long long after, Context context) {
        if (before == 0 || after == 0 || m_partners.count(before) > 0 || m_taken.count(after) > 0)
            return;
        m_partners.emplace(before, after);
        m_taken.insert(after);
        m_open.push_back({before, after, std::move(context)});
    }
    bool areMatched(unsigned long long before, unsigned long long after) const {
        const auto partner = m_partners.find(before);
        return partner == m_partners.end() ? before == 0 && after == 0 : partner->second == after;
    }
    /// Differences of that field were reported already.
    void leaveOut(unsigned long long before, const std::string& field) { m_reported.emplace(before, field); }

    void run() {
        while (!m_open.empty()) {
            const Pair pair = std::move(m_open.front());
            m_open.pop_front();
            const GraphObject* before = m_before.find(pair.before);
            const GraphObject* after = m_after.find(pair.after);
            if (before && after)
                compareFields(pair, *before, *after);
        }
    }

    void compareEnvelopes(std::vector<Difference>& differences) {
        const Context context{.differences = &differences};
        const Place place{context, {}, {}, 0};
        compareMembers(place, m_before.envelope, m_after.envelope);
    }

private:
    /// Where two values stand.
    struct Place {
        const Context& context;
        std::string className; ///< of the object
        std::string path;      ///< in the object
        unsigned long long before = 0;
        unsigned long long after = 0;

        Place at(const std::string& key) const {
            return {context, className, path.empty() ? key : path + '/' + key, before, after};
        }
    };

    void compareFields(const Pair& pair, const GraphObject& before, const GraphObject& after) {
        const Place place{pair.context, before.className, {}, pair.before, pair.after};
        if (before.className != after.className)
            add(place.at("class"), before.className, after.className);
        compareMembers(place, before.fields, after.fields);
    }

    void compareMembers(const Place& place, const json& before, const json& after) {
        for (const auto& [key, value] : before.items()) {
            const bool isReported = place.path.empty() && m_reported.count({place.before, key}) > 0;
            const bool isInBoth = after.contains(key);
            if (!isReported && isInBoth)
                compareValues(place.at(key), value, after[key]);
            else if (!isReported)
                add(place.at(key), shown(value, m_before), {});
        }
        for (const auto& [key, value] : after.items()) {
            const bool isReported = place.path.empty() && m_reported.count({place.before, key}) > 0;
            if (!isReported && !before.contains(key))
                add(place.at(key), {}, shown(value, m_after));
        }
    }

    void compareValues(const Place& place, const json& before, const json& after) {
        const unsigned long long linkBefore = linkTarget(before);
        const unsigned long long linkAfter = linkTarget(after);
        const auto depth = std::count(place.path.begin(), place.path.end(), '/');
        constexpr std::ptrdiff_t mostLevels = 16;
        if (linkBefore != 0 && linkAfter != 0) {
            compareLinks(place, linkBefore, linkAfter);
        } else if (before.is_array() && after.is_array() && depth < mostLevels) {
            compareArrays(place, before, after);
        } else if (before.is_object() && after.is_object() && linkBefore == 0 && linkAfter == 0 &&
                   depth < mostLevels) {
            compareMembers(place, before, after);
        } else if (!isSameText(place, before, after) && !Archive::Internal::areEqual(before, after)) {
            add(place, shown(before, m_before), shown(after, m_after));
        }
    }

    bool isSameText(const Place& place, const json& before, const json& after) const {
        if (!before.is_string() || !after.is_string())
            return false;
        const bool isPath =
            std::find(std::begin(pathFields), std::end(pathFields), place.path) != std::end(pathFields) ||
            (place.path == "description" && place.className == "Import::Object");
        return isPath &&
               m_paths.areSame(before.get_ref<const std::string&>(), after.get_ref<const std::string&>());
    }

    void compareLinks(const Place& place, unsigned long long before, unsigned long long after) {
        if (areMatched(before, after))
            return;
        const GraphObject* one = m_before.find(before);
        const GraphObject* other = m_after.find(after);
        if (!one && !other)
            return; // both lead nowhere
        const bool areFree = m_partners.count(before) == 0 && m_taken.count(after) == 0;
        if (!one || !other || one->className != other->className ||
            (!areFree && one->className.starts_with("Timeline::")))
            add(place, shown(linkTo(before), m_before), shown(linkTo(after), m_after));
        else if (areFree)
            match(before, after, contextBelow(place));
        else if (m_compared.emplace(before, after).second) // an object that is shared in one document only
            m_open.push_back({before, after, contextBelow(place)});
    }

    /// Objects below a clip are shown with the path from it, and others by themselves.
    static Context contextBelow(const Place& place) {
        Context context = place.context;
        if (context.kind != Kind::ObjectChanged)
            context.path += place.path + '/';
        return context;
    }

    static json linkTo(unsigned long long id) {
        return {{Serialize::Json::MetaDetails::s_meta_reference, id}};
    }

    /// An object without its ids, for searches.
    static std::string textOf(const GraphObject& object) {
        json fields = json::object();
        for (const auto& [key, value] : object.fields.items())
            fields[key] = value.is_structured() ? json(value.size()) : value;
        return object.className + fields.dump(-1, ' ', false, json::error_handler_t::replace);
    }

    // Lists

    void compareArrays(const Place& place, const json& before, const json& after) {
        const auto isLink = [](const json& value) { return linkTarget(value) != 0; };
        const bool holdsObjects = std::any_of(before.begin(), before.end(), isLink) ||
                                  std::any_of(after.begin(), after.end(), isLink);
        if (holdsObjects)
            compareLists(place, before, after);
        else if (before.size() == after.size())
            for (std::size_t i = 0; i < before.size(); ++i)
                compareValues(place.at(std::to_string(i)), before[i], after[i]);
        else
            add(place, shown(before, m_before), shown(after, m_after));
    }

    /// Lists of objects: those that are the same are found first, then the others are added or removed.
    void compareLists(const Place& place, const json& before, const json& after) {
        std::vector<bool> isTaken(after.size());
        std::vector<std::optional<std::size_t>> partners(before.size());
        const auto pairBy = [&](auto keyBefore, auto keyAfter) {
            std::map<std::string, std::deque<std::size_t>> free;
            for (std::size_t i = 0; i < after.size(); ++i) {
                if (!isTaken[i])
                    free[keyAfter(linkTarget(after[i]))].push_back(i);
            }
            for (std::size_t i = 0; i < before.size(); ++i) {
                const auto group = partners[i] ? free.end() : free.find(keyBefore(linkTarget(before[i])));
                if (group == free.end() || group->second.empty())
                    continue;
                partners[i] = group->second.front();
                isTaken[group->second.front()] = true;
                group->second.pop_front();
            }
        };
        const auto classAnd = [](const GraphObject* object, const std::string& more) {
            return (object ? object->className : std::string()) + ' ' + more;
        };
        pairBy([&](unsigned long long id) { return "known " + std::to_string(partnerOf(id)); },
               [&](unsigned long long id) {
                   return (m_taken.count(id) > 0 ? "known " : "new ") + std::to_string(id);
               });
        pairBy([&](unsigned long long id) { return m_before.find(id) ? textOf(*m_before.find(id)) : ""; },
               [&](unsigned long long id) { return m_after.find(id) ? textOf(*m_after.find(id)) : ""; });
        pairBy([&](unsigned long long id) { return classAnd(m_before.find(id), std::to_string(id)); },
               [&](unsigned long long id) { return classAnd(m_after.find(id), std::to_string(id)); });
        pairBy([&](unsigned long long id) { return classAnd(m_before.find(id), {}); },
               [&](unsigned long long id) { return classAnd(m_after.find(id), {}); });
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (partners[i])
                compareValues(place.at(std::to_string(i)), before[i], after[*partners[i]]);
            else
                add(place.at(std::to_string(i)), shown(before[i], m_before), {});
        }
        for (std::size_t i = 0; i < after.size(); ++i) {
            if (!isTaken[i])
                add(place.at(std::to_string(i)), {}, shown(after[i], m_after));
        }
        partners.erase(std::remove(partners.begin(), partners.end(), std::nullopt), partners.end());
        if (!std::is_sorted(partners.begin(), partners.end()))
            add(place, "in one order", "in another order");
    }

    unsigned long long partnerOf(unsigned long long before) const {
        const auto partner = m_partners.find(before);
        return partner == m_partners.end() ? 0 : partner->second;
    }

    void add(const Place& place, json before, json after) {
        const Context& context = place.context;
        const bool isOwn = context.kind == Kind::ObjectChanged;
        context.differences->push_back(
            {context.kind, context.clip, isOwn ? place.className : context.className,
             isOwn ? nameOfObject(place.before) : context.name, isOwn ? place.before : context.idBefore,
             isOwn ? place.after : context.idAfter, context.path + place.path, std::move(before),
             std::move(after)});
    }

    std::string nameOfObject(unsigned long long id) const {
        const GraphObject* object = m_before.find(id);
        const auto name = object ? object->fields.find("name") : json::const_iterator();
        return object && name != object->fields.end() && name->is_string() ? name->get<std::string>()
                                                                           : std::string();
    }

    const ObjectGraph& m_before;
    const ObjectGraph& m_after;
    Paths m_paths;
    std::unordered_map<unsigned long long, unsigned long long> m_partners;  ///< of objects before
    std::set<unsigned long long> m_taken;                                   ///< partners after
    std::set<std::pair<unsigned long long, unsigned long long>> m_compared; ///< that are no partners
    std::deque<Pair> m_open;
    std::set<std::pair<unsigned long long, std::string>> m_reported; ///< object before and field
};

/// The whole comparison: timelines with their clips, effects and transitions, then all objects.
class ProjectComparison {
public:
    ProjectComparison(const ComparedProject& before, const ComparedProject& after)
        : m_before(before), m_after(after), m_paths(before.folder, after.folder), m_objects(before, after) {}

    std::vector<Difference> run() {
        matchTimelines();
        for (const auto& [before, after] : m_timelines)
            compareTimelines(m_before.timelines[before], m_after.timelines[after]);
        noteOtherTimelines();
        compareRoots();
        m_objects.run();
        m_objects.compareEnvelopes(m_others);
        std::vector<Difference> result;
        for (std::vector<Difference>& differences : m_clips)
            move(differences, result);
        move(m_transitions, result);
        move(m_others, result);
        return result;
    }

private:
    /// A broken archive may have no root object.
    void compareRoots() {
        const GraphObject* before = m_before.objects.find(m_before.objects.root);
        const GraphObject* after = m_after.objects.find(m_after.objects.root);
        if (!before != !after)
            m_others.push_back({.kind = Kind::ObjectChanged,
                                .field = "root object",
                                .before = before ? json(before->className) : json(),
                                .after = after ? json(after->className) : json()});
        m_objects.match(m_before.objects.root, m_after.objects.root, {.differences = &m_others});
    }

    static void move(std::vector<Difference>& from, std::vector<Difference>& to) {
        to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
    }

    // Timelines

    void matchTimelines() {
        matchTimeline([](const Timeline& one, const Timeline& other) {
            return one.role == Timeline::Role::Main && other.role == Timeline::Role::Main;
        });
        matchAllNested(0);
        const std::size_t byClips = m_timelines.size();
        matchTimeline([](const Timeline& one, const Timeline& other) {
            return one.role == Timeline::Role::Nested && other.role == Timeline::Role::Nested &&
                   one.name == other.name;
        });
        matchAllNested(byClips);
    }

    void matchAllNested(std::size_t first) {
        for (std::size_t place = first; place < m_timelines.size(); ++place)
            matchNested(place);
    }

    template <class Test>
    void matchTimeline(Test isSame) {
        for (std::size_t before = 0; before < m_before.timelines.size(); ++before) {
            for (std::size_t after = 0; after < m_after.timelines.size(); ++after) {
                if (isSame(m_before.timelines[before], m_after.timelines[after]))
                    add(before, after);
            }
        }
    }

    void add(std::size_t before, std::size_t after) {
        const auto isKnown = [&](const auto& pair) { return pair.first == before || pair.second == after; };
        if (std::none_of(m_timelines.begin(), m_timelines.end(), isKnown)) {
            m_timelines.emplace_back(before, after);
            m_matches.push_back(matchClips(m_before.timelines[before], m_after.timelines[after]));
        }
    }

    /// The timelines that matched clips show.
    void matchNested(std::size_t place) {
        const auto [before, after] = m_timelines[place];
        const Matches matches = m_matches[place];
        for (const auto& [one, other] : matches) {
            const unsigned long long nestedBefore = m_before.timelines[before].clips[one].nested;
            const unsigned long long nestedAfter = m_after.timelines[after].clips[other].nested;
            const auto timelineBefore = placeOf(nestedBefore, m_before.timelines);
            const auto timelineAfter = placeOf(nestedAfter, m_after.timelines);
            if (nestedBefore != 0 && nestedAfter != 0 && timelineBefore && timelineAfter)
                add(*timelineBefore, *timelineAfter);
        }
    }

    static std::optional<std::size_t> placeOf(unsigned long long id, const std::vector<Timeline>& timelines) {
        const auto found = std::find_if(timelines.begin(), timelines.end(),
                                        [id](const Timeline& timeline) { return timeline.id == id; });
        return found == timelines.end() ? std::nullopt
                                        : std::optional<std::size_t>(found - timelines.begin());
    }

    void noteOtherTimelines() {
        const auto note = [&](const std::vector<Timeline>& timelines, Kind kind, auto isKnown) {
            for (std::size_t place = 0; place < timelines.size(); ++place) {
                const Timeline& timeline = timelines[place];
                if (timeline.role == Timeline::Role::Unused || isKnown(place))
                    continue;
                Difference difference{kind};
                difference.className = "Timeline::Object";
                difference.name = timeline.name;
                (kind == Kind::TimelineAdded ? difference.idAfter : difference.idBefore) = timeline.id;
                m_others.push_back(std::move(difference));
            }
        };
        const auto among = [&](auto side) {
            return [this, side](std::size_t place) {
                return std::any_of(m_timelines.begin(), m_timelines.end(),
                                   [&](const auto& pair) { return side(pair) == place; });
            };
        };
        note(m_before.timelines, Kind::TimelineRemoved, among([](const auto& pair) { return pair.first; }));
        note(m_after.timelines, Kind::TimelineAdded, among([](const auto& pair) { return pair.second; }));
    }

    void compareTimelines(const Timeline& before, const Timeline& after) {
        const Matches& matches = m_matches[m_compared++];
        const Ids ids = idsOf(matches, before, after);
        m_objects.match(before.id, after.id, {.differences = &m_others});
        m_objects.leaveOut(before.id, "clips");
        m_objects.leaveOut(before.id, "transitions");
        matchTracks(before, after);
        m_partners.clear();
        std::set<std::size_t> taken;
        for (const auto& [one, other] : matches) {
            m_partners[before.clips[one].id] = after.clips[other].id;
            taken.insert(other);
        }
        compareTransitions(before, after);
        // In the order of time; a clip that was added stands among those that were there.
        std::vector<std::tuple<long long, std::optional<std::size_t>, std::optional<std::size_t>>> order;
        std::size_t next = 0;
        for (std::size_t place = 0; place < before.clips.size(); ++place) {
            const bool isMatched = next < matches.size() && matches[next].first == place;
            order.emplace_back(before.clips[place].start, place,
                               isMatched ? std::optional(matches[next].second) : std::nullopt);
            next += isMatched ? 1 : 0;
        }
        for (std::size_t place = 0; place < after.clips.size(); ++place) {
            if (taken.count(place) == 0)
                order.emplace_back(after.clips[place].start, std::nullopt, place);
        }
        std::stable_sort(order.begin(), order.end(),
                         [](const auto& a, const auto& b) { return std::get<0>(a) < std::get<0>(b); });
        for (const auto& [start, one, other] : order) {
            if (one && other)
                compareClips(before, before.clips[*one], after, after.clips[*other], ids);
            else if (one)
                m_clips.push_back({clipDifference(Kind::ClipRemoved, before.clips[*one])});
            else
                m_clips.push_back({clipDifference(Kind::ClipAdded, after.clips[*other])});
        }
    }

    /// Tracks of one kind are the same in order.
    void matchTracks(const Timeline& before, const Timeline& after) {
        std::map<TrackKind, std::deque<unsigned long long>> free;
        for (const Track& track : after.tracks)
            free[track.kind].push_back(track.id);
        for (const Track& track : before.tracks) {
            auto& candidates = free[track.kind];
            if (candidates.empty())
                continue;
            m_objects.match(track.id, candidates.front(), {.differences = &m_others});
            candidates.pop_front();
        }
    }

    // Clips

    static Difference clipDifference(Kind kind, const TimelineClip& clip) {
        Difference difference{kind, Difference::Subject{clip.name, clip.start}};
        difference.className = clip.className;
        difference.name = std::string(nameOf(clip.kind));
        (kind == Kind::ClipAdded ? difference.idAfter : difference.idBefore) = clip.id;
        return difference;
    }

    void compareClips(const Timeline& timelineBefore, const TimelineClip& before,
                      const Timeline& timelineAfter, const TimelineClip& after, Ids ids) {
        m_clips.emplace_back();
        std::vector<Difference>& differences = m_clips.back();
        const Difference::Subject subject{before.name, before.start};
        const auto add = [&](Kind kind, json one, json other) {
            differences.push_back({kind,
                                   subject,
                                   before.className,
                                   std::string(nameOf(before.kind)),
                                   before.id,
                                   after.id,
                                   {},
                                   std::move(one),
                                   std::move(other)});
        };
        const auto leaveOut = [&](unsigned long long id, std::initializer_list<const char*> fields) {
            for (const char* field : fields)
                m_objects.leaveOut(id, field);
        };
        if (before.name != after.name) {
            add(Kind::ClipRenamed, before.name, after.name);
            leaveOut(before.id, {"name"});
        }
        const json placeBefore = placeOf(timelineBefore, before);
        const json placeAfter = placeOf(timelineAfter, after);
        if (placeBefore != placeAfter || !isSameTrack(timelineBefore, before, timelineAfter, after)) {
            add(Kind::ClipMoved, placeBefore, placeAfter);
            leaveOut(before.timing, {"timestamp", "track", "trackLevel"});
        }
        const json rangeBefore = {{"duration", before.duration}, {"sourceStart", before.sourceStart}};
        const json rangeAfter = {{"duration", after.duration}, {"sourceStart", after.sourceStart}};
        if (rangeBefore != rangeAfter) {
            add(Kind::ClipTrimmed, rangeBefore, rangeAfter);
            leaveOut(before.timing, {"duration", "sourcePosition"});
        }
        compareMedia(before, after, add);
        if (before.texts != after.texts) {
            add(Kind::TextChanged, before.texts, after.texts);
            leaveOutTexts(before.id);
        }
        compareEffects(before, after, ids, differences);
        m_objects.match(before.id, after.id, contextOf(Kind::ClipChanged, before, after, differences));
        m_objects.match(before.timing, after.timing,
                        contextOf(Kind::ClipChanged, before, after, differences));
        if (m_withTransitions.count(before.id) > 0)
            leaveOut(before.timing,
                     {"transitionIn", "transitionOut", "transitionHalf", "transitionDuration"});
        if (m_withTransitions.count(before.id) > 0)
            leaveOut(before.id, {"transition"});
    }

    static json placeOf(const Timeline& timeline, const TimelineClip& clip) {
        return {{"start", clip.start},
                {"track", std::string(nameOf(timeline.tracks[clip.track].kind))},
                {"level", clip.level}};
    }

    bool isSameTrack(const Timeline& timelineBefore, const TimelineClip& before,
                     const Timeline& timelineAfter, const TimelineClip& after) const {
        return m_objects.areMatched(timelineBefore.tracks[before.track].id,
                                    timelineAfter.tracks[after.track].id);
    }

    template <class Add>
    void compareMedia(const TimelineClip& before, const TimelineClip& after, Add add) {
        if (m_paths.areSame(before.media, after.media))
            return;
        add(Kind::MediaRelinked, before.media, after.media);
        m_objects.leaveOut(before.id, "file");
        const GraphObject* clip = m_before.objects.find(before.id);
        if (clip && clip->fields.contains("file"))
            m_objects.leaveOut(linkTarget(clip->fields["file"]), "path");
    }

    void leaveOutTexts(unsigned long long id) {
        const GraphObject* clip = m_before.objects.find(id);
        const GraphObject* overlay = clip ? m_before.objects.target(*clip, "overlay") : nullptr;
        if (!overlay || !overlay->fields.contains("items"))
            return;
        for (const unsigned long long item : linksIn(overlay->fields["items"])) {
            m_objects.leaveOut(item, "text");
            m_objects.leaveOut(item, "encodedText");
        }
    }

    static Context contextOf(Kind kind, const TimelineClip& before, const TimelineClip& after,
                             std::vector<Difference>& differences) {
        return {kind,
                Difference::Subject{before.name, before.start},
                before.className,
                std::string(nameOf(before.kind)),
                before.id,
                after.id,
                {},
                &differences};
    }

    void compareEffects(const TimelineClip& before, const TimelineClip& after, Ids ids,
                        std::vector<Difference>& differences) {
        const Matches matches = matchEffects(before, after, ids);
        const Difference::Subject subject{before.name, before.start};
        std::set<std::size_t> taken;
        std::size_t next = 0;
        for (std::size_t place = 0; place < before.effects.size(); ++place) {
            const ClipEffect& effect = before.effects[place];
            if (next < matches.size() && matches[next].first == place) {
                const ClipEffect& other = after.effects[matches[next].second];
                taken.insert(matches[next++].second);
                m_objects.match(effect.id, other.id,
                                {Kind::EffectChanged,
                                 subject,
                                 effect.className,
                                 effect.name,
                                 effect.id,
                                 other.id,
                                 {},
                                 &differences});
            } else {
                differences.push_back(
                    {Kind::EffectRemoved, subject, effect.className, effect.name, effect.id, 0});
            }
        }
        for (std::size_t place = 0; place < after.effects.size(); ++place) {
            const ClipEffect& effect = after.effects[place];
            if (taken.count(place) == 0)
                differences.push_back(
                    {Kind::EffectAdded, subject, effect.className, effect.name, 0, effect.id});
        }
        const bool isSorted = std::is_sorted(
            matches.begin(), matches.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
        if (!isSorted)
            differences.push_back({Kind::EffectsReordered, subject, before.className,
                                   std::string(nameOf(before.kind)), before.id, after.id});
        const bool isSame =
            isSorted && matches.size() == before.effects.size() && matches.size() == after.effects.size();
        if (!isSame)
            m_objects.leaveOut(before.id, "effects");
    }

    // Transitions

    /// Transitions between the same clips are the same. A clip that the timeline does not have counts as none.
    void compareTransitions(const Timeline& before, const Timeline& after) {
        const Subjects subjectsBefore = subjectsOf(before);
        const Subjects subjectsAfter = subjectsOf(after);
        const auto subjectIn = [](const Subjects& subjects, const TimelineTransition& transition) {
            const auto subject = subjects.find(transition.from != 0 ? transition.from : transition.to);
            return subject == subjects.end() ? std::nullopt : std::optional(subject->second);
        };
        const auto clipIn = [](const Subjects& subjects, unsigned long long id) {
            return subjects.count(id) > 0 ? id : 0;
        };
        std::unordered_map<unsigned long long, unsigned long long> partnersBefore;
        for (const auto& [one, other] : m_partners)
            partnersBefore.emplace(other, one);
        std::map<std::pair<unsigned long long, unsigned long long>, std::deque<const TimelineTransition*>>
            free;
        for (const TimelineTransition& transition : after.transitions)
            free[{clipIn(subjectsAfter, transition.from), clipIn(subjectsAfter, transition.to)}].push_back(
                &transition);
        for (const TimelineTransition& transition : before.transitions) {
            const auto partner = [&](unsigned long long id) {
                const auto found = m_partners.find(id);
                return found == m_partners.end() ? 0 : found->second;
            };
            const unsigned long long from = partner(transition.from);
            const unsigned long long to = partner(transition.to);
            const bool isLost = (from == 0 && clipIn(subjectsBefore, transition.from) != 0) ||
                                (to == 0 && clipIn(subjectsBefore, transition.to) != 0);
            auto group = isLost ? free.end() : free.find({from, to});
            const auto subject = subjectIn(subjectsBefore, transition);
            if (group == free.end() || group->second.empty()) {
                addTransition(Kind::TransitionRemoved, transition, subject);
                noteTransition(transition);
                continue;
            }
            const TimelineTransition& other = *group->second.front();
            group->second.pop_front();
            const Context context{Kind::TransitionChanged,
                                  subject,
                                  transition.className,
                                  transition.name,
                                  transition.id,
                                  other.id,
                                  {},
                                  &m_transitions};
            m_objects.match(transition.id, other.id, context);
            if (transition.duration != other.duration) {
                m_transitions.push_back({Kind::TransitionChanged, subject, transition.className,
                                         transition.name, transition.id, other.id, "duration",
                                         transition.duration, other.duration});
                noteTransition(transition);
            }
        }
        for (const auto& [clips, transitions] : free) {
            for (const TimelineTransition* transition : transitions) {
                addTransition(Kind::TransitionAdded, *transition, subjectIn(subjectsAfter, *transition));
                for (const unsigned long long id : {transition->from, transition->to}) {
                    const auto clip = partnersBefore.find(id);
                    if (clip != partnersBefore.end())
                        m_withTransitions.insert(clip->second);
                }
            }
        }
    }

    using Subjects = std::unordered_map<unsigned long long, Difference::Subject>; // by clip

    static Subjects subjectsOf(const Timeline& timeline) {
        Subjects subjects;
        for (const TimelineClip& clip : timeline.clips)
            subjects.emplace(clip.id, Difference::Subject{clip.name, clip.start});
        return subjects;
    }

    void addTransition(Kind kind, const TimelineTransition& transition,
                       std::optional<Difference::Subject> subject) {
        Difference difference{kind, std::move(subject), transition.className, transition.name};
        (kind == Kind::TransitionAdded ? difference.idAfter : difference.idBefore) = transition.id;
        m_transitions.push_back(std::move(difference));
    }

    /// The times of its clips changed with it.
    void noteTransition(const TimelineTransition& transition) {
        m_withTransitions.insert(transition.from);
        m_withTransitions.insert(transition.to);
    }

    const ComparedProject& m_before;
    const ComparedProject& m_after;
    Paths m_paths;
    ObjectComparison m_objects;
    std::vector<std::pair<std::size_t, std::size_t>> m_timelines; ///< places of those that are the same
    std::vector<Matches> m_matches;                               ///< of their clips
    std::size_t m_compared = 0;
    std::unordered_map<unsigned long long, unsigned long long> m_partners; ///< clips of the timeline
    std::set<unsigned long long> m_withTransitions; ///< clips whose transitions were reported
    std::deque<std::vector<Difference>> m_clips;    ///< by clip; contexts keep references
    std::vector<Difference> m_transitions;
    std::vector<Difference> m_others;
};

} // namespace

ComparedProject readForComparison(const Document& document, const QString& folder) {
    return {readObjects(document), readTimelines(document), folder};
}

std::string_view nameOf(Difference::Kind kind) {
    constexpr std::array<std::string_view, 18> names = {
        "timeline-added",     "timeline-removed",   "clip-added",     "clip-removed", "clip-renamed",
        "clip-moved",         "clip-trimmed",       "media-relinked", "text-changed", "effect-added",
        "effect-removed",     "effects-reordered",  "effect-changed", "clip-changed", "transition-added",
        "transition-removed", "transition-changed", "object-changed"};
    return names[static_cast<std::size_t>(kind)];
}

std::vector<Difference> compare(const ComparedProject& before, const ComparedProject& after) {
    return ProjectComparison(before, after).run();
}

} // namespace Reader
