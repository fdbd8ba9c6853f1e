// 5,000 clips with three effects each go through every audio and stabilization step. A step whose cost grew
// with the square of the clips would not come back in time.

#include "Archive/Archive.h"
#include "Archive/Internal/Walk.h"
#include "Reader/AdaptorTable.h"
#include "support/Log.h"

#include <gtest/gtest.h>

#include <map>

namespace {

constexpr int clipCount = 5'000;

/// Ids of a clip are its number times 10: itself, its three effects, and what the first of them owns.
long long idOf(int clip, int offset) {
    return 10LL * (clip + 1) + offset;
}

class LargeProject {
public:
    LargeProject() {
        m_archive = m_document.createElement("Archive");
        m_document.appendChild(m_archive);
        QDomElement predeclarator = addObject("Predeclarator", 1);
        m_predeclarations = Archive::createArray(m_document, "predeclarations", 0);
        predeclarator.appendChild(m_predeclarations);
        m_maxRecordId = 10LL * (clipCount + 2);
        for (int clip = 0; clip < clipCount; ++clip)
            addClip(clip);
    }

    QDomDocument& document() { return m_document; }

private:
    QDomElement addObject(const char* type, long long id) {
        QDomElement object = Archive::createObject(m_document, "RootObject", type, id);
        m_archive.appendChild(object);
        return object;
    }

    void declare(const char* type, long long id, long long parent) {
        Archive::addPredeclaration(m_predeclarations, m_document, type, parent, m_maxRecordId, id, {});
    }

    void addEffect(const char* type, long long id) {
        QDomElement effect = addObject(type, id);
        QDomElement base = Archive::createObject(m_document, "BaseOfObject", "Effect::AudioEffect", id);
        QDomElement inner = Archive::createObject(m_document, "BaseOfObject", "Effect::Object", id);
        inner.appendChild(Archive::createDouble(m_document, "intensity", 1.0));
        base.appendChild(inner);
        effect.appendChild(base);
        declare(type, id, 0);
    }

    void addClip(int number) {
        QDomElement clip = addObject("Timeline::Clip", idOf(number, 0));
        clip.appendChild(Archive::createObjectRef(m_document, "file", 5));
        clip.appendChild(Archive::createString(m_document, "pathStabilized", "stabilized.mp4"));
        clip.appendChild(Archive::createInt64(m_document, "sourceDuration", 1000));
        clip.appendChild(Archive::createBool(m_document, "volumeNormalize", true));
        clip.appendChild(Archive::createArray(m_document, "effects", 0));
        declare("Timeline::Clip", idOf(number, 0), 0);
        const char* const types[] = {"Effect::AudioNoiseGate", "Effect::AudioEqualizer",
                                     "Effect::AudioPitch"};
        for (int effect = 0; effect < 3; ++effect) {
            Archive::appendArrayElement(m_document, clip, "effects")
                .appendChild(Archive::createObjectRef(m_document, "Data", idOf(number, 1 + effect)));
            addEffect(types[effect], idOf(number, 1 + effect));
        }
        declare("Envelope", idOf(number, 4), idOf(number, 1));
        if (number == 0)
            addObject("File", 5).appendChild(Archive::createString(m_document, "path", "original.mp4"));
    }

    QDomDocument m_document;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    long long m_maxRecordId = 0;
};

std::map<QString, int> countByType(const QDomDocument& document) {
    std::map<QString, int> counts;
    for (const QDomElement& object : Archive::Internal::elements(document, "RootObject"))
        ++counts[Archive::typeOf(object)];
    return counts;
}

TEST(LargeAudioProject, PassesThroughAllSteps) {
    LargeProject project;
    QDomDocument& document = project.document();
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
