#include "Stored/V21/Internal/Rgba.h"

#include <QList>

namespace Stored::V21::Internal {
namespace {

/// The three numbers of an rgba() as a colour. Quirk: a number below 16 gives a single digit.
QByteArray colorOf(const QList<QByteArray>& parts) {
    QByteArray color("#");
    for (int component = 0; component < 3; ++component)
        color += QByteArray::number(parts[component].trimmed().toUInt(), 16);
    return color;
}

} // namespace

QByteArray withoutRgba(const QByteArray& text) {
    const QByteArray mark("\"rgba(");
    const QByteArray endMark(")\"");
    QByteArray result;
    int copied = 0;
    for (int hit = text.indexOf(mark); hit >= 0;) {
        const int end = text.indexOf(endMark, hit + 1);
        if (end < 0)
            break;
        const int arguments = hit + mark.size();
        const QByteArray parts = text.mid(arguments, end - arguments);
        if (parts.count(',') != 3) // counted before splitting: there may be millions
            break;
        const QByteArray color = colorOf(parts.split(','));
        result += text.mid(copied, hit + 1 - copied);
        result += color;
        copied = end + 1;
        // Quirk: the search skips as many characters after the end as the text became shorter. So an rgba()
        // that follows closely is not replaced.
        const int shortened = end - hit - color.size();
        hit = text.indexOf(mark, end + shortened);
    }
    return result + text.mid(copied);
}

} // namespace Stored::V21::Internal
