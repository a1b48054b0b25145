#include "check/rules/marks/line_breaks.h"

#include "check/texts/blanks.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

namespace tool::check
{
namespace
{

unsigned count(std::string_view text, char byte)
{
    return static_cast<unsigned>(std::count(text.begin(), text.end(), byte));
}

struct Break
{
    char character;
    std::string_view mistyped;
    Text fewer, more;
};
constexpr Break breaks[] = {{'\n', "/n", Text::breaksFewer, Text::breaksMore},
                            {'\t', "/t", Text::tabsFewer, Text::tabsMore}};

/** The place of a slash where a backslash was meant, since a break of the original is missing; or nothing. */
std::optional<Range> mistyped(const Break &row, const Subject &subject)
{
    const std::string_view here = subject.text();
    const size_t slash = here.find(row.mistyped);
    if (slash == std::string_view::npos || subject.originalHas(row.mistyped) ||
        count(here, row.character) >= count(subject.originalText(), row.character))
        return std::nullopt;
    return Range{slash, slash + row.mistyped.size()};
}

void findSlash(Subject &subject, const Break &row, Range slash)
{
    subject.find(Rule::lineBreak, subject.placeOf(slash),
                 {Text::slashForBackslash, {std::string(row.mistyped), std::string("\\") + row.mistyped[1]}});
}

/** Whether a text is broken where its lines are full, which each language does at other places. */
bool isFilled(std::string_view text)
{
    constexpr size_t full = 45;
    constexpr unsigned several = 2;
    unsigned lines = 0;
    bool hasFullLine = false;
    size_t begin = 0;
    for (size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
    {
        ++lines;
        hasFullLine = hasFullLine || at - begin >= full;
        begin = at + 1;
    }
    return hasFullLine && lines >= several;
}

/** How many lines of a text go on in a column, as in the help on options. */
unsigned linesOfColumn(std::string_view text)
{
    unsigned lines = 0;
    for (size_t at = text.find("\n        "); at != std::string_view::npos; at = text.find("\n        ", at + 1))
        ++lines;
    return lines;
}

void compareNumber(Subject &subject, const Break &row)
{
    const std::string_view here = partOf(subject.text(), coreOf(subject.text()));
    const std::string_view there = partOf(subject.originalText(), coreOf(subject.originalText()));
    unsigned ours = count(here, row.character);
    unsigned theirs = count(there, row.character);
    const bool isLine = row.character == '\n';
    if (isLine && ours != theirs && doubleBlankIn(subject.originalText()))
    {
        ours -= linesOfColumn(here);
        theirs -= linesOfColumn(there);
    }
    const bool isOtherwiseFilled = isLine && ours > 0 && isFilled(there);
    if (ours != theirs && !subject.text().empty() && !subject.originalText().empty() && !isOtherwiseFilled)
        subject.find(Rule::lineBreak, subject.message().source, {ours < theirs ? row.fewer : row.more, {ours, theirs}},
                     Note{true, subject.original().source, {Text::referenceIsHere}});
}

} // namespace

bool hasMistypedBreak(const Subject &subject)
{
    return std::any_of(std::begin(breaks), std::end(breaks),
                       [&subject](const Break &row) { return mistyped(row, subject).has_value(); });
}

void compareLineBreaks(Subject &subject)
{
    for (const Break &row : breaks)
        if (const std::optional<Range> slash = mistyped(row, subject))
            findSlash(subject, row, *slash);
        else
            compareNumber(subject, row);
}

void checkSlashes(Subject &subject)
{
    const std::string_view text = subject.text();
    for (const Break &row : breaks)
        for (size_t at = text.find(row.mistyped); at < text.size() && !subject.isFull(Rule::lineBreak);
             at = text.find(row.mistyped, at + 1))
        {
            const size_t end = at + row.mistyped.size();
            constexpr std::string_view enders = ".!:?";
            const bool isBehindSentence = at > 0 && enders.find(text[at - 1]) != std::string_view::npos;
            if (end == text.size() ? at > 0 && text[at - 1] != ' ' : isBehindSentence)
                findSlash(subject, row, {at, end});
        }
}

} // namespace tool::check
