/**
 * What conversions promise for any character set, text and capacity, checked against ICU called directly. Tests choose
 * the texts, a fuzz target takes all that comes.
 */
#ifndef KELTO_TESTS_STRCONV_CONVERSION_CHECKS_H
#define KELTO_TESTS_STRCONV_CONVERSION_CHECKS_H

#include "kelto.h"
#include "support/guarded.h"

#include <cstring>
#include <unicode/ucnv.h>

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
    const int result = status == U_BUFFER_OVERFLOW_ERROR    ? KT_ERR_BUFFER_TOO_SMALL
                       : status == U_ILLEGAL_ARGUMENT_ERROR ? KT_ERR_CONVERSION_INVALID_ARGUMENT
                       : U_FAILURE(status)                  ? KT_ERR_CONVERSION_FAILED
                                                            : 0;
    text.resize(result == 0 ? static_cast<size_t>(length) : 0);
    return result;
}

/** Runs a conversion and compares it with the text and the result that it ought to have. */
template <typename Unit, typename Convert>
void expectConversion(size_t capacity, int expectedResult, const std::basic_string<Unit> &expected, Convert convert,
                      bool emptiesAlways = false)
{
    Guarded<Unit> out(capacity);
    size_t size = capacity;
    const int result = convert(&size, out.data());
    require(result == expectedResult, "a conversion has ICU's result");
    require(size == (result == 0 ? expected.size() : capacity), "a size is that of the text, or left as it was");
    if (result == 0)
    {
        require(std::equal(expected.begin(), expected.end(), out.data()), "a conversion has ICU's text");
        require(size == capacity || out[size] == 0, "a text is terminated where there is room");
    }
    else if (result == KT_ERR_CONVERTER_OPEN_FAILED && !emptiesAlways)
        require(out.untouched(), "without a converter nothing is written");
    else
        require(capacity == 0 || out[0] == 0, "a failure empties the text");
}

/** All six conversions of a text of a character set, of the same bytes taken as UTF-8, and of a UCS-2 text. */
inline void checkConversions(const char *charSet, const std::string &bytes, const std::u16string &units,
                             size_t capacity)
{
    const auto toUnits = [&](UConverter *converter, UChar *out, int32_t room, UErrorCode *status) {
        return ucnv_toUChars(converter, out, room, bytes.c_str(), -1, status);
    };
    const auto fromUnits = [](const std::u16string &text) {
        return [&](UConverter *converter, char *out, int32_t room, UErrorCode *status) {
            return ucnv_fromUChars(converter, out, room, text.c_str(), -1, status);
        };
    };
    std::u16string wide;
    std::string narrow;
    int result = convertDirectly(charSet, capacity, wide, toUnits);
    expectConversion(capacity, result, wide, [&](size_t *size, UCS2 *out) {
        return KTMultiByteToUCS2(charSet, 7, 7, bytes.c_str(), size, out);
    });
    result = convertDirectly("utf-8", capacity, wide, toUnits);
    expectConversion(capacity, result, wide,
                     [&](size_t *size, UCS2 *out) { return KTUTF8ToUCS2(bytes.c_str(), size, out); });
    result = convertDirectly(charSet, capacity, narrow, fromUnits(units));
    expectConversion(capacity, result, narrow, [&](size_t *size, char *out) {
        return KTUCS2ToMultiByte(charSet, 7, 7, units.c_str(), size, out);
    });
    result = convertDirectly("utf-8", capacity, narrow, fromUnits(units));
    expectConversion(capacity, result, narrow,
                     [&](size_t *size, char *out) { return KTUCS2ToUTF8(units.c_str(), size, out); });

    // By way of UCS-2, with enough room there, and up to the first zero unit.
    const size_t between = 2 * bytes.size() + 1;
    result = convertDirectly(charSet, between, wide, toUnits);
    if (result == 0)
        result = convertDirectly("utf-8", capacity, narrow, fromUnits(wide));
    expectConversion(
        capacity, result, narrow,
        [&](size_t *size, char *out) { return KTMultiByteToUTF8(charSet, 7, 7, bytes.c_str(), size, out); }, true);
    require(convertDirectly("utf-8", between, wide, toUnits) == 0, "any bytes are UTF-8 of a kind");
    result = convertDirectly(charSet, capacity, narrow, fromUnits(wide));
    expectConversion(
        capacity, result, narrow,
        [&](size_t *size, char *out) { return KTUTF8ToMultiByte(charSet, 7, 7, bytes.c_str(), size, out); }, true);
}

#endif
