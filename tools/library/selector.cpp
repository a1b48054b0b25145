#include "library/selector.h"

#include "format/format_limits.h"
#include "io/charset.h"

#include <algorithm>
#include <iterator>

namespace tool
{
namespace
{

KTFormatter selectors[] = {{"plural", nullptr, 1, signedIntList, formatIP},
                           {"ordinal", nullptr, 1, signedIntList, formatIP},
                           {"select", nullptr, 1, signedIntList, formatIP},
                           {nullptr, nullptr, 0, nullptr, nullptr}};
formTable selectorTable = {false, {}, selectors, nullptr, nullptr};

/** Numbers in the order of size, as ranges of which the first few are written. */
class Ranges
{
public:
    void add(unsigned long number)
    {
        if (!m_isEmpty && number == m_last + 1)
        {
            m_last = number;
            return;
        }
        finish();
        m_first = m_last = number;
        m_isEmpty = false;
    }

    std::string text()
    {
        finish();
        return m_text;
    }

private:
    void finish()
    {
        constexpr unsigned most = 3;
        if (m_isEmpty || m_count > most)
            return;
        m_text += m_count > 0 ? ", " : "";
        if (m_count++ == most)
            m_text += "...";
        else
            m_text += std::to_string(m_first) + (m_last > m_first ? "-" + std::to_string(m_last) : "");
    }

    std::string m_text;
    unsigned m_count = 0;
    unsigned long m_first = 0, m_last = 0;
    bool m_isEmpty = true;
};

} // namespace

unsigned Selector::rowLengthOf(Kind kind)
{
    return kind == Kind::select ? kelto::selectRowLength : mostVariants;
}

unsigned Selector::messageAt(unsigned place) const
{
    return row != 0 ? row + place : 0;
}

std::optional<Selector> readSelector(const std::string &message)
{
    if (message.empty() || message[0] != '%')
        return std::nullopt;
    const std::u16string units = ucs2FromUtf8(message);
    const UCS2 *cursor = units.c_str();
    Flag_t type{};
    int width = 0;
    int precision = 0;
    int flags = 0;
    KTFormatter *formatter = nullptr;
    const int position = parseConvSpec(&cursor, &selectorTable, &type, &width, &precision, &flags, &formatter);
    if (position == 0 || formatter == nullptr || type != CONV_EXTERNAL || *cursor != 0)
        return std::nullopt;
    const auto kind = static_cast<Selector::Kind>(formatter - selectors);
    const bool isRowZero = flags == FLAG_ZERO && width == KT_ABSENT;
    const bool hasRow = isRowZero || (flags == 0 && width > 0);
    const bool hasDigits = precision >= 0 ? kind != Selector::Kind::select : precision == KT_ABSENT;
    if (!hasRow || !hasDigits)
        return std::nullopt;
    return Selector{kind, isRowZero ? 0 : static_cast<unsigned>(width), static_cast<unsigned>(position),
                    std::max(precision, 0)};
}

bool namesSelector(std::string_view specification)
{
    const std::string_view written = specification.substr(0, specification.find('['));
    const size_t begin = written.find_first_not_of("%-+ #0123456789*.hlL!");
    if (begin == std::string_view::npos)
        return false;
    const std::string_view name = written.substr(begin);
    return std::any_of(std::begin(selectors), std::end(selectors) - 1,
                       [name](const KTFormatter &selector) { return selector.name == name; });
}

std::string placeName(Selector::Kind kind, unsigned place)
{
    return kind == Selector::Kind::select ? "=" + std::to_string(place) : variantLabels[place];
}

std::optional<unsigned> placeNamed(Selector::Kind kind, const std::string &name)
{
    const unsigned count = Selector::rowLengthOf(kind);
    for (unsigned place = 0; place < count; ++place)
        if (placeName(kind, place) == name || (kind == Selector::Kind::select && place == 0 && name == "other"))
            return place;
    return std::nullopt;
}

std::optional<unsigned> placeOf(const Selector &selector, const std::string &language, unsigned long number,
                                const RowHas &has)
{
    std::vector<unsigned> wanted;
    if (selector.kind == Selector::Kind::select)
        wanted = {number < selector.rowLength() ? static_cast<unsigned>(number) : 0, 0};
    else
    {
        if (selector.digits == 0 && number <= 1)
            wanted.push_back(KT_VARIANT_EXACTLY_0 + static_cast<unsigned>(number));
        const bool isOrdinal = selector.kind == Selector::Kind::ordinal;
        wanted.push_back(
            static_cast<unsigned>(KTPluralCategory(language.c_str(), isOrdinal, KT_UINT64(number), selector.digits)));
        wanted.push_back(KT_VARIANT_OTHER);
    }
    const auto found = std::find_if(wanted.begin(), wanted.end(), has);
    return found != wanted.end() ? std::optional(*found) : std::nullopt;
}

std::string numbersAt(const Selector &selector, const std::string &language, unsigned place, const RowHas &has)
{
    constexpr unsigned long triedOneByOne = 201;
    Ranges ranges;
    for (unsigned long number = 0; number < triedOneByOne; ++number)
        if (placeOf(selector, language, number, has) == place)
            ranges.add(number);
    for (const unsigned long number : {1000UL, 1000000UL})
        if (placeOf(selector, language, number, has) == place)
            ranges.add(number);
    return ranges.text();
}

} // namespace tool
