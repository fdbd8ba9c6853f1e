#include "bench/Recovery.h"

#include "bench/Damage.h"

#include <ostream>
#include <random>

namespace Bench {
namespace {

constexpr std::size_t clips = 60;

} // namespace

void printRecoveryHeader(std::ostream& out) {
    out << "version,damage,place,whole,recovered,in place,problem\n";
}

std::size_t measureRecovery(std::ostream& out, int version, int places) {
    std::size_t problems = 0;
    const QByteArray project = projectWithClips(version, clips);
    const Healthy healthy(project);
    std::mt19937 random(static_cast<unsigned>(version));
    const auto measure = [&](const char* damage, int place, const QByteArray& damaged) {
        const Rescue result = rescue(damaged, healthy);
        problems += result.problem.empty() ? 0 : 1;
        out << version << ',' << damage << ',' << static_cast<double>(place) / project.size() << ','
            << result.whole << ',' << result.recovered << ',' << result.inPlace << ",\"" << result.problem
            << "\"\n";
    };
    for (int number = 1; number <= places; ++number) {
        const auto place = static_cast<int>(qint64(project.size()) * number / (places + 1));
        measure("cut", place, project.left(place));
    }
    for (int number = 0; number < places; ++number) {
        const auto place = static_cast<int>(random() % static_cast<unsigned>(project.size()));
        measure("block", place, withLostBlock(project, place));
    }
    return problems;
}

} // namespace Bench
