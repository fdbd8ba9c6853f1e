// Runs every audio and stabilization step on 2,000 clips with three effects each.

#include "Archive/Archive.h"
#include "Archive/Internal/Walk.h"
#include "Reader/AdaptorTable.h"
#include "support/ArchiveBuilder.h"
#include "support/Log.h"

#include <gtest/gtest.h>

#include <map>

namespace {

constexpr int clipCount = 2'000;

/// The ids of a clip start at its number times 10: the clip, its three effects, and the parts of the first
/// effect.
long long idOf(int clip, int offset) {
    return 10LL * (clip + 1) + offset;
}

void addEffect(Tests::ArchiveBuilder& project, const char* type, long long id) {
    QDomElement effect = project.addDeclared(type, id);
    QDomElement base = Archive::createObject(project.document, "BaseOfObject", "Effect::AudioEffect", id);
    QDomElement inner = Archive::createObject(project.document, "BaseOfObject", "Effect::Object", id);
    inner.appendChild(Archive::createDouble(project.document, "intensity", 1.0));
    base.appendChild(inner);
    effect.appendChild(base);
}

void addClip(Tests::ArchiveBuilder& project, int number) {
    QDomDocument& document = project.document;
    QDomElement clip = project.addDeclared("Timeline::Clip", idOf(number, 0));
    clip.appendChild(Archive::createObjectRef(document, "file", 5));
    clip.appendChild(Archive::createString(document, "pathStabilized", "stabilized.mp4"));
    clip.appendChild(Archive::createInt64(document, "sourceDuration", 1000));
    clip.appendChild(Archive::createBool(document, "volumeNormalize", true));
    clip.appendChild(Archive::createArray(document, "effects", 0));
    const char* const types[] = {"Effect::AudioNoiseGate", "Effect::AudioEqualizer", "Effect::AudioPitch"};
    for (int effect = 0; effect < 3; ++effect) {
        Archive::appendArrayElement(document, clip, "effects")
            .appendChild(Archive::createObjectRef(document, "Data", idOf(number, 1 + effect)));
        addEffect(project, types[effect], idOf(number, 1 + effect));
    }
    project.declare("Envelope", idOf(number, 4), idOf(number, 1));
}

std::map<QString, int> countByType(const QDomDocument& document) {
    std::map<QString, int> counts;
    for (const QDomElement& object : Archive::Internal::elements(document, "RootObject"))
        ++counts[Archive::typeOf(object)];
    return counts;
}

TEST(LargeAudioProject, PassesThroughAllSteps) {
    Tests::ArchiveBuilder project;
    project.add("File", 5).appendChild(Archive::createString(project.document, "path", "original.mp4"));
    for (int clip = 0; clip < clipCount; ++clip)
        addClip(project, clip);
    QDomDocument& document = project.document;
    const Tests::Log log;
    for (const char* step :
         {"V9_StabilizationAdaptor", "V15_TwoPassStabilizationAdaptor", "V18_AudioEffectToFilterAdaptor",
          "V18_NoiseRemovalAdaptor", "V55_AudioEffectsGroupIdAdaptor", "V55_AudioEffectsIntensityAdaptor",
          "V55_AudioNormalizationEffectAdaptor", "V55_EffectBypassAdaptor", "V57_NoiseGateEffectRangeAdaptor",
          "V61_EffectProcessedRangeAdaptor"})
        Reader::findAdaptor(step)->makeXml()->adapt(document);

    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(countByType(document), (std::map<QString, int>{{"Predeclarator", 1},
                                                             {"File", 1},
                                                             {"Timeline::Clip", clipCount},
                                                             {"Stabilization::Object", clipCount},
                                                             {"Effect::AudioNoiseSuppress", clipCount},
                                                             {"Effect::AudioEqualizer", clipCount},
                                                             {"Effect::AudioPitch", clipCount},
                                                             {"Effect::AudioNormalize", clipCount}}));
    // A clip's records: itself, its stabilization, four effects, and a range for each effect.
    const QDomElement predeclarations = Archive::Internal::firstDescendant(document, "predeclarations");
    EXPECT_EQ(predeclarations.attribute("size").toInt(), 10 * clipCount);
    EXPECT_EQ(predeclarations.lastChildElement().attribute("index").toInt(), 10 * clipCount);
    EXPECT_EQ(Archive::Internal::elements(document, "processedRange").size(), 4U * clipCount);
    EXPECT_EQ(Archive::Internal::elements(document, "bypass").size(), 4U * clipCount);
}

} // namespace
