#pragma once

#include "Reader/Migration.h"
#include "Reader/Trace.h"
#include "Reader/Verify.h"

#include <QString>

#include <string>
#include <vector>

/// What the program says of its work.
struct Summary {
    const Reader::MigrationReport& report;
    QString input;
    QString output;                      ///< empty where nothing was written
    QString backup;                      ///< empty for none
    std::vector<std::string> notes = {}; ///< on the file that was replaced
};

/// For people, some lines.
std::string asText(const Summary& summary);

/// For programs, one JSON object.
std::string asJson(const Summary& summary);

/// What `adaptors info` says.
std::string infoAsText(const Reader::Document& document, const QString& name);
std::string infoAsJson(const Reader::Document& document, const QString& name);

/// What `adaptors verify` says.
std::string findingsAsText(const std::vector<Reader::Finding>& findings, const QString& name);
std::string findingsAsJson(const std::vector<Reader::Finding>& findings, const QString& name);

/// What `adaptors trace` says.
std::string traceAsText(const Reader::Trace& trace);

/// What `adaptors steps` says.
std::string stepsAsText(int from, int to);
std::string stepsAsJson(int from, int to);
