#include "Adaptors/Project/V22_TransitionsAdaptor.h"
#include "Adaptors/Project/V4_TrackValueAdaptor.h"
#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <QDomDocument>

#include <algorithm>

using namespace Archive::Internal;

namespace Repairs {
namespace {

constexpr int lastOldTrack = 5;

constexpr std::array timelineFields = {"clips", "links"};

struct Damage {
    QDomElement timeline;
    bool hasOldTracks = false;
    bool hasWholeTransitions = false;
};

/// The steps of versions 4 and 22 convert the first timeline only. This gives them each further one, alone.
class SecondTimelines : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place& place) override {
        const QDomElement converted = firstDescendant(archive.root(), "clips").parentNode().toElement();
        for (const QDomElement& timeline : archive.rootObjects("Timeline::Object")) {
            if (timeline == converted)
                continue;
            Damage damage{timeline};
            for (const QDomElement& item : clipItems(timeline))
                inspect(item.firstChildElement(Words::Value), place, damage);
            if (damage.hasOldTracks || damage.hasWholeTransitions)
                m_damages.push_back(damage);
        }
        return !m_damages.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        const auto objects = objectsById(archive);
        std::size_t clips = 0;
        for (const Damage& damage : m_damages) {
            clips += clipItems(damage.timeline).size();
            if (damage.hasOldTracks)
                run(Project::V4_TrackValueAdaptor(), archive, damage.timeline);
            if (damage.hasWholeTransitions)
                run(Project::V22_TransitionsAdaptor(), archive, damage.timeline);
            changes.mention(damage.timeline);
            for (const unsigned long long id : clipIds(damage.timeline)) {
                if (const QDomElement clip = objects.value(id); !clip.isNull())
                    changes.note(clip);
            }
        }
        changes.describe("tracks and transitions of " + counted(m_damages.size(), "further timeline") +
                         " with " + counted(clips, "clip") + " were converted like those of the first");
    }

private:
    static void inspect(const QDomElement& timing, const Place& place, Damage& damage) {
        const QDomElement track = timing.firstChildElement("track");
        const int number = int32Of(track);
        if (Archive::typeOf(track) != Words::ObjectRef && number >= 1 && number <= lastOldTrack)
            damage.hasOldTracks = true;
        if (place.before == "V22_TransitionsAdaptor" && int64In(timing, "transitionDuration") != 0)
            damage.hasWholeTransitions = true;
    }

    /// Runs a step on a document that has this timeline only.
    template <class Step>
    static void run(Step step, ArchiveEditor& archive, const QDomElement& timeline) {
        QDomDocument alone;
        QDomElement top = alone.createElement(Words::Archive);
        alone.appendChild(top);
        ArchiveEditor editor(alone);
        const QDomElement copy = editor.appendRootObject("Timeline::Object", wrappedIdOf(timeline));
        for (const char* field : timelineFields)
            editor.append(copy, timeline.firstChildElement(field).cloneNode(true).toElement());
        step.apply(editor);
        for (const char* field : timelineFields)
            archive.replace(timeline.firstChildElement(field), copy.firstChildElement(field));
    }

    std::vector<Damage> m_damages;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeSecondTimelines() {
    return std::make_unique<SecondTimelines>();
}

} // namespace Repairs
