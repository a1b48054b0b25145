// KTProblemText(): the sentences for what is wrong with a format.

#include "format/format_limits.h"
#include "format/formatters/integer.h"
#include "kelto.h"
#include "strconv/bounded_text.h"

#include <iterator>

namespace
{

/** The sentence of a rule; letters behind a '$' stand for members of the problem. */
struct RuleSentence
{
    int rule;
    const char *text; // $s slot, $p position, $m message, $e expected, $f found
};

constexpr RuleSentence sentences[] = {
    {KT_RULE_NONE, "there is no problem"},
    {KT_RULE_POSITION_MISSING, "a conversion has no position, as in %s[1] (a percent sign by itself is written %%)"},
    {KT_RULE_POSITION_MALFORMED, "the position of a conversion is not a number from 1 on in brackets"},
    {KT_RULE_NUMBER_TOO_LARGE, "a width, precision or position is too large"},
    {KT_RULE_NAME_TOO_LONG, "the name of a conversion has more than 19 characters"},
    {KT_RULE_NAME_NOT_ASCII, "the name of a conversion has a character that is not ASCII"},
    {KT_RULE_UNKNOWN_CONVERSION, "no conversion has this name"},
    {KT_RULE_POSITION_REPEATED, "position $p is used twice"},
    {KT_RULE_POSITION_GAP, "position $p is missing: the positions must be 1 to the number of conversions, each once"},
    {KT_RULE_REFERENCE, "the reference is no correct format"},
    {KT_RULE_ARGUMENT_TYPE, "argument $s is $f here, $e in the reference"},
    {KT_RULE_ARGUMENT_MISSING, "argument $s, $e in the reference, is missing here"},
    {KT_RULE_ARGUMENT_EXTRA, "argument $s, $f here, is not in the reference"},
    {KT_RULE_ENCODING_LOST, "argument $s is not encoded here, as it is in the reference"},
    {KT_RULE_SELECTOR_ALONE,
     "a message that selects another is one conversion such as %101plural[1], and nothing else"},
    {KT_RULE_SELECTOR_ARGUMENT, "argument $s selects and is $f"},
    {KT_RULE_SELECTOR_DEPTH, "message $m leads back to itself, or through more than 8 messages that select another"},
    {KT_RULE_SELECTOR_SIZE, "more than 1024 messages are selected from"},
    {KT_RULE_VARIANT_ARGUMENTS, "argument $s is $f in message $m, $e in those before it"},
    {KT_RULE_VARIANT_MISSING, "message $m is missing, or has no message to select"},
};

static_assert(kelto::maxSelectionSteps == 8 && kelto::maxSelectedMessages == 1024, "two of the sentences say so");

const char *sentenceOf(int rule)
{
    for (const RuleSentence &row : sentences)
        if (row.rule == rule)
            return row.text;
    return "the format has a problem";
}

void appendNumber(kelto::BoundedText &sentence, unsigned number)
{
    char digits[20];
    const char *const begin = kelto::writeDecimal(std::end(digits), number);
    sentence.append({begin, static_cast<size_t>(std::end(digits) - begin)});
}

const char *orSomething(const char *text)
{
    return text != nullptr ? text : "something else";
}

} // namespace

int KTProblemText(const KTProblem *problem, size_t *size, char *text)
{
    if (problem == nullptr || size == nullptr || (text == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    const bool hasMessage = problem->structSize >= sizeof(KTProblem);
    kelto::BoundedText sentence(text, *size);
    for (const char *next = sentenceOf(problem->rule); *next != '\0'; ++next)
    {
        const char letter = *next == '$' ? *++next : '\0';
        if (letter == 's')
            appendNumber(sentence, problem->slot);
        else if (letter == 'p')
            appendNumber(sentence, problem->position);
        else if (letter == 'm')
            appendNumber(sentence, hasMessage ? problem->message : 0);
        else if (letter == 'e')
            sentence.append(orSomething(problem->expected));
        else if (letter == 'f')
            sentence.append(orSomething(problem->found));
        else
            sentence.append({next, 1});
    }
    return sentence.finish(size);
}
