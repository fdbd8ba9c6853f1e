#include "bench/Generator.h"

#include "Reader/Migration.h"
#include "Reader/XmlText.h"
#include "bench/Multiplier.h"

#include <QFile>
#include <QString>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace Bench {
namespace {

/// The versions with a sample of the whole film.
constexpr int sampleVersions[] = {3, 12, 21, 34, 45, 55};

const QString clipClass = QStringLiteral("Timeline::Clip");
const QString effectClasses = QStringLiteral("Effect::");

QByteArray readSample(int version) {
    QFile file(QStringLiteral(SAMPLES_DIR "/holiday-v%1.xml").arg(version));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("can't read " + file.fileName().toStdString());
    return file.readAll();
}

/// A sample, migrated to that version.
QByteArray sampleAt(int version) {
    const auto* next = std::upper_bound(std::begin(sampleVersions), std::end(sampleVersions), version);
    if (next == std::begin(sampleVersions) || version > Reader::lastXmlVersion)
        throw std::invalid_argument("there are no samples of this version");
    const int sampleVersion = *std::prev(next);
    if (sampleVersion == version)
        return readSample(version);
    Reader::MigrationOptions options;
    options.name = QStringLiteral("sample");
    options.to = version;
    Reader::Migration migration(Reader::parse(readSample(sampleVersion), options.name), options);
    migration.run();
    return migration.write();
}

QDomDocument parsed(const QByteArray& text) {
    return Reader::parseXml(text, QStringLiteral("sample"));
}

/// The number of further copies needed to get from `one` to `wanted`.
std::size_t furtherCopies(std::size_t wanted, std::size_t one, std::size_t ofEach) {
    return wanted <= one ? 0 : (wanted - one + ofEach - 1) / ofEach;
}

} // namespace

QByteArray generateProject(int version, const Size& size) {
    QByteArray sample = sampleAt(version);
    if (size.effectsPerClip > 1)
        sample = Multiplier(parsed(sample), effectClasses).text(size.effectsPerClip);
    const Multiplier clips(parsed(sample), clipClass);
    const auto& one = clips.ofOne();
    const auto& further = clips.ofEachFurther();
    return clips.text(1 + std::max({furtherCopies(size.elements, one.elements, further.elements),
                                    furtherCopies(size.bytes, one.bytes, further.bytes),
                                    furtherCopies(size.clips, one.objects, further.objects)}));
}

} // namespace Bench
