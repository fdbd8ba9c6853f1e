// A document of every schema version from 3 on goes through the whole pipeline: read, verified, migrated, verified and
// read again. A version without a sample has the next older sample, which steps brought to it.

#include "support/Compare.h"
#include "support/Findings.h"
#include "support/Holiday.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using Reader::Document;
using testing::IsEmpty;
using Tests::bytesOf;
using Tests::migrated;
using Tests::Project;
using Tests::Result;
using Tests::Sample;

namespace {

constexpr int oldest = 3;

/// The newest sample of the whole film that is no newer than that. A JSON sample below 63 stays JSON: it is passed over.
const Sample& sampleFor(int version) {
    const Sample* found = nullptr;
    for (const Sample& sample : Tests::samples) {
        const bool hasForm = sample.isXml == (sample.version <= Reader::lastXmlVersion);
        if (sample.cut == Tests::Cut::Long && hasForm && sample.version <= version)
            found = &sample;
    }
    return *found;
}

QByteArray documentOf(int version) {
    const Sample& sample = sampleFor(version);
    return sample.version == version ? bytesOf(sample) : migrated(bytesOf(sample), version).bytes;
}

std::vector<std::string> stepsAbove(int version) {
    std::vector<std::string> names;
    for (const Reader::AdaptorRow& step : Reader::adaptorTable()) {
        const bool runs = step.number <= Reader::lastXmlVersion ? step.hasXml() : step.hasJson();
        if (step.isStep() && step.number > version && runs)
            names.emplace_back(step.className);
    }
    return names;
}

class EveryVersionTest : public testing::TestWithParam<int> {};

TEST_P(EveryVersionTest, GoesThroughTheWholePipeline) {
    const Sample& sample = sampleFor(GetParam());
    const QByteArray bytes = documentOf(GetParam());
    const Document document = Reader::parse(bytes, QStringLiteral("holiday"));
    EXPECT_EQ(document.version(), GetParam());
    EXPECT_EQ(document.isXml(), GetParam() <= Reader::lastXmlVersion);
    auto findings = Reader::verify(document);
    // No errors. Steps on archives leave objects that nothing uses any more, and version 27 numbers tracks downwards.
    std::erase_if(findings, [](const auto& finding) { return finding.severity < Reader::Severity::Error; });
    EXPECT_THAT(Tests::linesOf(findings), IsEmpty());

    const Result result = migrated(bytes);
    EXPECT_EQ(result.report.from, GetParam());
    EXPECT_EQ(result.report.to, Reader::currentVersion);
    EXPECT_EQ(result.report.steps, stepsAbove(GetParam()));
    EXPECT_THAT(result.report.log, IsEmpty());
    for (const Reader::Loss& loss : result.report.losses)
        EXPECT_TRUE(loss.isIntended) << loss.part.className << ' ' << loss.part.id << ": " << loss.reason;

    const Project film(result.bytes);
    EXPECT_THAT(Tests::linesOf(Reader::verify(film.document())), IsEmpty());
    for (const Tests::ExpectedTimeline& timeline : Tests::filmOf(sample)) {
        if (sample.version >= timeline.since)
            Tests::expectClips(film, timeline, sample.version);
    }
    EXPECT_EQ(Reader::serialize(Reader::parse(result.bytes, QStringLiteral("holiday"))).bytes, result.bytes);
}

INSTANTIATE_TEST_SUITE_P(Versions, EveryVersionTest, testing::Range(oldest, Reader::currentVersion + 1));

} // namespace
