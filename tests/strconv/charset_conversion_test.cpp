#include "strconv/conversion_checks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

TEST(Conversion, MakesOfAnyTextWhatIcuMakesOfIt)
{
    // Single bytes, two, states, letters of several bytes, zero bytes, two units a byte (SCSU), no such set.
    constexpr const char *charSets[] = {
        "utf-8", "shift_jis", "MS932", "iso-8859-1", "us-ascii",    "GB18030", "iso-2022-jp", "ISO-2022-KR",
        "UTF-7", "UTF-16",    "SCSU",  "HZ",         "no-such-set", "",        "ms9320",      "../../etc/passwd"};
    const std::string bytes =
        "+-a~\x0B\x21\x01\x1B\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF1\xF4\xF5\xFF";
    const std::u16string units = {u'a', u'~', 0x7F, 0x80, 0x7FF, 0x800, 0x3042, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xFFFF};
    std::mt19937 random(20060517);
    for (int round = 0; round < 20000; ++round)
    {
        SCOPED_TRACE("round " + std::to_string(round));
        std::string multiByte(random() % 40, 'a');
        std::u16string ucs2(random() % 40, u'a');
        for (size_t i = random() % 12; i > 0; --i)
        {
            multiByte += bytes[random() % bytes.size()];
            ucs2 += units[random() % units.size()];
        }
        std::rotate(multiByte.begin(), multiByte.begin() + random() % (multiByte.size() + 1), multiByte.end());
        std::rotate(ucs2.begin(), ucs2.begin() + random() % (ucs2.size() + 1), ucs2.end());
        checkConversions(charSets[random() % std::size(charSets)], multiByte, ucs2, random() % 3 * (random() % 30));
    }
    for (const char *const charSet : charSets) // U+0000 ends the text between two steps, and only there
        for (size_t capacity = 0; capacity < 6; ++capacity)
            checkConversions(charSet, "a+AAAAYg-", u"a\u3042\xD83D", capacity);
}

TEST(Conversion, ReadsNoSourceBeforeItsConverterIsOpen)
{
    size_t size = 5;
    UCS2 units[5];
    char bytes[5];
    EXPECT_EQ(KTMultiByteToUCS2("nope", 0, 0, nullptr, &size, units), KT_ERR_CONVERTER_OPEN_FAILED);
    EXPECT_EQ(KTUCS2ToMultiByte("nope", 0, 0, nullptr, &size, bytes), KT_ERR_CONVERTER_OPEN_FAILED);
}

/** All conversions with these sources and this capacity: refused, the destination empty. */
void expectRefused(const char *source, const UCS2 *wideSource, size_t capacity)
{
    UCS2 units[2];
    char bytes[2];
    size_t size = capacity;
    const auto expectRefusal = [&](int result, const auto *out) {
        EXPECT_EQ(result, KT_ERR_CONVERSION_INVALID_ARGUMENT);
        EXPECT_EQ(out[0], 0);
        EXPECT_EQ(size, capacity);
        units[0] = u'?', bytes[0] = '?';
    };
    units[0] = u'?', bytes[0] = '?';
    expectRefusal(KTMultiByteToUCS2("shift_jis", 0, 0, source, &size, units), units);
    expectRefusal(KTUTF8ToUCS2(source, &size, units), units);
    expectRefusal(KTUCS2ToMultiByte("iso-2022-jp", 0, 0, wideSource, &size, bytes), bytes);
    expectRefusal(KTUCS2ToUTF8(wideSource, &size, bytes), bytes);
    if (capacity <= 2)
        return; // a working copy of such a source may be more than there is
    expectRefusal(KTMultiByteToUTF8("utf-8", 0, 0, source, &size, bytes), bytes);
    expectRefusal(KTUTF8ToMultiByte("utf-8", 0, 0, source, &size, bytes), bytes);
}

TEST(Conversion, RefusesCapacitiesOfTwoGibi)
{
    for (const size_t capacity : {size_t{1} << 31, (size_t{1} << 32) + 2, SIZE_MAX})
        expectRefused("a", u"a", capacity);
    UCS2 units[3];
    size_t size = INT32_MAX;
    EXPECT_EQ(KTMultiByteToUCS2("utf-8", 0, 0, "ab", &size, units), 0);
    EXPECT_EQ(size, 2u);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // their shadow of such a text takes too much memory

TEST(Conversion, RefusesSourcesOfTwoGibi)
{
    // 2^31 bytes and a terminator that cost 16 MiB: the same pages, many times over.
    constexpr size_t length = size_t{1} << 31, pieceLength = size_t{1} << 24;
    const std::string piece(pieceLength, 'a');
    const int file = memfd_create("text", 0);
    void *const start = mmap(nullptr, length + 1, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_TRUE(start != MAP_FAILED && write(file, piece.data(), piece.size()) == ssize_t{pieceLength});
    char *const source = static_cast<char *>(start);
    for (size_t at = 0; at < length; at += pieceLength)
        ASSERT_NE(mmap(source + at, pieceLength, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0), MAP_FAILED);
    close(file);
    expectRefused(source, static_cast<UCS2 *>(start), 2);
    UCS2 units[2];
    size_t size = 2;
    EXPECT_EQ(KTUTF8ToUCS2(source + 1, &size, units), KT_ERR_BUFFER_TOO_SMALL) << "a byte less is not too long";
    const long characters = KTMultiByteStrclen("shift_jis", source);
    EXPECT_TRUE(characters == KT_ERR_CONVERSION_INVALID_ARGUMENT || characters == KT_ERR_NO_MEMORY) << characters;

    // Formats take no longer ones either, as formats or as arguments.
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(KTExplainFormat(source, nullptr, nullptr), KT_ERR_CONVERSION_INVALID_ARGUMENT);
    EXPECT_EQ(KTCompareFormats(source, "", nullptr, nullptr), KT_ERR_CONVERSION_INVALID_ARGUMENT);
    for (const char *format : {"%s[1]", "%E[1]"})
    {
        KTPreparedFormat *prepared = nullptr;
        ASSERT_EQ(KTPrepareFormat(format, nullptr, &prepared), 0);
        const KTArgument text = KT_UTF8(source);
        EXPECT_EQ(KTFormatPreparedUTF8(prepared, 0, nullptr, &(size = 0), nullptr, &text, 1), KT_ERR_BUFFER_TOO_SMALL);
        char out[2];
        EXPECT_EQ(KTFormatPreparedUTF8(prepared, 0, nullptr, &(size = 2), out, &text, 1),
                  KT_ERR_CONVERSION_INVALID_ARGUMENT);
        KTFreePrepared(prepared);
    }
    KTClean();
    munmap(start, length + 1);
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
        {"malformed; three bytes fill the room", "utf-8", 0x80, 0xFFFD, 0xEFBFBD},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(KTMBCharToUChar(row.charSet, row.mbChar), row.unit);
        EXPECT_EQ(KTUCharToMBChar(row.charSet, row.unit), row.packedUnit);
    }
    EXPECT_EQ(KTUCharToMBChar("GB18030", 0x80), 0u) << "four bytes do not fit";
    EXPECT_EQ(KTUCharToMBChar("no-such-set", u'A'), 0u);
}

} // namespace
