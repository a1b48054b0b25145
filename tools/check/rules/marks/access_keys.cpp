#include "check/rules/marks/access_keys.h"

#include "check/texts/utf8.h"

#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

bool isKey(char32_t character)
{
    return u_isalnum(static_cast<UChar32>(character)) != 0;
}

/** Whether an entity as "&lt;" begins at an '&' in front of a letter, or a part of an address as "&a=b". */
bool isOfMarkup(std::string_view text, size_t at)
{
    const size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", at + 1);
    return end != std::string_view::npos && (text[end] == ';' || text[end] == '=');
}

struct Marks
{
    size_t count = 0;
    size_t first = 0;
    bool isPlain = true;   // nothing else in the text looks like the mark
    bool isInWord = false; // one stands within a word, which may be one of capitals with a key
};

/** The places where a mark stands in front of a letter; two of them are one for itself. */
Marks marksIn(std::string_view text, char mark)
{
    Marks marks;
    for (size_t at = text.find(mark); at < text.size(); at = text.find(mark, at + 1))
    {
        if (at + 1 < text.size() && text[at + 1] == mark)
        {
            ++at;
            marks.isPlain = false;
            continue;
        }
        size_t next = at + 1;
        const char32_t key = next < text.size() ? takeUtf8(text, next) : 0;
        const bool isBeforeKey = isKey(key);
        size_t last = at == 0 ? 0 : stepBackUtf8(text, at);
        const bool isBehindLetter = at > 0 && isKey(takeUtf8(text, last));
        // "R&D", "Drag&Drop" and "file_name" are words; "E&xit" is one with a key.
        const bool isInWord = isBehindLetter && (mark == '_' || u_isupper(static_cast<UChar32>(key)) != 0);
        if (!isBeforeKey || isInWord || (mark == '&' && isOfMarkup(text, at)))
        {
            marks.isPlain = false;
            marks.isInWord = marks.isInWord || isInWord;
            continue;
        }
        if (marks.count++ == 0)
            marks.first = at;
    }
    return marks;
}

} // namespace

void AccessKeys::compare(Subject &subject)
{
    constexpr size_t longest = 120; // of a label, in bytes
    const std::string_view there = subject.originalText();
    const std::string_view here = subject.text();
    if (there.size() > longest || there.find("://") != std::string_view::npos)
        return;
    for (const char mark : {'&', '_'})
    {
        if (there.find(mark) == std::string_view::npos && (mark == '_' || here.find(mark) == std::string_view::npos))
            continue;
        const Marks theirs = marksIn(there, mark);
        const Marks ours = marksIn(here, mark);
        const bool isLabel =
            theirs.count == 1 && theirs.isPlain && (mark == '&' || there.find('=') == std::string_view::npos);
        const std::string name(1, mark);
        const auto note = [&] {
            return Note{true, subject.placeOfOriginal({theirs.first, theirs.first + 1}), {Text::referenceHasItHere}};
        };
        if (isLabel && ours.count == 1)
            ++m_kept;
        else if (isLabel && !ours.isInWord && ours.count == 0 &&
                 (mark == '&' || here.find(mark) == std::string_view::npos))
            m_lost.push_back({Rule::accessKey, subject.message().id, subject.message().unit.begin,
                              subject.message().source, Phrase{Text::accessKeyLost, {name}}, note()});
        else if (isLabel && ours.count > 1)
            subject.find(Rule::accessKey, subject.placeOf({ours.first, ours.first + 1}),
                         {Text::accessKeyRepeated, {name}}, note());
        else if (mark == '&' && theirs.count == 0 && theirs.isPlain && ours.count == 1)
            subject.find(Rule::accessKey, subject.placeOf({ours.first, ours.first + 1}),
                         {Text::accessKeyExtra, {name}});
    }
}

void AccessKeys::finish(Findings &findings)
{
    if (m_kept >= m_lost.size())
        for (Finding &finding : m_lost)
            findings.push_back(std::move(finding));
}

} // namespace tool::check
