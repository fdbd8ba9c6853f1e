#pragma once

#include "Stored/V21/AdjustableAttribute.h"
#include "Stored/V21/AnimatableAttribute.h"
#include "Stored/V21/SvgElement.h"

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QDomDocument>
#include <QString>
#include <QStringList>
#include <QXmlStreamReader>

#include <map>
#include <memory>
#include <vector>

namespace Stored::V21 {

namespace Internal {
class NodeTable;
}

/// The live document: a buffer with the SVG text, and the DOM of that text. Each change is made in the DOM
/// and saved into the buffer. After each operation the buffer is open on `content`.
class SvgDocument : public QBuffer {
public:
    using Adjustable = std::map<QString, std::vector<std::shared_ptr<AdjustableAttribute>>>;
    using UseElements = std::map<QString, std::vector<std::shared_ptr<SvgElement>>>;
    using GradientStops = std::map<std::shared_ptr<AdjustableAttribute>, std::vector<int>>;

    explicit SvgDocument(const QString& text);
    ~SvgDocument() override;

    /// Lists all attributes of these names that a change of style may overwrite.
    void collectAdjustableAttributes(const QStringList& names);

    /// Lists the stops of the linear gradients, each with the difference between its colour and that of the
    /// previous stop.
    void collectGradientStops();

    /// Sets the listed attributes of that name: those whose `id` is `idFilter`, or all if that is empty.
    void setAttributeValue(const QString& name, const QString& value, const QString& idFilter);

    /// Sets the listed gradient stops to that colour, each with its difference added.
    void applyColorToGradients(const QColor& color);

    /// Reads the animations that name adjustable points again. To be called after a change of `posX` or
    /// `posY`.
    void refreshAdjustablePoints();

    const QByteArray& content() const { return m_content; } ///< the text in UTF-8, without rgba() colours
    const QXmlStreamReader& reader() const { return m_reader; }
    const QDomDocument& dom() const { return m_dom; }
    int durationMs() const { return m_durationMs; }
    int conclusionMs() const { return m_conclusionMs; } ///< length of the closing part; 0 if there is none
    bool animated() const { return m_animated; }        ///< the text contains an `animate` tag
    const std::vector<std::shared_ptr<AnimatableAttribute>>& animations() const { return m_animations; }
    const Adjustable& adjustable() const { return m_adjustable; }    ///< by attribute name
    const UseElements& useElements() const { return m_useElements; } ///< by referenced id
    const GradientStops& gradientStops() const {
        return m_gradientStops;
    } ///< differences of red, green and blue
    const std::vector<std::shared_ptr<SvgElement>>& adjustablePoints() const { return m_adjustablePoints; }

private:
    void setStorage(QByteArray& storage);
    void parse();
    void save();

    void fixConditionalTiming();
    void parseAnimations();
    void collectAdjustablePoints();
    void collectUseElements();
    void findConclusion();
    void carryVisibilityOutOfDefs();
    QByteArray contentWithPointsFilledIn() const;

    QByteArray m_content;
    QXmlStreamReader m_reader;
    QDomDocument m_dom;
    int m_durationMs = 0;
    int m_conclusionMs = 0;
    bool m_animated = false;
    std::vector<std::shared_ptr<AnimatableAttribute>> m_animations;
    Adjustable m_adjustable;
    UseElements m_useElements;
    GradientStops m_gradientStops;
    std::vector<std::shared_ptr<SvgElement>> m_adjustablePoints;

    std::unique_ptr<Internal::NodeTable> m_nodes; ///< the nodes of `m_dom`
    QByteArray m_parsed;                          ///< the text that `m_dom` was parsed from
    std::vector<std::shared_ptr<AdjustableAttribute>> m_stopsInDocumentOrder;
};

} // namespace Stored::V21
