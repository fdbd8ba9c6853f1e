#include "report/Html.h"

#include "Sha256.h"
#include "Terminal.h"

#include <QByteArray>
#include <QString>

namespace Html {
namespace {

bool startsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80;
}

/// The number of bytes of the first `most` characters; all where there are no more.
std::size_t sizeOfFirst(std::size_t most, std::string_view text) {
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        if (startsCharacter(text[at]) && most-- == 0)
            break;
    }
    return at;
}

std::size_t countCharacters(std::string_view text) {
    std::size_t count = 0;
    for (const char byte : text)
        count += startsCharacter(byte) ? 1 : 0;
    return count;
}

constexpr const char* ellipsis = "\u2026";

/// A text that is fit for a terminal inside of HTML.
std::string inHtml(const std::string& text) {
    QString result = QString::fromStdString(text).toHtmlEscaped();
    result.replace(QLatin1Char('\''), QLatin1String("&#39;"));
    for (const char16_t forbidden : {u'\ufffe', u'\uffff'}) // no text of a page may have these
        result.replace(QChar(forbidden), QChar(QChar::ReplacementCharacter));
    return result.toStdString();
}

} // namespace

std::string escaped(std::string_view text) {
    return inHtml(Terminal::escaped(text));
}

std::string limited(std::string_view text, std::size_t most) {
    const std::size_t size = sizeOfFirst(most, text);
    if (size == text.size())
        return escaped(text);
    return escaped(text.substr(0, size)) + ellipsis + " (" + number(countCharacters(text)) + " characters)";
}

std::string shortened(std::string_view text, std::size_t most) {
    return inHtml(visible(text, most));
}

std::string visible(std::string_view text, std::size_t most) {
    const std::size_t size = sizeOfFirst(most, text);
    return Terminal::escaped(text.substr(0, size)) + (size < text.size() ? ellipsis : "");
}

std::string json(const nlohmann::ordered_json& value) {
    const std::string text = value.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
    std::string result;
    result.reserve(text.size());
    for (const char character : text) { // inside of texts only: JSON itself has none of these
        if (character == '<')
            result += "\\u003c";
        else if (character == '>')
            result += "\\u003e";
        else if (character == '&')
            result += "\\u0026";
        else
            result += character;
    }
    return result;
}

std::string number(std::size_t value) {
    std::string text = std::to_string(value);
    for (std::size_t place = text.size(); place > 3; place -= 3)
        text.insert(place - 3, ",");
    return text;
}

std::string policySource(std::string_view content) {
    const QByteArray bytes(content.data(), static_cast<int>(content.size()));
    return "'sha256-" + sha256(bytes).toBase64().toStdString() + '\'';
}

std::string documentStart(const Page& page) {
    const std::string scripts = page.script.empty() ? "'none'" : policySource(page.script);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src " +
           policySource(page.style) + "; script-src " + scripts +
           "; img-src data:; base-uri 'none'; form-action 'none'\"/>\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
           "<meta name=\"referrer\" content=\"no-referrer\"/>\n"
           "<meta name=\"color-scheme\" content=\"light dark\"/>\n"
           "<link rel=\"icon\" href=\"data:,\"/>\n<title>" +
           limited(page.title, 200) + "</title>\n<style>" + page.style + "</style>\n</head>\n<body>\n";
}

std::string document(const Page& page) {
    return documentStart(page) + page.body +
           (page.script.empty() ? "" : "<script>" + page.script + "</script>\n") + "</body>\n</html>\n";
}

} // namespace Html
