#include "io/icu.h"

#include <new>

namespace tool
{
namespace
{

constexpr UChar32 replacementCharacter = 0xFFFD;

bool isReplacement(UConverterCallbackReason reason)
{
    return reason <= UCNV_IRREGULAR;
}

void countDecoding(const void *context, UConverterToUnicodeArgs *args, const char *bytes, int32_t length,
                   UConverterCallbackReason reason, UErrorCode *status)
{
    if (isReplacement(reason))
        ++static_cast<DecodingLoss *>(const_cast<void *>(context))->characters;
    UCNV_TO_U_CALLBACK_SUBSTITUTE(nullptr, args, bytes, length, reason, status);
}

void countEncoding(const void *context, UConverterFromUnicodeArgs *args, const UChar *units, int32_t length,
                   UChar32 character, UConverterCallbackReason reason, UErrorCode *status)
{
    if (isReplacement(reason))
    {
        auto &loss = *static_cast<EncodingLoss *>(const_cast<void *>(context));
        ++loss.characters;
        loss.replacements += character == replacementCharacter;
    }
    UCNV_FROM_U_CALLBACK_SUBSTITUTE(nullptr, args, units, length, character, reason, status);
}

/** Whether to go on: the last call may only have run out of room, which the next one finds empty again. */
bool outputIsFull(UErrorCode &status)
{
    if (status == U_MEMORY_ALLOCATION_ERROR)
        throw std::bad_alloc();
    const bool full = status == U_BUFFER_OVERFLOW_ERROR;
    status = U_ZERO_ERROR;
    return full;
}

constexpr size_t roomAtOnce = 4096;

} // namespace

Converter openConverter(const std::string &charset)
{
    UErrorCode status = U_ZERO_ERROR;
    // The one name that Kelto gives another meaning than ICU does.
    Converter converter(ucnv_open(charset == "MS932" ? "cp932" : charset.c_str(), &status));
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

CharacterSet charactersOf(UConverter *converter)
{
    CharacterSet set(uset_openEmpty());
    UErrorCode status = U_ZERO_ERROR;
    ucnv_getUnicodeSet(converter, set.get(), UCNV_ROUNDTRIP_AND_FALLBACK_SET, &status);
    return set;
}

bool zeroByteEndsText(const std::string &charset)
{
    const Converter converter = openConverter(charset);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    char16_t unit = 0;
    ucnv_toUChars(converter.get(), &unit, 1, "", 1, &status);
    if (unit != 0 || status == U_TRUNCATED_CHAR_FOUND)
        return false;
    // SCSU has characters that hold zero bytes although one by itself is U+0000.
    char room[32];
    status = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(converter.get(), room, sizeof room, u"\u4E00", 1, &status);
    return std::string_view(room, static_cast<size_t>(length)).find('\0') == std::string_view::npos;
}

DecodingLoss lossOfDecoding(const std::string &charset, std::string_view bytes, std::u16string_view decoded)
{
    DecodingLoss loss;
    const Converter converter = openConverter(charset);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), countDecoding, &loss, nullptr, nullptr, &status);

    char16_t room[roomAtOnce];
    const char *source = bytes.data();
    const char *const end = source + bytes.size();
    bool full = true;
    while (full)
    {
        char16_t *target = room;
        ucnv_toUnicode(converter.get(), &target, room + roomAtOnce, &source, end, nullptr, true, &status);
        full = outputIsFull(status);
        const std::u16string_view part(room, static_cast<size_t>(target - room));
        loss.asDecoded = loss.asDecoded && decoded.substr(0, part.size()) == part;
        if (loss.asDecoded)
            decoded.remove_prefix(part.size());
    }
    loss.asDecoded = loss.asDecoded && decoded.empty();
    return loss;
}

EncodingLoss lossOfEncoding(const std::string &charset, std::u16string_view text)
{
    EncodingLoss loss;
    const Converter converter = openConverter(charset);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter.get(), countEncoding, &loss, nullptr, nullptr, &status);

    char room[roomAtOnce];
    const char16_t *source = text.data();
    const char16_t *const end = source + text.size();
    bool full = true;
    while (full)
    {
        char *target = room;
        ucnv_fromUnicode(converter.get(), &target, room + roomAtOnce, &source, end, nullptr, true, &status);
        full = outputIsFull(status);
    }
    return loss;
}

} // namespace tool
