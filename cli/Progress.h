#pragma once

#include "Output.h"
#include "Reader/MigrationOptions.h"

#include <string>
#include <vector>

/// A line on a terminal that names the step that runs. It appears once the work takes long, each step replaces it, and
/// it goes away in the end.
class Progress {
public:
    explicit Progress(const Output& output) : m_output(output) {}
    ~Progress() { end(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// The steps that are to run, in order.
    void expect(const Reader::Document& document, int to);

    /// A part has ended.
    void note(const Reader::MigrationPart& part);

    /// Takes the line away.
    void end();

private:
    const Output& m_output;
    std::vector<std::string> m_steps;
    std::size_t m_done = 0;
    bool m_isShown = false;
};
