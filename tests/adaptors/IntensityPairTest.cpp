// Version 33 gives every effect the intensity that versions 55 and 57 set for some effects of sound.

#include "Adaptors/Project/V33_EffectIntensityAdaptor.h"
#include "Adaptors/Project/V55_AudioEffectsGroupIdAdaptor.h"
#include "Adaptors/Project/V55_AudioEffectsIntensityAdaptor.h"
#include "Adaptors/Project/V55_AudioNormalizationEffectAdaptor.h"
#include "Adaptors/Project/V55_EffectBypassAdaptor.h"
#include "Adaptors/Project/V57_NoiseGateEffectRangeAdaptor.h"
#include "support/Compare.h"
#include "support/Documents.h"
#include "support/Steps.h"

#include <gtest/gtest.h>

namespace {

using Tests::adapted;
using Tests::xml;

/// As version 32 saved them: no effect has an intensity.
const char* const voices = R"(
<Archive>
  <RootObject type="Effect::AudioPhone" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <id type="String" value="7f10aa3a-79c9-4bdf-9a5c-7005690a961a"/>
        <tag type="String" value="Phone"/>
        <uniqueId type="String" value="820c9391-6388-49f7-83a2-590014abcfa3"/>
      </BaseOfObject>
    </BaseOfObject>
    <gainUp type="int32_t" value="10"/>
    <gainDown type="int32_t" value="20"/>
  </RootObject>
  <RootObject type="Effect::AudioPitch" objectId="5">
    <BaseOfObject type="Effect::AudioFilter" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5">
        <tag type="String" value="PitchVeryHigh"/>
      </BaseOfObject>
    </BaseOfObject>
    <pitch type="double" value="2" binaryData="QAAAAAAAAAA="/>
  </RootObject>
  <RootObject type="Effect::AudioPitch" objectId="6">
    <BaseOfObject type="Effect::AudioFilter" objectId="6">
      <BaseOfObject type="Effect::Object" objectId="6">
        <tag type="String" value="Own"/>
      </BaseOfObject>
    </BaseOfObject>
    <pitch type="double" value="2" binaryData="QAAAAAAAAAA="/>
  </RootObject>
</Archive>)";

TEST(IntensityPair, PresetsOfVoicesSetTheIntensityThatEveryEffectGot) {
    EXPECT_EQ(Tests::difference(
                  xml(R"(
<Archive>
  <RootObject type="Effect::AudioPhone" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <id type="String" value="7f10aa3a-79c9-4bdf-9a5c-7005690a961a"/>
        <tag type="String" value="Phone"/>
        <uniqueId type="String" value="7f10aa3a-79c9-4bdf-9a5c-7005690a961a"/>
        <intensity type="double" value="0.67" binaryData="P+Vwo9cKPXE="/>
        <bypass type="bool" value="0"/>
      </BaseOfObject>
    </BaseOfObject>
    <gainUp type="int32_t" value="30"/>
    <gainDown type="int32_t" value="75"/>
  </RootObject>
  <RootObject type="Effect::AudioPitch" objectId="5">
    <BaseOfObject type="Effect::AudioFilter" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5">
        <tag type="String" value="PitchVeryHigh"/>
        <intensity type="double" value="0.8" binaryData="P+mZmZmZmZo="/>
        <bypass type="bool" value="0"/>
      </BaseOfObject>
    </BaseOfObject>
    <pitch type="double" value="0.6" binaryData="P+MzMzMzMzM="/>
  </RootObject>
  <RootObject type="Effect::AudioPitch" objectId="6">
    <BaseOfObject type="Effect::AudioFilter" objectId="6">
      <BaseOfObject type="Effect::Object" objectId="6">
        <tag type="String" value="Own"/>
        <intensity type="double" value="1" binaryData="P/AAAAAAAAA="/>
        <bypass type="bool" value="0"/>
      </BaseOfObject>
    </BaseOfObject>
    <pitch type="double" value="2" binaryData="QAAAAAAAAAA="/>
  </RootObject>
</Archive>)"),
                  adapted<Project::V33_EffectIntensityAdaptor, Project::V55_AudioEffectsGroupIdAdaptor,
                          Project::V55_AudioEffectsIntensityAdaptor, Project::V55_EffectBypassAdaptor>(
                      xml(voices))),
              "");
}

TEST(IntensityPair, TheStepsOfVersion55LeaveTheSameInReverse) {
    const QDomDocument inOrder =
        adapted<Project::V33_EffectIntensityAdaptor, Project::V55_AudioEffectsGroupIdAdaptor,
                Project::V55_AudioEffectsIntensityAdaptor, Project::V55_EffectBypassAdaptor>(xml(voices));
    const QDomDocument reversed =
        adapted<Project::V33_EffectIntensityAdaptor, Project::V55_EffectBypassAdaptor,
                Project::V55_AudioEffectsIntensityAdaptor, Project::V55_AudioEffectsGroupIdAdaptor>(
            xml(voices));
    EXPECT_EQ(Tests::difference(inOrder, reversed), "");
}

