#pragma once

#include <cstdint>

namespace Stored::V57 {

/// What kind of resource a resource id names; stored as "int32_t".
enum class ResourceType : std::int32_t {
    Unknown = 0,
    Lut = 4,
};

} // namespace Stored::V57
