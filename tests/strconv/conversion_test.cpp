#include "kelto.h"
#include "strconv/icu_faults.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/mman.h>
#include <unicode/ucnv.h>
#include <vector>

namespace
{

/**
 * Checks a conversion whose complete output is known with every capacity from `least` to one more than it needs, on
 * blocks of exactly that size.
 */
template <typename Unit, typename Convert>
void expectContract(const std::basic_string<Unit> &output, Convert convert, size_t least = 0)
{
    constexpr Unit filler = 0x55;
    const size_t need = output.size();
    for (size_t capacity = least; capacity <= need + 1; ++capacity)
    {
        SCOPED_TRACE("capacity " + std::to_string(capacity) + " of " + std::to_string(need));
        std::vector<Unit> block(capacity, filler);
        size_t size = capacity;
        const int result = convert(&size, block.data());
        if (capacity < need)
        {
            ASSERT_EQ(result, KT_ERR_BUFFER_TOO_SMALL);
            ASSERT_EQ(size, capacity);
            ASSERT_TRUE(capacity == 0 || block[0] == 0);
            continue;
        }
        ASSERT_EQ(result, 0);
        ASSERT_EQ(size, need);
        ASSERT_EQ(std::basic_string<Unit>(block.data(), size), output);
        ASSERT_TRUE(capacity == need || block[need] == 0);
    }
}

struct Text
{
    const char *label;
    const char *charSet;
    std::string bytes; // in charSet
    std::u16string units;
    std::string utf8;
};

const Text texts[] = {
    {"empty", "shift_jis", "", u"", ""},
    {"one byte and two", "shift_jis", "cat\x94\x4C\x82\x6E", u"cat\u732B\uFF2F", "cat\u732B\uFF2F"},
    {"another name of cp932", "MS932", "\x87\x40", u"\u2460", "\u2460"},
    {"two and three bytes", "EUC-JP", "\xA4\xA2\x8F\xB0\xA1", u"\u3042\u4E02", "\u3042\u4E02"},
    {"four bytes", "GB18030", "\x81\x30\x81\x30\x90\x30\x81\x30", u"\u0080\U00010000", "\u0080\U00010000"},
    {"with shift states", "iso-2022-jp", "a\x1B$B$\"$$\x1B(Bb", u"a\u3042\u3044b", "a\u3042\u3044b"},
    {"Latin, names by any spelling", "ISO_8859-1", "\xE9t\xE9", u"\u00E9t\u00E9", "\u00E9t\u00E9"},
    {"UTF-8, a byte order mark is text", "utf8", "\uFEFFa\u3042\U0001F600", u"\uFEFFa\u3042\U0001F600",
     "\uFEFFa\u3042\U0001F600"},
    {"ASCII past the vector steps", "us-ascii", "0123456789abcdefghijklmnopqrstuvwxyz:",
     u"0123456789abcdefghijklmnopqrstuvwxyz:", "0123456789abcdefghijklmnopqrstuvwxyz:"},
    {"ASCII that ends in a vector step", "utf-8", "0123456789abcdefghijklmno\u00FCqrstuvwxyz",
     u"0123456789abcdefghijklmno\u00FCqrstuvwxyz", "0123456789abcdefghijklmno\u00FCqrstuvwxyz"},
};

TEST(Conversion, ConvertsBetweenAllThreeFormsWithEveryCapacity)
{
    for (const Text &row : texts)
    {
        SCOPED_TRACE(row.label);
        const char *const bytes = row.bytes.c_str(), *const utf8 = row.utf8.c_str();
        const UCS2 *const units = row.units.c_str();
        expectContract(row.units,
                       [&](size_t *size, UCS2 *out) { return KTMultiByteToUCS2(row.charSet, 7, 7, bytes, size, out); });
        expectContract(row.bytes,
                       [&](size_t *size, char *out) { return KTUCS2ToMultiByte(row.charSet, 7, 7, units, size, out); });
        expectContract(row.units, [&](size_t *size, UCS2 *out) { return KTUTF8ToUCS2(utf8, size, out); });
        expectContract(row.utf8, [&](size_t *size, char *out) { return KTUCS2ToUTF8(units, size, out); });
        expectContract(row.utf8,
                       [&](size_t *size, char *out) { return KTMultiByteToUTF8(row.charSet, 7, 7, bytes, size, out); });
        expectContract(row.bytes,
                       [&](size_t *size, char *out) { return KTUTF8ToMultiByte(row.charSet, 7, 7, utf8, size, out); });
    }
}

TEST(Conversion, SubstitutesWhatIsMalformedOrHasNoMapping)
{
    expectContract(std::u16string(u"a\uFFFDb"), [](size_t *size, UCS2 *out) {
        return KTMultiByteToUCS2("utf-8", 0, 0,
                                 "a\xFF"
                                 "b",
                                 size, out);
    });
    expectContract(std::string("a\x1A"), [](size_t *size, char *out) {
        return KTUCS2ToMultiByte("iso-8859-1", 0, 0, u"a\u3042", size, out);
    });
    expectContract(std::string("a\x1A"),
                   [](size_t *size, char *out) { return KTUTF8ToMultiByte("iso-8859-1", 0, 0, "a\u3042", size, out); });
}

TEST(Conversion, HasRoomForTwoUnitsAByteBetweenTwoSteps)
{
    // SCSU: three bytes choose a window, each byte after them is a surrogate pair.
    expectContract(std::string("\U00018080\U00018080\U00018080\U00018080\U00018080"), [](size_t *size, char *out) {
        return KTMultiByteToUTF8("SCSU", 0, 0, "\x0B\x21\x01\x80\x80\x80\x80\x80", size, out);
    });
}

TEST(Conversion, ReadsNoSourceBeforeItsConverterIsOpen)
{
    size_t size = 5;
    UCS2 units[5];
    char bytes[5];
    EXPECT_EQ(KTMultiByteToUCS2("nope", 0, 0, nullptr, &size, units), KT_ERR_CONVERTER_OPEN_FAILED);
    EXPECT_EQ(KTUCS2ToMultiByte("nope", 0, 0, nullptr, &size, bytes), KT_ERR_CONVERTER_OPEN_FAILED);
    EXPECT_EQ(size, 5u);
}

TEST(Conversion, KeepsAZeroUnitInsideATextOnlyInOneStep)
{
    const char *const text = "a+AAAAYg-"; // a, U+0000, b
    expectContract(std::u16string(u"a\0b", 3),
                   [=](size_t *size, UCS2 *out) { return KTMultiByteToUCS2("utf-7", 0, 0, text, size, out); });
    expectContract(std::string("a"),
                   [=](size_t *size, char *out) { return KTMultiByteToUTF8("utf-7", 0, 0, text, size, out); });
}

/** What an opened "utf-8" converter makes of a text; the two directions. */
std::u16string converterToUnits(UConverter *converter, const std::string &utf8)
{
    std::u16string units(utf8.size() + 1, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    units.resize(static_cast<size_t>(ucnv_toUChars(converter, &units[0], static_cast<int32_t>(units.size()),
                                                   utf8.data(), static_cast<int32_t>(utf8.size()), &status)));
    return units;
}

std::string converterToUtf8(UConverter *converter, const std::u16string &units)
{
    std::string utf8(3 * units.size() + 1, '\0');
    UErrorCode status = U_ZERO_ERROR;
    utf8.resize(static_cast<size_t>(ucnv_fromUChars(converter, &utf8[0], static_cast<int32_t>(utf8.size()),
                                                    units.data(), static_cast<int32_t>(units.size()), &status)));
    return utf8;
}

TEST(Conversion, MakesOfMalformedUtf8WhatIcuConvertersMakeOfIt)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter *const converter = ucnv_open("utf-8", &status);
    ASSERT_TRUE(U_SUCCESS(status));
    const std::string bytes = "aaaa\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF1\xF4\xF5\xFF";
    const std::u16string units = {u'a', u'a', u'a', 0x7F, 0x80, 0x7FF, 0x800, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xFFFF};
    std::mt19937 random(20060517);
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round)
    {
        SCOPED_TRACE("round " + std::to_string(round));
        std::string utf8(random() % 40, 'a');
        std::u16string ucs2(random() % 40, u'a');
        for (size_t i = random() % 12; i > 0; --i)
        {
            utf8 += bytes[random() % bytes.size()];
            ucs2 += units[random() % units.size()];
        }
        const auto nearFit = [](size_t need) { return need > 2 ? need - 2 : 0; };
        const std::u16string toUnits = converterToUnits(converter, utf8);
        expectContract(
            toUnits, [&](size_t *size, UCS2 *out) { return KTUTF8ToUCS2(utf8.c_str(), size, out); },
            nearFit(toUnits.size()));
        const std::string toUtf8 = converterToUtf8(converter, ucs2);
        expectContract(
            toUtf8, [&](size_t *size, char *out) { return KTUCS2ToUTF8(ucs2.c_str(), size, out); },
            nearFit(toUtf8.size()));
    }
    ucnv_close(converter);
}

