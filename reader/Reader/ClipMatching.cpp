#include "Reader/ClipMatching.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace Reader {
namespace {

/// What two things must have in common; none for one that takes no part.
using Key = std::optional<std::string>;

/// Pairs the items of two lists that are still without a partner.
class Pairing {
public:
    Pairing(std::size_t before, std::size_t after) : m_before(before), m_after(after) {}

    /// Pairs items of equal keys, in order; those for which `prefers` holds first.
    template <class KeyBefore, class KeyAfter, class Prefers>
    void pair(KeyBefore keyBefore, KeyAfter keyAfter, Prefers prefers) {
        std::map<std::string, std::set<std::size_t>> candidates;
        for (std::size_t place = 0; place < m_after.size(); ++place) {
            if (const Key key = m_after[place] ? std::nullopt : keyAfter(place))
                candidates[*key].insert(place);
        }
        for (const bool onlyPreferred : {true, false}) {
            for (std::size_t place = 0; place < m_before.size(); ++place) {
                const Key key = m_before[place] ? std::nullopt : keyBefore(place);
                const auto group = key ? candidates.find(*key) : candidates.end();
                if (group == candidates.end())
                    continue;
                auto& places = group->second;
                // Only a few candidates are looked at, so that many equal items take no quadratic time.
                constexpr std::ptrdiff_t mostCandidates = 64;
                const auto end = std::ranges::next(places.begin(), mostCandidates, places.end());
                const auto chosen =
                    onlyPreferred ? std::find_if(places.begin(), end,
                                                 [&](std::size_t other) { return prefers(place, other); })
                                  : places.begin();
                if (places.empty() || chosen == end)
                    continue;
                m_before[place] = *chosen;
                m_after[*chosen] = place;
                places.erase(chosen);
            }
        }
    }

    Matches matches() const {
        Matches result;
        for (std::size_t place = 0; place < m_before.size(); ++place) {
            if (m_before[place])
                result.emplace_back(place, *m_before[place]);
        }
        return result;
    }

private:
    std::vector<std::optional<std::size_t>> m_before; ///< partners
    std::vector<std::optional<std::size_t>> m_after;
};

/// Joins the parts of a key, so that no two lists of parts give the same one.
std::string joined(std::initializer_list<std::string> parts) {
    std::string key;
    for (const std::string& part : parts)
        key += std::to_string(part.size()) + ':' + part;
    return key;
}

std::string fileName(const std::string& path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

/// What a clip shows: file and texts.
std::string contentOf(const TimelineClip& clip) {
    std::string content = fileName(clip.media);
    for (const std::string& text : clip.texts)
        content += '\n' + text;
    return content;
}

/// What clips are compared by.
enum Feature : unsigned {
    Name = 1,
    Content = 2,
    Start = 4,
    Duration = 8,
    Source = 16,
    Place = 32, // track and level
};

Key keyOf(const Timeline& timeline, std::size_t place, unsigned features) {
    const TimelineClip& clip = timeline.clips[place];
    const std::string content = contentOf(clip);
    const bool saysMuch = (features & (Start | Place)) != 0 ||
                          ((features & Name) != 0 && !clip.name.empty()) ||
                          ((features & Content) != 0 && !content.empty());
    if (!saysMuch)
        return std::nullopt;
    const auto part = [features](Feature feature, const std::string& text) {
        return (features & feature) != 0 ? text : std::string();
    };
    const std::string track =
        std::to_string(static_cast<int>(timeline.tracks[clip.track].kind)) + '+' + std::to_string(clip.level);
    return joined({std::to_string(static_cast<int>(clip.kind)), part(Name, clip.name), part(Content, content),
                   part(Start, std::to_string(clip.start)), part(Duration, std::to_string(clip.duration)),
                   part(Source, std::to_string(clip.sourceStart)), part(Place, track)});
}

/// What the same clip may have in common with itself after a change, the surest first.
constexpr unsigned changedClips[] = {
    Name | Content | Duration | Source, // moved
    Name | Content | Start | Place,     // trimmed at its end
    Name | Content,                     // moved and trimmed
    Content | Start | Place | Duration, // renamed
    Name | Start | Place | Duration,    // relinked
    Start | Place | Duration,           // renamed and relinked
    Content | Duration | Source,        // renamed and moved
    Name,
};

} // namespace

Matches matchClips(const Timeline& before, const Timeline& after) {
    Pairing pairing(before.clips.size(), after.clips.size());
    const auto hasSameId = [&](std::size_t one, std::size_t other) {
        return before.clips[one].id == after.clips[other].id;
    };
    const auto pairBy = [&](unsigned features) {
        pairing.pair([&](std::size_t place) { return keyOf(before, place, features); },
                     [&](std::size_t place) { return keyOf(after, place, features); }, hasSameId);
    };
    const auto byId = [](const Timeline& timeline) {
        return [&timeline](std::size_t place) -> Key {
            const TimelineClip& clip = timeline.clips[place];
            return std::to_string(clip.id) + ' ' + std::to_string(static_cast<int>(clip.kind));
        };
    };
    pairBy(Name | Content | Start | Duration | Source | Place);
    if (idsOf(pairing.matches(), before, after) == Ids::LiveOn)
        pairing.pair(byId(before), byId(after), hasSameId);
    for (const unsigned features : changedClips)
        pairBy(features);
    return pairing.matches();
}

Ids idsOf(const Matches& matches, const Timeline& before, const Timeline& after) {
    const auto kept = std::count_if(matches.begin(), matches.end(), [&](const auto& match) {
        return before.clips[match.first].id == after.clips[match.second].id;
    });
    return static_cast<std::size_t>(kept) * 2 >= matches.size() ? Ids::LiveOn : Ids::Renumbered;
}

Matches matchEffects(const TimelineClip& before, const TimelineClip& after, Ids ids) {
    Pairing pairing(before.effects.size(), after.effects.size());
    const auto hasSameId = [&](std::size_t one, std::size_t other) {
        return before.effects[one].id == after.effects[other].id;
    };
    const auto pairBy = [&](auto keyOf) {
        pairing.pair(
            [&](std::size_t place) -> Key { return keyOf(before.effects[place]); },
            [&](std::size_t place) -> Key { return keyOf(after.effects[place]); },
            [&](std::size_t one, std::size_t other) { return ids == Ids::LiveOn && hasSameId(one, other); });
    };
    if (ids == Ids::LiveOn)
        pairBy([](const ClipEffect& effect) {
            return joined({std::to_string(effect.id), effect.className});
        });
    pairBy([](const ClipEffect& effect) { return joined({effect.className, effect.name}); });
    pairBy([](const ClipEffect& effect) { return joined({effect.className}); });
    return pairing.matches();
}

} // namespace Reader
