#include "check/rules/conversions/conversions.h"

#include "check/rules/conversions/arguments.h"
#include "check/rules/conversions/placeholders.h"
#include "check/texts/blanks.h"
#include "library/selector.h"

#include <set>

namespace tool::check
{
namespace
{

/** A run of numbers. */
struct Run
{
    int first, last;

    bool isEmpty() const { return first > last; }
};

/** The numbers below the highest that are not in a set. */
std::vector<Run> gapsIn(const std::set<int> &numbers)
{
    std::vector<Run> gaps;
    int next = 1;
    for (const int number : numbers)
    {
        if (number > next)
            gaps.push_back({next, number - 1});
        next = number + 1;
    }
    return gaps;
}

/** Why a placeholder is no conversion, from the text of its message. */
Phrase whyBroken(std::string_view message, const Piece &piece)
{
    const std::string_view text = message.substr(piece.begin, piece.positionBegin - piece.begin);
    const std::string quoted = quotation(text);
    if (text.substr(0, 1) == "%" && piece.begin > 0 && message[piece.begin - 1] == '%')
        return {Text::placeholderBehindPercent, {quoted}};
    if (text.find('[') != std::string_view::npos)
        return {Text::placeholderHasPosition, {quoted}};
    if (text.find('%') == std::string_view::npos)
        return {Text::placeholderNoPercent, {quoted, quotation(partOf(message, {piece.begin, piece.end}))}};
    if (coreOf(text).end < text.size())
        return {Text::placeholderEndsBlank, {quoted}};
    return {Text::placeholderNoConversion, {quoted}};
}

class ConversionCheck
{
public:
    ConversionCheck(Subject &subject, formTable *table, const Format *originalFormat)
        : m_subject(subject), m_originalFormat(originalFormat), m_format(parseFormat(subject.text(), table)),
          m_broken(takeBroken(subject.parsed(), subject.message(), subject.resolved(), m_format)), m_table(table)
    {
    }

    void run();

private:
    void find(Rule rule, Range place, Phrase text) { m_subject.find(rule, place, std::move(text)); }
    Range placeOf(Range range) const { return m_subject.placeOf(range); }

    void checkFaults();
    Phrase sentenceOn(const FormatFault &fault) const;
    void checkPositions();
    void findGap(const Run &gap);
    void checkPlaceholders(bool isUnexplained);
    void checkTyped();
    void checkRegion();
    bool isArgument(int position) const;