TEST(Conversion, TellsAnUnknownCharacterSet)
{
    for (const char *const name : {"no-such-set", "", "../../etc/passwd", "ms9320"})
    {
        SCOPED_TRACE(name);
        UCS2 units[] = u"??";
        char bytes[] = "??";
        size_t size = 2;
        EXPECT_EQ(KTMultiByteToUCS2(name, 0, 0, "a", &size, units), KT_ERR_CONVERTER_OPEN_FAILED);
        EXPECT_EQ(KTUCS2ToMultiByte(name, 0, 0, u"a", &size, bytes), KT_ERR_CONVERTER_OPEN_FAILED);
        EXPECT_EQ(std::u16string(units), u"??");
        EXPECT_STREQ(bytes, "??");

        EXPECT_EQ(KTMultiByteToUTF8(name, 0, 0, "a", &size, bytes), KT_ERR_CONVERTER_OPEN_FAILED);
        EXPECT_STREQ(bytes, "");
        bytes[0] = '?';
        EXPECT_EQ(KTUTF8ToMultiByte(name, 0, 0, "a", &size, bytes), KT_ERR_CONVERTER_OPEN_FAILED);
        EXPECT_STREQ(bytes, "");
        EXPECT_EQ(size, 2u);

        bytes[0] = '?';
        size = 0;
        EXPECT_EQ(KTMultiByteToUTF8(name, 0, 0, "a", &size, bytes), KT_ERR_CONVERTER_OPEN_FAILED);
        EXPECT_EQ(bytes[0], '?') << "there is no room for an empty text";
    }
}

