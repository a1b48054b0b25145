#include "check/checks.h"

#include "check/digest.h"
#include "check/directions.h"
#include "check/placeholders.h"
#include "check/utf8.h"
#include "language_conversions.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <map>
#include <optional>
#include <set>
#include <unicode/uchar.h>

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

/** A message in the file and what it is compared with. */
struct Pair
{
    const Message &message;
    const Message *original;      // null where there is nothing to compare with
    const Format *originalFormat; // null where that, or its format, is none
};

/** The checks of one message. */
class MessageCheck
{
public:
    MessageCheck(const Catalog &catalog, formTable *table, const Reference *reference, const Pair &pair,
                 Findings &findings)
        : m_catalog(catalog), m_table(table), m_reference(reference), m_pair(pair), m_findings(findings),
          m_text(catalog.rawText(pair.message)),
          m_original(pair.original != nullptr ? reference->catalog().rawText(*pair.original) : std::string_view())
    {
    }

    void run()
    {
        if (m_text.text().empty())
            checkEmpty();
        if (m_text.hasBackslash())
            checkEscapes();
        checkDirections();
        if (m_table != nullptr)
            checkFormat();
        if (m_pair.original != nullptr)
        {
            compareWhiteSpace();
            compareAge();
        }
        for (const auto &[rule, found] : m_found)
            if (found.count > mostPerRule)
                add(rule, found.lastPlace, counted(Text::oneMore, Text::manyMore, found.count - mostPerRule),
                    std::nullopt);
    }

private:
    /** A message may be megabytes of one mistake. */
    static constexpr size_t mostPerRule = 100;

    /** What was found against one rule. */
    struct Found
    {
        size_t count = 0;
        Range lastPlace{}; // of those that are told
    };

    void find(Rule rule, Range place, Phrase text, std::optional<Note> note = std::nullopt)
    {
        Found &found = m_found[rule];
        if (++found.count > mostPerRule)
            return;
        found.lastPlace = place;
        add(rule, place, std::move(text), std::move(note));
    }

    void add(Rule rule, Range place, Phrase text, std::optional<Note> note)
    {
        m_findings.push_back(
            {rule, m_pair.message.id, m_pair.message.unit.begin, place, std::move(text), std::move(note)});
    }

    Range placeOf(Range range) const { return m_catalog.locate(m_pair.message, m_text.beforeEscapes(range)); }

    Range locateOriginal(Range range) const
    {
        return m_reference->catalog().locate(*m_pair.original, m_original.beforeEscapes(range));
    }

    std::optional<Note> noteOn(const Conversion &conversion) const;

    void checkEmpty();
    void checkEscapes();
    void checkDirections();
    void compareDirections(const std::vector<DirectionControl> &here);
    void compareWhiteSpace();
    void compareAge();
    void checkFormat();
    void checkPlaceholders(bool isUnexplained);
    void checkFaults(const Format &format);
    void checkPositions(const Format &format);
    void checkTyped(const Format &format);
    void checkRegion(const Format &format);
    void compareArguments(const Format &format);
    void compareConversions(const Conversion &here, const Conversion &there);
    void compareEncoding(const Format &format);
    bool isArgument(int position) const;
    void findMissing(const Conversion &there, bool leavesGap);

    const Catalog &m_catalog;
    formTable *m_table;
    const Reference *m_reference;
    Pair m_pair;
    Findings &m_findings;
    ResolvedText m_text;
    ResolvedText m_original; // of what it is compared with
    std::vector<BrokenPlaceholder> m_broken;
    std::map<Rule, Found> m_found;
};

void MessageCheck::checkEmpty()
{
    const bool isMeant = m_pair.original != nullptr && m_original.text().empty();
    if (!isMeant)
        find(Rule::emptyMessage, m_pair.message.source, {Text::noText});
}

