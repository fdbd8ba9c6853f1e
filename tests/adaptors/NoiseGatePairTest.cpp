// Version 18 turns noise gates into noise suppressions; the gates that version 57 finds were made later.

#include "Adaptors/Project/V18_AudioEffectToFilterAdaptor.h"
#include "Adaptors/Project/V18_NoiseRemovalAdaptor.h"
#include "Adaptors/Project/V57_NoiseGateEffectRangeAdaptor.h"
#include "support/Compare.h"
#include "support/Documents.h"
#include "support/Steps.h"

#include <gtest/gtest.h>

namespace {

using Tests::adapted;
using Tests::xml;

const char* const oldEffects = R"(
<Archive>
  <RootObject type="Predeclarator" objectId="1">
    <predeclarations type="Array" size="2">
      <Item type="Item" index="1"><Data type="Predeclare" objectId="2">
        <typeName type="String" value="Effect::AudioNoiseGate"/><oid type="ObjectRef" value="4"/>
        <poid type="ObjectRef" value="0"/><refs type="Array" size="0"/>
      </Data></Item>
      <Item type="Item" index="2"><Data type="Predeclare" objectId="3">
        <typeName type="String" value="Effect::AudioNoiseReduction"/><oid type="ObjectRef" value="5"/>
        <poid type="ObjectRef" value="0"/><refs type="Array" size="0"/>
      </Data></Item>
    </predeclarations>
  </RootObject>
  <RootObject type="Effect::AudioNoiseGate" objectId="4">
    <BaseOfObject type="Effect::AudioEffect" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4"/>
    </BaseOfObject>
    <range type="double" value="0.25" binaryData="P9AAAAAAAAA="/>
  </RootObject>
  <RootObject type="Effect::AudioNoiseReduction" objectId="5">
    <BaseOfObject type="Effect::AudioEffect" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5"/>
    </BaseOfObject>
  </RootObject>
</Archive>)";

const char* const suppressions = R"(
<Archive>
  <RootObject type="Predeclarator" objectId="1">
    <predeclarations type="Array" size="2">
      <Item type="Item" index="1"><Data type="Predeclare" objectId="2">
        <typeName type="String" value="Effect::AudioNoiseSuppress"/><oid type="ObjectRef" value="4"/>
        <poid type="ObjectRef" value="0"/><refs type="Array" size="0"/>
      </Data></Item>
      <Item type="Item" index="2"><Data type="Predeclare" objectId="3">
        <typeName type="String" value="Effect::AudioNoiseSuppress"/><oid type="ObjectRef" value="5"/>
        <poid type="ObjectRef" value="0"/><refs type="Array" size="0"/>
      </Data></Item>
    </predeclarations>
  </RootObject>
  <RootObject type="Effect::AudioNoiseSuppress" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <id type="uint32_t" value="57"/>
        <tag type="String" value="effect_noisesuppress"/>
        <uniqueId type="uint32_t" value="32773"/>
        <uniqueId type="String" value=""/>
      </BaseOfObject>
    </BaseOfObject>
    <levelPercent type="int32_t" value="50"/>
  </RootObject>
  <RootObject type="Effect::AudioNoiseSuppress" objectId="5">
    <BaseOfObject type="Effect::AudioFilter" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5">
        <id type="uint32_t" value="57"/>
        <tag type="String" value="effect_noisesuppress"/>
        <uniqueId type="uint32_t" value="32773"/>
        <uniqueId type="String" value=""/>
      </BaseOfObject>
    </BaseOfObject>
    <levelPercent type="int32_t" value="50"/>
  </RootObject>
</Archive>)";

TEST(NoiseGatePair, OldGateIsASuppressionThatTheLaterStepLeavesAlone) {
    QDomDocument document = xml(oldEffects);
    Project::V18_AudioEffectToFilterAdaptor().adapt(document);
    Project::V18_NoiseRemovalAdaptor().adapt(document);
    EXPECT_EQ(Tests::difference(xml(suppressions), document), "");
    Project::V57_NoiseGateEffectRangeAdaptor().adapt(document);
    EXPECT_EQ(Tests::difference(xml(suppressions), document), "");
}

TEST(NoiseGatePair, TheTwoStepsOfVersion18WorkInEitherOrder) {
    QDomDocument document = xml(oldEffects);
    Project::V18_NoiseRemovalAdaptor().adapt(document);
    Project::V18_AudioEffectToFilterAdaptor().adapt(document);
    EXPECT_EQ(Tests::difference(xml(suppressions), document), "");
}

TEST(NoiseGatePair, GateWithoutARecordReachesTheLaterStepAndLosesItsRange) {
    const QDomDocument document =
        adapted<Project::V18_AudioEffectToFilterAdaptor, Project::V18_NoiseRemovalAdaptor,
                Project::V57_NoiseGateEffectRangeAdaptor>(xml(R"(
<Archive>
  <RootObject type="Effect::AudioNoiseGate" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <intensity type="double" value="1" binaryData="P/AAAAAAAAA="/>
      </BaseOfObject>
    </BaseOfObject>
    <range type="double" value="0.25" binaryData="P9AAAAAAAAA="/>
  </RootObject>
</Archive>)"));
    EXPECT_EQ(Tests::difference(xml(R"(
<Archive>
  <RootObject type="Effect::AudioNoiseGate" objectId="4">
    <BaseOfObject type="Effect::AudioFilter" objectId="4">
      <BaseOfObject type="Effect::Object" objectId="4">
        <intensity type="double" value="0.75" binaryData="P+gAAAAAAAA="/>
      </BaseOfObject>
    </BaseOfObject>
  </RootObject>
</Archive>)"),
                                document),
              "");
}

} // namespace
