#include "kelto.h"
#include "support/guarded.h"

#include <gtest/gtest.h>
#include <vector>

namespace
{

// A small model of text: five characters, and their bytes as the conversions give them.
constexpr UCS2 alphabet[] = {u'a', u'A', 0x3042, 0xFF41, 0xFF21};
constexpr const char *charSets[] = {"shift_jis", "EUC-JP", "GB18030", "utf-8", "iso-2022-jp"};

std::string encode(const std::string &charSet, const std::u16string &text)
{
    char bytes[100];
    size_t size = sizeof bytes;
    EXPECT_EQ(KTUCS2ToMultiByte(charSet.c_str(), 0, 0, text.c_str(), &size, bytes), 0);
    return {bytes, size};
}

std::u16string upperCase(std::u16string text)
{
    for (UCS2 &unit : text)
        unit = unit == u'a' ? u'A' : unit == 0xFF41 ? 0xFF21 : unit;
    return text;
}

/** 0 for a character of more than three bytes, as shift sequences make it. */
unsigned int packed(const std::string &bytes)
{
    unsigned int result = 0;
    for (const char byte : bytes)
        result = result << 8 | static_cast<unsigned char>(byte);
    return bytes.size() <= 3 ? result : 0;
}

/** Every text of up to `longest` characters. */
std::vector<std::u16string> allTexts(size_t longest)
{
    std::vector<std::u16string> texts = {u""};
    for (size_t i = 0; texts[i].size() < longest; ++i)
        for (const UCS2 unit : alphabet)
            texts.push_back(texts[i] + unit);
    return texts;
}

/** A buffer with exactly the room that the functions promise to need. */
Guarded<char> roomFor(const std::string &source)
{
    return Guarded<char>(source.size() + 1);
}

int signOf(int value)
{
    return (value > 0) - (value < 0);
}

TEST(MultiByteString, MeasuresStepsCopiesAndUpperCasesLikeTheModelAlsoInPlace)
{
    for (const std::string set : charSets)
        for (const std::u16string &text : allTexts(3))
        {
            const std::string bytes = encode(set, text), upper = encode(set, upperCase(text));
            SCOPED_TRACE(set + testing::PrintToString(text));
            EXPECT_EQ(KTMultiByteStrblen(bytes.c_str()), bytes.size());
            EXPECT_EQ(KTMultiByteStrclen(set.c_str(), bytes.c_str()), static_cast<long>(text.size()));
            EXPECT_EQ(KTFirstChar(set.c_str(), bytes.c_str()), packed(encode(set, text.substr(0, 1))));

            Guarded<char> inPlace = bytes;
            const bool hasNext = text.size() >= 2;
            EXPECT_EQ(KTNextChar(set.c_str(), inPlace.data()), hasNext ? packed(encode(set, text.substr(1, 1))) : 0);
            EXPECT_EQ(inPlace.text(), encode(set, hasNext ? text.substr(1) : text));

            for (const size_t n : {size_t{0}, size_t{1}, size_t{2}, size_t{3}, size_t{1} << 31, size_t{1} << 32})
            {
                Guarded<char> copy = roomFor(bytes);
                inPlace = bytes;
                EXPECT_EQ(KTMultiByteStrncpy(copy.data(), set.c_str(), bytes.c_str(), n), copy.data());
                EXPECT_EQ(copy.text(), encode(set, text.substr(0, n)));
                EXPECT_EQ(KTMultiByteStrncpy(inPlace.data(), set.c_str(), inPlace.data(), n), inPlace.data());
                EXPECT_EQ(inPlace.text(), copy.text());
            }
            Guarded<char> copy = roomFor(bytes);
            inPlace = bytes;
            size_t size = 0; // not a capacity: an output only
            EXPECT_EQ(KTMultiByteStrupr(set.c_str(), bytes.c_str(), &size, copy.data()),
                      static_cast<long>(upper.size()));
            EXPECT_EQ(size, upper.size());
            EXPECT_EQ(copy.text(), upper);
            EXPECT_GE(KTMultiByteStrupr(set.c_str(), inPlace.data(), &size, inPlace.data()), 0);
            EXPECT_EQ(inPlace.text(), upper);
        }
}

TEST(MultiByteString, SearchesAndComparesLikeTheModelAcrossCharacterSets)
{
    const std::vector<std::u16string> texts = allTexts(3), others = allTexts(2);
    for (size_t i = 0; i < std::size(charSets); ++i)
        for (const std::u16string &text : texts)
        {
            const std::string set = charSets[i], otherSet = charSets[(i + 1) % std::size(charSets)];
            const std::string bytes = encode(set, text);
            for (const std::u16string &other : others)
            {
                SCOPED_TRACE(set + testing::PrintToString(text) + otherSet + testing::PrintToString(other));
                const std::string otherBytes = encode(otherSet, other);
                const size_t at = text.find(other);
                const char *const found =
                    KTMultiByteStrstr(set.c_str(), bytes.c_str(), otherSet.c_str(), otherBytes.c_str());
                const size_t tailBytes = at != std::u16string::npos ? encode(set, text.substr(at)).size() : 0;
                EXPECT_EQ(found, at != std::u16string::npos ? bytes.c_str() + bytes.size() - tailBytes : nullptr);

                EXPECT_EQ(signOf(KTMultiByteStrcmp(set.c_str(), bytes.c_str(), otherSet.c_str(), otherBytes.c_str())),
                          signOf(text.compare(other)));
                const bool equal = upperCase(text) == upperCase(other);
                EXPECT_EQ(KTMultiByteStricmp(set.c_str(), bytes.c_str(), otherSet.c_str(), otherBytes.c_str()) == 0,
                          equal);
            }
            for (const UCS2 unit : alphabet)
            {
                SCOPED_TRACE(set + testing::PrintToString(text + unit));
                Guarded<char> tail = roomFor(bytes);
                const char *const found = KTMultiByteStrrchr(set.c_str(), bytes.c_str(), "shift_jis",
                                                             packed(encode("shift_jis", {unit})), tail.data());
                const size_t at = text.rfind(unit);
                ASSERT_EQ(found, at != std::u16string::npos ? tail.data() : nullptr);
                EXPECT_TRUE(found == nullptr || tail.text() == encode(set, text.substr(at)));
            }
        }
}

TEST(MultiByteString, GivesTheFailureOfAConversionAsItsOwn)
{
    constexpr char unknown[] = "no-such-set";
    char text[] = "ab", out[] = "??";
    size_t size = 7;
    EXPECT_EQ(KTMultiByteStrclen(unknown, text), KT_ERR_CONVERTER_OPEN_FAILED);
    EXPECT_EQ(KTFirstChar(unknown, text), 0u);
    EXPECT_EQ(KTNextChar(unknown, text), 0u);
    EXPECT_EQ(KTMultiByteStrncpy(out, unknown, text, 1), nullptr);
    EXPECT_EQ(KTMultiByteStrupr(unknown, text, &size, out), KT_ERR_CONVERTER_OPEN_FAILED);
    EXPECT_EQ(KTMultiByteStrstr(unknown, text, "utf-8", "b"), nullptr);
    EXPECT_EQ(KTMultiByteStrstr("utf-8", text, unknown, "b"), nullptr);
    EXPECT_EQ(KTMultiByteStrrchr(unknown, text, "utf-8", 'b', out), nullptr);
    EXPECT_EQ(KTMultiByteStrrchr("utf-8", text, unknown, 'b', out), nullptr);
    EXPECT_EQ(KTMultiByteStricmp(unknown, text, "utf-8", text), KT_ERR_CONVERTER_OPEN_FAILED);
    EXPECT_EQ(KTMultiByteStrcmp("utf-8", text, unknown, text), KT_ERR_CONVERTER_OPEN_FAILED);
    EXPECT_STREQ(text, "ab");
    EXPECT_STREQ(out, "??");
    EXPECT_EQ(size, 7u);
}

TEST(MultiByteString, RefusesAnUpperCaseThatIsLonger)
{
    const std::string source = "stra\xDF"
                               "e";
    Guarded<char> out = source;
    size_t size = 7;
    EXPECT_EQ(KTMultiByteStrupr("iso-8859-1", out.data(), &size, out.data()), KT_ERR_CONVERSION_FAILED);
    EXPECT_EQ(out.text(), source);
    EXPECT_EQ(size, 7u);
}

TEST(MultiByteString, ComparesWithoutCaseByTheDefaultFolding)
{
    EXPECT_EQ(KTMultiByteStricmp("utf-8", "\u0130", "utf-8", "i\u0307"), 0);
}

TEST(MultiByteString, CountsAMissingTerminatorAsNotFitting)
{
    // Two bytes of three are one malformed character, which comes back as three: one more than the source.
    const std::string half = "\xE3\x81";
    const auto expectEmpty = [&](auto call) {
        Guarded<char> out = roomFor(half);
        EXPECT_EQ(call(out.data()), nullptr);
        EXPECT_EQ(out.text(), "");
    };
    size_t size = 7;
    expectEmpty([&](char *out) { return KTMultiByteStrncpy(out, "utf-8", half.c_str(), 1); });
    expectEmpty([&](char *out) { return KTMultiByteStrrchr("utf-8", half.c_str(), "utf-8", 0x80, out); });
    expectEmpty([&](char *out) {
        EXPECT_EQ(KTMultiByteStrupr("utf-8", half.c_str(), &size, out), KT_ERR_BUFFER_TOO_SMALL);
        return nullptr;
    });
    EXPECT_EQ(KTMultiByteStrstr("utf-8", half.c_str(), "utf-8", ""), nullptr) << "before the text's own start";
    EXPECT_EQ(size, 7u);

    Guarded<char> walked = half + half + half + half; // 8 bytes; three characters come back as 9
    EXPECT_EQ(KTNextChar("utf-8", walked.data()), 0xEFBFBDu);
    EXPECT_EQ(walked.text(), half + half + half + half);
}

TEST(MultiByteString, OffersOneUnitMoreThanTheSourceHasBytes)
{
    const std::string pairs = "\x0B\x21\x01\x80\x80\x80\x80"; // SCSU: three bytes choose a window, each other is a pair
    EXPECT_EQ(KTMultiByteStrclen("SCSU", pairs.c_str()), 8);
    EXPECT_EQ(KTMultiByteStrclen("SCSU", (pairs + '\x80').c_str()), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(KTMultiByteStrstr("SCSU", (pairs + '\x80').c_str(), "utf-8", ""), nullptr);
}

TEST(MultiByteString, EndsATextAtAZeroUnit)
{
    EXPECT_EQ(KTMultiByteStrclen("utf-7", "a+AAAAYg-"), 1); // a, U+0000, b
    EXPECT_EQ(KTMultiByteStrstr("utf-7", "a+AAAAYg-", "utf-8", "b"), nullptr);
}

} // namespace
