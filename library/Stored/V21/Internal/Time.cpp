#include "Stored/V21/Internal/Time.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Stored::V21::Internal {

int timeMs(const QString& text) {
    QString number = text.trimmed();
    double factor = 1000;
    if (number.endsWith(QLatin1String("ms"))) {
        number.chop(2);
        factor = 1;
    } else if (number.endsWith(QLatin1Char('s'))) {
        number.chop(1);
    }
    bool isNumber = false;
    const double value = number.toDouble(&isNumber);
    // Qt gives infinity for a number that is too great to convert.
    return isNumber ? truncated(value * factor) : 0;
}

int truncated(double number) {
    if (std::isnan(number))
        return 0;
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double greatest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(number, lowest, greatest));
}

} // namespace Stored::V21::Internal
