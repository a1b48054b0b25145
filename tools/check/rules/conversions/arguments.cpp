#include "check/rules/conversions/arguments.h"

#include "library/language_conversions.h"

#include <algorithm>
#include <set>

namespace tool::check
{
namespace
{

/** As ".2", or empty: a width may differ, as words do, but not what is left of a number. */
std::string_view precisionOf(const Conversion &conversion)
{
    const std::string_view written = conversion.written;
    const size_t begin = std::min(written.find('.'), written.size());
    return written.substr(begin, std::min(written.find_first_not_of("0123456789*", begin + 1), written.size()) - begin);
}

/** The flags in front of a width, which is 0 where there is none. */
struct Layout
{
    std::string_view flags;
    bool hasWidth;
};

Layout layoutOf(const Conversion &conversion)
{
    const std::string_view written = conversion.written;
    const size_t end = std::min(written.find_first_not_of("-+ #0", 1), written.size());
    const char next = end < written.size() ? written[end] : '\0';
    return {written.substr(1, end - 1), next == '*' || (next >= '1' && next <= '9')};
}

/** Whether a column of a table or a sign is lost: a language may have another width, and one of its own. */
bool losesLayout(const Conversion &here, const Conversion &there)
{
    const Layout ours = layoutOf(here);
    const Layout theirs = layoutOf(there);
    return (theirs.hasWidth && !ours.hasWidth) ||
           std::any_of(theirs.flags.begin(), theirs.flags.end(),
                       [&ours](char flag) { return ours.flags.find(flag) == std::string_view::npos; });
}

std::vector<Slot> slotsIn(const Conversion &conversion, Slot::Role role)
{
    std::vector<Slot> slots;
    for (const Slot &slot : conversion.slots)
        if (slot.role == role)
            slots.push_back(slot);
    return slots;
}

/** "argument 2", or "the width of argument 2". */
Phrase describe(const Conversion &conversion, const Slot &slot, size_t value, size_t values)
{
    const unsigned position = conversion.shownPosition();
    if (slot.role == Slot::Role::width)
        return {Text::widthOfArgument, {position}};
    if (slot.role == Slot::Role::precision)
        return {Text::precisionOfArgument, {position}};
    if (values > 1)
        return {Text::valueOfArgument, {value + 1, position}};
    return {Text::argumentNumber, {position}};
}

/**
 * The conversion that takes a slot, counted from 1 in the order in which arguments are passed; null behind the last.
 */
const Conversion *conversionOf(const Format &format, size_t slot)
{
    for (const size_t index : format.byPosition)
    {
        const Conversion &conversion = format.conversions[index];
        if (slot <= conversion.slots.size())
            return &conversion;
        slot -= conversion.slots.size();
    }
    return nullptr;
}

class ArgumentComparison
{
public:
    ArgumentComparison(Subject &subject, formTable *table, const Format &format, const Format &original)
        : m_subject(subject), m_table(table), m_format(format), m_original(original)
    {
    }

    void run(const std::vector<BrokenPlaceholder> &broken);

private:
    /** Whether what a conversion writes is to be compared, since it takes the arguments of the other one. */
    static bool isChanged(const Conversion &here, const Conversion &there);
    void findMissing(const Conversion &there);
    void findExtra(const Conversion &here);
    void compareSlots(const Conversion &here, const Conversion &there);
    void compareEncoding();
    Note noteOn(const Conversion &there) const
    {
        return {true, m_subject.placeOfOriginal(there.place), {Text::referenceHas, {there.written}}};
    }

