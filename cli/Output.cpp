#include "Output.h"

#include "Sha256.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>

Output::Output(const OutputOptions& options)
    : m_options(options), m_colours(Terminal::isColoured(options.colour, STDERR_FILENO)) {
    m_timer.start();
}

void Output::setBytes(const QByteArray& bytes) {
    if (isJson())
        m_envelope.sha256 = sha256(bytes).toHex().toStdString();
}

bool Output::showsProgress() const {
    constexpr qint64 longWork = 1000; // milliseconds
    return !isJson() && !isQuiet() && m_timer.elapsed() > longWork && Terminal::isCapable(STDERR_FILENO);
}

void Output::print(const std::string& text) const {
    if (!isJson())
        std::cout << text;
}

void Output::note(const std::string& text) const {
    if (!isJson())
        std::cerr << text;
}

JsonReport::Envelope Output::envelopeNow() const {
    JsonReport::Envelope envelope = m_envelope;
    envelope.seconds = static_cast<double>(m_timer.elapsed()) / 1000;
    return envelope;
}

int Output::finish(int code) {
    if (isJson())
        (m_isYielded ? std::cerr : std::cout) << JsonReport::line(envelopeNow(), m_result);
    errno = 0;
    std::cout.flush();
    if (!std::cout) {
        m_result = nullptr; // it got lost
        throw Messages::Failure(Messages::outputLost(errno != 0 ? std::strerror(errno) : "can't be written"));
    }
    return code;
}

int Output::fail(const Messages::Message& message) const {
    std::cout.flush();
    const bool toStandardOutput = descriptorForFailures() == STDOUT_FILENO && std::cout;
    (toStandardOutput ? std::cout : std::cerr) << textFor(envelopeNow(), message) << std::flush;
    return message.code;
}

std::string Output::textFor(const Messages::Message& message) const {
    return textFor(m_envelope, message);
}

std::string Output::textFor(const JsonReport::Envelope& envelope, const Messages::Message& message) const {
    return isJson() ? JsonReport::line(envelope, m_result, &message) : Messages::asText(message, m_colours);
}

int Output::descriptorForFailures() const {
    return isJson() && !m_isYielded ? STDOUT_FILENO : STDERR_FILENO;
}
