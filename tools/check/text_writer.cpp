#include "check/writers.h"

#include "charset.h"
#include "terminal.h"

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
                          coloured(isError ? red : magenta, isError ? "error:" : "warning:"),
                          show(sentenceOf(diagnostic)), rowOf(diagnostic.rule).name));
        if (showsLine(diagnostic))
            print(linesOf(diagnostic));
        if (diagnostic.notePlace)
            print(fmt::format("{} {} {}\n", placeOf(*diagnostic.notePlace), coloured(cyan, "note:"),
                              show(diagnostic.noteText)));
    }

    void end(const Summary &summary) override
    {
        const auto count = [](size_t number, const char *name) {
            return fmt::format("{} {}{}", number, name, number == 1 ? "" : "s");
        };
        if (!m_isQuiet)
            print(fmt::format("{}, {} in {}\n", count(summary.errors, "error"), count(summary.warnings, "warning"),
                              count(summary.files, "file")));
    }

private:
    std::string coloured(const char *colour, std::string_view text) const
    {
        return m_isColoured ? fmt::format("{}{}{}", colour, text, plain) : std::string(text);
    }

    std::string placeOf(const Place &place)
    {
        const auto [shown, isNew] = m_shownNames.try_emplace(place.file);
        if (isNew)
            shown->second = terminal().showBytes(place.file);
        return coloured(bold, fmt::format("{}:{}:{}:", shown->second, place.begin.line, place.begin.column));
    }

    /** What is missing in a unit or file stands nowhere in it. */
    static bool showsLine(const Diagnostic &diagnostic)
    {
        const bool isMissing = diagnostic.rule == Rule::argumentMissing || diagnostic.rule == Rule::messageMissing;
        return !isMissing;
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

std::string sentenceOf(const Diagnostic &diagnostic)
{
    return diagnostic.message != 0 ? fmt::format("message {}: {}", diagnostic.message, diagnostic.text)
                                   : diagnostic.text;
}

std::unique_ptr<Writer> textWriter(Sink sink, const WriterOptions &options)
{
    return std::make_unique<TextWriter>(std::move(sink), options);
}

} // namespace tool::check
