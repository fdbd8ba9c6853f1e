#include "report/Facts.h"

#include "Reader/AdaptorTable.h"
#include "Sha256.h"

namespace ReportPage {

using Reader::MigrationPart;

File File::of(const QByteArray& bytes) {
    return {::sha256(bytes).toHex().toStdString(), bytes.size()};
}

Observer::Observer(const Reader::Document& document) : m_version(document.version().value_or(0)) {
    m_states.push_back({{}, false, 0, std::make_shared<const Timelines>(Reader::readTimelines(document))});
}

void Observer::note(const MigrationPart& part, const Reader::Document& document) {
    m_explanation.note(part, document);
    if (part.kind == MigrationPart::Kind::Comparison) {
        if (!document.isXml())
            m_redirected = document.json().notes.redirected;
        return;
    }
    if (part.kind == MigrationPart::Kind::Preparation)
        return;
    State state{part.name, part.kind == MigrationPart::Kind::Repair, 0, nullptr};
    const bool isStep = part.kind == MigrationPart::Kind::Adaptor;
    if (isStep) {
        state.effect = m_explanation.steps().size() - 1;
        const Reader::AdaptorRow* row = Reader::findAdaptor(part.name);
        m_version = row && row->isStep() ? row->number : m_version;
    }
    if (isStep && m_explanation.steps().back().changedNothing()) {
        state.timelines = m_states.back().timelines;
    } else {
        auto timelines = std::make_shared<const Timelines>(Reader::readTimelines(document, m_version));
        const bool isSame = *timelines == *m_states.back().timelines;
        state.timelines = isSame ? m_states.back().timelines : std::move(timelines);
    }
    m_states.push_back(std::move(state));
}

void Observer::moveTo(Facts& facts) {
    facts.states = std::move(m_states);
    facts.effects = m_explanation.steps();
    m_explanation = Reader::Explanation(); // frees the project that it compares with
    facts.redirected = std::move(m_redirected);
}

std::vector<MediaFile> mediaOf(const Timelines& timelines, const QString& folder) {
    std::vector<MediaFile> media;
    for (const Reader::MediaFile& file : Reader::mediaOf(timelines))
        media.push_back({file.path, file.clips, Reader::presenceOf(file.path, folder)});
    return media;
}

} // namespace ReportPage
