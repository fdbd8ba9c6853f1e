#pragma once

#include <cstdint>

namespace Stored::V57 {

/// The kind of a resource, as a part of its id; stored as "int32_t".
enum class ResourceType : std::int32_t {
    Unknown = 0,
    Lut = 4,
};

} // namespace Stored::V57
