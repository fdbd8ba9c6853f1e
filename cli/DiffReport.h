#pragma once

#include "Reader/Comparison.h"

#include <QString>

#include <nlohmann/json.hpp>

#include <optional>
#include <vector>

/// What `adaptors diff` says.
namespace DiffReport {

struct Input {
    QString name;
    Bundle::Backend form;
    std::optional<int> version;
};

struct Result {
    Input before;
    Input after;
    std::optional<int>
        comparedAs; ///< the version that both were brought to; none where they are as they were
    std::vector<Reader::Difference> differences;
};

std::string text(const Result& result);
nlohmann::ordered_json asJson(const Result& result);

} // namespace DiffReport
