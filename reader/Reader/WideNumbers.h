#pragma once

#include "Serialize/Json/FlatObject.h"

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

// Threads: every function here may be called from any thread at any time, on values of its own.

namespace Reader {

/// A whole number that 64 bits can't hold, as a JSON value that text never gives: binary, with the digits as its bytes.
nlohmann::json wideNumber(const std::string& digits);

/// The digits in such a value; null for all else.
const nlohmann::json::binary_t* digitsOf(const nlohmann::json& value);

/// A whole number that is no longer in its place.
struct MovedNumber {
    unsigned long long id = 0; ///< of the object that it was in
    std::string path;          ///< in the object
    std::string digits;
};

/// The digits of whole numbers that 64 bits can't hold, and where they are in a flat document. Steps see such a number
/// as the floating number next to it; its digits are kept here and put back before the document is written.
class WideNumbers {
public:
    /// The name of a member of an object, or the index of an entry of an array.
    using Name = std::variant<std::string, std::size_t>;
    using Place = std::size_t;

    bool isEmpty() const { return m_places.empty(); }

    /// Add a place: an object of the flat document, or a part of another place.
    Place add(unsigned long long id);
    Place add(Place container, Name name);

    /// Turns the value in that place, which is a wideNumber(), into a floating number and keeps its digits.
    void keepDigits(Place place, nlohmann::json& value);

    /// Turns the floating numbers that are still in their places into wide numbers again. Gives those that are in the
    /// document, but in another place: they stay floating numbers.
    std::vector<MovedNumber> restore(Serialize::Json::FlatObject& flat) const;

private:
    struct Part {
        Place container; ///< before this one in the list; none for an object of the flat document
        Name name;
        unsigned long long id; ///< of an object of the flat document
        std::string digits;    ///< empty where it holds others
    };

    std::string pathOf(Place place) const;

    std::vector<Part> m_places;
};

} // namespace Reader
