// A character set, bytes, and a function: conversions are compared with ICU called directly, the others with what they
// promise of their destination.

#include "support/guarded.h"
#include "support/require.h"

#include "kelto.h"

#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

namespace
{

// Single-byte, double-byte, stateful, with several bytes for an ASCII letter, with zero bytes; and every other one.
constexpr const char *charSets[] = {"utf-8",       "shift_jis",
                                    "EUC-JP",      "GB18030",
                                    "ISO-2022-JP", "UTF-7",
                                    "SCSU",        "UTF-16",
                                    "UTF-32",      "HZ",
                                    "ISO-2022-KR", "BOCU-1",
                                    "LMBCS",       "MS932",
                                    "cp1047",      "Big5-HKSCS",
                                    "koi8-r",      "IMAP-mailbox-name",
                                    "CESU-8",      "x11-compound-text"};

std::string takeCharSet(FuzzedDataProvider &source)
{
    switch (source.ConsumeIntegralInRange(0, 3))
    {
    case 0:
        return source.ConsumeRandomLengthString(20).c_str();
    case 1:
        return ucnv_getAvailableName(source.ConsumeIntegralInRange(0, ucnv_countAvailable() - 1));
    default:
        return source.PickValueInArray(charSets);
    }
}

int resultOf(UErrorCode status)
{
    return status == U_BUFFER_OVERFLOW_ERROR    ? KT_ERR_BUFFER_TOO_SMALL
           : status == U_ILLEGAL_ARGUMENT_ERROR ? KT_ERR_CONVERSION_INVALID_ARGUMENT
           : U_FAILURE(status)                  ? KT_ERR_CONVERSION_FAILED
                                                : 0;
}

/** What ICU makes of a text, by the steps that a conversion promises. */
template <typename Unit, typename Convert>
int convertDirectly(const char *charSet, size_t capacity, std::basic_string<Unit> &text, Convert convert)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter *const converter = ucnv_open(std::strcmp(charSet, "MS932") == 0 ? "cp932" : charSet, &status);
    if (U_FAILURE(status))
        return KT_ERR_CONVERTER_OPEN_FAILED;
    text.resize(capacity + 1);
    const int32_t length = convert(converter, text.data(), static_cast<int32_t>(capacity), &status);
    ucnv_close(converter);
    const int result = resultOf(status);
    text.resize(result == 0 ? static_cast<size_t>(length) : 0);
    return result;
}

/** Runs a conversion and compares it with the text and the result that it ought to have. */
template <typename Unit, typename Convert>
void expectConversion(size_t capacity, int expectedResult, const std::basic_string<Unit> &expected, Convert convert)
{
    Guarded<Unit> out(capacity);
    size_t size = capacity;
    const int result = convert(&size, out.data());
    require(result == expectedResult, "a conversion has ICU's result");
    if (result == 0)
    {
        require(size == expected.size() && std::equal(expected.begin(), expected.end(), out.data()), "ICU's text");
        require(size == capacity || out[size] == 0, "a text is terminated where there is room");
        return;
    }
    require(size == capacity, "a failure leaves the size");
    if (capacity > 0 && result != KT_ERR_CONVERTER_OPEN_FAILED)
        require(out[0] == 0, "a failure empties the text");
}

void checkConversions(const char *charSet, const std::string &bytes, const std::u16string &units, size_t capacity)
{
    const auto toUnits = [&](UConverter *converter, UChar *out, int32_t room, UErrorCode *status) {
        return ucnv_toUChars(converter, out, room, bytes.c_str(), static_cast<int32_t>(bytes.size()), status);
    };
    const auto toBytes = [&](UConverter *converter, char *out, int32_t room, UErrorCode *status) {
        return ucnv_fromUChars(converter, out, room, units.c_str(), static_cast<int32_t>(units.size()), status);
    };
    std::u16string wide;
    std::string narrow;
    int result = convertDirectly(charSet, capacity, wide, toUnits);
    expectConversion(capacity, result, wide, [&](size_t *size, UCS2 *out) {
        return KTMultiByteToUCS2(charSet, 0, 0, bytes.c_str(), size, out);
    });
    result = convertDirectly("utf-8", capacity, wide, toUnits);
    expectConversion(capacity, result, wide,
                     [&](size_t *size, UCS2 *out) { return KTUTF8ToUCS2(bytes.c_str(), size, out); });
    result = convertDirectly(charSet, capacity, narrow, toBytes);
    expectConversion(capacity, result, narrow, [&](size_t *size, char *out) {
        return KTUCS2ToMultiByte(charSet, 0, 0, units.c_str(), size, out);
    });
    result = convertDirectly("utf-8", capacity, narrow, toBytes);
    expectConversion(capacity, result, narrow,
                     [&](size_t *size, char *out) { return KTUCS2ToUTF8(units.c_str(), size, out); });
}

