#pragma once

#include "Reader/Migration.h"
#include "Reader/Trace.h"
#include "Reader/Verify.h"

#include <QString>

#include <string>

/// The data for the summary of a migration.
struct Summary {
    const Reader::MigrationReport& report;
    QString input;
    QString output; ///< empty if nothing was written
    QString backup; ///< empty if there is none
};

/// A few lines for users.
std::string asText(const Summary& summary);

/// A JSON object for programs.
std::string asJson(const Summary& summary);

/// The output of `adaptors info`.
std::string infoAsText(const Reader::Document& document, const QString& name);
std::string infoAsJson(const Reader::Document& document, const QString& name);

/// The output of `adaptors verify`.
std::string findingsAsText(const std::vector<Reader::Finding>& findings, const QString& name);
std::string findingsAsJson(const std::vector<Reader::Finding>& findings, const QString& name);

/// The output of `adaptors trace`.
std::string traceAsText(const Reader::Trace& trace);

/// The output of `adaptors steps`.
std::string stepsAsText(int from, int to);
std::string stepsAsJson(int from, int to);
