#include "bench/Peers.h"

#include "Reader/XmlText.h"
#include "bench/Generator.h"
#include "bench/Measure.h"
#include "bench/MigrationTimes.h"
#include "bench/StepInput.h"

#include <libxml/parser.h>
#include <libxml/xmlsave.h>
#include <libxslt/transform.h>
#include <libxslt/xsltutils.h>

#include <array>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace Bench {
namespace {

const QString name = QStringLiteral("project");

/// Calls `change` for each element of that tag and type, by a live list: it is searched again after each change of the
/// document.
template <class Change>
void forEach(const QDomDocument& document, const char* tag, const char* type, Change change) {
    const QDomNodeList all = document.elementsByTagName(tag);
    for (int place = 0; place < all.length(); ++place) {
        QDomElement e = all.at(place).toElement();
        if (e.attribute("type") == QLatin1String(type))
            change(e);
    }
}

void addField(QDomElement& object, const char* fieldName, const char* type, const QString& value) {
    QDomElement field = object.ownerDocument().createElement(fieldName);
    field.setAttribute("type", type);
    field.setAttribute("value", value);
    object.appendChild(field);
}

void addArray(QDomElement& object, const char* fieldName) {
    QDomElement field = object.ownerDocument().createElement(fieldName);
    field.setAttribute("type", "Array");
    field.setAttribute("size", 0);
    object.appendChild(field);
}

/// The step of each with live lists. Each has a stylesheet of its name in the folder peers/.
struct Peer {
    const char* step;
    void (*withLists)(const QDomDocument&);
};

constexpr std::array<Peer, 12> peers = {{
    {"V18_AudioEffectToFilterAdaptor",
     [](const QDomDocument& document) {
         for (const char* filter : {"Effect::AudioEqualizer", "Effect::AudioNoiseReduction"})
             forEach(document, "RootObject", filter, [](QDomElement& effect) {
                 QDomElement base = effect.firstChildElement("BaseOfObject");
                 if (!base.isNull())
                     base.setAttribute("type", "Effect::AudioFilter");
             });
     }},
    {"V26_VideoResizeMethodAdaptor",
     [](const QDomDocument& document) {
         for (const char* tag : {"RootObject", "BaseOfObject"})
             forEach(document, tag, "Video",
                     [](QDomElement& video) { video.removeChild(video.firstChildElement("resizeMode")); });
     }},
    {"V28_ClipLabelAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "RootObject", "Timeline::Clip",
                 [](QDomElement& clip) { addArray(clip, "labels"); });
     }},
    {"V29_ClipTimingModeAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "Value", "Timeline::ClipTiming",
                 [](QDomElement& timing) { addField(timing, "timingMode", "int32_t", "0"); });
     }},
    {"V36_UnlimitedIntroAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "RootObject", "Timeline::Clip", [](QDomElement& clip) {
             const int type = clip.firstChildElement("type").attribute("value").toInt();
             QDomElement field = clip.firstChildElement("unlimitedDuration");
             if ((type == 8 || type == 16) && !field.isNull())
                 field.setAttribute("value", "0");
         });
     }},
    {"V37_UnusedBlindsAndRippleParamsAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "RootObject", "Transition::Ripple",
                 [](QDomElement& ripple) { ripple.removeChild(ripple.firstChildElement("ampMode")); });
         forEach(document, "RootObject", "Transition::Blinds",
                 [](QDomElement& blinds) { blinds.removeChild(blinds.firstChildElement("mode")); });
     }},
    {"V46_GaplessTrackAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "RootObject", "Timeline::Track", [](QDomElement& track) {
             const bool isPrimary = track.firstChildElement("type").attribute("value").toInt() == 16;
             addField(track, "gapless", "bool", isPrimary ? "1" : "0");
         });
     }},
    {"V49_ImportRemoteSizeAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "RootObject", "Import::Object",
                 [](QDomElement& import) { addField(import, "remoteSize", "int64_t", "-1"); });
     }},
    {"V51_ClipTrackingAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "RootObject", "Timeline::Clip",
                 [](QDomElement& clip) { addArray(clip, "motionTrackings"); });
     }},
    {"V52_SpeedCompensationAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "Value", "Timeline::ClipTiming",
                 [](QDomElement& timing) { addField(timing, "speedCompensated", "bool", "0"); });
     }},
    {"V54_TransitionVolumeAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "BaseOfObject", "Transition::Object",
                 [](QDomElement& transition) { addField(transition, "volume", "int32_t", "100"); });
     }},
    {"V55_EffectBypassAdaptor",
     [](const QDomDocument& document) {
         forEach(document, "BaseOfObject", "Effect::Object",
                 [](QDomElement& effect) { addField(effect, "bypass", "bool", "0"); });
     }},
}};

