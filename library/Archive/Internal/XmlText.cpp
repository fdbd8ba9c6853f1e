#include "Archive/Internal/XmlText.h"

#include <QXmlSimpleReader>

namespace Archive::Internal {
namespace {

constexpr int deepestNesting = 1000;

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

/// Stops parsing where elements are nested too deeply. It uses the parser of QDomDocument: another one could
/// stop earlier, at an error that this one accepts.
class DepthCheck : public QXmlDefaultHandler {
public:
    bool isTooDeep() const { return m_depth > deepestNesting; }

    bool startElement(const QString&, const QString&, const QString&, const QXmlAttributes&) override {
        ++m_depth;
        return !isTooDeep();
    }

    bool endElement(const QString&, const QString&, const QString&) override {
        --m_depth;
        return true;
    }

private:
    int m_depth = 0;
};

bool isTooDeep(const QString& text) {
    QXmlInputSource source;
    source.setData(text);
    DepthCheck check;
    QXmlSimpleReader reader;
    reader.setContentHandler(&check);
    reader.setErrorHandler(&check);
    reader.parse(source);
    return check.isTooDeep();
}

QT_WARNING_POP

} // namespace

void parseXml(QDomDocument& document, const QString& text) {
    document.clear();
    if (!isTooDeep(text))
        document.setContent(text); // after an error the document has what was read before it
}

} // namespace Archive::Internal
