#pragma once

#include "Messages.h"
#include "Summary.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

/// What the program says of its work to other programs. docs/schema/ describes it; a change of a key is a change there.
namespace JsonReport {

using Json = nlohmann::ordered_json;

/// The number that goes up where a key changes its meaning or leaves.
inline constexpr int format = 1;

/// What every command says of itself.
struct Envelope {
    std::string command;              ///< empty where none was recognised
    std::optional<std::string> input; ///< name of the document; none where none was named
    std::string sha256; ///< of the document's bytes, in hexadecimal digits; empty where it was not read
    std::optional<double> seconds; ///< since the program's start; none where they can't be known
};

/// The whole object. `result` holds the command's own keys; null for none. `error` is null where there is none.
Json object(const Envelope& envelope, const Json& result, const Messages::Message* error = nullptr);

/// An object on one line, in ASCII.
std::string line(const Json& object);

inline std::string line(const Envelope& envelope, const Json& result,
                        const Messages::Message* error = nullptr) {
    return line(object(envelope, result, error));
}

// The keys of each command.

Json migration(const Summary& summary);
/// `repairs` are those that a migration needs; null where that is not known.
Json info(const Reader::Document& document, const std::vector<Reader::RepairMade>* repairs);
Json findings(const std::vector<Reader::Finding>& findings);
Json trace(const Reader::Trace& trace, const Reader::MigrationReport& report);
Json stepList(int from, int to);
Json repairList();

// Parts of several of these.

Json repairsAsJson(const std::vector<Reader::RepairMade>& repairs);
/// null where nothing was recovered.
Json recoveryAsJson(const std::optional<Reader::RecoveryReport>& report);

} // namespace JsonReport
