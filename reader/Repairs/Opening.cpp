#include "Repairs/Opening.h"

#include "Reader/AdaptorTable.h"
#include "Reader/Error.h"
#include "Recovery/Recovery.h"
#include "Repairs/RepairTable.h"

#include <exception>
#include <utility>

using Reader::Document;

namespace Repairs {
namespace {

bool hasKnownVersion(const Document& document) {
    return document.version() && *document.version() <= Reader::currentVersion;
}

/// The document in the text, where nothing but its version was wrong.
std::optional<Document> parseWithVersion(const QByteArray& text, const QString& name, int version) {
    try {
        return Reader::parse(text, name, version);
    } catch (const Reader::Error&) {
        return std::nullopt;
    }
}

} // namespace

Opened open(const QByteArray& bytes, const QString& name, std::optional<int> version) {
    RepairedText text = repairText(bytes);
    std::optional<Document> document;
    std::exception_ptr failure;
    try {
        document = Reader::parse(text.bytes, name, version);
        if (hasKnownVersion(*document))
            return {std::move(*document), {std::move(text.repairs), std::nullopt}};
    } catch (const Reader::Error& error) {
        const bool isWrongUse = version && error.kind() == Reader::ErrorKind::WrongForm;
        if (isWrongUse || !Reader::isRecoverable(error.kind()))
            throw;
        failure = std::current_exception();
    }

    auto recovered = Reader::recover(bytes, name, version);
    if (!recovered && failure)
        std::rethrow_exception(failure);
    if (!recovered)
        return {std::move(*document), {std::move(text.repairs), std::nullopt}};
    if (auto whole = parseWithVersion(text.bytes, name, recovered->report.version))
        return {std::move(*whole), {std::move(text.repairs), std::move(recovered->report)}};
    // The recovery replaced characters itself, in the bytes of the file.
    return {std::move(recovered->document), {{}, std::move(recovered->report)}};
}

} // namespace Repairs
