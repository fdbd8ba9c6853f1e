#include "JsonPrinting.h"

std::string printed(const nlohmann::ordered_json& value) {
    constexpr int indent = 2;
    return value.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}
