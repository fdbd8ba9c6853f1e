#pragma once

#include "Commands.h"
#include "Messages.h"
#include "Reader/Error.h"
#include "Report/Advice.h"

#include <optional>
#include <utility>

/// What the program says of --repair where it was not given.
namespace Advice {

using Reader::Report::Subject;

/// The message for an error if a second try with repairs succeeds; none otherwise.
std::optional<Messages::Message> messageFor(const Reader::Error& error, const Subject& subject);

/// Does a part of a command. Where it fails for what the document holds and --repair was not given, it is found out
/// whether that would help.
template <class Part>
auto advising(const Arguments& arguments, const Subject& subject, Part part) {
    try {
        return part();
    } catch (const Reader::Error& error) {
        if (arguments.repair)
            throw;
        if (auto message = messageFor(error, subject))
            throw Messages::Failure(std::move(*message));
        throw;
    }
}

} // namespace Advice
