#include "batch/Protocol.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Batch::Protocol {
namespace {

using JsonReport::Json;

/// Names of files may be any bytes, and JSON is UTF-8.
std::string encoded(const QByteArray& name) {
    return name.toPercentEncoding("/").toStdString();
}

QByteArray decoded(const Json& text) {
    return QByteArray::fromPercentEncoding(QByteArray::fromStdString(text.get<std::string>()));
}

template <class Value>
void add(Json& object, const char* key, const std::optional<Value>& value) {
    if (value)
        object[key] = *value;
}

void add(Json& object, const char* key, const std::string& value) {
    if (!value.empty())
        object[key] = value;
}

template <class Value>
void take(const Json& object, const char* key, std::optional<Value>& value) {
    if (const auto found = object.find(key); found != object.end() && !found->is_null())
        value = found->get<Value>();
}

void take(const Json& object, const char* key, std::string& value) {
    if (const auto found = object.find(key); found != object.end() && !found->is_null())
        value = found->get<std::string>();
}

std::optional<Json> objectIn(const std::string& line) {
    Json object = Json::parse(line, nullptr, false);
    return object.is_object() ? std::optional(std::move(object)) : std::nullopt;
}

/// Takes over what was repaired and recovered. Returns whether the file was damaged and something of it is missing.
bool takeRepairs(const Json& report, Row& facts) {
    std::set<std::string> names;
    const auto repairs = report.find("repairs");
    if (repairs != report.end() && repairs->is_array()) {
        for (const Json& repair : *repairs)
            names.insert(repair["name"].get<std::string>());
    }
    const auto recovery = report.find("recovery");
    const bool isRecovered = recovery != report.end() && recovery->is_object();
    if (isRecovered) {
        names.insert("recovery");
        const auto lost = qint64((*recovery)["clips"]["lost"].size());
        facts.losses = facts.losses.value_or(0) + lost;
    }
    for (const std::string& name : names)
        facts.repairs += (facts.repairs.empty() ? "" : " ") + name;
    return isRecovered && !(*recovery)["complete"].get<bool>();
}

} // namespace

std::string lineFor(const Request& request) {
    Json object;
    object["input"] = encoded(request.input);
    object["output"] = encoded(request.output);
    object["bundle"] = request.isBundle;
    object["force"] = request.force;
    object["report"] = request.wantsReport;
    return JsonReport::line(object);
}

std::optional<Request> requestIn(const std::string& line) {
    try {
        const auto object = objectIn(line);
        if (!object)
            return std::nullopt;
        return Request{decoded(object->at("input")), decoded(object->at("output")),
                       object->at("bundle").get<bool>(), object->at("force").get<bool>(),
                       object->at("report").get<bool>()};
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

std::string lineFor(const Answer& answer) {
    const Row& facts = answer.facts;
    Json object;
    object["state"] = std::string(nameOf(facts.state));
    add(object, "code", facts.code);
    add(object, "kind", facts.kind);
    add(object, "reason", facts.reason);
    add(object, "size", facts.size);
    add(object, "time", facts.time);
    add(object, "sha256", facts.sha256);
    add(object, "from", facts.from);
    add(object, "to", facts.to);
    add(object, "losses", facts.losses);
    add(object, "repairs", facts.repairs);
    add(object, "seconds", facts.seconds);
    add(object, "outputSize", facts.outputSize);
    add(object, "outputTime", facts.outputTime);
    add(object, "memory", answer.memory);
    if (!answer.report.is_null())
        object["report"] = answer.report;
    return JsonReport::line(object);
}

std::optional<Answer> answerIn(const std::string& line) {
    try {
        auto object = objectIn(line);
        if (!object)
            return std::nullopt;
        Answer answer;
        if (object->contains("command")) {
            answer.facts = factsIn(*object, Messages::OutOfMemory);
            answer.report = std::move(*object);
            answer.isLastWord = true;
            return answer;
        }
        Row& facts = answer.facts;
        facts.state = stateNamed(object->at("state").get<std::string>());
        take(*object, "code", facts.code);
        take(*object, "kind", facts.kind);
        take(*object, "reason", facts.reason);
        take(*object, "size", facts.size);
        take(*object, "time", facts.time);
        take(*object, "sha256", facts.sha256);
        take(*object, "from", facts.from);
        take(*object, "to", facts.to);
        take(*object, "losses", facts.losses);
        take(*object, "repairs", facts.repairs);
        take(*object, "seconds", facts.seconds);
        take(*object, "outputSize", facts.outputSize);
        take(*object, "outputTime", facts.outputTime);
        take(*object, "memory", answer.memory);
        if (const auto report = object->find("report"); report != object->end())
            answer.report = std::move(*report);
        return answer;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

Row factsIn(const Json& report, int code) {
    Row facts;
    facts.code = code;
    take(report, "sha256", facts.sha256);
    take(report, "seconds", facts.seconds);
    if (report.contains("from")) {
        take(report["from"], "version", facts.from);
        take(report["to"], "version", facts.to);
    }
    if (const auto losses = report.find("losses"); losses != report.end() && losses->is_array())
        facts.losses = std::count_if(losses->begin(), losses->end(),
                                     [](const Json& loss) { return !loss["intended"].get<bool>(); });
    const bool isDamaged = takeRepairs(report, facts);
    if (const auto error = report.find("error"); error != report.end()) {
        facts.state = FileState::Failed;
        take(*error, "kind", facts.kind);
        take(*error, "text", facts.reason);
    } else if (report["clips"].is_null()) {
        facts.state = FileState::Current;
    } else {
        facts.state = FileState::Done;
        if (code == Messages::Incomplete) {
            facts.kind = isDamaged ? "damaged" : "incomplete";
            facts.reason =
                isDamaged ? "the file was damaged; the result was written, and something is missing in it"
                          : "the result was written, and something of the project is missing in it";
        }
    }
    return facts;
}

} // namespace Batch::Protocol
