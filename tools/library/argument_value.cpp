#include "library/argument_value.h"

#include "io/charset.h"
#include "io/terminal.h"
#include "text.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <unicode/utf16.h>

namespace tool
{
namespace
{

/** A whole number as a sign and a magnitude of 64 bits. */
struct WholeNumber
{
    bool negative = false;
    uint64_t magnitude = 0;
};

WholeNumber readWholeNumber(std::string_view word)
{
    WholeNumber number;
    if (!word.empty() && (word.front() == '-' || word.front() == '+'))
    {
        number.negative = word.front() == '-';
        word.remove_prefix(1);
    }
    int base = 10;
    if (word.substr(0, 2) == "0x" || word.substr(0, 2) == "0X")
    {
        base = 16;
        word.remove_prefix(2);
    }
    const char *const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number.magnitude, base);
    if (stop != end || error == std::errc::invalid_argument)
        throw Unreadable{say(Text::noWholeNumber)};
    if (error == std::errc::result_out_of_range)
        throw Unreadable{say(Text::beyond64Bits)};
    return number;
}

template <typename Number, typename Wide> Value readInteger(const std::string &word)
{
    using Limits = std::numeric_limits<Number>;
    const WholeNumber number = readWholeNumber(word);
    const uint64_t most = static_cast<uint64_t>(Limits::max());
    const uint64_t mostNegative = Limits::is_signed ? most + 1 : 0;
    if (number.magnitude > (number.negative ? mostNegative : most))
        throw Unreadable{say(Text::outOfRange, {std::to_string(Limits::min()), std::to_string(Limits::max())})};
    const uint64_t bits = number.negative ? 0 - number.magnitude : number.magnitude;
    return static_cast<Wide>(bits);
}

// The program never sets LC_NUMERIC, so that the decimal sign is the point.
template <typename Number> Value readFloating(const std::string &word, Number (*convert)(const char *, char **))
{
    char *end = nullptr;
    errno = 0;
    const Number number = convert(word.c_str(), &end);
    const bool startsWithSpace = !word.empty() && std::isspace(static_cast<unsigned char>(word.front())) != 0;
    if (word.empty() || startsWithSpace || end != word.c_str() + word.size())
        throw Unreadable{say(Text::noNumber)};
    if (errno == ERANGE && std::isinf(number))
        throw Unreadable{say(Text::tooLargeNumber)};
    return number;
}

std::u16string readText(const std::string &word)
{
    const std::string &charset = terminal().charset();
    std::u16string text = ucs2(charset, word);
    if (lossOfDecoding(charset, word, text).characters != 0)
        throw Unreadable{say(Text::noTextInCharset, {terminal().showBytes(terminal().charsetName())})};
    return text;
}

UCS2 readUnit(const std::string &word)
{
    const std::u16string text = readText(word);
    if (text.size() == 2 && U16_IS_LEAD(text[0]))
        throw Unreadable{say(Text::takesTwoUnits)};
    if (text.size() != 1)
        throw Unreadable{say(Text::notOneCharacter)};
    return text[0];
}

Value readCharacter(const std::string &word)
{
    constexpr char16_t last8BitCharacter = 0xFF;
    const UCS2 unit = readUnit(word);
    if (unit > last8BitCharacter)
        throw Unreadable{say(Text::beyond8Bits)};
    return static_cast<char>(unit);
}

struct Reader
{
    uint32_t code;
    Value (*read)(const std::string &word);
};

constexpr Reader readers[] = {
    {KT_SLOT_INT16, readInteger<int16_t, int64_t>},
    {KT_SLOT_UINT16, readInteger<uint16_t, uint64_t>},
    {KT_SLOT_INT32, readInteger<int32_t, int64_t>},
    {KT_SLOT_UINT32, readInteger<uint32_t, uint64_t>},
    {KT_SLOT_INT64, readInteger<int64_t, int64_t>},
    {KT_SLOT_UINT64, readInteger<uint64_t, uint64_t>},
    {KT_SLOT_CHAR, readCharacter},
    {KT_SLOT_UNIT, [](const std::string &word) -> Value { return readUnit(word); }},
    {KT_SLOT_DOUBLE, [](const std::string &word) -> Value { return readFloating(word, std::strtod); }},
    {KT_SLOT_LONG_DOUBLE, [](const std::string &word) -> Value { return readFloating(word, std::strtold); }},
    {KT_SLOT_UTF8, [](const std::string &word) -> Value { return utf8(readText(word)); }},
    {KT_SLOT_UCS2, [](const std::string &word) -> Value { return readText(word); }},
};

struct MakeArgument
{
    KTArgument operator()(int64_t value) const { return KT_INT64(value); }
    KTArgument operator()(uint64_t value) const { return KT_UINT64(value); }
    KTArgument operator()(char value) const { return KT_CHAR(value); }
    KTArgument operator()(UCS2 value) const { return KT_UNIT(value); }
    KTArgument operator()(double value) const { return KT_DOUBLE(value); }
    KTArgument operator()(const long double &value) const { return KT_LONG_DOUBLE(&value); }
    KTArgument operator()(const std::string &text) const { return KT_UTF8N(text.data(), text.size()); }
    KTArgument operator()(const std::u16string &text) const { return KT_UCS2N(text.data(), text.size()); }
};

} // namespace

KTArgument argumentOf(const Value &value)
{
    return std::visit(MakeArgument(), value);
}

Value readValue(uint32_t code, const std::string &word)
{
    for (const Reader &reader : readers)
        if (reader.code == code)
            return reader.read(word);
    throw Unreadable{say(Text::cannotBeGiven)};
}

} // namespace tool
