#include "Advice.h"

namespace Advice {

std::optional<Messages::Message> messageFor(const Reader::Error& error, const Subject& subject) {
    auto report = Reader::Report::helpfulRepairs(error, subject);
    if (!report)
        return std::nullopt;
    return Messages::withAdvice(Messages::messageFor(error), std::move(*report));
}

} // namespace Advice
