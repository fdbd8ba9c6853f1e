#include "Reader/Error.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Reader {
namespace {

struct KindRow {
    ErrorKind kind;
    std::string_view name;
    std::string_view sentence;
};

// clang-format off
constexpr KindRow kinds[] = {
    {ErrorKind::Unreadable, "unreadable", "can't be read"},
    {ErrorKind::TooLarge, "too-large", "larger than any project"},
    {ErrorKind::NoRegularFile, "no-regular-file", "is no regular file"},
    {ErrorKind::Empty, "empty", "the file is empty"},
    {ErrorKind::UnknownForm, "unknown-form", "neither XML nor JSON"},
    {ErrorKind::BrokenXml, "broken-xml", "broken XML"},
    {ErrorKind::RefusedXml, "refused-xml", "XML that is refused"},
    {ErrorKind::ForeignEncoding, "foreign-encoding", "the text is in no encoding that projects use, such as UTF-8"},
    {ErrorKind::NoArchive, "no-archive", "no project archive"},
    {ErrorKind::MissingRoot, "missing-root", "the root object is missing"},
    {ErrorKind::BrokenJson, "broken-json", "broken JSON"},
    {ErrorKind::WrongEnvelope, "wrong-envelope", "no project document"},
    {ErrorKind::NoVersion, "no-version", "the document names no schema version"},
    {ErrorKind::BadVersion, "bad-version", "the schema version is no version number"},
    {ErrorKind::WrongForm, "wrong-form", "the schema version is one of the other form"},
    {ErrorKind::TooNew, "too-new", "the schema version is too new"},
    {ErrorKind::UnreachableVersion, "unreachable-version", "the document can't be brought to the version asked for"},
    {ErrorKind::NoWayBack, "no-way-back", "a JSON document can't become an archive again"},
    {ErrorKind::UnknownStep, "unknown-step", "there is no such step"},
    {ErrorKind::NoSuchForm, "no-such-form", "the step has no form for this document"},
    {ErrorKind::StepFailed, "step-failed", "the step failed"},
    {ErrorKind::Unwritable, "unwritable", "can't be written"},
    {ErrorKind::OutputExists, "output-exists", "exists already"},
    {ErrorKind::InUse, "in-use", "another run is at work on it"},
    {ErrorKind::ChangedMeanwhile, "changed-meanwhile", "was changed or removed during the migration"},
};
// clang-format on

const KindRow& rowOf(ErrorKind kind) {
    return *std::find_if(std::begin(kinds), std::end(kinds),
                         [kind](const KindRow& row) { return row.kind == kind; });
}

/// "film.xml:3:7: broken XML: reason"
std::string describe(ErrorKind kind, const ErrorFacts& facts) {
    std::string text = facts.file.toStdString();
    for (const auto& number : {facts.line, facts.column}) {
        if (number)
            text += ':' + std::to_string(*number);
    }
    const auto add = [&](std::string_view part) {
        text.append(text.empty() || part.empty() ? "" : ": ").append(part);
    };
    add(facts.step);
    add(rowOf(kind).sentence);
    if (facts.byte && !facts.isCutOff)
        text += " at byte " + std::to_string(*facts.byte);
    if (facts.version)
        text += ", it is " + std::to_string(*facts.version);
    if (facts.target)
        text += ", asked for is " + std::to_string(*facts.target);
    add(facts.reason);
    for (std::size_t place = text.find('\0'); place != std::string::npos; place = text.find('\0', place))
        text.replace(place, 1, "\\x00"); // what() ends at the first one
    return text;
}

} // namespace

std::string_view nameOf(ErrorKind kind) {
    return rowOf(kind).name;
}

Error::Error(ErrorKind kind, ErrorFacts facts)
    : std::runtime_error(describe(kind, facts)), m_kind(kind), m_facts(std::move(facts)) {}

} // namespace Reader
