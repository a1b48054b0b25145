#include "check/formats.h"

#include "charset.h"

#include <algorithm>
#include <fmt/core.h>
#include <unicode/utf16.h>

namespace tool::check
{
namespace
{

constexpr int fromArguments = -2;
constexpr int believedPosition = 1000; // a higher one must not exceed the length of the text

struct FreeParameters
{
    void operator()(KTParameter *parameters) const { ZEL_free(parameters); }
};

bool isAccepted(const std::u16string &text, formTable *table)
{
    KTParameter *parameters = nullptr;
    const int result = checkSyntax(text.c_str(), table, &parameters);
    const std::unique_ptr<KTParameter, FreeParameters> release(parameters);
    if (result == KT_ERR_NO_MEMORY)
        throw std::bad_alloc();
    return result == 0;
}

/** The kind of an argument-type code; false for one that takes no argument. */
bool kindOf(int code, int flags, Kind &kind)
{
    switch (code)
    {
    case 1:
        kind = (flags & FLAG_l) != 0 ? Kind::unit : Kind::character;
        return true;
    case 2:
        kind = Kind::utf8;
        return true;
    case 3:
        kind = Kind::ucs2;
        return true;
    case 4:
    case 5:
        kind = (flags & FLAG_h) != 0 ? Kind::integer16 : (flags & FLAG_BANG) != 0 ? Kind::integer64 : Kind::integer32;
        return true;
    case 6:
        kind = (flags & FLAG_L) != 0 ? Kind::longFloating : Kind::floating;
        return true;
    case 7:
        kind = Kind::pointer;
        return true;
    default:
        return false;
    }
}

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

const char *nameOf(Kind kind)
{
    constexpr const char *names[] = {"a 16-bit integer", "a 32-bit integer", "a 64-bit integer", "a character",
                                     "a UCS-2 unit",     "a double",         "a long double",    "a UTF-8 string",
                                     "a UCS-2 string",   "a pointer"};
    return names[static_cast<size_t>(kind)];
}

const Conversion *Format::find(int position) const
{
    const auto found = std::find_if(conversions.begin(), conversions.end(),
                                    [position](const Conversion &row) { return row.position == position; });
    return found != conversions.end() ? &*found : nullptr;
}

int Format::highestPosition() const
{
    int highest = 0;
    for (const Conversion &conversion : conversions)
        highest = std::max(highest, conversion.position);
    return highest;
}

namespace
{

/** What the author will have meant as one conversion: to its ']', else to the next blank or '%'. */
size_t guessEnd(const std::u16string &text, size_t begin)
{
    const size_t name = std::min(text.find_first_not_of(u"-+ #0", begin + 1), text.size());
    const size_t next = std::min(text.find_first_of(u"% \t\r\n", name), text.size());
    const size_t bracket = std::u16string_view(text).substr(0, next).find(u']', name);
    return bracket != std::u16string::npos ? bracket + 1 : std::max(next, begin + 1);
}

std::string whyMalformed(std::u16string_view specification)
{
    const size_t open = specification.find(u'[');
    if (open == std::u16string_view::npos)
        return "has no position, as in \"%s[1]\"; a percent sign that stands for itself is written \"%%\"";
    if (specification.back() != u']')
        return "has a position that is not closed by \"]\"";
    return "is malformed; the form is %[flags][width][.precision][h|l|L|!]name[position]";
}

/** Whether a malformed conversion looks like a percent sign that was never meant as one. */
bool isLone(std::u16string_view specification, formTable *table)
{
    if (specification.find(u'[') != std::u16string_view::npos)
        return false;
    const size_t begin = std::min(specification.find_first_not_of(u"-+#0123456789.*", 1), specification.size());
    const auto isNameCharacter = [](char16_t unit) {
        return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit == u'!';
    };
    size_t end = begin;
    while (end < specification.size() && isNameCharacter(specification[end]))
        ++end;
    if (end == begin)
        return true;
    // With a position it would be one.
    const std::u16string completed = u"%" + std::u16string(specification.substr(begin, end - begin)) + u"[1]";
    return !isAccepted(completed, table);
}

std::vector<Slot> slotsOf(const KTFormatter &formatter, int width, int precision, int flags)
{
    std::vector<Slot> slots;
    if (width == fromArguments)
        slots.push_back({Slot::Role::width, Kind::integer32});
    if (precision == fromArguments)
        slots.push_back({Slot::Role::precision, Kind::integer32});
    Kind kind{};
    if (formatter.argTypes != nullptr)
        for (const int *code = formatter.argTypes; *code != 0; ++code)
            if (kindOf(*code, flags, kind))
                slots.push_back({Slot::Role::value, kind});
    return slots;
}

} // namespace

Format parseFormat(std::string_view message, formTable *table)
{
    const std::u16string text = ucs2FromUtf8(std::string(message));
    Format format;
    format.isAccepted = isAccepted(text, table);
    Walk walk(text);
    const auto placeOf = [&](size_t begin, size_t end) {
        const size_t from = walk.bytesTo(begin);
        return Range{from, walk.bytesTo(end)};
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
        const size_t end = position != 0 ? static_cast<size_t>(cursor - text.c_str()) : guessEnd(text, at);
        const std::u16string_view specification(text.data() + at, end - at);
        if (position == 0 && isLone(specification, table))
        {
            format.faults.push_back({placeOf(at, at + 1), "\"%\" by itself is written \"%%\"", 0, true});
            ++at;
            continue;
        }
        const Range place = placeOf(at, end);
        std::string written(message.substr(place.begin, place.end - place.begin));
        if (position == 0)
            format.faults.push_back({place, fmt::format("\"{}\" {}", written, whyMalformed(specification)), 0, false});
        else if (type == CONV_UNKNOWN)
            format.faults.push_back(
                {place, fmt::format("\"{}\" has a name that no conversion has", written), position, false});
        else if (position > believedPosition && static_cast<size_t>(position) > text.size())
            format.faults.push_back({place, fmt::format("\"{}\" has too high a position", written), position, false});
        else
            format.conversions.push_back({position, place, std::move(written),
                                          type == CONV_N   ? "N"
                                          : type == CONV_O ? "O"
                                                           : formatter->name,
                                          slotsOf(*formatter, width, precision, flags)});
        at = end;
    }
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

FormTable::FormTable() : m_table{false, {}, nullptr, nullptr, &builtInFormTable}
{
}

FormTable::~FormTable() = default;

std::string FormTable::add(std::string_view form)
{
    constexpr std::pair<std::string_view, int> types[] = {{"char", 1}, {"utf8", 2},   {"ucs2", 3},   {"int", 4},
                                                          {"uint", 5}, {"double", 6}, {"pointer", 7}};
    const size_t equals = form.find('=');
    if (equals == std::string_view::npos || equals == 0)
        return "the form is NAME=TYPE[,TYPE...]";
    auto row = std::make_unique<Row>();
    row->name = form.substr(0, equals);
    for (size_t begin = equals + 1; begin <= form.size();)
    {
        const size_t end = std::min(form.find(',', begin), form.size());
        const std::string_view name = form.substr(begin, end - begin);
        const auto *const found =
            std::find_if(std::begin(types), std::end(types), [name](const auto &type) { return type.first == name; });
        if (found == std::end(types))
            return fmt::format("there is no type \"{}\"; the types are char, utf8, ucs2, int, uint, double and pointer",
                               name);
        row->types.push_back(found->second);
        begin = end + 1;
    }
    const int count = static_cast<int>(row->types.size());
    row->types.push_back(0);
    m_list.push_back({row->name.c_str(), nullptr, count, row->types.data(), formatNothing});
    m_rows.push_back(std::move(row));
    const std::u16string used = u"%" + ucs2FromUtf8(m_rows.back()->name) + u"[1]";
    if (!isAccepted(used, get()))
        return "a name has up to 19 ASCII characters, begins with a letter, and not with h, l or L";
    return "";
}

formTable *FormTable::get()
{
    if (m_list.empty() || m_list.back().name != nullptr)
        m_list.push_back({});
    m_table.formList = m_list.data();
    return &m_table;
}

} // namespace tool::check
