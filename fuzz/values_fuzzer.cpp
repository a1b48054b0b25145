// Names, dates, numbers and texts straight into a formatter, with any width, precision and flags, and into every class of
// room. The helpers behind the formatters write into buffers of just the size that they ask for.

#include "format/formatters/date_time.h"
#include "format/formatters/distinguished_name.h"
#include "format/formatters/integer.h"
#include "support/arguments.h"
#include "support/guarded.h"
#include "support/platform.h"
#include "support/require.h"

namespace
{

enum class Value
{
    integer,
    floatingPoint,
    character,
    bytes,
    units
};

struct Row
{
    const char *name;
    KTFormatFunction format;
    Value value;
};

constexpr Row rows[] = {
    {"d", formatInteger, Value::integer}, {"u", formatUnsigned, Value::integer},
    {"o", formatOctHex, Value::integer},  {"x", formatOctHex, Value::integer},
    {"X", formatOctHex, Value::integer},  {"?", formatOctHex, Value::integer},
    {"EID", formatEID, Value::integer},   {"f", formatDouble, Value::floatingPoint},
    {"c", formatChar, Value::character},  {"s", formatUTF8Str, Value::bytes},
    {"DT", formatDateTime, Value::bytes}, {"D", formatDateTime, Value::bytes},
    {"T", formatDateTime, Value::bytes},  {"E", formatError, Value::bytes},
    {"IP", formatIP, Value::bytes},       {"U", formatUCS2Str, Value::units},
    {"DND", formatDN, Value::units},      {"DNS", formatDN, Value::units},
};

struct Outcome
{
    int result;
    unsigned long size;
    std::u16string text;
};

/** One formatter with a value and its specification. */
struct Conversion
{
    const Row &row;
    int width, precision, flags;
    void *slot;

    Outcome format(size_t room)
    {
        const long before = Platform::outstanding();
        Guarded<UCS2> out(room);
        unsigned long size = room;
        void *slots[] = {slot, nullptr};
        const int result = row.format(row.name, width, precision, flags, nullptr, nullptr, slots, &size, out.data());
        require(Platform::outstanding() == before, "a formatter leaves nothing behind");
        if (result == 0)
        {
            const bool isEmptyAddress = room == 0 && size == 0; // "IP" asks for no room
            require(isEmptyAddress || (size < room && out.isUntouched(size + 1)),
                    "a text fits, and no more is written");
            return {0, size, std::u16string(out.data(), size)};
        }
        require(result != KT_ERR_BUFFER_TOO_SMALL || size >= room, "what does not fit is longer");
        return {result, size, u""};
    }

