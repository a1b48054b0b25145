// Findings for people: the place, the sentence, the line of the file with a mark below it, and a summary.

#include "check/telling/writers.h"

#include "io/charset.h"
#include "io/terminal.h"

#include <algorithm>
#include <fmt/core.h>
#include <map>

namespace tool::check
{
namespace
{

constexpr const char *bold = "\33[1m";
constexpr const char *red = "\33[1;31m";
constexpr const char *magenta = "\33[1;35m";
constexpr const char *cyan = "\33[1;36m";
constexpr const char *green = "\33[1;32m";
constexpr const char *plain = "\33[0m";

std::string show(std::string_view utf8Text)
{
    return terminal().show(ucs2FromUtf8(std::string(utf8Text)));
}

/** For people: a line for each finding, the line of the file, the place marked below it. */
class TextWriter : public Writer
{
public:
    TextWriter(Sink sink, const WriterOptions &options)
        : Writer(std::move(sink)), m_isColoured(options.isColoured), m_isQuiet(options.isQuiet)
    {
    }

    void write(const Diagnostic &diagnostic) override
    {
        const bool isError = diagnostic.severity == Severity::error;
        print(fmt::format("{} {} {} [{}]\n", placeOf(diagnostic.place),
                          isError ? coloured(red, Text::errorLabel) : coloured(magenta, Text::warningLabel),
                          show(say(sentenceOf(diagnostic))), rowOf(diagnostic.rule).name));
        if (showsLine(diagnostic))
            print(linesOf(diagnostic));
        if (diagnostic.notePlace)
            print(fmt::format("{} {} {}\n", placeOf(*diagnostic.notePlace), coloured(cyan, Text::noteLabel),
                              show(say(diagnostic.noteText))));
    }

    void tellUntold(const Report &report) override
    {
        print(fmt::format("{} {}\n", coloured(bold, terminal().showBytes(report.file) + ":"),
                          show(say(untoldOf(report)))));
    }

    void end(const Summary &summary) override
    {
        const Phrase errors = counted(Text::countOfErrors, summary.errors);
        const Phrase warnings = counted(Text::countOfWarnings, summary.warnings);
        if (!m_isQuiet && summary.files > 0)
            print(show(say(counted(Text::foundInFiles, summary.files, {errors, warnings}))) + "\n");
        if (!m_isQuiet && summary.known > 0)
            print(show(say(counted(Text::countOfKnown, summary.known))) + "\n");
        if (!m_isQuiet && summary.stale > 0)
            print(show(say(counted(Text::countOfStale, summary.stale))) + "\n");
    }

private:
    std::string coloured(const char *colour, std::string_view text) const
    {
        return m_isColoured ? fmt::format("{}{}{}", colour, text, plain) : std::string(text);
    }

    std::string coloured(const char *colour, Text label) const { return coloured(colour, show(say(label))); }

    std::string placeOf(const Place &place)
    {
        const auto [shown, isNew] = m_shownNames.try_emplace(place.file);
        if (isNew)
            shown->second = terminal().showBytes(place.file);
        if (place.isLine)
            return coloured(bold, fmt::format("{}:{}:", shown->second, place.begin.line));
        return coloured(bold, fmt::format("{}:{}:{}:", shown->second, place.begin.line, place.begin.column));
    }

    /** What is missing in a unit or file stands nowhere in it, and a compiled catalog has no lines. */
    static bool showsLine(const Diagnostic &diagnostic)
    {
        const bool isMissing = diagnostic.rule == Rule::argumentMissing || diagnostic.rule == Rule::messageMissing;
        return !isMissing && !diagnostic.place.isLine && diagnostic.text.text != Text::compiledCatalog;
    }

    std::string linesOf(const Diagnostic &diagnostic) const
    {
        const std::u16string before = terminal().escaped(diagnostic.excerpt.before);
        const std::u16string marked = terminal().escaped(diagnostic.excerpt.marked);
        const std::u16string behind = terminal().escaped(diagnostic.excerpt.behind);
        const std::string number = std::to_string(diagnostic.place.begin.line);
        const size_t gutter = std::max<size_t>(number.size(), 5);
        const std::string carets = "^" + std::string(std::max<size_t>(columns(marked), 1) - 1, '~');
        return fmt::format("{:>{}} |{}\n{:{}} |{:{}}{}\n", number, gutter,
                           terminal().show(u" " + before + marked + behind), "", gutter, "", columns(before) + 1,
                           coloured(green, carets));
    }

    bool m_isColoured;
    bool m_isQuiet;
    std::map<std::string, std::string> m_shownNames;
};

} // namespace

Phrase untoldOf(const Report &report)
{
    return counted(Text::countOfUntold, report.untoldErrors + report.untoldWarnings);
}

Phrase sentenceOf(const Diagnostic &diagnostic)
{
    if (diagnostic.message == 0)
        return diagnostic.text;
    return {Text::ofMessage, {static_cast<unsigned>(diagnostic.message), diagnostic.text}};
}

std::unique_ptr<Writer> textWriter(Sink sink, const WriterOptions &options)
{
    return std::make_unique<TextWriter>(std::move(sink), options);
}

} // namespace tool::check
