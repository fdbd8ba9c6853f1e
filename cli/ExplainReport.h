#pragma once

#include "Reader/Explanation.h"
#include "Reader/MigrationReport.h"
#include "Terminal.h"

#include <QString>

#include <string>
#include <vector>

/// What `adaptors explain` says.
namespace ExplainReport {

struct Result {
    QString input;
    const Reader::MigrationReport& report;
    std::vector<Reader::StepEffect> steps; ///< those asked for
    bool isOneStep = false;                ///< shown also where it changed nothing
};

std::string text(const Result& result, const Terminal::Colours& colours);

/// The examples of a change, each as a text; a single one where all are the same.
std::vector<std::string> examplesOf(const Reader::FieldChange& change);

} // namespace ExplainReport