TEST(IntensityPair, PresetOfAVoiceWithoutIntensityChangesItsFieldsAlone) {
    EXPECT_EQ(Tests::difference(xml(R"(
<Archive>
  <RootObject type="Effect::AudioPitch" objectId="5">
    <BaseOfObject type="Effect::AudioFilter" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5">
        <tag type="String" value="PitchLow"/>
      </BaseOfObject>
    </BaseOfObject>
    <pitch type="double" value="1.5" binaryData="P/gAAAAAAAA="/>
  </RootObject>
</Archive>)"),
                                adapted<Project::V55_AudioEffectsIntensityAdaptor>(xml(R"(
<Archive>
  <RootObject type="Effect::AudioPitch" objectId="5">
    <BaseOfObject type="Effect::AudioFilter" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5">
        <tag type="String" value="PitchLow"/>
      </BaseOfObject>
    </BaseOfObject>
    <pitch type="double" value="2" binaryData="QAAAAAAAAAA="/>
  </RootObject>
</Archive>)"))),
              "");
}

TEST(IntensityPair, RangeOfAGateBecomesTheIntensityThatEveryEffectGot) {
    EXPECT_EQ(Tests::difference(xml(R"(
<Archive>
  <RootObject type="Effect::AudioNoiseGate" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <tag type="String" value="NoiseGate"/>
        <intensity type="double" value="0.75" binaryData="P+gAAAAAAAA="/>
        <bypass type="bool" value="0"/>
      </BaseOfObject>
    </BaseOfObject>
  </RootObject>
</Archive>)"),
                                adapted<Project::V33_EffectIntensityAdaptor, Project::V55_EffectBypassAdaptor,
                                        Project::V57_NoiseGateEffectRangeAdaptor>(xml(R"(
<Archive>
  <RootObject type="Effect::AudioNoiseGate" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <tag type="String" value="NoiseGate"/>
      </BaseOfObject>
    </BaseOfObject>
    <range type="double" value="0.25" binaryData="P9AAAAAAAAA="/>
  </RootObject>
</Archive>)"))),
              "");
}

TEST(IntensityPair, NormalizationComesWithItsIntensityAndGetsNoSecond) {
    EXPECT_EQ(Tests::difference(
                  xml(R"(
<Archive>
  <RootObject type="Predeclarator" objectId="1">
    <predeclarations type="Array" size="1">
      <Item type="Item" index="1">
        <Data type="Predeclare" objectId="6">
          <typeName type="String" value="Effect::AudioNormalize"/>
          <oid type="ObjectRef" value="5"/>
          <poid type="ObjectRef" value="0"/>
          <refs type="Array" size="0"/>
        </Data>
      </Item>
    </predeclarations>
  </RootObject>
  <RootObject type="Timeline::Clip" objectId="3">
    <volumeNormalize type="bool" value="1"/>
    <effects type="Array" size="2">
      <Item type="Item" index="1"><Data type="ObjectRef" value="5"/></Item>
      <Item type="Item" index="2"><Data type="ObjectRef" value="4"/></Item>
    </effects>
  </RootObject>
  <RootObject type="Effect::AudioEcho" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <intensity type="double" value="1" binaryData="P/AAAAAAAAA="/>
        <bypass type="bool" value="0"/>
      </BaseOfObject>
    </BaseOfObject>
  </RootObject>
  <RootObject type="Effect::AudioNormalize" objectId="5">
    <BaseOfObject type="Effect::EffectDescriptor" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5">
        <id type="String" value="6c7a85ac-2a34-44a0-bd07-504f95370354"/>
        <tag type="String" value="effect_audio_normalize"/>
        <uniqueId type="String" value="6c7a85ac-2a34-44a0-bd07-504f95370354"/>
        <description type="String" value=""/>
        <intensity type="double" value="1" binaryData="P/AAAAAAAAA="/>
        <bypass type="bool" value="0"/>
      </BaseOfObject>
    </BaseOfObject>
  </RootObject>
</Archive>)"),
                  adapted<Project::V33_EffectIntensityAdaptor, Project::V55_AudioNormalizationEffectAdaptor,
                          Project::V55_EffectBypassAdaptor>(xml(R"(
<Archive>
  <RootObject type="Predeclarator" objectId="1">
    <predeclarations type="Array" size="0"/>
  </RootObject>
  <RootObject type="Timeline::Clip" objectId="3">
    <volumeNormalize type="bool" value="1"/>
    <effects type="Array" size="1">
      <Item type="Item" index="1"><Data type="ObjectRef" value="4"/></Item>
    </effects>
  </RootObject>
  <RootObject type="Effect::AudioEcho" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4"/>
    </BaseOfObject>
  </RootObject>
</Archive>)"))),
              "");
}

} // namespace
