#include "check/rules/conversions/variants.h"

#include "check/texts/resolved_text.h"
#include "format/format_limits.h"
#include "message/grammar/attributes.h"
#include "text.h"

#include <algorithm>
#include <set>

namespace tool::check
{
namespace
{

/** The numbers that are tried: small ones, and those at which rules look at more than the last digits. */
std::vector<unsigned long> triedNumbers()
{
    std::vector<unsigned long> numbers;
    for (unsigned long number = 0; number <= 200; ++number)
        numbers.push_back(number);
    for (const unsigned long number : {1000UL, 2000UL, 10000UL, 100000UL, 1000000UL, 2000000UL, 1000001UL})
        numbers.push_back(number);
    return numbers;
}

/** For each place of a row the numbers, as they are shown, that would take it if the row had it. */
std::map<unsigned, std::vector<std::string>> numbersByPlace(const Selector &selector, const std::string &language)
{
    static const std::vector<unsigned long> numbers = triedNumbers();
    std::map<unsigned, std::vector<std::string>> result;
    const bool isOrdinal = selector.kind == Selector::Kind::ordinal;
    const auto add = [&](const KTArgument &number, std::string shown) {
        const int category = KTPluralCategory(language.c_str(), isOrdinal, number, selector.digits);
        result[static_cast<unsigned>(category)].push_back(std::move(shown));
    };
    if (selector.digits == 0)
    {
        for (const unsigned long number : numbers)
            add(KT_UINT64(number), std::to_string(number));
        return result;
    }
    for (const unsigned long number : {0UL, 1UL, 2UL, 3UL, 5UL, 6UL, 10UL, 11UL, 21UL, 100UL, 1000000UL})
        for (int tenths = 0; tenths < 30; ++tenths)
        {
            char shown[80];
            const double value = static_cast<double>(number) + tenths / (selector.digits == 1 ? 10.0 : 100.0);
            std::snprintf(shown, sizeof shown, "%.*f", std::min(selector.digits, 40), value);
            add(KT_DOUBLE(value), shown);
        }
    return result;
}

std::string asText(const ParsedFile &parsed, Range range)
{
    std::string text;
    for (size_t at = range.begin; at < range.end;)
    {
        const char32_t character = parsed.source().take(at, range.end);
        text += character < 0x80 ? static_cast<char>(character) : '?';
    }
    return text;
}

/** A label as people write it: the number of a selector, and what its message is for. */
struct Label
{
    int selector;
    std::string place;
};

/** Reads 12[few]; nothing where an "id" is no label. */
std::optional<Label> readLabel(const std::string &id)
{
    const size_t open = id.find('[');
    const bool isLabel =
        open != std::string::npos && open > 0 && id.back() == ']' && id.find_first_not_of("0123456789") == open;
    if (!isLabel)
        return std::nullopt;
    return Label{kelto::parseMessageId(id.substr(0, open).c_str()), id.substr(open + 1, id.size() - open - 2)};
}

bool selectsBy(const Selector &selector, Kind kind)
{
    const bool isReal = kind == Kind::floating || kind == Kind::longFloating;
    return isInteger(kind) || (isReal && selector.kind == Selector::Kind::plural);
}

unsigned numberOf(int id)
{
    return static_cast<unsigned>(id);
}

} // namespace

Variants::Variants(const ParsedFile &parsed) : m_parsed(parsed)
{
    for (const Message &message : parsed.messages())
        if (message.isComplete && m_messages.emplace(message.id, &message).second)
        {
            const ResolvedText text(parsed.rawText(message));
            if (text.text().substr(0, 1) != "%")
                continue;
            if (const auto selector = readSelector(std::string(text.text())))
                m_selectors.emplace(message.id, *selector);
        }
    std::set<int> inRows;
    for (const auto &[id, selector] : m_selectors)
        for (unsigned place = 0; place < selector.rowLength(); ++place)
            inRows.insert(static_cast<int>(selector.messageAt(place)));
    for (const auto &[id, selector] : m_selectors)
        if (inRows.count(id) == 0)
            follow(id);
    for (const auto &[id, selector] : m_selectors) // those that only lead to each other
        if (m_paths.count(id) == 0)
            follow(id);
}

/** Notes how the messages are reached to which one leads. */
void Variants::follow(int root)
{
    std::vector<std::pair<int, std::vector<unsigned>>> open = {{root, {}}};
    while (!open.empty())
    {
        const auto [id, places] = open.back();
        open.pop_back();
        const Selector *const found = selector(id);
        if (found == nullptr || places.size() > kelto::maxSelectionSteps)
            continue;
        for (unsigned place = found->rowLength(); place-- > 0;)
        {
            const int there = static_cast<int>(found->messageAt(place));
            std::vector<unsigned> further = places;
            further.push_back(place);
            if (has(*found, place) && there != root && m_paths.emplace(there, Path{root, further}).second)
                open.emplace_back(there, further);
        }
    }
}

const Selector *Variants::selector(int id) const
{
    const auto found = m_selectors.find(id);
    return found != m_selectors.end() ? &found->second : nullptr;
}

const Path *Variants::pathTo(int id) const
{
    const auto found = m_paths.find(id);
    return found != m_paths.end() ? &found->second : nullptr;
}

const Message *Variants::find(int id) const
{
    const auto found = m_messages.find(id);
    return found != m_messages.end() ? found->second : nullptr;
}

bool Variants::has(const Selector &selector, unsigned place) const
{
    return selector.messageAt(place) != 0 && m_messages.count(static_cast<int>(selector.messageAt(place))) > 0;
}

const Message *Variants::counterpart(const Path &path) const
{
    int id = path.root;
    for (size_t step = 0; step <= kelto::maxSelectionSteps; ++step)
    {
        const Selector *const found = selector(id);
        if (found == nullptr)
            return find(id);
        const unsigned other = found->kind == Selector::Kind::select ? 0 : KT_VARIANT_OTHER;
        unsigned place = step < path.places.size() ? path.places[step] : other;
        if (place >= found->rowLength() || !has(*found, place))
            place = other;
        for (unsigned any = found->rowLength(); any-- > 0 && !has(*found, place);)
            place = any;
        if (!has(*found, place))
            return nullptr;
        id = static_cast<int>(found->messageAt(place));
    }
    return nullptr;
}

size_t Variants::reservedNumbers() const
{
    std::set<unsigned> numbers;
    for (const auto &[id, selector] : m_selectors)
        for (unsigned place = 0; selector.row != 0 && place < selector.rowLength(); ++place)
            numbers.insert(selector.messageAt(place));
    return numbers.size();
}

std::string Variants::languageOf() const
{
    return m_parsed.language();
}

/** What a selector leads to, found depth first as the library does, which prepares each message once. */
struct Variants::Reached
{
    std::map<int, size_t> heights; // of the selectors from a message on, itself counted; 0 of a sentence
    std::vector<int> above;        // the selectors whose rows are looked at
    std::vector<int> texts;        // the sentences
    Text fault{};                  // where that is too far, or back again
};

/** One look at all rows of a file. */
struct Variants::Checking
{
    const Variants &variants;
    formTable *table;
    Findings &findings;
    std::string language;

