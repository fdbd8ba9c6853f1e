// Version 15 reads what version 9 wrote: the path of a clip's source file.

#include "Adaptors/Project/V15_TwoPassStabilizationAdaptor.h"
#include "Adaptors/Project/V9_StabilizationAdaptor.h"
#include "support/Compare.h"
#include "support/Documents.h"
#include "support/Steps.h"

#include <gtest/gtest.h>

namespace {

using Tests::xml;

QDomDocument migrated(const QDomDocument& document) {
    return Tests::adapted<Project::V9_StabilizationAdaptor, Project::V15_TwoPassStabilizationAdaptor>(
        document);
}

TEST(StabilizationPair, StabilizedClipEndsWithItsObject) {
    const QDomDocument after = migrated(xml(R"(
<Archive>
  <RootObject type="Timeline::Clip" objectId="3">
    <file type="ObjectRef" value="4"/>
    <pathStabilized type="StringPtr" value="/film/a-stab.mp4" isNull="0"/>
    <sourceDuration type="int64_t" value="900"/>
    <effects type="Array" size="0"/>
  </RootObject>
  <RootObject type="File" objectId="4"><path type="String" value="/film/a.mp4"/></RootObject>
  <RootObject type="Predeclarator" objectId="1"><predeclarations type="Array" size="0"/></RootObject>
</Archive>)"));
    EXPECT_EQ(Tests::difference(xml(R"(
<Archive>
  <RootObject type="Timeline::Clip" objectId="3">
    <file type="ObjectRef" value="4"/>
    <sourceDuration type="int64_t" value="900"/>
    <effects type="Array" size="0"/>
    <stabilization type="ObjectRef" value="5"/>
  </RootObject>
  <RootObject type="File" objectId="4"><path type="String" value="/film/a.mp4"/></RootObject>
  <RootObject type="Predeclarator" objectId="1">
    <predeclarations type="Array" size="1">
      <Item type="Item" index="1">
        <Data type="Predeclare" objectId="6">
          <typeName type="String" value="Stabilization::Object"/>
          <oid type="ObjectRef" value="5"/>
          <poid type="ObjectRef" value="0"/>
          <refs type="Array" size="0"/>
        </Data>
      </Item>
    </predeclarations>
  </RootObject>
  <RootObject type="Stabilization::Object" objectId="5">
    <shakiness type="int32_t" value="5"/>
    <accuracy type="int32_t" value="15"/>
    <stepsize type="int32_t" value="6"/>
    <smoothing type="int32_t" value="15"/>
    <optzoom type="int32_t" value="1"/>
    <sourcePositionOriginal type="int64_t" value="0"/>
    <sourceDurationOriginal type="int64_t" value="900"/>
    <pathOriginal type="StringPtr" value="/film/a.mp4" isNull="0"/>
    <pathStabilized type="StringPtr" value="/film/a-stab.mp4" isNull="0"/>
  </RootObject>
</Archive>)"),
                                after),
              "");
}

TEST(StabilizationPair, ClipThatWasNeverStabilizedComesOutAsItWentIn) {
    const char* text = R"(
<Archive>
  <RootObject type="Timeline::Clip" objectId="3">
    <file type="ObjectRef" value="4"/>
    <sourceDuration type="int64_t" value="900"/>
  </RootObject>
  <RootObject type="File" objectId="4"><path type="String" value="/film/a.mp4"/></RootObject>
</Archive>)";
    EXPECT_EQ(Tests::difference(xml(text), migrated(xml(text))), "");
}

TEST(StabilizationPair, StabilizedClipWhoseFileIsGoneLosesItsPath) {
    const QDomDocument after = migrated(xml(R"(
<Archive>
  <RootObject type="Timeline::Clip" objectId="3">
    <file type="ObjectRef" value="4"/>
    <pathStabilized type="StringPtr" value="/film/a-stab.mp4" isNull="0"/>
    <sourceDuration type="int64_t" value="900"/>
  </RootObject>
</Archive>)"));
    EXPECT_EQ(Tests::difference(xml(R"(
<Archive>
  <RootObject type="Timeline::Clip" objectId="3">
    <file type="ObjectRef" value="4"/>
    <sourceDuration type="int64_t" value="900"/>
  </RootObject>
</Archive>)"),
                                after),
              "");
}

} // namespace
