#include "check/texts/formats.h"

#include "check/texts/utf8.h"
#include "format/format_limits.h"
#include "library/language_conversions.h"

#include <algorithm>
#include <fmt/core.h>

// The library walks over the conversions of a text and says what each takes. Where it refuses one, the walk goes on
// behind the part that looks like a conversion, so that all faults of a text are found at once.

namespace tool::check
{
namespace
{

/** Whether format calls accept a text, which a zero byte follows; if not, the first problem. */
bool isAccepted(const char *text, formTable *table, KTProblem *problem)
{
    const int result = KTExplainFormat(text, table, problem);
    if (result == KT_ERR_NO_MEMORY)
        throw std::bad_alloc();
    return result == 0;
}

/** By KTSlotCode: the sign of an integer is of no account. */
constexpr Kind kindsOfSlots[] = {{},
                                 Kind::integer16,
                                 Kind::integer16,
                                 Kind::integer32,
                                 Kind::integer32,
                                 Kind::integer64,
                                 Kind::integer64,
                                 Kind::character,
                                 Kind::unit,
                                 Kind::floating,
                                 Kind::longFloating,
                                 Kind::utf8,
                                 Kind::ucs2,
                                 Kind::pointer};
constexpr Slot::Role rolesOfSlots[] = {Slot::Role::value, Slot::Role::width, Slot::Role::precision};

/** The UCS-2 units of UTF-8. */
size_t unitsOf(std::string_view text)
{
    size_t units = 0;
    for (const char byte : text)
        units += isContinuation(byte) ? 0 : static_cast<unsigned char>(byte) < 0xF0 ? 1 : 2;
    return units;
}

} // namespace

Text nameOf(Kind kind)
{
    constexpr Text names[] = {Text::integer16, Text::integer32,    Text::integer64, Text::oneCharacter, Text::oneUnit,
                              Text::floating,  Text::longFloating, Text::utf8Text,  Text::ucs2Text,     Text::aPointer};
    return names[static_cast<size_t>(kind)];
}

const Conversion *Format::find(int position) const
{
    const auto found =
        std::lower_bound(byPosition.begin(), byPosition.end(), position,
                         [this](size_t index, int wanted) { return conversions[index].position < wanted; });
    return found != byPosition.end() && conversions[*found].position == position ? &conversions[*found] : nullptr;
}

int Format::highestPosition() const
{
    return byPosition.empty() ? 0 : conversions[byPosition.back()].position;
}

std::vector<Slot> Format::arguments() const
{
    std::vector<Slot> slots;
    for (const size_t index : byPosition)
        slots.insert(slots.end(), conversions[index].slots.begin(), conversions[index].slots.end());
    return slots;
}

void Format::sortPositions()
{
    byPosition.clear();
    byPosition.reserve(conversions.size());
    for (size_t i = 0; i < conversions.size(); ++i)
        byPosition.push_back(i);
    const auto isBefore = [this](size_t a, size_t b) { return conversions[a].position < conversions[b].position; };
    if (!std::is_sorted(byPosition.begin(), byPosition.end(), isBefore)) // nearly always it is
        std::stable_sort(byPosition.begin(), byPosition.end(), isBefore);
}

namespace
{

/** How many bytes of a malformed conversion are shown. */
size_t shownLength(std::string_view rest, size_t length)
{
    constexpr size_t enough = 200; // for what a conversion can be meant to be
    length = std::min(length, enough);
    while (length < rest.size() && isContinuation(rest[length]))
        --length;
    return length;
}

/** Whether a malformed conversion looks like a percent sign that was never meant as one. */
bool isLone(std::string_view specification, formTable *table)
{
    if (specification.find('[') != std::string_view::npos)
        return false;
    size_t begin = std::min(specification.find_first_not_of("-+#0123456789.*", 1), specification.size());
    if (begin < specification.size() && specification[begin] == '$') // "%1$d" is how others write a position
        ++begin;
    const auto isNameCharacter = [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '!';
    };
    size_t end = begin;
    while (end < specification.size() && isNameCharacter(specification[end]))
        ++end;
    // With a position it would be one.
    return end == begin ||
           !isAccepted(fmt::format("%{}[1]", specification.substr(begin, end - begin)).c_str(), table, nullptr);
}

/** A walk over the conversions of a text that has room for the arguments of each. */
class Walk
{
public:
    Walk(std::string_view text, formTable *table) : m_text(text), m_table(table), m_slots(8)
    {
        m_found.structSize = sizeof m_found;
    }

    /** The next conversion, or null. */
    const KTConversion *next()
    {
        for (;;)
        {
            m_found.slotList = m_slots.data();
            m_found.slotRoom = m_slots.size();
            if (!KTNextConversion(m_text.data(), m_table, &m_found))
                return nullptr;
            if (m_found.slotCount <= m_slots.size())
                return &m_found;
            m_slots.resize(m_found.slotCount);
            m_found.length = 0; // the same once more
        }
    }

    /** Lets the conversion found last end here, and the walk go on. */
    void cutTo(size_t length) { m_found.length = length; }

private:
    std::string_view m_text;
    formTable *m_table;
    KTConversion m_found{};
    std::vector<KTSlot> m_slots;
};

Conversion conversionOf(const KTConversion &found, std::string_view message)
{
    Conversion conversion;
    conversion.position = static_cast<int>(found.position);
    conversion.place = {found.offset, found.offset + found.length};
    conversion.written = quotation(message.substr(found.offset, found.length));
    conversion.name = found.type == CONV_N ? "N" : found.type == CONV_O ? "O" : found.formatter->name;
    for (size_t i = 0; i < found.slotCount; ++i)
        conversion.slots.push_back({rolesOfSlots[found.slotList[i].role], kindsOfSlots[found.slotList[i].code]});
    return conversion;
}

/** The length of a format in UCS-2 units, counted when it is asked for. */
class LazyLength
{
public:
    explicit LazyLength(std::string_view text) : m_text(text) {}

