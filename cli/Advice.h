#pragma once

#include "Commands.h"
#include "Messages.h"
#include "Reader/Error.h"
#include "Reader/MigrationOptions.h"

#include <QByteArray>

#include <optional>
#include <string>
#include <vector>

/// What the program says of --repair where it was not given.
namespace Advice {

/// The document that a command works on.
struct Subject {
    const QByteArray& bytes;
    std::optional<int> from;                 ///< as --from says
    const Reader::MigrationOptions& options; ///< for a migration of it
    std::string step = {};                   ///< where only that step runs
};

/// The message for an error if a second try with repairs succeeds; none otherwise.
std::optional<Messages::Message> messageFor(const Reader::Error& error, const Subject& subject);

/// The repairs that a second try makes, if its result loses less or has fewer errors than that report says.
std::vector<Reader::RepairMade> repairsFor(const Reader::MigrationReport& report, const Subject& subject);

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
