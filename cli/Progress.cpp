#include "Progress.h"

#include "Reader/AdaptorTable.h"
#include "Reader/Document.h"
#include "Summary.h"

#include <algorithm>
#include <iostream>

namespace {

constexpr const char* eraseLine = "\r\x1b[K";

} // namespace

void Progress::end() {
    if (m_isShown)
        std::cerr << eraseLine << std::flush;
    m_isShown = false;
}

void Progress::expect(const Reader::Document& document, int to) {
    if (!document.version())
        return;
    for (const Reader::AdaptorRow* step : Reader::stepsToRun(document.form(), *document.version(), to))
        m_steps.emplace_back(step->className);
}

void Progress::note(const Reader::MigrationPart& part) {
    const auto step = std::find(m_steps.begin(), m_steps.end(), part.name);
    if (step != m_steps.end())
        m_done = static_cast<std::size_t>(step - m_steps.begin()) + 1;
    if (!m_output.showsProgress())
        return;
    const std::string running = m_done < m_steps.size() ? m_steps[m_done] : std::string();
    std::cerr << eraseLine << Texts::progress(running, m_done + 1, m_steps.size()) << std::flush;
    m_isShown = true;
}