    Subject &m_subject;
    const Format *m_originalFormat; // null where there is no original, or its format is none
    Format m_format;
    std::vector<BrokenPlaceholder> m_broken;
    formTable *m_table;
};

void ConversionCheck::run()
{
    const size_t before = m_subject.findings();
    checkFaults();
    checkPositions();
    if (m_originalFormat != nullptr && m_originalFormat->isAccepted)
        compareArguments(m_subject, m_table, m_format, *m_originalFormat, m_broken);
    const bool isUnexplained = !m_format.isAccepted && m_subject.findings() == before;
    checkPlaceholders(isUnexplained);
    if (isUnexplained && m_broken.empty())
        find(Rule::badConversion, m_subject.message().source, {Text::noFormat});
    checkTyped();
    checkRegion();
}

void ConversionCheck::checkPlaceholders(bool isUnexplained)
{
    const ParsedFile &parsed = m_subject.parsed();
    for (const auto &[piece, position, isFault, typed] : m_broken)
        find(isFault || isUnexplained ? Rule::badConversion : Rule::badPlaceholder,
             parsed.locateAttribute(piece->place, "ts"), whyBroken(parsed.rawText(m_subject.message()), *piece));
}

void ConversionCheck::checkFaults()
{
    const bool hasConversions = m_subject.message().hasPlaceholder || !m_format.conversions.empty() ||
                                (m_originalFormat != nullptr && !m_originalFormat->conversions.empty()) ||
                                (m_subject.hasOriginal() && m_subject.original().hasPlaceholder) ||
                                m_subject.originalHas("%%"); // it is formatted
    for (const FormatFault &fault : m_format.faults)
    {
        const std::string_view written = partOf(m_subject.text(), fault.place);
        if (fault.isLone && !hasConversions)
            find(Rule::lonePercent, placeOf(fault.place), {Text::percentAlone});
        else if (fault.problem.rule == KT_RULE_UNKNOWN_CONVERSION && namesSelector(written))
            find(Rule::selectorAlone, placeOf(fault.place), {Text::selectorNotAlone, {quotation(written)}});
        else
            find(Rule::badConversion, placeOf(fault.place),
                 m_subject.isFull(Rule::badConversion) ? Phrase{} : sentenceOn(fault));
    }
}

/** What to do about a malformed conversion: where it was a tag once, that is to be copied. */
Phrase ConversionCheck::sentenceOn(const FormatFault &fault) const
{
    const std::string_view text = m_subject.text();
    const std::string written = quotation(partOf(text, fault.place));
    const size_t tag = text.substr(0, fault.place.begin).rfind("<x");
    const bool isInTag =
        tag != std::string_view::npos && text.substr(tag, fault.place.begin - tag).find('>') == std::string_view::npos;
    if (isInTag)
        return {Text::escapedTag};
    if (m_originalFormat != nullptr && fault.problem.rule == KT_RULE_POSITION_MISSING && written.size() > 1)
        for (const Conversion &there : m_originalFormat->conversions)
            if (there.written.substr(0, there.written.find('[')) == written)
                return {Text::typedPlaceholder, {written, tagOf(there)}};
    return {Text::badConversion, {written, problemShown(fault.problem)}};
}

/** Whether the position is one at which the reference takes an argument, and can be compared. */
bool ConversionCheck::isArgument(int position) const
{
    if (m_originalFormat == nullptr || !m_originalFormat->isAccepted)
        return false;
    const Conversion *const there = m_originalFormat->find(position);
    return there != nullptr && !there->slots.empty();
}

void ConversionCheck::checkPositions()
{
    std::set<int> positions;
    bool isMalformed = false; // by a conversion whose position is not known
    for (const FormatFault &fault : m_format.faults)
    {
        isMalformed = isMalformed || fault.position == 0;
        if (fault.position != 0)
            positions.insert(fault.position);
    }
    for (const Conversion &conversion : m_format.conversions)
        if (!positions.insert(conversion.position).second)
            find(Rule::positionRepeat, placeOf(conversion.place),
                 {Text::positionRepeated, {conversion.shownPosition()}});
    const int highest = positions.empty() ? 0 : *positions.rbegin();
    for (const BrokenPlaceholder &broken : m_broken)
    {
        isMalformed = isMalformed || broken.position == 0;
        for (const int position : {broken.position, broken.typed})
            if (position != 0 && position < highest) // it fills a gap, and makes none
                positions.insert(position);
    }
    if (isMalformed || m_format.isAccepted)
        return;
    for (const Run &gap : gapsIn(positions))
        findGap(gap);
}

/** Finds what is missing in front of the next conversion; the comparison tells what the reference takes there. */
void ConversionCheck::findGap(const Run &gap)
{
    Run rest = gap;
    while (!rest.isEmpty() && isArgument(rest.first))
        ++rest.first;
    while (!rest.isEmpty() && isArgument(rest.last))
        --rest.last;
    if (rest.isEmpty())
        return;
    const Conversion *behind = nullptr;
    for (const Conversion &conversion : m_format.conversions)
        if (conversion.position > gap.last && (behind == nullptr || conversion.position < behind->position))
            behind = &conversion;
    const auto first = static_cast<unsigned>(rest.first);
    const auto last = static_cast<unsigned>(rest.last);
    find(Rule::positionGap, behind != nullptr ? placeOf(behind->place) : m_subject.message().source,
         first == last ? Phrase{Text::positionMissing, {first}} : Phrase{Text::positionsMissing, {first, last}});
}

// A translation copies its original: one that is typed there as well is told of there, where it is to be mended first.
void ConversionCheck::checkTyped()
{
    for (const Conversion &conversion : m_format.conversions)
    {
        if (!m_subject.isTyped(conversion.place))
            continue;
        const Conversion *const there =
            m_originalFormat != nullptr ? m_originalFormat->find(conversion.position) : nullptr;
        if (there != nullptr && m_subject.isTypedInOriginal(there->place))
            continue;
        find(Rule::typedConversion, placeOf(conversion.place),
             {there != nullptr ? Text::typedConversion : Text::typedInPlaceOfTag,
              {conversion.written, tagOf(there != nullptr ? *there : conversion)}});
    }
}

void ConversionCheck::checkRegion()
{
    const Conversion *last = nullptr; // of the markers, in the order of the positions
    for (const size_t index : m_format.byPosition)
        if (const Conversion &conversion = m_format.conversions[index];
            conversion.name == "N" || conversion.name == "O")
            last = &conversion;
    if (last != nullptr && last->name == "N")
        find(Rule::regionOpen, placeOf(last->place), {Text::regionOpen, {last->written}});
}

} // namespace

void checkConversions(Subject &subject, formTable *table, const Format *originalFormat)
{
    const bool hasPercent = subject.text().find('%') != std::string_view::npos;
    const bool hadConversions = originalFormat != nullptr && !originalFormat->conversions.empty();
    if (hasPercent || hadConversions || subject.message().hasPlaceholder)
        ConversionCheck(subject, table, originalFormat).run();
}

} // namespace tool::check