    size_t units()
    {
        if (m_units == 0)
            m_units = unitsOf(m_text);
        return m_units;
    }

private:
    std::string_view m_text;
    size_t m_units = 0;
};

} // namespace

constexpr std::string_view tagBegin = "<x ts=\"";
constexpr std::string_view tagMiddle = "\" id=\"";
constexpr std::string_view tagEnd = "\"/>";

bool writesNothing(std::string_view written)
{
    const std::string_view whole = written.substr(0, written.find('['));
    const size_t end = std::min(whole.find_first_not_of("%-+ #0123456789*.hlL!"), whole.size());
    const std::string_view name = whole.substr(end);
    const std::string_view settings = whole.substr(0, end);
    const std::string_view behindPoint = settings.substr(std::min(settings.find('.'), settings.size()));
    const std::string_view precision = behindPoint.substr(0, behindPoint.find_first_not_of("0123456789*", 1));
    return name == "nil" || (precision == ".0" && (name == "s" || name == "U"));
}

std::string tagOf(const Conversion &conversion)
{
    return fmt::format("{}{}{}{}{}", tagBegin, conversion.written.substr(0, conversion.written.rfind('[')), tagMiddle,
                       conversion.position, tagEnd);
}

std::optional<std::string> conversionInTag(std::string_view tag)
{
    const size_t middle = tag.find(tagMiddle);
    const bool isTag = middle != std::string_view::npos && tag.substr(0, tagBegin.size()) == tagBegin &&
                       tag.substr(tag.size() - tagEnd.size()) == tagEnd;
    if (!isTag)
        return std::nullopt;
    const size_t position = middle + tagMiddle.size();
    return fmt::format("{}[{}]", tag.substr(tagBegin.size(), middle - tagBegin.size()),
                       tag.substr(position, tag.size() - tagEnd.size() - position));
}

Format parseFormat(std::string_view message, formTable *table)
{
    Format format;
    format.isAccepted = isAccepted(message.data(), table, nullptr);
    LazyLength length(message);
    Walk walk(message, table);
    while (const KTConversion *const found = walk.next())
    {
        const std::string_view rest = message.substr(found->offset);
        const auto position = static_cast<int>(found->position);
        KTProblem problem{};
        problem.structSize = sizeof problem;
        problem.rule = found->rule;
        problem.length = found->length;
        if (found->rule == KT_RULE_NONE && found->position > kelto::alwaysBelieved && found->position > length.units())
            problem.rule = KT_RULE_NUMBER_TOO_LARGE;
        if (problem.rule == KT_RULE_NONE)
        {
            format.conversions.push_back(conversionOf(*found, message));
            continue;
        }
        bool isLonePercent = false;
        if (position == 0)
        {
            problem.length = shownLength(rest, found->length);
            isLonePercent = isLone(rest.substr(0, problem.length), table);
            walk.cutTo(isLonePercent ? 1 : problem.length);
        }
        format.faults.push_back({{found->offset, found->offset + found->length}, problem, position, isLonePercent});
    }
    format.sortPositions();
    return format;
}

/** One conversion of the caller's, in memory that does not move. */
struct FormTable::Row
{
    std::string name;
    std::vector<int> types;
};

namespace
{

int formatNothing(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *)
{
    *size = 0;
    return 0;
}

/** Whether a conversion with this name is found by it: "hx" is "x" with a modifier, and "2x" is one with a width. */
bool isFound(const std::string &name, formTable *table)
{
    KTConversion found{};
    found.structSize = sizeof found;
    KTNextConversion(fmt::format("%{}[1]", name).c_str(), table, &found);
    return found.formatter != nullptr && found.formatter->name == name;
}

} // namespace

FormTable::FormTable() : m_list(1), m_table{false, {}, m_list.data(), nullptr, namedConversions()}
{
}

FormTable::~FormTable() = default;

std::string FormTable::add(std::string_view form)
{
    constexpr std::pair<std::string_view, int> types[] = {
        {"char", KT_ARG_CHARACTER}, {"utf8", KT_ARG_UTF8},     {"ucs2", KT_ARG_UCS2},      {"int", KT_ARG_SIGNED},
        {"uint", KT_ARG_UNSIGNED},  {"double", KT_ARG_DOUBLE}, {"pointer", KT_ARG_POINTER}};
    const size_t equals = form.find('=');
    if (equals == std::string_view::npos || equals == 0)
        return say(Text::noForm);
    auto row = std::make_unique<Row>();
    row->name = form.substr(0, equals);
    for (size_t begin = equals + 1; begin <= form.size();)
    {
        const size_t end = std::min(form.find(',', begin), form.size());
        const std::string_view name = form.substr(begin, end - begin);
        const auto *const found =
            std::find_if(std::begin(types), std::end(types), [name](const auto &type) { return type.first == name; });
        if (found == std::end(types))
            return say(Text::noSuchType, {std::string(name)});
        row->types.push_back(found->second);
        begin = end + 1;
    }
    const int count = static_cast<int>(row->types.size());
    row->types.push_back(0);
    m_list.insert(m_list.end() - 1, {row->name.c_str(), nullptr, count, row->types.data(), formatNothing});
    m_table.formList = m_list.data();
    m_rows.push_back(std::move(row));
    if (!isFound(m_rows.back()->name, get()))
        return say(Text::badFormName);
    return "";
}

} // namespace tool::check
