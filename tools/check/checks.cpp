#include "check/checks.h"

#include "check/access_keys.h"
#include "check/damage.h"
#include "check/directions.h"
#include "check/identity.h"
#include "check/left_over.h"
#include "check/literals.h"
#include "check/markup.h"
#include "check/neighbours.h"
#include "check/order.h"
#include "check/other_language.h"
#include "check/placeholders.h"
#include "check/script.h"
#include "check/subject.h"
#include "check/utf8.h"
#include "check/wording.h"
#include "language_conversions.h"

#include <algorithm>
#include <climits>
#include <map>
#include <optional>
#include <set>

namespace tool::check
{
namespace
{

/** A run of numbers. */
struct Run
{
    int first, last;
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

/** Numbers and positions, which are from 1 on where a text shows them. */
unsigned countable(int number)
{
    return static_cast<unsigned>(number);
}

std::string partOf(std::string_view text, Range range)
{
    return quotation(text.substr(range.begin, range.end - range.begin));
}

/** As ".2", or empty: a width may differ, as words do, but not what is left of a number */
std::string_view precisionOf(const Conversion &conversion)
{
    const std::string_view written = conversion.written;
    const size_t begin = std::min(written.find('.'), written.size());
    return written.substr(begin, std::min(written.find_first_not_of("0123456789*", begin + 1), written.size()) - begin);
}

/** Whether another precision leaves something else of an argument; "%.0s" is how a language does without a text. */
bool showsOtherwise(const Conversion &here, const Conversion &there)
{
    const std::string_view precision = precisionOf(here);
    const bool isText =
        !here.slots.empty() && (here.slots.back().kind == Kind::utf8 || here.slots.back().kind == Kind::ucs2);
    return precision != precisionOf(there) && !(isText && precision == ".0");
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

/** Whether a conversion only takes its argument, as in a sentence for a number that it does not show. */
bool writesNothing(const Conversion &conversion)
{
    return conversion.name == "nil" ||
           (precisionOf(conversion) == ".0" && (conversion.name == "s" || conversion.name == "U"));
}

/** The checks of one message. */
class MessageCheck
{
public:
    MessageCheck(Subject &subject, formTable *table, const Format *originalFormat, bool isSelector)
        : m_subject(subject), m_table(table), m_originalFormat(originalFormat), m_isSelector(isSelector),
          m_catalog(subject.catalog()), m_message(subject.message()), m_text(subject.resolved())
    {
    }

    void run()
    {
        if (coreOf(m_text.text()).end == 0)
            checkEmpty();
        else
            checkSurplus();
        if (m_text.hasBackslash())
            checkEscapes();
        checkDirections();
        if (m_table != nullptr && !m_isSelector)
            checkFormat();
    }

private:
    void find(Rule rule, Range place, Phrase text) { m_subject.find(rule, place, std::move(text)); }
    void find(Rule rule, Range place, Phrase text, Note note)
    {
        m_subject.find(rule, place, std::move(text), std::move(note));
    }

    Range placeOf(Range range) const { return m_subject.placeOf(range); }

    Note noteOn(const Conversion &conversion) const;

    void checkEmpty();
    void checkSurplus();
    void checkEscapes();
    void checkDirections();
    void compareDirections(const std::vector<DirectionControl> &here);
    void checkFormat();
    void checkPlaceholders(bool isUnexplained);
    void checkFaults(const Format &format);
    Phrase sentenceOn(const FormatFault &fault) const;
    void checkPositions(const Format &format);
    void checkTyped(const Format &format);
    void checkRegion(const Format &format);
    void compareArguments(const Format &format);
    void compareConversions(const Conversion &here, const Conversion &there);
    void compareEncoding(const Format &format);
    bool isArgument(int position) const;
    void findMissing(const Conversion &there, bool leavesGap);

    Subject &m_subject;
    formTable *m_table;
    const Format *m_originalFormat; // null where there is no original, or its format is none
    bool m_isSelector;
    const Catalog &m_catalog;
    const Message &m_message;
    const ResolvedText &m_text;
    std::vector<BrokenPlaceholder> m_broken;
};

void MessageCheck::checkEmpty()
{
    const bool isMeant = m_subject.hasOriginal() && coreOf(m_subject.originalText()).end == 0;
    const bool mayBeBlank = !m_text.text().empty() && !m_subject.hasOriginal();
    if (!isMeant && !mayBeBlank)
        find(Rule::emptyMessage, m_message.source, {Text::noText});
}

/** A text where the original has none, and is meant to have none. */
void MessageCheck::checkSurplus()
{
    if (m_subject.hasOriginal() && coreOf(m_subject.originalText()).end == 0)
        find(Rule::otherMeaning, m_message.source, {Text::textForNone});
}

void MessageCheck::checkEscapes()
{
    const std::string_view raw = m_catalog.rawText(m_message);
    for (size_t at = raw.find('\\'); at < raw.size(); at = raw.find('\\', at))
    {
        const size_t length = escapeLength(raw.substr(at));
        if (length == 0 && at + 1 == raw.size())
            find(Rule::trailingBackslash, m_catalog.locate(m_message, {at, at + 1}), {Text::endsInBackslash});
        else if (length == 0)
        {
            size_t end = at + 1;
            takeUtf8(raw, end);
            find(Rule::unknownEscape, m_catalog.locate(m_message, {at, end}),
                 {Text::noEscape, {partOf(raw, {at, end})}});
        }
        at += std::max<size_t>(length, 1);
    }
}

void MessageCheck::checkDirections()
{
    const std::vector<DirectionControl> controls = directionControlsIn(m_text.text());
    const std::vector<DirectionControl> unbalanced = unbalancedOf(controls);
    for (const DirectionControl &control : unbalanced)
        find(Rule::bidiControls, placeOf(control.place),
             {closes(control) ? Text::directionClosesNothing : Text::directionNotClosed, {nameOf(control)}});
    if (unbalanced.empty() && m_subject.hasOriginal())
        compareDirections(controls);
}

void MessageCheck::compareDirections(const std::vector<DirectionControl> &here)
{
    std::map<char32_t, std::vector<DirectionControl>> ours;
    std::map<char32_t, std::vector<DirectionControl>> theirs;
    const auto sortInto = [](auto &openings, const std::vector<DirectionControl> &controls) {
        for (const DirectionControl &control : controls)
            if (!closes(control))
                openings[control.character].push_back(control);
    };
    sortInto(ours, here);
    sortInto(theirs, directionControlsIn(m_subject.originalText()));
    for (const auto &[character, controls] : ours)
        if (isIsolate(character)) // a sentence may need it around a placeholder, and it turns nothing else
            continue;
        else if (const size_t known = theirs[character].size(); controls.size() > known)
            find(Rule::bidiControls, placeOf(controls[known].place), {Text::directionExtra, {nameOf(controls[known])}});
    for (const auto &[character, controls] : theirs)
        if (const size_t known = ours[character].size(); controls.size() > known)
            find(Rule::bidiControls, m_message.source, {Text::directionMissing, {nameOf(controls[known])}},
                 Note{true, m_subject.placeOfOriginal(controls[known].place), {Text::referenceHasItHere}});
}

void MessageCheck::checkFormat()
{
    const bool hasPercent = m_text.text().find('%') != std::string_view::npos;
    const bool hadConversions = m_originalFormat != nullptr && !m_originalFormat->conversions.empty();
    if (!hasPercent && !hadConversions && !m_message.hasPlaceholder)
        return;
    Format format = parseFormat(m_text.text(), m_table);
    m_broken = takeBroken(m_catalog, m_message, m_text, format);
    const size_t before = m_subject.findings();
    checkFaults(format);
    checkPositions(format);
    if (m_originalFormat != nullptr && m_originalFormat->isAccepted)
        compareArguments(format);
    const bool isUnexplained = !format.isAccepted && m_subject.findings() == before;
    checkPlaceholders(isUnexplained);
    if (isUnexplained && m_broken.empty())
        find(Rule::badConversion, m_message.source, {Text::noFormat});
    checkTyped(format);
    checkRegion(format);
}

/** Why a placeholder is no conversion, from the text of its message. */
Phrase whyBroken(std::string_view message, const Piece &piece)
{
    const std::string_view text = message.substr(piece.begin, piece.positionBegin - piece.begin);
    const std::string quoted = quotation(text);
    if (text[0] == '%' && piece.begin > 0 && message[piece.begin - 1] == '%')
        return {Text::placeholderBehindPercent, {quoted}};
    if (text.find('[') != std::string_view::npos)
        return {Text::placeholderHasPosition, {quoted}};
    if (text.find('%') == std::string_view::npos)
        return {Text::placeholderNoPercent, {quoted, partOf(message, {piece.begin, piece.end})}};
    if (coreOf(text).end < text.size())
        return {Text::placeholderEndsBlank, {quoted}};
    return {Text::placeholderNoConversion, {quoted}};
}

void MessageCheck::checkPlaceholders(bool isUnexplained)
{
    for (const auto &[piece, position, isFault, typed] : m_broken)
        find(isFault || isUnexplained ? Rule::badConversion : Rule::badPlaceholder,
             m_catalog.locateAttribute(piece->place, "ts"), whyBroken(m_catalog.rawText(m_message), *piece));
}

void MessageCheck::checkFaults(const Format &format)
{
    const Format *const original = m_originalFormat;
    const bool hasConversions = m_message.hasPlaceholder || !format.conversions.empty() ||
                                (original != nullptr && !original->conversions.empty()) ||
                                (m_subject.hasOriginal() && m_subject.original().hasPlaceholder) ||
                                m_subject.originalText().find("%%") != std::string_view::npos; // it is formatted
    for (const FormatFault &fault : format.faults)
    {
        const bool isLone = fault.isLone && !hasConversions;
        if (isLone)
            find(Rule::lonePercent, placeOf(fault.place), {Text::percentAlone});
        else if (fault.problem.rule == KT_RULE_UNKNOWN_CONVERSION &&
                 namesSelector(m_text.text().substr(fault.place.begin, fault.place.end - fault.place.begin)))
            find(Rule::selectorAlone, placeOf(fault.place),
                 {Text::selectorNotAlone, {partOf(m_text.text(), fault.place)}});
        else
            find(Rule::badConversion, placeOf(fault.place),
                 m_subject.isFull(Rule::badConversion) ? Phrase{} : sentenceOn(fault));
    }
}

/** What to do about a malformed conversion: where it was a tag once, that is to be copied. */
Phrase MessageCheck::sentenceOn(const FormatFault &fault) const
{
    const std::string_view text = m_text.text();
    const std::string written = partOf(text, fault.place);
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
bool MessageCheck::isArgument(int position) const
{
    if (m_originalFormat == nullptr || !m_originalFormat->isAccepted)
        return false;
    const Conversion *const there = m_originalFormat->find(position);
    return there != nullptr && !there->slots.empty();
}

void MessageCheck::checkPositions(const Format &format)
{
    std::set<int> positions;
    bool isMalformed = false; // by a conversion whose position is not known
    for (const FormatFault &fault : format.faults)
    {
        isMalformed = isMalformed || fault.position == 0;
        if (fault.position != 0)
            positions.insert(fault.position);
    }
    for (const Conversion &conversion : format.conversions)
        if (!positions.insert(conversion.position).second)
            find(Rule::positionRepeat, placeOf(conversion.place),
                 {Text::positionRepeated, {countable(conversion.position)}});
    const int highest = positions.empty() ? 0 : *positions.rbegin();
    for (const BrokenPlaceholder &broken : m_broken)
    {
        isMalformed = isMalformed || broken.position == 0;
        for (const int position : {broken.position, broken.typed})
            if (position != 0 && position < highest) // it fills a gap, and makes none
                positions.insert(position);
    }
    if (isMalformed || format.isAccepted)
        return;
    for (const Run &gap : gapsIn(positions))
    {
        // What the reference takes there is told by the comparison.
        Run rest = gap;
        while (rest.first <= rest.last && isArgument(rest.first))
            ++rest.first;
        while (rest.first <= rest.last && isArgument(rest.last))
            --rest.last;
        if (rest.first > rest.last)
            continue;
        const Conversion *behind = nullptr;
        for (const Conversion &conversion : format.conversions)
            if (conversion.position > gap.last && (behind == nullptr || conversion.position < behind->position))
                behind = &conversion;
        const Range place = behind != nullptr ? placeOf(behind->place) : m_message.source;
        find(Rule::positionGap, place,
             rest.first == rest.last ? Phrase{Text::positionMissing, {countable(rest.first)}}
                                     : Phrase{Text::positionsMissing, {countable(rest.first), countable(rest.last)}});
    }
}

// A translation copies its original: one that is typed there as well is told of there, where it is to be mended first.
void MessageCheck::checkTyped(const Format &format)
{
    for (const Conversion &conversion : format.conversions)
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

void MessageCheck::checkRegion(const Format &format)
{
    const Conversion *last = nullptr; // of the markers, in the order of the positions
    for (const size_t index : format.byPosition)
        if (const Conversion &conversion = format.conversions[index]; conversion.name == "N" || conversion.name == "O")
            last = &conversion;
    if (last != nullptr && last->name == "N")
        find(Rule::regionOpen, placeOf(last->place), {Text::regionOpen, {last->written}});
}

Note MessageCheck::noteOn(const Conversion &conversion) const
{
    return Note{true, m_subject.placeOfOriginal(conversion.place), {Text::referenceHas, {conversion.written}}};
}

/** All slots of a format in the order in which arguments are passed. */
std::vector<Slot> argumentsOf(const Format &format)
{
    std::vector<Slot> slots;
    for (const size_t index : format.byPosition)
        slots.insert(slots.end(), format.conversions[index].slots.begin(), format.conversions[index].slots.end());
    return slots;
}

void MessageCheck::findMissing(const Conversion &there, bool leavesGap)
{
    find(Rule::argumentMissing, m_message.unit,
         {leavesGap ? Text::argumentLost : Text::lastArgumentLost, {countable(there.position), tagOf(there)}});
}

void MessageCheck::compareArguments(const Format &format)
{
    const Format &original = *m_originalFormat;
    const bool agrees = format.isAccepted && argumentsOf(format) == argumentsOf(original);
    std::set<int> known; // positions of conversions that nobody knows; 0 where one may be meant for any argument
    for (const FormatFault &fault : format.faults)
        known.insert(fault.position);
    for (const BrokenPlaceholder &broken : m_broken)
        known.insert(broken.position);
    const int highest = format.highestPosition();
    for (const Conversion &there : original.conversions)
        if (const Conversion *const here = format.find(there.position))
        {
            const bool isOther = here->name != there.name && !differInLanguageAlone(here->name, there.name);
            if (here->slots == there.slots && !writesNothing(*here) && !writesNothing(there) &&
                (isOther || showsOtherwise(*here, there) || losesLayout(*here, there)))
                find(Rule::conversionChanged, placeOf(here->place),
                     {Text::conversionChanged, {here->written, there.written}}, noteOn(there));
            else if (!agrees)
                compareConversions(*here, there);
        }
        else if (!agrees && known.count(0) == 0 && known.count(there.position) == 0 && !there.slots.empty())
            findMissing(there, there.position < highest);
    if (agrees)
        return compareEncoding(format);
    for (const Conversion &here : format.conversions)
        if (original.find(here.position) == nullptr && !here.slots.empty())
            find(Rule::argumentExtra, placeOf(here.place),
                 {Text::argumentExtra, {countable(here.position), here.written}},
                 Note{true, m_subject.original().source, counted(Text::referenceTakes, argumentsOf(original).size())});
}

/** "argument 2", or "the width of argument 2". */
Phrase describe(const Conversion &conversion, const Slot &slot, size_t value, size_t values)
{
    const unsigned position = countable(conversion.position);
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

/** Finds the first argument that the original puts through an encoder and this message does not. */
void MessageCheck::compareEncoding(const Format &format)
{
    const std::vector<Conversion> &originals = m_originalFormat->conversions;
    const auto opensRegion = [](const Conversion &conversion) { return conversion.name == "N"; };
    if (std::none_of(originals.begin(), originals.end(), opensRegion))
        return;
    KTProblem problem{};
    problem.structSize = sizeof problem;
    if (KTCompareFormats(m_text.text().data(), m_subject.originalText().data(), m_table, &problem) == KT_ERR_NO_MEMORY)
        throw std::bad_alloc();
    const Conversion *const here = conversionOf(format, problem.slot);
    const Conversion *const there = conversionOf(*m_originalFormat, problem.slot);
    if (problem.rule == KT_RULE_ENCODING_LOST && here != nullptr && there != nullptr)
        find(Rule::encodingLost, placeOf(here->place), {Text::encodingLost, {here->written}}, noteOn(*there));
}

std::vector<Slot> slotsIn(const Conversion &conversion, Slot::Role role)
{
    std::vector<Slot> slots;
    for (const Slot &slot : conversion.slots)
        if (slot.role == role)
            slots.push_back(slot);
    return slots;
}

void MessageCheck::compareConversions(const Conversion &here, const Conversion &there)
{
    for (const Slot::Role role : {Slot::Role::width, Slot::Role::precision, Slot::Role::value})
    {
        const std::vector<Slot> ours = slotsIn(here, role);
        const std::vector<Slot> theirs = slotsIn(there, role);
        for (size_t i = 0; i < std::max(ours.size(), theirs.size()); ++i)
        {
            const Range place = placeOf(here.place);
            if (i >= ours.size())
                find(Rule::argumentMissing, place, {Text::partMissing, {describe(here, theirs[i], i, theirs.size())}},
                     noteOn(there));
            else if (i >= theirs.size())
                find(Rule::argumentExtra, place, {Text::partExtra, {describe(here, ours[i], i, ours.size())}},
                     noteOn(there));
            else if (ours[i].kind != theirs[i].kind)
                find(Rule::argumentType, place,
                     {Text::partDiffers,
                      {describe(here, ours[i], i, ours.size()), Phrase{nameOf(ours[i].kind)},
                       Phrase{nameOf(theirs[i].kind)}}},
                     noteOn(there));
        }
    }
}

/** Most numbers up to the highest unused, and many of them. */
bool isSparse(size_t messages, int highest)
{
    constexpr size_t many = 4096;
    const size_t unused = static_cast<size_t>(highest) - std::min(messages, static_cast<size_t>(highest));
    return unused >= many && unused >= 7 * messages;
}

void checkWhole(const Catalog &catalog, const Variants &variants, const Reference *reference, Findings &findings)
{
    checkEncoding(catalog, findings);
    checkLanguage(catalog, reference != nullptr ? &reference->catalog() : nullptr, findings);
    if (reference != nullptr)
        compareProduct(catalog, reference->catalog(), findings);
    const std::vector<Message> &messages = catalog.messages();
    if (messages.empty())
        return;
    const Message &last = messages.back();
    if (isSparse(messages.size() + variants.reservedNumbers(), last.id))
        findings.push_back({Rule::sparseIds, last.id, last.unit.begin, last.unit,
                            counted(Text::sparseMessages, messages.size(), {countable(last.id)}), std::nullopt});
}

/** Whether a person can have written and read both texts: what compares them part by part takes too long for others. */
bool isReadable(const Subject &subject)
{
    constexpr size_t longest = 8192;
    return subject.text().size() <= longest && subject.originalText().size() <= longest;
}

void compareMeaning(Subject &subject)
{
    compareLiterals(subject);
    compareOrder(subject);
    compareMarkup(subject);
    findLeftOver(subject);
}

} // namespace

Reference::Reference(const Catalog &catalog, formTable *table) : m_catalog(catalog), m_variants(catalog)
{
    for (const Message &message : catalog.messages())
    {
        const ResolvedText text(catalog.rawText(message));
        const bool isFormat = table != nullptr && message.isComplete && text.text().find('%') != std::string_view::npos;
        m_formats.push_back(isFormat ? parseFormat(text.text(), table) : Format());
        if (table != nullptr && message.isComplete && !takeBroken(catalog, message, text, m_formats.back()).empty())
            m_formats.back().isAccepted = false;
    }
}

Findings checkMessages(const Catalog &catalog, formTable *table, const Reference *reference)
{
    Findings findings;
    static const std::vector<Message> none;
    const std::vector<Message> &originals = reference != nullptr ? reference->catalog().messages() : none;
    auto original = originals.begin();
    const Scripts scripts(catalog.language());
    std::optional<Neighbours> neighbours;
    if (reference != nullptr)
        neighbours.emplace(catalog, reference->catalog());
    AccessKeys accessKeys;
    int done = 0; // the number of the last message that was looked at, here or there
    const Variants variants(catalog);
    const Variants *const theirs = reference != nullptr ? &reference->variants() : nullptr;
    const auto missBelow = [&](int64_t id) {
        for (; original != originals.end() && original->id < id; done = (original++)->id)
            if (original->id != done && catalog.isWhole() && theirs->pathTo(original->id) == nullptr)
                findings.push_back({Rule::messageMissing, original->id, catalog.body().begin, catalog.body(),
                                    Phrase{Text::messageMissing},
                                    Note{true, original->unit, {Text::referenceHasItHere}}});
    };
    for (const Message &message : catalog.messages())
    {
        missBelow(message.id);
        const bool isFirst = done != message.id;
        done = message.id;
        const bool hasOriginal = original != originals.end() && original->id == message.id;
        const Path *const path = variants.pathTo(message.id);
        if (reference != nullptr && !hasOriginal && path == nullptr && reference->catalog().isWhole())
            findings.push_back({Rule::messageExtra, message.id, message.unit.begin, message.unit,
                                Phrase{Text::messageExtra}, std::nullopt});
        if (!message.isComplete)
            continue;
        const bool isSelector = variants.selector(message.id) != nullptr;
        // Sentences are compared with sentences, whatever row holds them here and there.
        const Message *compared = hasOriginal && isFirst ? &*original : nullptr;
        if (isSelector)
            compared = nullptr;
        else if (path != nullptr)
            compared = theirs != nullptr && isFirst ? theirs->counterpart(*path) : nullptr;
        else if (compared != nullptr && theirs->selector(message.id) != nullptr)
            compared = theirs->counterpart({message.id, {}});
        const bool isComparable = compared != nullptr && compared->isComplete;
        Subject subject(catalog, message, isComparable ? &reference->catalog() : nullptr,
                        isComparable ? compared : nullptr, findings);
        MessageCheck(subject, table, isComparable && table != nullptr ? &reference->formatOf(*compared) : nullptr,
                     isSelector)
            .run();
        checkDamage(subject);
        scripts.check(subject);
        if (!isSelector)
            checkLanguageOfText(subject);
        if (isComparable)
        {
            if (path == nullptr)
                compareName(subject);
            compareAge(subject);
            compareWording(subject);
            if (isReadable(subject))
                compareMeaning(subject);
            accessKeys.compare(subject);
            neighbours->add(subject);
        }
        else if (!isSelector)
            checkSlashes(subject);
        subject.finish();
    }
    accessKeys.finish(findings);
    if (neighbours)
        neighbours->finish(findings);
    missBelow(int64_t{INT_MAX} + 1);
    if (table != nullptr)
        variants.check(table, findings);
    checkWhole(catalog, variants, reference, findings);
    return findings;
}

} // namespace tool::check
