#include "argument_value.h"

#include "charset.h"
#include "terminal.h"
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

template <typename Number> Value readInteger(const std::string &word)
{
    using Limits = std::numeric_limits<Number>;
    const WholeNumber number = readWholeNumber(word);
    const uint64_t most = static_cast<uint64_t>(Limits::max());
    const uint64_t mostNegative = Limits::is_signed ? most + 1 : 0;
    if (number.magnitude > (number.negative ? mostNegative : most))
        throw Unreadable{say(Text::outOfRange, {std::to_string(Limits::min()), std::to_string(Limits::max())})};
    const uint64_t bits = number.negative ? 0 - number.magnitude : number.magnitude;
    return static_cast<Number>(bits);
}

template <typename Short, typename Plain, typename Long> Value readIntegerOfSize(const std::string &word, int flags)
{
    if ((flags & FLAG_h) != 0)
        return readInteger<Short>(word);
    return (flags & FLAG_BANG) != 0 ? readInteger<Long>(word) : readInteger<Plain>(word);
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

Value readCharacter(const std::string &word, int flags)
{
    constexpr char16_t last8BitCharacter = 0xFF;
    const std::u16string text = readText(word);
    if (text.size() == 2 && U16_IS_LEAD(text[0]))
        throw Unreadable{say(Text::takesTwoUnits)};
    if (text.size() != 1)
        throw Unreadable{say(Text::notOneCharacter)};
    if ((flags & FLAG_l) != 0)
        return text[0];
    if (text[0] > last8BitCharacter)
        throw Unreadable{say(Text::beyond8Bits)};
    return static_cast<char>(text[0]);
}

struct Reader
{
    int type;
    Value (*read)(const std::string &word, int flags);
};

constexpr Reader readers[] = {
    {1, readCharacter},
    {2, [](const std::string &word, int) -> Value { return utf8(readText(word)); }},
    {3, [](const std::string &word, int) -> Value { return readText(word); }},
    {4, readIntegerOfSize<int16_t, int32_t, int64_t>},
    {5, readIntegerOfSize<uint16_t, uint32_t, uint64_t>},
    {6,
     [](const std::string &word, int flags) -> Value {
         return (flags & FLAG_L) != 0 ? readFloating(word, std::strtold) : readFloating(word, std::strtod);
     }},
};

} // namespace

void *pointerTo(Value &value)
{
    if (auto *text = std::get_if<std::string>(&value))
        return text->data();
    if (auto *text = std::get_if<std::u16string>(&value))
        return text->data();
    return std::visit([](auto &plain) -> void * { return &plain; }, value);
}

Value readValue(int type, int flags, const std::string &word)
{
    for (const Reader &reader : readers)
        if (reader.type == type)
            return reader.read(word, flags);
    throw Unreadable{say(Text::cannotBeGiven)};
}

Value readStar(const std::string &word)
{
    return readInteger<int32_t>(word);
}

} // namespace tool
