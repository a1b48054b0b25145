#include "format/format_string.h"
#include "format/formatters/integer.h"
#include "format/prepared.h"
#include "format/typed_argument.h"
#include "lifecycle/global_state.h"
#include "strconv/bounded_text.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

using kelto::FormatVerdict;

/** The record that the caller wants filled, which may be null. */
class Report
{
public:
    explicit Report(KTProblem *problem) : m_problem(problem)
    {
        if (isUsable())
            set({0, KT_RULE_NONE, 0, 0, 0, 0, nullptr, nullptr});
    }

    bool isUsable() const { return m_problem == nullptr || m_problem->structSize >= sizeof(KTProblem); }

    void set(const KTProblem &problem) const
    {
        if (m_problem == nullptr)
            return;
        const size_t size = m_problem->structSize;
        *m_problem = problem;
        m_problem->structSize = size;
    }

    void set(const FormatVerdict &verdict) const
    {
        set({0, verdict.rule, 0, verdict.position, verdict.offset, verdict.length, nullptr, nullptr});
    }

private:
    KTProblem *m_problem;
};

/** Where the conversion specification of a position stands in a format that was accepted. */
void findPlace(const char *format, KTProblem &problem)
{
    kelto::PercentPlaces<char> places;
    kelto::walkFormat(
        format, std::strlen(format), places, [](const char *, size_t) {},
        [&](const kelto::PercentPlace<char> &place) {
            if (static_cast<unsigned>(place.position) != problem.position)
                return true;
            problem.offset = static_cast<size_t>(place.begin - format);
            problem.length = static_cast<size_t>(place.end - place.begin);
            return false;
        });
}

/** The first slot in which two formats differ; its rule is KT_RULE_NONE where there is none. */
KTProblem compareSlots(const KTPreparedFormat &format, const KTPreparedFormat &reference)
{
    const uint32_t common = std::min(format.slotCount, reference.slotCount);
    uint32_t i = 0;
    while (i < common && kelto::isSameKind(format.slots[i].code, reference.slots[i].code))
        ++i;
    const char *const expected = i < reference.slotCount ? kelto::slotName(reference.slots[i].code) : nullptr;
    const char *const found = i < format.slotCount ? kelto::slotName(format.slots[i].code) : nullptr;
    const auto problem = [&](KTRule rule, const KTPreparedFormat &at) -> KTProblem {
        return {0, rule, i + 1, at.slots[i].position, 0, 0, expected, found};
    };
    if (i < common)
        return problem(KT_RULE_ARGUMENT_TYPE, format);
    if (i < reference.slotCount)
        return problem(KT_RULE_ARGUMENT_MISSING, reference);
    if (i < format.slotCount)
        return problem(KT_RULE_ARGUMENT_EXTRA, format);
    return {0, KT_RULE_NONE, 0, 0, 0, 0, nullptr, nullptr};
}

} // namespace

int KTExplainFormat(const char *format, formTable *table, KTProblem *problem)
{
    const Report report(problem);
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (format == nullptr || !report.isUsable())
        return KT_ERR_INVALID_PARAMETER;
    const size_t length = std::strlen(format);
    if (kelto::isTooLong(length))
        return KT_ERR_CONVERSION_INVALID_ARGUMENT;
    kelto::TagBlock<KTParameter> parameters;
    kelto::PercentPlaces<char> places;
    const FormatVerdict verdict = kelto::checkFormat(format, length, table, parameters, places);
    report.set(verdict);
    return verdict.result;
}

int KTCompareFormats(const char *format, const char *reference, formTable *table, KTProblem *problem)
{
    const Report report(problem);
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (format == nullptr || reference == nullptr || !report.isUsable())
        return KT_ERR_INVALID_PARAMETER;
    kelto::PreparedOwner own;
    const FormatVerdict verdict = kelto::prepareFormat(format, table, own);
    report.set(verdict);
    if (verdict.result != 0)
        return verdict.result;
    kelto::PreparedOwner expected;
    if (const int result = kelto::prepareFormat(reference, table, expected).result)
    {
        report.set(
            {0, result == KT_ERR_FORMAT_SYNTAX ? KT_RULE_REFERENCE : KT_RULE_NONE, 0, 0, 0, 0, nullptr, nullptr});
        return result;
    }
    KTProblem difference = compareSlots(*own, *expected);
    if (difference.rule == KT_RULE_NONE)
        return 0;
    findPlace(format, difference);
    report.set(difference);
    return KT_ERR_INVALID_PARAMETER;
}

namespace
{

/** A sentence with at most two numbers and two texts, by the letters of what it needs of a problem. */
struct Sentence
{
    int rule;
    const char *text; // $s slot, $p position, $e expected, $f found
};

constexpr Sentence sentences[] = {
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
};

const char *sentenceOf(int rule)
{
    for (const Sentence &row : sentences)
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
    kelto::BoundedText sentence(text, *size);
    for (const char *next = sentenceOf(problem->rule); *next != '\0'; ++next)
    {
        const char letter = *next == '$' ? *++next : '\0';
        if (letter == 's')
            appendNumber(sentence, problem->slot);
        else if (letter == 'p')
            appendNumber(sentence, problem->position);
        else if (letter == 'e')
            sentence.append(orSomething(problem->expected));
        else if (letter == 'f')
            sentence.append(orSomething(problem->found));
        else
            sentence.append({next, 1});
    }
    return sentence.finish(size);
}