TEST(Conversion, GivesEveryOtherFailureOfIcuOneCode)
{
    UCS2 units[] = u"??";
    size_t size = 2;
    icuFaults.convertFails = 1;
    EXPECT_EQ(KTMultiByteToUCS2("utf-8", 0, 0, "a", &size, units), KT_ERR_CONVERSION_FAILED);
    EXPECT_EQ(units[0], 0);
    EXPECT_EQ(size, 2u);
}

TEST(Conversion, RefusesCapacitiesOfTwoGibi)
{
    for (const size_t capacity : {size_t{1} << 31, (size_t{1} << 32) + 2, SIZE_MAX})
    {
        UCS2 units[] = u"??";
        char bytes[] = "??";
        size_t size = capacity;
        const auto expectRefusal = [&](int result, auto *out) {
            EXPECT_EQ(result, KT_ERR_CONVERSION_INVALID_ARGUMENT);
            EXPECT_EQ(out[0], 0);
            EXPECT_EQ(size, capacity);
            out[0] = '?';
        };
        expectRefusal(KTMultiByteToUCS2("utf-8", 0, 0, "a", &size, units), units);
        expectRefusal(KTUTF8ToUCS2("a", &size, units), units);
        expectRefusal(KTUCS2ToMultiByte("utf-8", 0, 0, u"a", &size, bytes), bytes);
        expectRefusal(KTUCS2ToUTF8(u"a", &size, bytes), bytes);
        expectRefusal(KTMultiByteToUTF8("utf-8", 0, 0, "a", &size, bytes), bytes);
        expectRefusal(KTUTF8ToMultiByte("utf-8", 0, 0, "a", &size, bytes), bytes);
    }
    UCS2 units[3];
    size_t size = INT32_MAX;
    EXPECT_EQ(KTMultiByteToUCS2("utf-8", 0, 0, "ab", &size, units), 0);
    EXPECT_EQ(size, 2u);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // their shadow of such a text takes too much memory

/** 2^31 bytes of text and a terminator that cost 16 MiB: the same pages, many times over. Null where that fails. */
const void *hugeText()
{
    constexpr size_t length = size_t{1} << 31, pieceLength = size_t{1} << 24;
    const std::string piece(pieceLength, 'a');
    const int file = memfd_create("text", 0);
    void *const start = mmap(nullptr, length + 1, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    bool isComplete = start != MAP_FAILED && write(file, piece.data(), piece.size()) == ssize_t{pieceLength};
    for (size_t at = 0; isComplete && at < length; at += pieceLength)
        isComplete = mmap(static_cast<char *>(start) + at, pieceLength, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0) !=
                     MAP_FAILED;
    close(file);
    return isComplete ? start : nullptr; // unmapped when the program ends
}

TEST(Conversion, RefusesSourcesOfTwoGibi)
{
    const void *const text = hugeText();
    if (text == nullptr)
        GTEST_SKIP() << "no address space";
    const char *const source = static_cast<const char *>(text);
    const UCS2 *const wideSource = static_cast<const UCS2 *>(text);
    UCS2 units[] = u"??";
    char bytes[] = "??";
    size_t size = 2;
    EXPECT_EQ(KTUTF8ToUCS2(source, &size, units), KT_ERR_CONVERSION_INVALID_ARGUMENT);
    EXPECT_EQ(units[0], 0);
    units[0] = u'?';
    EXPECT_EQ(KTMultiByteToUCS2("shift_jis", 0, 0, source, &size, units), KT_ERR_CONVERSION_INVALID_ARGUMENT);
    EXPECT_EQ(units[0], 0);
    EXPECT_EQ(KTUCS2ToMultiByte("iso-2022-jp", 0, 0, wideSource, &size, bytes), KT_ERR_CONVERSION_INVALID_ARGUMENT);
    EXPECT_STREQ(bytes, "");
    EXPECT_EQ(KTUCS2ToUTF8(wideSource, &size, bytes), KT_ERR_CONVERSION_INVALID_ARGUMENT);
    EXPECT_EQ(size, 2u);
    const long characters = KTMultiByteStrclen("shift_jis", source);
    EXPECT_TRUE(characters == KT_ERR_CONVERSION_INVALID_ARGUMENT || characters == KT_ERR_NO_MEMORY) << characters;
}

#endif

TEST(Conversion, ConvertsSingleCharacters)
{
    struct
    {
        const char *label, *charSet;
        unsigned int mbChar;
        UCS2 unit;               // of mbChar
        unsigned int packedUnit; // of that unit
    } const rows[] = {
        {"one byte", "shift_jis", 0x41, u'A', 0x41},
        {"two bytes", "shift_jis", 0x82A0, 0x3042, 0x82A0},
        {"bits above the second byte are ignored", "shift_jis", 0xFFFF0041, u'A', 0x41},
        {"two characters: the first", "iso-8859-1", 0xE941, 0xE9, 0xE9},
        {"a first byte of zero", "shift_jis", 0x00B1, 0xFF71, 0xB1},
        {"zero", "shift_jis", 0, 0, 0},
        {"unknown set", "no-such-set", 0x41, 0, 0},
        {"malformed", "utf-8", 0x80, 0xFFFD, 0xEFBFBD},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(KTMBCharToUChar(row.charSet, row.mbChar), row.unit);
        EXPECT_EQ(KTUCharToMBChar(row.charSet, row.unit), row.packedUnit);
    }
    EXPECT_EQ(KTUCharToMBChar("utf-8", 0x3042), 0xE38182u) << "three bytes fill the room";
    EXPECT_EQ(KTUCharToMBChar("GB18030", 0x80), 0u) << "four bytes do not fit";
    EXPECT_EQ(KTUCharToMBChar("no-such-set", u'A'), 0u);
}

} // namespace