    Subject &m_subject;
    formTable *m_table;
    const Format &m_format;
    const Format &m_original;
};

void ArgumentComparison::run(const std::vector<BrokenPlaceholder> &broken)
{
    const bool agrees = m_format.isAccepted && m_format.arguments() == m_original.arguments();
    std::set<int> unknown; // positions of what is no conversion; 0 where it may be meant for any argument
    for (const FormatFault &fault : m_format.faults)
        unknown.insert(fault.position);
    for (const BrokenPlaceholder &placeholder : broken)
        unknown.insert(placeholder.position);
    for (const Conversion &there : m_original.conversions)
        if (const Conversion *const here = m_format.find(there.position))
        {
            if (isChanged(*here, there))
                m_subject.find(Rule::conversionChanged, m_subject.placeOf(here->place),
                               {Text::conversionChanged, {here->written, there.written}}, noteOn(there));
            else if (!agrees)
                compareSlots(*here, there);
        }
        else if (!agrees && unknown.count(0) == 0 && unknown.count(there.position) == 0 && !there.slots.empty())
            findMissing(there);
    if (agrees)
        return compareEncoding();
    for (const Conversion &here : m_format.conversions)
        if (m_original.find(here.position) == nullptr && !here.slots.empty())
            findExtra(here);
}

bool ArgumentComparison::isChanged(const Conversion &here, const Conversion &there)
{
    const bool isOther = here.name != there.name && !differInLanguageAlone(here.name, there.name);
    return here.slots == there.slots && !writesNothing(here.written) && !writesNothing(there.written) &&
           (isOther || precisionOf(here) != precisionOf(there) || losesLayout(here, there));
}

void ArgumentComparison::findMissing(const Conversion &there)
{
    const bool leavesGap = there.position < m_format.highestPosition();
    m_subject.find(Rule::argumentMissing, m_subject.message().unit,
                   {leavesGap ? Text::argumentLost : Text::lastArgumentLost, {there.shownPosition(), tagOf(there)}});
}

void ArgumentComparison::findExtra(const Conversion &here)
{
    m_subject.find(
        Rule::argumentExtra, m_subject.placeOf(here.place), {Text::argumentExtra, {here.shownPosition(), here.written}},
        Note{true, m_subject.original().source, counted(Text::referenceTakes, m_original.arguments().size())});
}

/** Compares the arguments that two conversions of one position take: of each role, one after the other. */
void ArgumentComparison::compareSlots(const Conversion &here, const Conversion &there)
{
    const Range place = m_subject.placeOf(here.place);
    for (const Slot::Role role : {Slot::Role::width, Slot::Role::precision, Slot::Role::value})
    {
        const std::vector<Slot> ours = slotsIn(here, role);
        const std::vector<Slot> theirs = slotsIn(there, role);
        for (size_t i = 0; i < std::max(ours.size(), theirs.size()); ++i)
            if (i >= ours.size())
                m_subject.find(Rule::argumentMissing, place,
                               {Text::partMissing, {describe(here, theirs[i], i, theirs.size())}}, noteOn(there));
            else if (i >= theirs.size())
                m_subject.find(Rule::argumentExtra, place, {Text::partExtra, {describe(here, ours[i], i, ours.size())}},
                               noteOn(there));
            else if (ours[i].kind != theirs[i].kind)
                m_subject.find(Rule::argumentType, place,
                               {Text::partDiffers,
                                {describe(here, ours[i], i, ours.size()), Phrase{nameOf(ours[i].kind)},
                                 Phrase{nameOf(theirs[i].kind)}}},
                               noteOn(there));
    }
}

/** Finds the first argument that the original puts through an encoder, and this message does not. */
void ArgumentComparison::compareEncoding()
{
    const auto opensRegion = [](const Conversion &conversion) { return conversion.name == "N"; };
    if (std::none_of(m_original.conversions.begin(), m_original.conversions.end(), opensRegion))
        return;
    KTProblem problem{};
    problem.structSize = sizeof problem;
    if (KTCompareFormats(m_subject.text().data(), m_subject.originalText().data(), m_table, &problem) ==
        KT_ERR_NO_MEMORY)
        throw std::bad_alloc();
    const Conversion *const here = conversionOf(m_format, problem.slot);
    const Conversion *const there = conversionOf(m_original, problem.slot);
    if (problem.rule == KT_RULE_ENCODING_LOST && here != nullptr && there != nullptr)
        m_subject.find(Rule::encodingLost, m_subject.placeOf(here->place), {Text::encodingLost, {here->written}},
                       noteOn(*there));
}

} // namespace

void compareArguments(Subject &subject, formTable *table, const Format &format, const Format &original,
                      const std::vector<BrokenPlaceholder> &broken)
{
    ArgumentComparison(subject, table, format, original).run(broken);
}

} // namespace tool::check
