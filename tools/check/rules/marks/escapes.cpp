#include "check/rules/marks/escapes.h"

#include "check/texts/utf8.h"

#include <algorithm>

namespace tool::check
{

void checkEscapes(Subject &subject)
{
    if (!subject.resolved().hasBackslash())
        return;
    const ParsedFile &parsed = subject.parsed();
    const std::string_view raw = parsed.rawText(subject.message());
    for (size_t at = raw.find('\\'); at < raw.size(); at = raw.find('\\', at))
    {
        const size_t length = escapeLength(raw.substr(at));
        if (length == 0 && at + 1 == raw.size())
            subject.find(Rule::trailingBackslash, parsed.locate(subject.message(), {at, at + 1}),
                         {Text::endsInBackslash});
        else if (length == 0)
        {
            size_t end = at + 1;
            takeUtf8(raw, end);
            subject.find(Rule::unknownEscape, parsed.locate(subject.message(), {at, end}),
                         {Text::noEscape, {quotation(raw.substr(at, end - at))}});
        }
        at += std::max<size_t>(length, 1);
    }
}

} // namespace tool::check