void MessageCheck::checkEscapes()
{
    const std::string_view raw = m_catalog.rawText(m_pair.message);
    for (size_t at = raw.find('\\'); at < raw.size(); at = raw.find('\\', at))
    {
        const size_t length = escapeLength(raw.substr(at));
        if (length == 0 && at + 1 == raw.size())
            find(Rule::trailingBackslash, m_catalog.locate(m_pair.message, {at, at + 1}), {Text::endsInBackslash});
        else if (length == 0)
        {
            size_t end = at + 1;
            takeUtf8(raw, end);
            find(Rule::unknownEscape, m_catalog.locate(m_pair.message, {at, end}),
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
    if (unbalanced.empty() && m_pair.original != nullptr)
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
    sortInto(theirs, directionControlsIn(m_original.text()));
    for (const auto &[character, controls] : ours)
        if (isIsolate(character)) // a sentence may need it around a placeholder, and it turns nothing else
            continue;
        else if (const size_t known = theirs[character].size(); controls.size() > known)
            find(Rule::bidiControls, placeOf(controls[known].place), {Text::directionExtra, {nameOf(controls[known])}});
    for (const auto &[character, controls] : theirs)
        if (const size_t known = ours[character].size(); controls.size() > known)
            find(Rule::bidiControls, m_pair.message.source, {Text::directionMissing, {nameOf(controls[known])}},
                 Note{true, locateOriginal(controls[known].place), {Text::referenceHasItHere}});
}

bool isWhiteSpace(char32_t character)
{
    constexpr std::string_view ascii = " \t\n\v\f\r";
    return character < 0x80 ? ascii.find(static_cast<char>(character)) != std::string_view::npos
                            : u_isUWhiteSpace(static_cast<UChar32>(character)) != 0;
}

/** The text between the white space that it begins and ends with. */
Range coreOf(std::string_view text)
{
    Range core{0, text.size()};
    for (size_t next = 0; core.begin < text.size() && isWhiteSpace(takeUtf8(text, next));)
        core.begin = next;
    while (core.end > core.begin)
    {
        size_t last = core.end - 1;
        while (last > core.begin && isContinuation(text[last]))
            --last;
        size_t next = last;
        if (!isWhiteSpace(takeUtf8(text, next)))
            break;
        core.end = last;
    }
    return core;
}

void MessageCheck::compareWhiteSpace()
{
    const std::string_view here = m_text.text();
    const std::string_view there = m_original.text();
    const Range edges = coreOf(here);
    const Range originals = coreOf(there);
    if (edges.begin == edges.end || originals.begin == originals.end)
        return; // nothing but white space
    const auto noteAt = [&](Range range) { return Note{true, locateOriginal(range), {Text::referenceIsHere}}; };
    if (here.substr(0, edges.begin) != there.substr(0, originals.begin))
        find(Rule::whiteSpace, placeOf({0, edges.begin}), {Text::spaceAtBeginning}, noteAt({0, originals.begin}));
    if (here.substr(edges.end) != there.substr(originals.end))
        find(Rule::whiteSpace, placeOf({edges.end, here.size()}), {Text::spaceAtEnd},
             noteAt({originals.end, there.size()}));
}

void MessageCheck::compareAge()
{
    const std::string &madeFrom = m_pair.message.madeFrom;
    if (!madeFrom.empty() && madeFrom != digestOf(m_original.text()))
        find(Rule::outdated, m_catalog.locateAttribute(m_pair.message.unit, sourceDigest), {Text::madeFromOther},
             Note{true, m_pair.original->source, {Text::referenceIsHere}});
}

void MessageCheck::checkFormat()
{
    const bool hasPercent = m_text.text().find('%') != std::string_view::npos;
    const bool hadConversions = m_pair.originalFormat != nullptr && !m_pair.originalFormat->conversions.empty();
    if (!hasPercent && !hadConversions && !m_pair.message.hasPlaceholder)
        return;
    Format format = parseFormat(m_text.text(), m_table);
    m_broken = takeBroken(m_catalog, m_pair.message, m_text, format);
    const size_t before = m_findings.size();
    checkFaults(format);
    checkPositions(format);
    if (m_pair.originalFormat != nullptr && m_pair.originalFormat->isAccepted)
        compareArguments(format);
    const bool isUnexplained = !format.isAccepted && m_findings.size() == before;
    checkPlaceholders(isUnexplained);
    if (isUnexplained && m_broken.empty())
        find(Rule::badConversion, m_pair.message.source, {Text::noFormat});
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
             m_catalog.locateAttribute(piece->place, "ts"), whyBroken(m_catalog.rawText(m_pair.message), *piece));
}

void MessageCheck::checkFaults(const Format &format)
{
    const Format *const original = m_pair.originalFormat;
    const bool hasConversions = m_pair.message.hasPlaceholder || !format.conversions.empty() ||
                                (original != nullptr && !original->conversions.empty()) ||
                                (m_pair.original != nullptr && m_pair.original->hasPlaceholder) ||
                                m_original.text().find("%%") != std::string_view::npos; // it is formatted
    for (const FormatFault &fault : format.faults)
    {
        const bool isLone = fault.isLone && !hasConversions;
        if (isLone)
            find(Rule::lonePercent, placeOf(fault.place), {Text::percentAlone});
        else
            find(Rule::badConversion, placeOf(fault.place),
                 {Text::badConversion, {partOf(m_text.text(), fault.place), problemShown(fault.problem)}});
    }
}

/** Whether the position is one at which the reference takes an argument, and can be compared. */
bool MessageCheck::isArgument(int position) const
{
    if (m_pair.originalFormat == nullptr || !m_pair.originalFormat->isAccepted)
        return false;
    const Conversion *const there = m_pair.originalFormat->find(position);
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
        const Range place = behind != nullptr ? placeOf(behind->place) : m_pair.message.source;
        find(Rule::positionGap, place,
             rest.first == rest.last ? Phrase{Text::positionMissing, {countable(rest.first)}}
                                     : Phrase{Text::positionsMissing, {countable(rest.first), countable(rest.last)}});
    }
}

void MessageCheck::checkTyped(const Format &format)
{
    for (const Conversion &conversion : format.conversions)
        if (m_catalog.isText(m_pair.message, m_text.beforeEscapes(conversion.place).begin))
            find(Rule::typedConversion, placeOf(conversion.place), {Text::typedConversion, {conversion.written}});
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

std::optional<Note> MessageCheck::noteOn(const Conversion &conversion) const
{
    return Note{true, locateOriginal(conversion.place), {Text::referenceHas, {conversion.written}}};
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
    find(Rule::argumentMissing, m_pair.message.unit,
         {leavesGap ? Text::argumentLost : Text::lastArgumentLost, {countable(there.position), there.written}});
}

void MessageCheck::compareArguments(const Format &format)
{
    const Format &original = *m_pair.originalFormat;
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
            if (here->slots == there.slots && here->name != there.name &&
                !differInLanguageAlone(here->name, there.name))
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
                 Note{true, m_pair.original->source,
                      counted(Text::referenceTakesOne, Text::referenceTakesMany, argumentsOf(original).size())});
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

/** The conversion that takes a slot, counted from 1 in the order in which arguments are passed; null behind the last. */
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
    const std::vector<Conversion> &originals = m_pair.originalFormat->conversions;
    const auto opensRegion = [](const Conversion &conversion) { return conversion.name == "N"; };
    if (std::none_of(originals.begin(), originals.end(), opensRegion))
        return;
    KTProblem problem{};
    problem.structSize = sizeof problem;
    if (KTCompareFormats(m_text.text().data(), m_original.text().data(), m_table, &problem) == KT_ERR_NO_MEMORY)
        throw std::bad_alloc();
    const Conversion *const here = conversionOf(format, problem.slot);
    const Conversion *const there = conversionOf(*m_pair.originalFormat, problem.slot);
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

/** Whether two names of languages are one, as "de_AT" and "de-at" are. */
bool isSameLanguage(const std::string &a, const std::string &b)
{
    const auto isSame = [](char x, char y) {
        return x == y || std::tolower(x) == std::tolower(y) || (x == '-' && y == '_') || (x == '_' && y == '-');
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), isSame);
}

void checkWhole(const Catalog &catalog, const Reference *reference, Findings &findings)
{
    if (reference != nullptr && !catalog.language().empty() &&
        isSameLanguage(catalog.language(), reference->catalog().language()))
    {
        const Range place = catalog.languagePlace();
        findings.push_back({Rule::sameLanguage, 0, place.begin, place,
                            Phrase{Text::languageOfReference, {catalog.language()}},
                            Note{true, reference->catalog().languagePlace(), {Text::referenceHasItHere}}});
    }
    const std::vector<Message> &messages = catalog.messages();
    if (messages.empty())
        return;
    const Message &last = messages.back();
    if (isSparse(messages.size(), last.id))
        findings.push_back({Rule::sparseIds, last.id, last.unit.begin, last.unit,
                            counted(Text::sparseOne, Text::sparseMany, messages.size(), {countable(last.id)}),
                            std::nullopt});
}

} // namespace

Reference::Reference(const Catalog &catalog, formTable *table) : m_catalog(catalog)
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
    int done = 0; // the number of the last message that was looked at, here or there
    const auto missBelow = [&](int64_t id) {
        for (; original != originals.end() && original->id < id; done = (original++)->id)
            if (original->id != done && catalog.isWhole())
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
        if (reference != nullptr && !hasOriginal && reference->catalog().isWhole())
            findings.push_back({Rule::messageExtra, message.id, message.unit.begin, message.unit,
                                Phrase{Text::messageExtra}, std::nullopt});
        if (!message.isComplete)
            continue;
        const bool isComparable = hasOriginal && isFirst && original->isComplete;
        const Pair pair{message, isComparable ? &*original : nullptr,
                        isComparable && table != nullptr ? &reference->formatOf(*original) : nullptr};
        MessageCheck(catalog, table, reference, pair, findings).run();
    }
    missBelow(int64_t{INT_MAX} + 1);
    checkWhole(catalog, reference, findings);
    return findings;
}

} // namespace tool::check