/** A conversion by way of UCS-2 is its two steps, with enough room between them. */
void checkTwoSteps(const char *charSet, const std::string &bytes, size_t capacity)
{
    const size_t between = 2 * bytes.size() + 1;
    Guarded<UCS2> wide(between + 1);
    size_t units = between;
    const int toUCS2 = KTMultiByteToUCS2(charSet, 0, 0, bytes.c_str(), &units, wide.data());
    wide.data()[toUCS2 == 0 ? units : 0] = 0;
    Guarded<char> expected(capacity), out(capacity);
    size_t expectedSize = capacity, size = capacity;
    const int result = toUCS2 != 0 ? toUCS2 : KTUCS2ToUTF8(wide.data(), &expectedSize, expected.data());
    require(KTMultiByteToUTF8(charSet, 0, 0, bytes.c_str(), &size, out.data()) == result && size == expectedSize &&
                (result != 0 || std::equal(out.data(), out.data() + size, expected.data())),
            "a conversion to UTF-8 is its two steps");

    Guarded<char> back(capacity), expectedBack(capacity);
    size_t backSize = capacity, expectedBackSize = capacity;
    units = between;
    require(KTUTF8ToUCS2(bytes.c_str(), &units, wide.data()) == 0, "any bytes are UTF-8 of a kind");
    const int fromUCS2 = KTUCS2ToMultiByte(charSet, 0, 0, wide.data(), &expectedBackSize, expectedBack.data());
    require(KTUTF8ToMultiByte(charSet, 0, 0, bytes.c_str(), &backSize, back.data()) == fromUCS2 &&
                backSize == expectedBackSize,
            "a conversion from UTF-8 is its two steps");
}

void checkStrings(const char *charSet, const std::string &text, const char *otherSet, const std::string &other,
                  unsigned number)
{
    const size_t room = text.size() + 1;
    const long length = KTMultiByteStrclen(charSet, text.c_str());
    require(length <= static_cast<long>(text.size()) + 1, "a byte gives no more than a character");
    require(KTMultiByteStrblen(text.c_str()) == text.size(), "the length in bytes");
    require(length > 0 || KTFirstChar(charSet, text.c_str()) == 0, "where nothing is, nothing is first");

    Guarded<char> stepped(room), copied(room), upper(room), tail(room);
    text.copy(stepped.data(), room);
    stepped.data()[text.size()] = '\0';
    for (unsigned steps = 0; steps < 3; ++steps)
        KTNextChar(charSet, stepped.data());
    require(stepped.isTerminated(), "a text that is stepped through stays one");

    char *const copy = KTMultiByteStrncpy(copied.data(), charSet, text.c_str(), number % 20);
    require(copy == nullptr || (copy == copied.data() && copied.isTerminated()), "a copy ends in its room");
    size_t size = 0;
    const long bytes = KTMultiByteStrupr(charSet, text.c_str(), &size, upper.data());
    require(bytes < 0 || (static_cast<size_t>(bytes) == size && size < room && upper[size] == '\0'),
            "upper case ends in its room");
    const char *const found = KTMultiByteStrstr(charSet, text.c_str(), otherSet, other.c_str());
    require(found == nullptr || (found >= text.c_str() && found <= text.c_str() + text.size()),
            "what is found lies in the text");
    char *const last = KTMultiByteStrrchr(charSet, text.c_str(), otherSet, number, tail.data());
    require(last == nullptr || (last == tail.data() && tail.isTerminated()), "a tail ends in its room");

    const int forth = KTMultiByteStrcmp(charSet, text.c_str(), otherSet, other.c_str());
    const int back = KTMultiByteStrcmp(otherSet, other.c_str(), charSet, text.c_str());
    const bool isCode = forth <= KT_ERR_NOT_INITIALIZED && forth >= KT_ERR_NO_MEMORY;
    require(isCode || (forth < 0) == (back > 0), "a comparison turned round has the other sign");
    require(forth != 0 || KTMultiByteStricmp(charSet, text.c_str(), otherSet, other.c_str()) == 0,
            "equal texts are equal without case");
}

void checkCharacters(const char *charSet, unsigned number)
{
    const unsigned packed = KTUCharToMBChar(charSet, static_cast<UCS2>(number));
    require(packed <= 0xFFFFFF, "a character has three bytes at most");
    const UCS2 unit = KTMBCharToUChar(charSet, number);
    require(unit == KTMBCharToUChar(charSet, number & 0xFFFF), "two bytes count");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider source(data, size);
    const std::string charSet = takeCharSet(source);
    const std::string otherSet = source.ConsumeBool() ? charSet : takeCharSet(source);
    const size_t capacity = source.ConsumeIntegralInRange<size_t>(0, 60);
    const auto number = source.ConsumeIntegral<unsigned>();
    const std::string other = source.ConsumeRandomLengthString(20).c_str();
    const std::string bytes = source.ConsumeRemainingBytesAsString().c_str();
    std::u16string units;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        units +=
            static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) << 8 | static_cast<unsigned char>(bytes[i + 1]));
    units.resize(std::char_traits<char16_t>::length(units.c_str()));

    checkConversions(charSet.c_str(), bytes, units, capacity);
    checkTwoSteps(charSet.c_str(), bytes, capacity);
    checkStrings(charSet.c_str(), bytes, otherSet.c_str(), other, number);
    checkCharacters(charSet.c_str(), number);
    return 0;
}
