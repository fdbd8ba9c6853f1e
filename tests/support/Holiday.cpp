#include "support/Holiday.h"

#include "support/Files.h"
#include "support/Paths.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <stdexcept>

using nlohmann::json;

namespace Tests {
namespace {

// clang-format off
/// Track types are 1 for the primary track, 4 for sound, 8 for pictures over it, 16 for titles.
const std::vector<ExpectedTimeline> shortCut = {
    {"Holiday", {8, 16, 16, 16, 8, 4, 1}, {
        {"Summer by the sea", 4, 0, 4000, 1, {}},
        {"Beach", 1, 4000, 7000, 6, {"Blur", "AddNoize"}},
        {"Harbour", 2, 11000, 5000, 6, {}},
        {"Boat", 1, 16000, 12000, 6, {"Sharpen"}},
        {"The old harbour", 4, 11500, 3000, 3, {}},
        {"Song", 3, 0, 28000, 5, {}},
    }, {{"Transition::Fade", "Beach", "Harbour"}}},
};

/// The titles track was in use, so the titles of the primary track got a new track before it. Its four
/// levels, and those of the pictures, have become tracks; the levels of the sound share one track.
const std::vector<ExpectedTimeline> longCut = {
    {"Holiday", {8, 16, 16, 16, 16, 16, 8, 8, 8, 8, 4, 1}, {
        {"Summer by the sea", 4, 0, 4000, 1, {}},
        {"Beach", 1, 4000, 7000, 11, {"Blur", "AddNoize"}},
        {"Harbour", 2, 11000, 5000, 11, {"Crop"}},
        {"Boat", 1, 16000, 12000, 11, {"Sharpen", "Transpose", "Mask"}},
        {"Lighthouse", 1, 28000, 6000, 11, {"MagicEnhance", "WhiteBalance", "ManualEnhance"}},
        {"Village", 0, 34000, 5000, 11, {}},
        {"Sunset", 1, 39000, 4000, 11, {"PopArt", "Lut"}},
        {"Default name", 4, 43000, 750, 1, {}},
        {"SimpleText", 4, 43750, 5000, 1, {}, sinceQuizzes},
        {"The old harbour", 4, 11500, 3000, 2, {}},
        {"Fishermen", 4, 12000, 1500, 3, {}},
        {"Midday", 4, 12500, 2000, 4, {}},
        {"Look", 4, 17000, 1000, 5, {}},
        {"Inset", 1, 5000, 2000, 6, {"PictureInPicture"}},
        {"Green screen", 1, 12000, 3000, 7, {"ChromaKey", "PictureInPicture"}},
        {"Split", 1, 17000, 2000, 8, {"SideBySide"}},
        {"Aside", 2, 20000, 1000, 9, {}},
        {"Song", 3, 0, 40000, 10, {"AudioEqualizer", "AudioNoiseSuppress"}},
        {"Waves", 3, 4000, 9000, 10, {"AudioNormalize"}},
        {"Narration", 3, 29000, 4000, 10, {"AudioNoiseGate"}},
        {"Gulls", 3, 5000, 3000, 10, {"AudioPhone", "AudioPitch"}},
        {"Dunes", 1, 21000, 500, 9, {"Blur", "Erosion", "FindEdges", "HalfTone", "MotionBlur", "TiltShift"}, always, true},
        {"Rain", 1, 21500, 500, 9, {"Erosion", "Blur", "FindEdges", "HalfTone", "MotionBlur", "TiltShift", "AddNoize", "Sharpen"}, always, true},
        {"Pier", 1, 22000, 500, 9, {"PopArt"}, always, true},
        {"Dock", 1, 22500, 500, 9, {"PopArt"}, always, true},
        {"Mole", 1, 23000, 500, 9, {"", "PopArt"}, always, true}, // the second zoom is removed, but its entry stays
        {"Lamp", 1, 23500, 500, 9, {"AddNoize"}, always, true}, // only the later clip keeps a shared enhancement
        {"Lens", 1, 24000, 500, 9, {"Sharpen", "MagicEnhance", "AutoContrast", "AutoSaturation", "WhiteBalance", "ManualEnhance"}, always, true},
        {"Fog", 1, 24500, 500, 9, {""}, always, true}, // the enhancement without a flag is removed, but its entry stays
        {"Keyhole", 1, 25000, 500, 9, {"Mask"}, always, true},
        {"Porthole", 1, 25500, 500, 9, {"Mask"}, always, true},
        {"Window", 1, 26000, 500, 9, {"PictureInPicture", "ChromaKey", "PictureInPicture"}, always, true},
        {"Door", 1, 26500, 500, 9, {"ChromaKey", "PictureInPicture", "PictureInPicture"}, always, true},
        {"Twins", 1, 27000, 500, 9, {"SideBySide", "SideBySide"}, always, true},
        {"Tide", 1, 27500, 500, 9, {"SideBySide", "Crop"}, always, true},
        {"Gulf", 1, 28000, 500, 9, {"Transpose"}, always, true},
        {"Upright", 1, 28500, 500, 9, {}, always, true},
        {"Cave", 3, 21000, 500, 10, {"AudioEcho", "AudioReverberation", "AudioMuffle", "AudioNoiseSuppress", "AudioNoiseSuppress"}, always, true},
        {"Ship to shore", 3, 21500, 500, 10, {"AudioNormalize", "AudioNoiseSuppress", "AudioEqualizer", "AudioRadio", "AudioPhone", "AudioPitch"}, always, true},
        {"Puppets", 3, 22000, 500, 10, {"AudioPitch", "AudioPitch", "AudioPhone", "AudioEcho", "AudioReverberation", "AudioMuffle", "AudioRadio", "AudioNoiseSuppress"}, always, true},
    }, {
        {"Transition::Crossfade", nullptr, "Beach"}, // from a title, which has moved to another track
        {"Transition::Ripple", "Beach", "Harbour"},
        {"Transition::DirectCrossFade", "Boat", "Lighthouse"},
        {"Transition::Blinds", "Sunset", nullptr},
    }},
    {"Village", {8, 16, 8, 4, 1}, {
        {"Square", 1, 0, 2000, 4, {}},
        {"Welcome", 4, 2000, 1000, 1, {}},
        {"Church", 2, 3000, 2000, 4, {}},
        {"Intro", 8, 0, 1000, 2, {}},
    }, {{"Transition::Crossfade", "Square", nullptr, 22}}, sinceScenes},
};
// clang-format on

} // namespace

const Sample& sampleOf(int version) {
    return *std::find_if(std::begin(samples), std::end(samples),
                         [&](const Sample& sample) { return sample.version == version; });
}

QByteArray bytesOf(const Sample& sample) {
    return QByteArray::fromStdString(readFile(samplesFolder() / sample.file));
}

const std::vector<ExpectedTimeline>& filmOf(const Sample& sample) {
    return sample.cut == Cut::Short ? shortCut : longCut;
}

Reader::MigrationOptions optionsTo(int version) {
    Reader::MigrationOptions options;
    options.name = QStringLiteral("holiday");
    options.location = options.target = QStringLiteral("holiday");
    options.to = version;
    return options;
}

Result migrated(const QByteArray& bytes, const Reader::MigrationOptions& options, bool toBundle) {
    Reader::Migration migration(Reader::parse(bytes, options.name), options);
    migration.run();
    const QByteArray saved = migration.save(toBundle);
    return {saved, migration.report()};
}

Result migrated(const QByteArray& bytes, int to) {
    return migrated(bytes, optionsTo(to));
}

const json& effectOf(const Project& project, const std::string& clip, const std::string& className) {
    for (const json& effect : clipNamed(project, clip).at("effects")) {
        if (Project::classOf(project.follow(effect)) == "Effect::" + className)
            return project.follow(effect);
    }
    throw std::runtime_error("no " + className + " on " + clip);
}

double intensityOf(const Project& project, const std::string& clip, const std::string& className) {
    return project.innermost(effectOf(project, clip, className)).at("intensity").get<double>();
}

std::vector<double> matrixOf(const Project& project, const json& holder, const std::string& key) {
    const json& matrix = project.follow(holder, key);
    std::vector<double> numbers;
    for (const char* name : {"m11", "m12", "m13", "m21", "m22", "m23", "m31", "m32", "m33"})
        numbers.push_back(matrix.at(name).get<double>());
    return numbers;
}

const Result& HolidayTest::result() {
    static std::map<std::string, Result> results;
    const auto found = results.find(GetParam().file);
    return found != results.end()
               ? found->second
               : results.emplace(GetParam().file, migrated(bytesOf(GetParam()))).first->second;
}

std::string sampleName(const testing::TestParamInfo<Sample>& info) {
    std::string name = info.param.file;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

} // namespace Tests
