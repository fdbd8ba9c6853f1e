// Any text is read into the SVG model and written: no crash, no hang, bounded memory, and a second pass
// changes nothing more.

#include "Fuzz.h"
#include "Stored/V21/Internal/Markup.h"
#include "Stored/V21/SvgImage.h"

#include <algorithm>

using namespace Stored::V21;
using Fuzz::check;

namespace {

void checkPlaces(const SvgDocument& document) {
    const QDomElement root = document.dom().documentElement();
    for (const auto& [name, attributes] : document.adjustable()) {
        for (const auto& attribute : attributes) {
            const QDomNode node = attribute->element.resolve(root);
            check(node.isElement(), "an adjustable attribute has no element");
            check(SvgElement(node, root).path == attribute->element.path, "a place leads elsewhere");
        }
    }
}

/// The written text differs from Qt's own only in the order.
void checkWriting(const QString& text) {
    QDomDocument dom;
    Internal::parse(dom, text);
    QString own = Internal::toText(dom);
    QString qts = dom.toString(1);
    std::sort(own.begin(), own.end());
    std::sort(qts.begin(), qts.end());
    check(own == qts, "Qt writes something else");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("SvgModelFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    checkWriting(text);
    SvgImage image(text);
    checkPlaces(*image.document());
    image.setFillColor(QColor(1, 2, 3));
    image.setStrokeColor(QColor(4, 5, 6));
    image.document()->setAttributeValue(QStringLiteral("posX"), QStringLiteral("7"), QString());
    check(image.document()->isOpen() && &image.document()->buffer() == &image.document()->content(),
          "the document is not open on its content");
    const QString result = image.toString();
    check(result == SvgImage(image).toString(), "the result is another the second time");
    SvgImage(result).toString();
    return 0;
}
