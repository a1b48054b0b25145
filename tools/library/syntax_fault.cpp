#include "library/syntax_fault.h"

#include "failure.h"
#include "io/charset.h"
#include "io/terminal.h"
#include "library/language_conversions.h"
#include "text.h"

#include <algorithm>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace tool
{
namespace
{

constexpr size_t mostBefore = 40;
constexpr size_t mostMarked = 40;
constexpr size_t mostBehind = 30;

std::u16string lastPart(const std::u16string &text, size_t most)
{
    if (text.size() <= most)
        return text;
    const size_t begin = text.size() - most;
    return u"..." + text.substr(U16_IS_TRAIL(text[begin]) ? begin + 1 : begin);
}

std::u16string firstPart(const std::u16string &text, size_t most)
{
    if (text.size() <= most)
        return text;
    return text.substr(0, U16_IS_LEAD(text[most - 1]) ? most - 1 : most) + u"...";
}

std::string inWords(const Shown &shown)
{
    return shown.phrase.empty() ? shown.words : say(shown.phrase[0]);
}

std::string describe(const std::string &format, const KTProblem &problem, int result)
{
    const std::u16string before = ucs2FromUtf8(format.substr(0, problem.offset));
    const std::u16string place = ucs2FromUtf8(format.substr(problem.offset, problem.length));
    const std::u16string behind = ucs2FromUtf8(format.substr(problem.offset + problem.length));

    const auto character = static_cast<unsigned>(u_countChar32(before.data(), static_cast<int32_t>(before.size()))) + 1;
    const std::string what = say(Text::faultAt, {problemShown(problem), character, terminal().quote(place)});

    const std::u16string shownBefore = terminal().escaped(lastPart(before, mostBefore));
    const std::u16string marked = terminal().escaped(firstPart(place, mostMarked));
    const std::u16string shown = shownBefore + marked + terminal().escaped(firstPart(behind, mostBehind));
    const std::string carets = "^" + std::string(std::max<size_t>(columns(marked), 1) - 1, '~');
    return what + nameOf(result) + "\n  " + utf8(shown) + "\n  " + std::string(columns(shownBefore), ' ') + carets;
}

} // namespace

std::string describeSyntaxFault(const std::string &format, formTable *forms)
{
    KTProblem problem = {};
    problem.structSize = sizeof problem;
    const int result = KTExplainFormat(format.c_str(), forms, &problem);
    return describe(format, problem, result);
}

std::string describeMessageFault(const MessageFile &file, unsigned id)
{
    KTProblem problem = {};
    problem.structSize = sizeof problem;
    const int result = KTExplainMessage(file.table(), id, namedConversions(), &problem);
    const char *const text = problem.message != 0 ? file.find(problem.message) : nullptr;
    if (problem.rule == KT_RULE_NONE || text == nullptr || problem.length == 0)
        return inWords(problemShown(problem)) + nameOf(result);
    const std::string fault = describe(text, problem, result);
    return problem.message != id ? say(Text::messageSubject, {problem.message}) + ": " + fault : fault;
}

} // namespace tool