    Outcome check()
    {
        constexpr unsigned long largest = 20000;
        const Outcome measured = format(0);
        if (measured.result != KT_ERR_BUFFER_TOO_SMALL || measured.size > largest)
            return measured;
        const unsigned long need = measured.size;
        for (const unsigned long room : {1UL, need / 2, need})
            if (room <= need)
            {
                const Outcome cut = format(room);
                require(cut.result == measured.result && cut.size == need, "the need is the same in every room");
            }
        const Outcome whole = format(need + 1);
        require(whole.result == 0 && whole.size == need, "the need reported is what is written");
        require(format(need + 17).text == whole.text, "the text is the same with more room");
        return whole;
    }
};

/** What the C library prints, which "f" promises to be. */
void compareWithPrintf(const Conversion &conversion, const Outcome &outcome)
{
    const int flags = conversion.flags;
    if (outcome.result != 0 || conversion.width > 5000 || conversion.precision > 5000)
        return;
    std::string format = "%";
    for (const auto &[flag, letter] : {std::pair{FLAG_MINUS, '-'}, std::pair{FLAG_ZERO, '0'}, std::pair{FLAG_HASH, '#'},
                                       std::pair{FLAG_PLUS, '+'}, std::pair{FLAG_SPACE, ' '}})
        format += (flags & flag) != 0 ? std::string(1, letter) : "";
    format += conversion.width >= 0 ? std::to_string(conversion.width) : "";
    format += conversion.precision >= 0 ? "." + std::to_string(conversion.precision) : "";
    char text[20000];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length =
        (flags & FLAG_L) != 0
            ? std::snprintf(text, sizeof text, (format + "Lf").c_str(), *static_cast<long double *>(conversion.slot))
            : std::snprintf(text, sizeof text, (format + "f").c_str(), *static_cast<double *>(conversion.slot));
#pragma GCC diagnostic pop
    require(outcome.text == std::u16string(text, text + length), "\"f\" is what printf writes");
}

void checkHelpers(int64_t number, int flags, const std::string &bytes, const std::u16string &units)
{
    const auto type = static_cast<Flag_t>(flags & 31);
    const auto bits = static_cast<uint64_t>(number);
    Guarded<char> ascii(21), sign(22), octal(23), hexadecimal(17);
    const auto ends = [](const Guarded<char> &text, int length) { return text[static_cast<size_t>(length)] == '\0'; };
    require(ends(ascii, uint64ToAscii(ascii.data(), bits)), "a number is terminated");
    require(std::stoll(sign.data() + 0 * sint64ToAscii(sign.data(), number)) == number, "a number reads back");
    require(ends(octal, uint64ToOctet(octal.data(), bits)), "an octal number is terminated");
    require(ends(hexadecimal, uint64ToHex(hexadecimal.data(), bits, type)), "a hexadecimal number is terminated");
    Guarded<UCS2> rendered(23);
    require(rendered[static_cast<size_t>(numToUCS2(rendered.data(), type, flags, &number))] == 0, "it is terminated");

    for (const Flag_t kind : {CONV_DND, CONV_DNS})
    {
        Guarded<UCS2> name(units.size() + 2);
        require(_formatDN(units.c_str(), kind, name.data()) == 0 && name.isTerminated(), "any name has a form");
    }
    for (const auto read : {secondDateTime, ISODateTime})
    {
        Guarded<UCS2> date(150);
        const int result = read(bytes.c_str(), (flags & FLAG_TAG) != 0, type, date.data());
        require(result == KT_ERR_INVALID_PARAMETER || (result == 0 && date.isTerminated()),
                "a date is read or refused");
    }
    Guarded<UCS2> field(static_cast<size_t>(flags & 15) + 1);
    const char *cursor = bytes.c_str();
    const int result = takeDigits(&cursor, flags & 15, field.data());
    require(result == 1 || field.isTerminated(), "a field of digits ends");
    require(cursor >= bytes.c_str() && cursor <= bytes.c_str() + bytes.size(), "the cursor stays in the text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    FuzzedDataProvider source(data, size);
    const Row &row = rows[source.ConsumeIntegralInRange<size_t>(0, std::size(rows) - 1)];
    const auto width = static_cast<int>(takeNumber(source));
    const auto precision = static_cast<int>(takeNumber(source));
    const int flags = source.ConsumeIntegral<uint16_t>();
    int64_t number = takeNumber(source);
    long double real = static_cast<long double>(number) / source.ConsumeIntegralInRange(1, 1000);
    if (source.ConsumeIntegralInRange(0, 7) == 0)
        real *= 1e200L * 1e100L;
    const auto narrow = static_cast<double>(real);
    if ((flags & FLAG_L) == 0)
        std::memcpy(&real, &narrow, sizeof narrow);
    std::string bytes = source.ConsumeRemainingBytesAsString().c_str();
    std::u16string units;
    for (const char c : bytes)
        units += static_cast<char16_t>(c >= 0 ? c : 0xDC00 + c * 16);

    void *const slots[] = {&number, &real, &number, bytes.data(), units.data()};
    Conversion conversion = {row, width, precision, flags, slots[static_cast<size_t>(row.value)]};
    const Outcome outcome = conversion.check();
    if (row.value == Value::floatingPoint)
        compareWithPrintf(conversion, outcome);
    checkHelpers(number, flags, bytes, units);
    return 0;
}
