#include "bench/RoadTimes.h"

#include "Archive/Internal/Outline.h"
#include "Reader/Chain.h"
#include "Reader/Contents.h"
#include "Reader/Conversion.h"
#include "Reader/Document.h"
#include "Reader/JsonText.h"
#include "Reader/Road.h"
#include "Reader/Unnumbered.h"
#include "Reader/XmlText.h"
#include "bench/Measure.h"

#include <algorithm>
#include <memory>
#include <set>

using nlohmann::json;

namespace Bench {
namespace {

const QString name = QStringLiteral("project");

/// Every element of a generated text has one start tag.
std::size_t countElements(const QByteArray& text) {
    std::size_t count = 0;
    for (int place = 0; place + 1 < text.size(); ++place)
        count += text[place] == '<' && text[place + 1] != '/' && text[place + 1] != '?' ? 1 : 0;
    return count;
}

double median(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers[numbers.size() / 2];
}

Reader::Journey makeJourney() {
    Reader::Journey journey;
    journey.name = name;
    return journey;
}

/// One walk along the road, part by part.
class Walk {
public:
    std::vector<Part> steps;
    std::vector<Part> others;
    double load = 0;
    double write = 0;
    std::size_t bytesWritten = 0;

    explicit Walk(const QByteArray& text) {
        load = millisecondsOf([&] { m_document.content = Reader::parseXml(text, name); });
        m_document = Reader::parse(text, name);
        other("count the objects of the archive", [&] { Reader::countObjects(m_document); });
        auto facts = std::move(*m_document.facts);
        m_outline = std::make_unique<Archive::Internal::Outline>(m_document.xml(), std::move(facts));
        other("list the clips of the archive", [&] { Reader::listClips(m_document); });
        unnumbered("OverlayFileContentReadAdaptor");
        xmlRoad();
        convert();
        for (const Reader::Step* row :
             Reader::stepsFor(Bundle::Backend::Json, Reader::lastXmlVersion, Reader::currentVersion)) {
            if (row->hasJson())
                step(*row, [&] { row->makeJson()->adapt(m_document.json().flat); });
        }
        unnumbered("PortableLoadAdaptor");
        other("count the objects of the result", [&] { Reader::countObjects(m_document); });
        other("find what the result reaches", [&] { Reader::findReachable(m_document); });
        unnumbered("PortableSaveAdaptor");
        save();
    }

private:
    template <class Call>
    void other(const std::string& what, Call call) {
        others.push_back({what, millisecondsOf(call)});
    }
    template <class Call>
    void step(const Reader::Step& row, Call call) {
        steps.push_back({std::string(row.className), millisecondsOf(call)});
    }

    void unnumbered(const char* className) {
        const Reader::Unnumbered* adaptor = Reader::findUnnumbered(className);
        const Reader::Surroundings surroundings;
        other(className, [&] {
            if (m_document.isXml())
                adaptor->makeXml(surroundings)->adapt(m_document.xml());
            else
                adaptor->makeJson(surroundings)->adapt(m_document.json().flat);
        });
    }

    void xmlRoad() {
        unnumbered("ThemeTransitionsAndSceneAdaptor");
        for (const Reader::Step* row :
             Reader::stepsFor(Bundle::Backend::Xml, oldestVersion, Reader::lastXmlVersion)) {
            step(*row, [&] {
                row->makeXml()->adapt(m_document.xml());
                m_outline->endStep();
            });
        }
        unnumbered("ImportDescriptionAdaptor");
    }

    void convert() {
        json envelope;
        std::set<unsigned long long> idsTaken;
        other("conversion to JSON",
              [&] { envelope = Reader::Conversion().consume(m_document.xml(), idsTaken).second; });
        Reader::JsonDocument project;
        other("flatten", [&] { project = Reader::openEnvelope(std::move(envelope), name); });
        other("free the DOM", [&] {
            m_outline.reset();
            m_document.content = std::move(project);
        });
    }

    void save() {
        Reader::JsonDocument& project = m_document.json();
        json envelope = std::move(project.envelope);
        std::size_t leftOut = 0;
        other("nest", [&] { envelope["data"] = Reader::nest(std::move(project), leftOut); });
        write = millisecondsOf(
            [&] { bytesWritten = static_cast<std::size_t>(Reader::writeJson(envelope).size()); });
        other("free the JSON", [&] { envelope = json(); });
    }

    Reader::Document m_document;
    std::unique_ptr<Archive::Internal::Outline> m_outline;
};

std::size_t wholeRoad(const QByteArray& text) {
    Reader::Document document = Reader::parse(text, name);
    Reader::Report report = Reader::migrate(document, makeJourney());
    Reader::save(std::move(document), makeJourney(), report);
    return report.log.size();
}

std::vector<Part> medians(const std::vector<Walk>& walks, std::vector<Part> Walk::*parts) {
    std::vector<Part> result = walks.front().*parts;
    for (std::size_t place = 0; place < result.size(); ++place) {
        std::vector<double> numbers;
        for (const Walk& walk : walks)
            numbers.push_back((walk.*parts)[place].milliseconds);
        result[place].milliseconds = median(numbers);
    }
    return result;
}

double medianOf(const std::vector<Walk>& walks, double Walk::*number) {
    std::vector<double> numbers;
    for (const Walk& walk : walks)
        numbers.push_back(walk.*number);
    return median(numbers);
}

} // namespace

RoadTimes measureRoad(const Size& size, int runs) {
    RoadTimes times;
    const auto generate = [&] { return generateProject(oldestVersion, size); };
    // First, while this process holds little that its children could use again unseen.
    times.loadMemory = peakMemory(generate, [](const QByteArray& text) { Reader::parseXml(text, name); });
    times.roadMemory = peakMemory(generate, [](const QByteArray& text) { wholeRoad(text); });

    const QByteArray text = generate();
    times.elements = countElements(text);
    times.bytesRead = static_cast<std::size_t>(text.size());
    std::vector<Walk> walks;
    std::vector<double> roads;
    for (int run = 0; run < runs; ++run) {
        roads.push_back(millisecondsOf([&] { times.logLines = wholeRoad(text); }));
        walks.emplace_back(text);
    }
    times.road = median(roads);
    times.load = medianOf(walks, &Walk::load);
    times.write = medianOf(walks, &Walk::write);
    times.bytesWritten = walks.front().bytesWritten;
    times.steps = medians(walks, &Walk::steps);
    times.others = medians(walks, &Walk::others);
    return times;
}

} // namespace Bench
