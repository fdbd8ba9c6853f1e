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

/// The live document: a buffer that holds the SVG text, and the DOM that is parsed from it, changed, and saved
/// into it again. Each operation leaves the buffer open on `content`.
class SvgDocument : public QBuffer {
public:
    using Adjustable = std::map<QString, std::vector<std::shared_ptr<AdjustableAttribute>>>;
    using UseElements = std::map<QString, std::vector<std::shared_ptr<SvgElement>>>;
    using GradientStops = std::map<std::shared_ptr<AdjustableAttribute>, std::vector<int>>;

    explicit SvgDocument(const QString& text);
    ~SvgDocument() override;

    /// Lists the attributes of these names that a change of style may overwrite.
    void collectAdjustableAttributes(const QStringList& names);

    /// Lists the stops of the linear gradients, each with its difference in colour to the stop before it.
    void collectGradientStops();

    /// Sets the collected attributes of that name, all of them or those whose `id` is `idFilter`.
    void setAttributeValue(const QString& name, const QString& value, const QString& idFilter);

    /// Gives the collected gradient stops that colour, each moved by its difference.
    void applyColorToGradients(const QColor& color);

    /// Reads the animations that name adjustable points again, after a change of `posX` or `posY`.
    void refreshAdjustablePoints();

    const QByteArray& content() const { return m_content; } ///< the text in UTF-8, without rgba() colours
    const QXmlStreamReader& reader() const { return m_reader; }
    const QDomDocument& dom() const { return m_dom; }
    int durationMs() const { return m_durationMs; }
    int conclusionMs() const { return m_conclusionMs; } ///< length of the closing part, 0 if none
    bool animated() const { return m_animated; }        ///< the text holds an `animate` tag
    const std::vector<std::shared_ptr<AnimatableAttribute>>& animations() const { return m_animations; }
    const Adjustable& adjustable() const { return m_adjustable; }          ///< by attribute name
    const UseElements& useElements() const { return m_useElements; }       ///< by referenced id
    const GradientStops& gradientStops() const { return m_gradientStops; } ///< red, green and blue offset
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
    QByteArray m_parsed;                          ///< what `m_dom` was parsed from
    std::vector<std::shared_ptr<AdjustableAttribute>> m_stopsInDocumentOrder;
};

} // namespace Stored::V21
