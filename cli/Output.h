#pragma once

#include "FileNames.h"
#include "JsonReport.h"
#include "Messages.h"
#include "Terminal.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

#include <string>

/// What the options for every command say.
struct OutputOptions {
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    Terminal::ColourChoice colour = Terminal::ColourChoice::Auto;
};

/// The output of one run of the program: texts for people, or one JSON object for programs and nothing beside it. A
/// command says what it knows as soon as it knows it, so that a failure later on has it too.
class Output {
public:
    explicit Output(const OutputOptions& options);

    bool isJson() const { return m_options.json; }
    bool isQuiet() const { return m_options.quiet; }
    bool isVerbose() const { return m_options.verbose; }
    const Terminal::Colours& colours() const { return m_colours; }

    void setCommand(const std::string& command) { m_envelope.command = command; }
    void setInput(const QString& name) { m_envelope.input = FileNames::bytesOf(name); }
    void setBytes(const QByteArray& bytes);
    /// The project itself goes to standard output, and JSON to standard error.
    void yieldStandardOutput() { m_isYielded = true; }

    /// Whether people are shown how far the work is: on a terminal, where it takes long.
    bool showsProgress() const;

    /// What the command prints in JSON.
    void setResult(JsonReport::Json result) { m_result = std::move(result); }
    /// What it prints for people, ready for a terminal: what was asked for, and what is said of the work.
    void print(const std::string& text) const;
    void note(const std::string& text) const;

    /// Prints JSON, if it is that, and gives the exit code. Throws Messages::Failure where the output got lost.
    int finish(int code);
    /// The same for a command that failed.
    int fail(const Messages::Message& message) const;

    /// The JSON object of what is known now.
    JsonReport::Json report(const Messages::Message* error = nullptr) const {
        return JsonReport::object(envelopeNow(), m_result, error);
    }

    /// What is to be said if memory runs out, made beforehand, and where.
    std::string textFor(const Messages::Message& message) const;
    int descriptorForFailures() const;

private:
    JsonReport::Envelope envelopeNow() const;
    std::string textFor(const JsonReport::Envelope& envelope, const Messages::Message& message) const;

    OutputOptions m_options;
    Terminal::Colours m_colours;
    QElapsedTimer m_timer;
    JsonReport::Envelope m_envelope;
    JsonReport::Json m_result;
    bool m_isYielded = false;
};
