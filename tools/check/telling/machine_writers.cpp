// Findings for machines: as JSON, as SARIF, and as annotations of a build server.

#include "check/telling/writers.h"
#include "check/texts/utf8.h"
#include "io/invisible.h"
#include "kelto.h"

#include <fmt/core.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace tool::check
{
namespace
{

/** Whether a reader of the document, or a terminal that shows it, could take a character for something else. */
bool needsEscape(UChar32 character)
{
    const auto code = static_cast<char32_t>(character);
    return isInvisible(code) || isUnassigned(code) || character == '"' || character == '\\';
}

std::string jsonEscape(UChar32 character)
{
    switch (character)
    {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        if (U_IS_BMP(character))
            return fmt::format("\\u{:04x}", character);
        return fmt::format("\\u{:04x}\\u{:04x}", static_cast<unsigned>(U16_LEAD(character)),
                           static_cast<unsigned>(U16_TRAIL(character)));
    }
}

/** Calls work(character, its bytes) for each character; bytes that are no UTF-8 are U+FFFD. */
template <typename Work> void forEachCharacter(std::string_view text, Work work)
{
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const auto character = static_cast<UChar32>(takeUtf8(text, at));
        const bool isMalformed = character == 0xFFFD && text[begin] != '\xEF';
        work(character, isMalformed ? std::string_view("\uFFFD") : text.substr(begin, at - begin));
    }
}

/** A text of a document, which is in English in every locale. */
std::string english(const Phrase &phrase)
{
    return jsonString(sayInEnglish(phrase));
}

/** {"line": 6, …}: the members of a region, the keys being those of the form. */
std::string jsonPlace(const Place &place)
{
    return fmt::format("\"file\": {}, \"line\": {}, \"column\": {}, \"endLine\": {}, \"endColumn\": {}, "
                       "\"byteOffset\": {}, \"byteLength\": {}",
                       jsonString(place.file), place.begin.line, place.begin.column, place.end.line, place.end.column,
                       place.bytes.begin, place.bytes.end - place.bytes.begin);
}

class JsonWriter : public Writer
{
public:
    JsonWriter(Sink sink, const WriterOptions &options) : Writer(std::move(sink)), m_reference(options.reference) {}

    void begin() override
    {
        print(fmt::format("{{\n  \"format\": 1,\n  \"tool\": {{\"name\": \"kelto\", \"version\": \"{}\"}},\n"
                          "  \"reference\": {},\n  \"findings\": [",
                          KELTO_VERSION, m_reference.empty() ? "null" : jsonString(m_reference)));
    }

    void write(const Diagnostic &diagnostic) override
    {
        const std::string message = diagnostic.message != 0 ? std::to_string(diagnostic.message) : "null";
        const std::string note =
            diagnostic.notePlace
                ? fmt::format("{{{}, \"text\": {}}}", jsonPlace(*diagnostic.notePlace), english(diagnostic.noteText))
                : "null";
        print(fmt::format("{}\n    {{\"rule\": \"{}\", \"severity\": \"{}\", {}, \"message\": {}, \"text\": {}, "
                          "\"note\": {}}}",
                          m_isFirst ? "" : ",", rowOf(diagnostic.rule).name, nameOf(diagnostic.severity),
                          jsonPlace(diagnostic.place), message, english(diagnostic.text), note));
        m_isFirst = false;
    }

    void tellUnread(const std::string &file) override
    {
        m_unread += fmt::format("{}{}", m_unread.empty() ? "" : ", ", jsonString(file));
    }

    void tellUntold(const Report &report) override
    {
        m_untold += fmt::format("{}{{\"file\": {}, \"errors\": {}, \"warnings\": {}}}", m_untold.empty() ? "" : ", ",
                                jsonString(report.file), report.untoldErrors, report.untoldWarnings);
    }

    void end(const Summary &summary) override
    {
        print(fmt::format("{}],\n  \"unread\": [{}],\n  \"untold\": [{}],\n"
                          "  \"summary\": {{\"files\": {}, \"errors\": {}, \"warnings\": {}, \"known\": {}}}\n}}\n",
                          m_isFirst ? "" : "\n  ", m_unread, m_untold, summary.files, summary.errors, summary.warnings,
                          summary.known));
    }

private:
    std::string m_reference;
    std::string m_unread;
    std::string m_untold;
    bool m_isFirst = true;
};

std::string sarifLocation(const Place &place)
{
    return fmt::format(
        "\"physicalLocation\": {{\"artifactLocation\": {{\"uri\": {}}}, \"region\": {{\"startLine\": {}, "
        "\"startColumn\": {}, \"endLine\": {}, \"endColumn\": {}}}}}",
        jsonString(uriOf(place.file)), place.begin.line, place.begin.column, place.end.line, place.end.column);
}

std::string examplesOf(const RuleRow &row)
{
    return fmt::format("{} {}\n{} {}", sayInEnglish({Text::wrongLabel}), sayInEnglish({row.wrong}),
                       sayInEnglish({Text::rightLabel}), sayInEnglish({row.right}));
}

class SarifWriter : public Writer
{
public:
    SarifWriter(Sink sink, const WriterOptions &options) : Writer(std::move(sink)), m_levels(options.levels) {}

    void begin() override
    {
        print(fmt::format(
            "{{\n  \"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n  \"version\": \"2.1.0\",\n"
            "  \"runs\": [{{\n    \"columnKind\": \"unicodeCodePoints\",\n    \"tool\": {{\"driver\": {{\n"
            "      \"name\": \"kelto check\", \"semanticVersion\": \"{}\",\n      \"rules\": [",
            KELTO_VERSION));
        for (size_t i = 0; i < ruleCount; ++i)
        {
            const auto rule = static_cast<Rule>(i);
            const RuleRow &row = rowOf(rule);
            const Severity severity = (*m_levels)[rule];
            print(fmt::format("{}\n        {{\"id\": \"{}\", \"shortDescription\": {{\"text\": {}}}, "
                              "\"fullDescription\": {{\"text\": {}}}, \"help\": {{\"text\": {}}}, "
                              "\"defaultConfiguration\": {{\"level\": \"{}\", \"enabled\": {}}}}}",
                              i == 0 ? "" : ",", row.name, english({row.summary}), english({row.explanation}),
                              jsonString(examplesOf(row)), nameOf(severity), severity != Severity::off));
        }
        print("\n      ]\n    }},\n    \"results\": [");
    }

    void write(const Diagnostic &diagnostic) override
    {
        std::string related;
        if (diagnostic.notePlace)
            related = fmt::format(", \"relatedLocations\": [{{{}, \"message\": {{\"text\": {}}}}}]",
                                  sarifLocation(*diagnostic.notePlace), english(diagnostic.noteText));
        print(fmt::format("{}\n      {{\"ruleId\": \"{}\", \"ruleIndex\": {}, \"level\": \"{}\", "
                          "\"message\": {{\"text\": {}}}, \"locations\": [{{{}}}]{}}}",
                          m_isFirst ? "" : ",", rowOf(diagnostic.rule).name, static_cast<size_t>(diagnostic.rule),
                          nameOf(diagnostic.severity), english(sentenceOf(diagnostic)), sarifLocation(diagnostic.place),
                          related));
        m_isFirst = false;
    }

    void tellUnread(const std::string &file) override
    {
        m_isSuccessful = false;
        addNotification("error", file, {Text::fileUnread});
    }

    void tellUntold(const Report &report) override { addNotification("warning", report.file, untoldOf(report)); }

    void end(const Summary &) override
    {
        print(fmt::format("{}],\n    \"invocations\": [{{\"executionSuccessful\": {}, "
                          "\"toolExecutionNotifications\": [{}]}}]\n  }}]\n}}\n",
                          m_isFirst ? "" : "\n    ", m_isSuccessful, m_notifications));
    }

private:
    void addNotification(const char *level, const std::string &file, const Phrase &text)
    {
        m_notifications +=
            fmt::format("{}{{\"level\": \"{}\", \"message\": {{\"text\": {}}}, \"locations\": "
                        "[{{\"physicalLocation\": {{\"artifactLocation\": {{\"uri\": {}}}}}}}]}}",
                        m_notifications.empty() ? "" : ", ", level, english(text), jsonString(uriOf(file)));
    }

    const Levels *m_levels;
    std::string m_notifications;
    bool m_isSuccessful = true;
    bool m_isFirst = true;
};

/**
 * The text of a workflow command. Characters that would end it, or a property of it, are escaped, and so are those
 * that nobody could see.
 */
std::string annotation(std::string_view text, bool isProperty)
{
    std::string result;
    forEachCharacter(text, [&](UChar32 character, std::string_view bytes) {
        const bool isSyntax = character == '%' || character == '\n' || character == '\r' ||
                              (isProperty && (character == ':' || character == ','));
        if (isSyntax)
            result += fmt::format("%{:02X}", character);
        else if (needsEscape(character) && character != '"' && character != '\\')
            result += U_IS_BMP(character) ? fmt::format("\\u{:04X}", character) : fmt::format("\\U{:08X}", character);
        else
            result += bytes;
    });
    return result;
}

class GithubWriter : public Writer
{
public:
    explicit GithubWriter(Sink sink) : Writer(std::move(sink)) {}

    void tellUnread(const std::string &file) override { tellOfFile("error", file, {Text::fileUnread}); }
    void tellUntold(const Report &report) override { tellOfFile("warning", report.file, untoldOf(report)); }

    void write(const Diagnostic &diagnostic) override
    {
        const Place &place = diagnostic.place;
        std::string text = sayInEnglish(sentenceOf(diagnostic));
        if (diagnostic.notePlace)
            text += fmt::format("\n{}:{}:{}: {}", diagnostic.notePlace->file, diagnostic.notePlace->begin.line,
                                diagnostic.notePlace->begin.column, sayInEnglish(diagnostic.noteText));
        // Annotations take the last column itself, and only of a range within one line.
        const bool isInLine = place.begin.line == place.end.line && place.end.column > place.begin.column;
        print(fmt::format("::{} file={},line={},endLine={},col={},endColumn={},title={}::{}\n",
                          nameOf(diagnostic.severity), annotation(place.file, true), place.begin.line, place.end.line,
                          place.begin.column, isInLine ? place.end.column - 1 : place.begin.column,
                          rowOf(diagnostic.rule).name, annotation(text, false)));
    }

private:
    void tellOfFile(const char *level, const std::string &file, const Phrase &text)
    {
        print(fmt::format("::{} file={}::{}\n", level, annotation(file, true), annotation(sayInEnglish(text), false)));
    }
};

} // namespace

std::string jsonString(std::string_view text)
{
    std::string result = "\"";
    forEachCharacter(text, [&](UChar32 character, std::string_view bytes) {
        if (needsEscape(character))
            result += jsonEscape(character);
        else
            result += bytes;
    });
    return result + '"';
}

std::string uriOf(std::string_view path)
{
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    std::string uri = !path.empty() && path[0] == '/' ? "file://" : "";
    for (const char byte : path)
        uri += plain.find(byte) != std::string_view::npos ? std::string(1, byte)
                                                          : fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    return uri;
}

std::unique_ptr<Writer> jsonWriter(Sink sink, const WriterOptions &options)
{
    return std::make_unique<JsonWriter>(std::move(sink), options);
}

std::unique_ptr<Writer> sarifWriter(Sink sink, const WriterOptions &options)
{
    return std::make_unique<SarifWriter>(std::move(sink), options);
}

std::unique_ptr<Writer> githubWriter(Sink sink, const WriterOptions &)
{
    return std::make_unique<GithubWriter>(std::move(sink));
}

} // namespace tool::check