    void find(Rule rule, const Message &message, Range place, Phrase text) const
    {
        findings.push_back({rule, message.id, message.unit.begin, place, std::move(text), std::nullopt});
    }

    Format formatOf(const Message &message) const
    {
        return parseFormat(ResolvedText(variants.parsed().rawText(message)).text(), table);
    }

    /** Where a conversion of a message stands in the file. */
    Range placeOf(const Message &message, const Conversion &conversion) const
    {
        const ResolvedText text(variants.parsed().rawText(message));
        return variants.parsed().locate(message, text.beforeEscapes(conversion.place));
    }

    /** The whole text of a selector. */
    Range textOf(const Message &message) const
    {
        return variants.parsed().locate(message, {0, message.textEnd - message.textBegin});
    }

    /** Whether the messages that it leads to are known. */
    bool checkSelector(int id, const Selector &selector) const;
    void checkCategories(const Message &message, const Selector &selector) const;
    void checkRow(int id, const Selector &selector) const;
    void checkNumber(const Message &variant, const Selector &selector, unsigned place) const;
    void checkLabel(const Message &message) const;

    bool gather(int id, size_t steps, Reached &reached) const;
};

bool Variants::Checking::gather(int id, size_t steps, Reached &reached) const
{
    const auto refuse = [&reached](Text fault) {
        reached.fault = fault;
        return false;
    };
    if (std::find(reached.above.begin(), reached.above.end(), id) != reached.above.end())
        return refuse(Text::selectorRing);
    const auto known = reached.heights.find(id);
    if (known != reached.heights.end())
        return steps + known->second <= kelto::maxSelectionSteps || refuse(Text::selectorTooDeep);
    if (reached.heights.size() == kelto::maxSelectedMessages)
        return refuse(Text::selectorTooLarge);
    size_t &height = reached.heights[id];
    const Selector *const selector = variants.selector(id);
    if (selector == nullptr)
    {
        reached.texts.push_back(id);
        return true;
    }
    if (steps == kelto::maxSelectionSteps)
        return refuse(Text::selectorTooDeep);
    height = 1;
    reached.above.push_back(id);
    for (unsigned place = 0; place < selector->rowLength(); ++place)
    {
        if (!variants.has(*selector, place))
            continue;
        const auto next = static_cast<int>(selector->messageAt(place));
        if (!gather(next, steps + 1, reached))
            return false;
        height = std::max(height, reached.heights[next] + 1);
    }
    reached.above.pop_back();
    return true;
}

bool Variants::Checking::checkSelector(int id, const Selector &selector) const
{
    const Message &message = *variants.find(id);
    Reached reached;
    if (!gather(id, 0, reached))
    {
        find(Rule::selectorDepth, message, textOf(message), {reached.fault});
        return false;
    }
    const std::vector<int> &texts = reached.texts;
    checkCategories(message, selector);
    if (texts.empty())
        return true;
    const Message &first = *variants.find(texts.front());
    const Format firstFormat = formatOf(first);
    const std::vector<Slot> slots = firstFormat.arguments();
    if (!firstFormat.isAccepted)
        return true;
    if (selector.argument > slots.size())
        find(Rule::selectorArgument, message, textOf(message),
             {Text::selectsByNone, {selector.argument, numberOf(first.id), slots.size()}});
    else if (!selectsBy(selector, slots[selector.argument - 1].kind))
        find(Rule::selectorArgument, message, textOf(message),
             {Text::selectsByOther, {selector.argument, Phrase{nameOf(slots[selector.argument - 1].kind)}}});
    if (variants.pathTo(id) != nullptr) // what its sentences take is compared from where they all are reached
        return true;
    for (const int text : texts)
    {
        const Message &variant = *variants.find(text);
        const Format format = formatOf(variant);
        if (format.isAccepted && format.arguments() != slots)
            find(Rule::variantArguments, variant, variant.source, {Text::variantTakesOther, {numberOf(first.id)}});
    }
    return true;
}

void Variants::Checking::checkCategories(const Message &message, const Selector &selector) const
{
    const auto hasPlace = [&](unsigned place) { return variants.has(selector, place); };
    if (selector.kind == Selector::Kind::select)
    {
        if (!hasPlace(0))
            find(Rule::variantMissing, message, textOf(message), {Text::noFirstVariant, {selector.row}});
        return;
    }
    if (hasPlace(KT_VARIANT_OTHER))
        return;
    for (const auto &[category, numbers] : numbersByPlace(selector, language))
    {
        const auto isLeftOut = [&](const std::string &number) {
            const bool isExact =
                (number == "0" && hasPlace(KT_VARIANT_EXACTLY_0)) || (number == "1" && hasPlace(KT_VARIANT_EXACTLY_1));
            return !isExact;
        };
        const auto number = std::find_if(numbers.begin(), numbers.end(), isLeftOut);
        if (number == numbers.end() || hasPlace(category))
            continue;
        const std::string name = placeName(selector.kind, category);
        const auto other = selector.messageAt(KT_VARIANT_OTHER);
        const Phrase lack = category == KT_VARIANT_OTHER
                                ? Phrase{Text::otherMissing, {name, *number, other}}
                                : Phrase{Text::categoryMissing, {name, *number, selector.messageAt(category), other}};
        find(Rule::variantMissing, message, textOf(message), lack);
    }
}

void Variants::Checking::checkRow(int id, const Selector &selector) const
{
    if (selector.kind == Selector::Kind::select)
        return;
    const auto numbers = numbersByPlace(selector, language);
    for (unsigned place = 0; place <= KT_VARIANT_MANY; ++place)
        if (variants.has(selector, place) && numbers.count(place) == 0)
        {
            const Message &variant = *variants.find(static_cast<int>(selector.messageAt(place)));
            find(Rule::variantUnused, variant, variant.unit,
                 {Text::categoryUnused, {placeName(selector.kind, place), numberOf(id)}});
        }
    for (unsigned place = 0; place < selector.rowLength(); ++place)
        if (variants.has(selector, place))
            checkNumber(*variants.find(static_cast<int>(selector.messageAt(place))), selector, place);
}

/** Whether a sentence leaves out a number that could be several. */
void Variants::Checking::checkNumber(const Message &variant, const Selector &selector, unsigned place) const
{
    if (variants.selector(variant.id) != nullptr)
        return;
    const Format format = formatOf(variant);
    size_t slot = 0;
    for (const size_t index : format.byPosition)
    {
        const Conversion &conversion = format.conversions[index];
        const size_t begin = slot;
        slot += conversion.slots.size();
        const bool isSelecting = begin < selector.argument && selector.argument <= slot;
        if (!format.isAccepted || !isSelecting || conversion.name != "nil")
            continue;
        std::vector<std::string> numbers;
        for (const auto &[category, shown] : numbersByPlace(selector, language))
            for (const std::string &number : shown)
            {
                const bool isExact0 = number == "0" && variants.has(selector, KT_VARIANT_EXACTLY_0);
                const bool isExact1 = number == "1" && variants.has(selector, KT_VARIANT_EXACTLY_1);
                const unsigned taken = isExact0                           ? unsigned{KT_VARIANT_EXACTLY_0}
                                       : isExact1                         ? unsigned{KT_VARIANT_EXACTLY_1}
                                       : variants.has(selector, category) ? category
                                                                          : unsigned{KT_VARIANT_OTHER};
                if (taken == place && std::find(numbers.begin(), numbers.end(), number) == numbers.end())
                    numbers.push_back(number);
            }
        if (numbers.size() > 1)
            find(Rule::variantNumber, variant, placeOf(variant, conversion),
                 {Text::numberLeftOut, {placeName(selector.kind, place), numbers[0], numbers[1]}});
    }
}

void Variants::Checking::checkLabel(const Message &message) const
{
    const ParsedFile &parsed = variants.parsed();
    const Range place = parsed.locateAttribute(message.unit, "id");
    if (place.begin == message.unit.begin) // it has none
        return;
    const auto label = readLabel(asText(parsed, place));
    if (!label.has_value())
        return;
    const Selector *const selector = variants.selector(label->selector);
    const auto wanted = selector != nullptr ? placeNamed(selector->kind, label->place) : std::nullopt;
    if (wanted.has_value() && selector->messageAt(*wanted) == numberOf(message.id))
        return;
    if (variants.pathTo(message.id) == nullptr)
    {
        find(Rule::variantUnreached, message, place, {Text::variantNotReached, {numberOf(message.id)}});
        return;
    }
    std::string right;
    for (const auto &[id, other] : variants.m_selectors)
        for (unsigned at = 0; at < other.rowLength() && right.empty(); ++at)
            if (other.messageAt(at) == numberOf(message.id))
                right = std::to_string(id) + "[" + placeName(other.kind, at) + "]";
    find(Rule::variantLabel, message, place, {Text::labelWrong, {right}});
}

void Variants::check(formTable *table, Findings &findings) const
{
    const Checking checking = {*this, table, findings, languageOf()};
    for (const auto &[id, selector] : m_selectors)
    {
        if (checking.checkSelector(id, selector))
            checking.checkRow(id, selector);
    }
    if (m_selectors.empty()) // a file of a translator's program, say, which has the sentences alone
        return;
    for (const auto &[id, message] : m_messages)
        checking.checkLabel(*message);
}

} // namespace tool::check