struct Free {
    void operator()(xmlDoc* tree) const { xmlFreeDoc(tree); }
    void operator()(xsltStylesheet* sheet) const { xsltFreeStylesheet(sheet); }
};
using Tree = std::unique_ptr<xmlDoc, Free>;
using Sheet = std::unique_ptr<xsltStylesheet, Free>;

Tree readTree(const QByteArray& text) {
    Tree tree(xmlReadMemory(text.constData(), text.size(), "project", nullptr,
                            XML_PARSE_NOBLANKS | XML_PARSE_HUGE | XML_PARSE_NONET));
    if (!tree)
        throw std::runtime_error("libxml2 does not read the project");
    return tree;
}

QByteArray textOf(const Tree& tree) {
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpMemory(tree.get(), &text, &size);
    QByteArray result(reinterpret_cast<const char*>(text), size);
    xmlFree(text);
    return result;
}

Sheet readSheet(const std::string& step) {
    const std::string file = PEERS_DIR "/" + step + ".xsl";
    Sheet sheet(xsltParseStylesheetFile(reinterpret_cast<const xmlChar*>(file.c_str())));
    if (!sheet)
        throw std::runtime_error("libxslt does not read " + file);
    return sheet;
}

Tree transform(const Sheet& sheet, const Tree& tree) {
    Tree result(xsltApplyStylesheet(sheet.get(), tree.get(), nullptr));
    if (!result)
        throw std::runtime_error("libxslt fails");
    return result;
}

/// The one text of all documents with that content.
QByteArray normalised(const QByteArray& text) {
    return Reader::writeXml(Reader::parseXml(text, name));
}

PeerTimes measureStep(const Peer& peer, const QByteArray& project, int runs) {
    const Reader::AdaptorRow& row = *Reader::findAdaptor(peer.step);
    const Reader::Document before = documentBefore(row, project);
    const QByteArray beforeText = Reader::writeXml(before.xml());
    const Sheet sheet = readSheet(peer.step);
    const Tree tree = readTree(beforeText);
    std::vector<double> own;
    std::vector<double> lists;
    std::vector<double> xslt;
    QByteArray results[3];
    for (int run = 0; run < runs; ++run) {
        {
            Reader::Document document = before.clone();
            QDomDocument& xml = document.xml();
            own.push_back(millisecondsOf([&] { row.makeXml()->adapt(xml); }));
            results[0] = run == 0 ? Reader::writeXml(xml) : results[0];
        }
        {
            Reader::Document document = before.clone();
            const QDomDocument& xml = document.xml();
            lists.push_back(millisecondsOf([&] { peer.withLists(xml); }));
            results[1] = run == 0 ? Reader::writeXml(xml) : results[1];
        }
        Tree result;
        xslt.push_back(millisecondsOf([&] { result = transform(sheet, tree); }));
        results[2] = run == 0 ? textOf(result) : results[2];
    }
    const QByteArray expected = normalised(results[0]);
    if (normalised(results[1]) != expected)
        throw std::runtime_error(std::string(peer.step) + ": live lists give another document");
    if (normalised(results[2]) != expected)
        throw std::runtime_error(std::string(peer.step) + ": XSLT gives another document");
    return {peer.step, median(own), median(lists), median(xslt)};
}

} // namespace

PeerTable measurePeers(std::size_t elements, int runs) {
    const QByteArray project = generateProject(oldestVersion, {elements, 0, 0, 0});
    PeerTable table;
    table.elements = countElements(project);
    for (const Peer& peer : peers)
        table.steps.push_back(measureStep(peer, project, runs));
    std::vector<double> loads;
    std::vector<double> writes;
    std::vector<double> xmlLoads;
    std::vector<double> xmlWrites;
    for (int run = 0; run < runs; ++run) {
        QDomDocument document;
        Tree tree;
        loads.push_back(millisecondsOf([&] { document = Reader::parseXml(project, name); }));
        writes.push_back(millisecondsOf([&] { Reader::writeXml(document); }));
        xmlLoads.push_back(millisecondsOf([&] { tree = readTree(project); }));
        xmlWrites.push_back(millisecondsOf([&] { textOf(tree); }));
    }
    table.load = median(loads);
    table.write = median(writes);
    table.xmlLoad = median(xmlLoads);
    table.xmlWrite = median(xmlWrites);
    return table;
}

} // namespace Bench
