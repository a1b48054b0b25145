#include "syntax_fault.h"

#include "charset.h"
#include "failure.h"
#include "terminal.h"

#include <algorithm>
#include <fmt/core.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unordered_set>

namespace tool
{
namespace
{

using View = std::u16string_view;

struct SyntaxFault
{
    std::string reason;
    Span place;
};

constexpr View flagCharacters = u"-+ #0";
constexpr View digits = u"0123456789";

/** What the author will have meant as one specification: to its ']', else to the next white space or '%'. */
Span guessPlace(View format, size_t begin)
{
    const size_t name = std::min(format.find_first_not_of(flagCharacters, begin + 1), format.size());
    const size_t next = std::min(format.find_first_of(u"% \t\r\n", name), format.size());
    const size_t bracket = format.substr(0, next).find(u']', name);
    return {begin, bracket != View::npos ? bracket + 1 : next};
}

std::string whyMalformed(View specification)
{
    const size_t open = specification.find(u'[');
    if (open == View::npos)
        return "a conversion has no position, as in %s[1] (a percent sign by itself is written %%)";
    if (specification.back() != u']')
        return "the brackets of a position are not closed";
    const View position = specification.substr(open + 1, specification.size() - open - 2);
    if (position.find_first_not_of(digits) != View::npos || position.find_first_not_of(u'0') == View::npos)
        return "a position is not a number from 1 on";
    return "a conversion is malformed: the form is %[flags][width][.precision][h|l|L|!]name[position]";
}

SyntaxFault faultOfPositions(const std::vector<Specification> &specifications)
{
    const int count = static_cast<int>(specifications.size());
    std::unordered_set<int> seen;
    for (const Specification &specification : specifications)
        if (!seen.insert(specification.position).second)
            return {fmt::format("position {} is used twice", specification.position), specification.place};

    int missing = 1;
    while (seen.count(missing) != 0)
        ++missing;
    const auto beyond = [count](const Specification &specification) { return specification.position > count; };
    const auto culprit = std::find_if(specifications.begin(), specifications.end(), beyond);
    const std::string reason =
        fmt::format("position {} is missing: the positions must be 1 to {}, as many as conversions", missing, count);
    return {reason, culprit != specifications.end() ? culprit->place : Span{0, 0}};
}

SyntaxFault findSyntaxFault(const std::u16string &format)
{
    const std::vector<Specification> specifications = specificationsOf(format);
    for (const Specification &specification : specifications)
    {
        if (specification.position == 0)
            return {whyMalformed(specification.place.of(format)), specification.place};
        if (specification.type == CONV_UNKNOWN)
            return {"no conversion has this name", specification.place};
    }
    return faultOfPositions(specifications);
}

constexpr size_t mostBefore = 40;
constexpr size_t mostMarked = 40;
constexpr size_t mostBehind = 30;

std::u16string lastPart(View text, size_t most)
{
    if (text.size() <= most)
        return std::u16string(text);
    const size_t begin = text.size() - most;
    return u"..." + std::u16string(text.substr(U16_IS_TRAIL(text[begin]) ? begin + 1 : begin));
}

std::u16string firstPart(View text, size_t most)
{
    if (text.size() <= most)
        return std::u16string(text);
    return std::u16string(text.substr(0, U16_IS_LEAD(text[most - 1]) ? most - 1 : most)) + u"...";
}

/** The text, or what of it surrounds the place, with carets below: two lines. */
std::string underline(View format, Span place)
{
    const std::u16string before = terminal().escaped(lastPart(format.substr(0, place.begin), mostBefore));
    const std::u16string marked = terminal().escaped(firstPart(place.of(format), mostMarked));
    const std::u16string behind = terminal().escaped(firstPart(format.substr(place.end), mostBehind));
    const std::string carets(std::max<size_t>(columns(marked), 1) - 1, '~');
    return fmt::format("  {}\n  {:{}}^{}", utf8(before + marked + behind), "", columns(before), carets);
}

} // namespace

std::vector<Specification> specificationsOf(const std::u16string &format)
{
    std::vector<Specification> specifications;
    for (size_t at = format.find(u'%'); at < format.size(); at = format.find(u'%', at))
    {
        if (format[at + 1] == u'%')
        {
            at += 2;
            continue;
        }
        const UCS2 *cursor = format.c_str() + at;
        Flag_t type = CONV_UNKNOWN;
        int width = 0;
        int precision = 0;
        int flags = 0;
        KTFormatter *formatter = nullptr;
        const int position = parseConvSpec(&cursor, nullptr, &type, &width, &precision, &flags, &formatter);
        const Span place =
            position == 0 ? guessPlace(format, at) : Span{at, static_cast<size_t>(cursor - format.c_str())};
        specifications.push_back({place, position, type});
        if (position == 0)
            break;
        at = place.end;
    }
    return specifications;
}

std::string describeSyntaxFault(const std::u16string &format)
{
    const SyntaxFault fault = findSyntaxFault(format);
    const auto character = u_countChar32(format.data(), static_cast<int32_t>(fault.place.begin)) + 1;
    return fmt::format("{}, at character {}: {}{}\n{}", fault.reason, character,
                       terminal().quote(fault.place.of(format)), nameOf(KT_ERR_FORMAT_SYNTAX),
                       underline(format, fault.place));
}

} // namespace tool
