#include "check/formats.h"

#include "charset.h"
#include "check/finding.h"
#include "check/utf8.h"

#include <algorithm>
#include <fmt/core.h>
#include <unicode/utf16.h>

namespace tool::check
{
namespace
{

constexpr int believedPosition = 1000; // a higher one must not exceed the length of the text

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

/** A walk over the units of a text that knows how many bytes of UTF-8 lie behind it. */
class Walk
{
public:
    explicit Walk(const std::u16string &text) : m_text(text) {}

    size_t bytesTo(size_t unit)
    {
        for (; m_unit < unit; ++m_unit)
        {
            const char16_t character = m_text[m_unit];
            m_bytes += character < 0x80 ? 1 : character < 0x800 ? 2 : U16_IS_SURROGATE(character) ? 2 : 3;
        }
        return m_bytes;
    }

private:
    const std::u16string &m_text;
    size_t m_unit = 0;
    size_t m_bytes = 0;
};

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

/** The problem of a malformed conversion, of which this is the beginning of a text. */
KTProblem problemAt(std::string_view rest, formTable *table)
{
    constexpr size_t enough = 200; // for what a conversion can be meant to be
    size_t length = std::min(rest.size(), enough);
    while (length < rest.size() && isContinuation(rest[length]))
        --length;
    KTProblem problem{};
    problem.structSize = sizeof problem;
    isAccepted(std::string(rest.substr(0, length)).c_str(), table, &problem);
    problem.length = std::clamp<size_t>(problem.length, 1, length);
    return problem;
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

/** The arguments of a conversion that is one, as "%*d[7]". */
std::vector<Slot> slotsOf(std::string_view conversion, formTable *table)
{
    const std::string alone = fmt::format("{}[1]", conversion.substr(0, conversion.rfind('[')));
    KTPreparedFormat *made = nullptr;
    if (KTPrepareFormat(alone.c_str(), table, &made) == KT_ERR_NO_MEMORY)
        throw std::bad_alloc();
    const std::unique_ptr<KTPreparedFormat, decltype(&KTFreePrepared)> prepared(made, KTFreePrepared);
    std::vector<Slot> slots;
    const KTSlot *slot = nullptr;
    for (size_t count = made != nullptr ? KTPreparedSlots(made, &slot) : 0; count > 0; --count, ++slot)
        slots.push_back({rolesOfSlots[slot->role], kindsOfSlots[slot->code]});
    return slots;
}

} // namespace

Format parseFormat(std::string_view message, formTable *table)
{
    const std::u16string text = ucs2FromUtf8(std::string(message));
    Format format;
    format.isAccepted = isAccepted(message.data(), table, nullptr);
    Walk walk(text);
    const auto addFault = [&format](size_t begin, const KTProblem &problem, int position, bool isLone) {
        format.faults.push_back({{begin, begin + (isLone ? 1 : problem.length)}, problem, position, isLone});
    };
    for (size_t at = text.find(u'%'); at < text.size(); at = text.find(u'%', at))
    {
        if (text[at + 1] == u'%')
        {
            at += 2;
            continue;
        }
        const UCS2 *cursor = text.c_str() + at;
        Flag_t type = CONV_UNKNOWN;
        int width = 0;
        int precision = 0;
        int flags = 0;
        KTFormatter *formatter = nullptr;
        const int position = parseConvSpec(&cursor, table, &type, &width, &precision, &flags, &formatter);
        const size_t begin = walk.bytesTo(at);
        KTProblem problem{};
        if (position == 0 || type == CONV_UNKNOWN)
            problem = problemAt(message.substr(begin), table);
        const bool ranOn = problem.rule == KT_RULE_POSITION_MISSING; // as far as the position of the next one
        if (position == 0 || ranOn)
        {
            const bool isLonePercent = isLone(message.substr(begin, problem.length), table);
            addFault(begin, problem, 0, isLonePercent);
            do
                ++at;
            while (at < text.size() && walk.bytesTo(at) < format.faults.back().place.end);
            continue;
        }
        at = static_cast<size_t>(cursor - text.c_str());
        const Range place{begin, walk.bytesTo(at)};
        problem.length = place.end - begin;
        if (position > believedPosition && static_cast<size_t>(position) > text.size() && type != CONV_UNKNOWN)
            problem.rule = KT_RULE_NUMBER_TOO_LARGE;
        if (problem.rule != KT_RULE_NONE)
            addFault(begin, problem, position, false);
        else
            format.conversions.push_back({position, place, quotation(message.substr(begin, place.end - begin)),
                                          type == CONV_N   ? "N"
                                          : type == CONV_O ? "O"
                                                           : formatter->name,
                                          slotsOf(message.substr(begin, place.end - begin), table)});
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

} // namespace

FormTable::FormTable() : m_list(1), m_table{false, {}, m_list.data(), nullptr, &builtInFormTable}
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
    if (!isAccepted(fmt::format("%{}[1]", m_rows.back()->name).c_str(), get(), nullptr))
        return say(Text::badFormName);
    return "";
}

} // namespace tool::check
