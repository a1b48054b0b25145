// What prepared formats have of their own; that they write what the other calls write is checked with every row.

#include "format/started_test.h"
#include "support/fake_zel.h"
#include "support/guarded.h"
#include "support/literals.h"

#include <cstring>

namespace
{

using Prepared = StartedTest;

struct Free
{
    void operator()(KTPreparedFormat *prepared) const { KTFreePrepared(prepared); }
};
using Owner = std::unique_ptr<KTPreparedFormat, Free>;

Owner prepare(const std::string &format, formTable *table = nullptr)
{
    KTPreparedFormat *prepared = nullptr;
    EXPECT_EQ(KTPrepareFormat(format.c_str(), table, &prepared), 0) << format;
    return Owner(prepared);
}

/** The text in UTF-8, or the name of a result that left size and buffer alone. */
std::string formatted(const Owner &prepared, const std::vector<KTArgument> &arguments, unsigned options = 0)
{
    constexpr size_t capacity = 2000;
    Guarded<char> out(capacity);
    size_t size = capacity;
    const int result =
        KTFormatPreparedUTF8(prepared.get(), options, nullptr, &size, out.data(), arguments.data(), arguments.size());
    const size_t need = size;
    if (result != 0)
    {
        EXPECT_TRUE(size == capacity && out.untouched());
        return KTResultName(result);
    }
    for (size_t less = 0; less <= need; less += 1 + less / 64)
    {
        Guarded<char> cut(size = less);
        EXPECT_EQ(KTFormatPreparedUTF8(prepared.get(), options, nullptr, &size, cut.data(), arguments.data(),
                                       arguments.size()),
                  KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(size, need) << "asked for at " << less;
    }
    return std::string(out.data(), need);
}

TEST_F(Prepared, IsOneBlockAndKeepsNothingOfTheCaller)
{
    const long before = FakeZel::outstanding()[0];
    std::string format = "%s[2]: %d[1]";
    const Owner prepared = prepare(format);
    EXPECT_EQ(FakeZel::outstanding()[0], before + 1);
    format.assign(format.size(), '?');
    FakeZel::record();
    EXPECT_EQ(formatted(prepared, {KT_INT(7), KT_UTF8("files")}), "files: 7");
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 0U) << "formatting takes no memory";
}

TEST_F(Prepared, FindsAConversionWhereverItStands)
{
    for (size_t before = 0; before < 90; ++before)
        for (size_t behind = 0; behind < 20; ++behind)
            for (const std::string filler : {"x", "\u2525"}) // whose bytes in UCS-2 look like '%'
            {
                std::string head, tail;
                for (size_t i = 0; i < before; ++i)
                    head += filler;
                for (size_t i = 0; i < behind; ++i)
                    tail += filler;
                std::string format = head + "%d[1]" + tail + "%%";
                UCS2 wide[200];
                unsigned long units = std::size(wide);
                ASSERT_EQ(KTFormatString(nullptr, false, &units, wide, format.data(), 7), 0);
                EXPECT_EQ(toUCS2(head + "7" + tail + "%"), wide);
                char text[400];
                size_t size = sizeof text;
                const KTArgument seven = KT_INT(7);
                ASSERT_EQ(KTFormatPreparedUTF8(prepare(format).get(), 0, nullptr, &size, text, &seven, 1), 0);
                EXPECT_EQ(head + "7" + tail + "%", text);
            }
}

TEST_F(Prepared, WritesTextsAndPaddingsOfEveryLength)
{
    const Owner prepared = prepare("%*d[1]|%-*d[2]|%0*d[3]|%s[4]|%s[5]");
    for (int length = 0; length < 70; ++length)
    {
        const int number = length % 2 != 0 ? -length * length * length : length;
        const std::string digits = std::to_string(std::abs(number));
        const std::string sign = number < 0 ? "-" : "";
        const size_t used = sign.size() + digits.size();
        const auto missing = [&](char unit) { return std::string(std::max<size_t>(used, length) - used, unit); };
        std::string text(static_cast<size_t>(length), 't');
        std::string mixed = text;
        if (length > 0)
            mixed.replace(static_cast<size_t>(length * 5 / 7), 1, "\u00E9");
        const KTArgument width = KT_INT(length);
        const KTArgument value = KT_INT(number);
        EXPECT_EQ(formatted(prepared,
                            {width, value, width, value, width, value, KT_UTF8(text.c_str()), KT_UTF8(mixed.c_str())}),
                  missing(' ') + sign + digits + '|' + sign + digits + missing(' ') + '|' + sign + missing('0') +
                      digits + '|' + text + '|' + mixed);
    }
}

TEST_F(Prepared, KeepsToItsBlockWhereTheFormatChangesMeanwhile)
{
    const struct
    {
        std::string before, after, text;
    } rows[] = {
        {std::string(9, 'a'), std::string(9, '\xFF'), ""},
        {"\u00E9\u00E9", "\xFF\xFF\xFF\xFF", "\uFFFD"},
        {"\u20AC\u20AC\u20AC\u20AC\u20AC", std::string(15, 'a'), std::string(10, 'a')},
    };
    for (const auto &[before, after, text] : rows)
    {
        std::string format = before + "%d[1]";
        const FakeZel::Observer observer(
            [&format, &changed = after](const Call &) { changed.copy(format.data(), changed.size()); });
        EXPECT_EQ(formatted(prepare(format), {KT_INT(7)}), text + "7");
    }
}

TEST_F(Prepared, RefusesWhatIsNoFormatAndAStoppedLibrary)
{
    auto *const untouched = reinterpret_cast<KTPreparedFormat *>(8);
    KTPreparedFormat *prepared = untouched;
    EXPECT_EQ(KTPrepareFormat(nullptr, nullptr, &prepared), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(prepared, nullptr);
    prepared = untouched;
    EXPECT_EQ(KTPrepareFormat("%d", nullptr, &prepared), KT_ERR_FORMAT_SYNTAX);
    EXPECT_EQ(prepared, nullptr);
    EXPECT_EQ(formatted(nullptr, {}), "KT_ERR_INVALID_PARAMETER");
    EXPECT_EQ(formatted(prepare("%EID[1]"), {KT_UINT(1)}, KT_TAG), "<EID>0X00000001</EID>");
    EXPECT_EQ(formatted(prepare("a"), {}, KT_TAG | 2), "KT_ERR_INVALID_PARAMETER");
    KTFreePrepared(nullptr);
    KTClean();
    EXPECT_EQ(KTPrepareFormat("a", nullptr, &prepared), KT_ERR_NOT_INITIALIZED);
    KTProblem problem = {sizeof problem, 9, 9, 9, 9, 9, "", "", 9};
    EXPECT_EQ(KTExplainFormat("a", nullptr, &problem), KT_ERR_NOT_INITIALIZED);
    EXPECT_TRUE(problem.structSize == sizeof problem && problem.rule == KT_RULE_NONE && problem.slot == 0 &&
                problem.position == 0 && problem.offset == 0 && problem.length == 0 && problem.expected == nullptr &&
                problem.found == nullptr);
    EXPECT_EQ(KTCompareFormats("a", "a", nullptr, nullptr), KT_ERR_NOT_INITIALIZED);
    EXPECT_EQ(formatted(nullptr, {}), "KT_ERR_NOT_INITIALIZED");
    ASSERT_EQ(KTInit(), 0);
}

TEST_F(Prepared, RefusesNullForWhatItNeeds)
{
    const Owner prepared = prepare("%d[1]");
    const KTArgument argument = KT_INT(7);
    const KTProblem problem = {sizeof problem, 0, 0, 0, 0, 0, nullptr, nullptr, 0};
    UCS2 out[4] = u"abc";
    char text[4] = "abc";
    size_t size = 4, none = 0;
    for (const int result :
         {KTPrepareFormat("a", nullptr, nullptr), KTExplainFormat(nullptr, nullptr, nullptr),
          KTCompareFormats(nullptr, "a", nullptr, nullptr), KTCompareFormats("a", nullptr, nullptr, nullptr),
          KTFormatPrepared(prepared.get(), 0, nullptr, &size, out, nullptr, 1),
          KTFormatPrepared(prepared.get(), 0, nullptr, nullptr, out, &argument, 1),
          KTFormatPrepared(prepared.get(), 0, nullptr, &size, nullptr, &argument, 1),
          KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &size, nullptr, &argument, 1),
          KTProblemText(nullptr, &size, text), KTProblemText(&problem, nullptr, text),
          KTProblemText(&problem, &size, nullptr)})
        EXPECT_EQ(result, KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(std::u16string(out), u"abc");
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &none, nullptr, &argument, 1), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(none, 1U);
    const KTSlot *slots = reinterpret_cast<KTSlot *>(8);
    EXPECT_EQ(KTPreparedSlots(nullptr, &slots), 0U);
    EXPECT_EQ(slots, nullptr);
}

TEST_F(Prepared, RefusesArgumentsThatNoFunctionMakes)
{
    KTArgument wide = KT_INT(0), low = wide, narrow = wide, character = KT_CHAR('a'), unit = KT_UNIT(u'a');
    const long double real = 1;
    wide.value.i = int64_t{1} << 31;
    low.value.i = -wide.value.i - 1;
    narrow.value.u = UINT32_MAX;
    character.value.u = 256;
    unit.value.u = 65536;
    const std::pair<const char *, KTArgument> rows[] = {
        {"%d[1]", wide},
        {"%!d[1]", wide},
        {"%!d[1]", low},
        {"%!d[1]", narrow},
        {"%!u[1]", {KT_ARGUMENT_UINT, 0, {int64_t{1} << 32}}},
        {"%c[1]", character},
        {"%lc[1]", unit},
        {"%c[1]", {KT_ARGUMENT_CHAR, 1, {'a'}}},
        {"%Lf[1]", {KT_ARGUMENT_LONG_DOUBLE, 1, {reinterpret_cast<intptr_t>(&real)}}},
        {"%d[1]", {KT_ARGUMENT_INT, 1, {7}}},
        {"%f[1]", {KT_ARGUMENT_DOUBLE, 1, {0}}},
        {"%Lf[1]", KT_LONG_DOUBLE(nullptr)},
        {"%d[1]", {0, 0, {7}}},
        {"%d[1]", {12, 0, {7}}},
    };
    for (const auto &[format, argument] : rows)
        EXPECT_EQ(formatted(prepare(format), {argument}), "KT_ERR_INVALID_PARAMETER") << format;
    EXPECT_EQ(formatted(prepare("%d[1]%d[2]"), {KT_INT(1), wide}), "KT_ERR_INVALID_PARAMETER");
    EXPECT_EQ(formatted(prepare("%s[1]%U[2]."), {KT_UTF8N(nullptr, 5), KT_UCS2N(u"a\0b", 3)}), "a.");
}

TEST_F(Prepared, TakesArgumentsOfTheKindOfTheSlotAlone)
{
    const long double real = 1;
    const std::pair<const char *, KTArgument> kinds[] = {
        {"%d[1]", KT_INT(1)},    {"%c[1]", KT_CHAR('a')},           {"%lc[1]", KT_UNIT(u'a')},
        {"%f[1]", KT_DOUBLE(1)}, {"%Lf[1]", KT_LONG_DOUBLE(&real)}, {"%s[1]", KT_UTF8("abc")},
        {"%U[1]", KT_UCS2(u"a")}};
    for (const auto &[format, own] : kinds)
    {
        for (const auto &[other, argument] : kinds)
            EXPECT_EQ(formatted(prepare(format), {argument}) != "KT_ERR_INVALID_PARAMETER", format == other)
                << format << " with the argument of " << other;
        EXPECT_EQ(formatted(prepare(format), {KT_POINTER(1, &real)}), "KT_ERR_INVALID_PARAMETER") << format;
    }
}

TEST_F(Prepared, WritesNothingOfALongNumberThatDoesNotFitAsAWhole)
{
    const KTArgument arguments[] = {KT_DOUBLE(1.5)};
    UCS2 out[1150]; // room for its digits, but not for the zeros behind the 1074th
    size_t size = std::size(out);
    EXPECT_EQ(KTFormatPrepared(prepare("%.1200f[1]").get(), 0, nullptr, &size, out, arguments, 1),
              KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 1202U);
    EXPECT_EQ(formatted(prepare("a%c[1]%.2500f[2]"), {KT_CHAR(0), KT_DOUBLE(1.5)}), "a") << "ended before it";
}

int bracket(const void *value, int, unsigned long *size, UCS2 *out)
{
    const std::u16string text = u"<" + std::u16string(static_cast<const UCS2 *>(value)) + u">";
    text.copy(out, std::min<size_t>(*size, text.size()));
    *size = text.size();
    return 0;
}

TEST_F(Prepared, IsolatesTheDirectionOfTextsAndOfNothingElse)
{
    static const int types[] = {KT_ARG_SIGNED, KT_ARG_END};
    KTFormatter list[] = {{"own", nullptr, 1, types, formatInteger}, {nullptr, nullptr, 0, nullptr, nullptr}};
    KTFormatter other[] = {{"mine", nullptr, 1, utf8StrList, formatError}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable mine = {false, {}, other, bracket, &builtInFormTable}, table = {false, {}, list, bracket, &mine};
    const std::string open = "\u2068", close = "\u2069";
    const struct
    {
        const char *format;
        std::vector<KTArgument> arguments;
        unsigned options;
        std::string text;
    } rows[] = {
        {"%s[1]:%d[2]", {KT_UTF8("a"), KT_INT(7)}, 0, open + "a" + close + ":7"},
        {"%3U[1]|%-3s[2]|", {KT_UCS2(u"a"), KT_UTF8("b")}, 0, open + "  a" + close + "|" + open + "b  " + close + "|"},
        {"%E[1]%D[2]",
         {KT_UTF8("e"), KT_UTF8("0")},
         KT_TAG,
         open + "<error>e</error>" + close + "<date><year>1970</year><month>1</month><day>1</day></date>"},
        {"%N[1]%3s[2]%O[3]", {KT_UTF8("a")}, 0, open + "<a>" + close},
        {"%E[1]", {KT_UTF8("e")}, KT_ENCODE_ALL, open + "<e>" + close},
        {"%mine[1]", {KT_UTF8("e")}, KT_ENCODE_ALL, open + "<e>" + close},
        {"%.0s[1]%.1s[2]", {KT_UTF8("a"), KT_UTF8("bc")}, 0, open + "b" + close},
        {"%lc[1]%DNS[2]", {KT_UNIT(u'c'), KT_UCS2(u"n")}, 0, "cn"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(formatted(prepare(row.format, &table), row.arguments, row.options | KT_ISOLATE), row.text);
    UCS2 wide[8];
    size_t size = 8;
    const KTArgument argument = KT_UTF8("a");
    EXPECT_EQ(KTFormatPrepared(prepare("%s[1]").get(), KT_ISOLATE, nullptr, &size, wide, &argument, 1), 0);
    EXPECT_EQ(std::u16string(wide), u"\u2068a\u2069");
}

TEST_F(Prepared, TellsItsSlotsInTheOrderOfPassing)
{
    static const int types[] = {KT_ARG_POINTER, 9, KT_ARG_UNSIGNED, KT_ARG_END};
    KTFormatter list[] = {{"two", nullptr, 2, types, formatIP}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, &builtInFormTable};
    const Owner prepared = prepare("%N[1]%!two[3]%*.*hd[2]%lc[4]%Lf[5]%D[6]", &table);
    const KTSlot *slots = nullptr;
    ASSERT_EQ(KTPreparedSlots(prepared.get(), &slots), 8U);
    EXPECT_EQ(KTPreparedSlots(prepared.get(), nullptr), 8U);
    const KTSlot expected[] = {{KT_SLOT_INT32, 2, KT_SLOT_WIDTH},       {KT_SLOT_INT32, 2, KT_SLOT_PRECISION},
                               {KT_SLOT_INT16, 2, KT_SLOT_VALUE},       {KT_SLOT_POINTER, 3, KT_SLOT_VALUE},
                               {KT_SLOT_UINT64, 3, KT_SLOT_VALUE},      {KT_SLOT_UNIT, 4, KT_SLOT_VALUE},
                               {KT_SLOT_LONG_DOUBLE, 5, KT_SLOT_VALUE}, {KT_SLOT_UTF8, 6, KT_SLOT_VALUE}};
    EXPECT_EQ(std::memcmp(slots, expected, sizeof expected), 0);
}

/**
 * Writes its two texts and as many 'x' as the number that its pointer of kind 5 leads to says; formats something
 * meanwhile.
 */
int repeat(const char *, int, int, int, KTEncoder, void *, void **slots, unsigned long *size, UCS2 *out)
{
    EXPECT_EQ(KTPointerOfKind(slots + 2, 6), nullptr);
    EXPECT_EQ(KTPointerOfKind(slots + 3, 5), nullptr) << "no slot of this conversion";
    EXPECT_EQ(KTPointerOfKind(slots, UINT32_MAX), nullptr) << "a text, whose length is no kind";
    EXPECT_EQ(formatted(prepare("%d[1]"), {KT_INT(1)}), "1");
    const auto *const number = static_cast<const unsigned long *>(KTPointerOfKind(slots + 2, 5));
    if (number == nullptr)
        return -77;
    const std::u16string text = toUCS2(static_cast<const char *>(slots[0])) + static_cast<const UCS2 *>(slots[1]) +
                                std::u16string(*number, u'x');
    const unsigned long room = *size;
    *size = text.size();
    if (text.size() >= room)
        return KT_ERR_BUFFER_TOO_SMALL;
    text.copy(out, text.size());
    return 0;
}

TEST_F(Prepared, AConversionOfOnesOwnGetsTerminatedTextsAndAsksForThePointerItKnows)
{
    static const int types[] = {KT_ARG_UTF8, KT_ARG_UCS2, KT_ARG_POINTER, KT_ARG_END};
    KTFormatter list[] = {{"repeat", nullptr, 3, types, repeat}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, nullptr};
    const Owner prepared = prepare("[%repeat[1]]", &table);
    const std::string bytes(600, 'b');
    for (const unsigned long number : {0UL, 1UL, 250UL, 251UL, 252UL, 900UL}) // around the buffer of 256 units
        for (const size_t length : {2, 300, 600})
            EXPECT_EQ(
                formatted(prepared, {KT_UTF8N(bytes.data(), length), KT_UCS2N(u"uvw", 2), KT_POINTER(5, &number)}),
                "[" + bytes.substr(0, length) + "uv" + std::string(number, 'x') + "]");
    const unsigned long none = 0;
    Guarded<char> ended(std::string("ab"));
    EXPECT_EQ(formatted(prepared, {KT_UTF8N(ended.data(), UINT32_MAX), KT_UCS2N(u"u", 1000), KT_POINTER(5, &none)}),
              "[abu]")
        << "a zero ends a text before its length";
    EXPECT_EQ(formatted(prepared, {KT_UTF8N(nullptr, 9), KT_UCS2N(nullptr, 9), KT_POINTER(5, &none)}), "[]");
    EXPECT_EQ(formatted(prepared, {KT_UTF8(nullptr), KT_UCS2(nullptr), KT_POINTER(5, &none)}), "[]");
    char out[20];
    size_t size = sizeof out;
    const KTArgument other[] = {KT_UTF8(""), KT_UCS2(u""), KT_POINTER(7, "")};
    EXPECT_EQ(KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &size, out, other, 3), -77);
    char format[] = "[%repeat[1]]";
    UCS2 wide[20];
    unsigned long units = 20;
    EXPECT_EQ(KTFormatStringWithPassThru(nullptr, false, &table, nullptr, &units, wide, format, "", u"", other), -77)
        << "which knows no kinds";

    std::u16string grown(600, u'g');
    grown[300] = u'\0';
    const FakeZel::Observer observer([&](const Call &) { grown[300] = u'g'; });
    const KTArgument growing[] = {KT_UTF8N("u", 1), KT_UCS2N(grown.data(), 600), KT_POINTER(5, &none)};
    EXPECT_EQ(KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &size, out, growing, 3), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 303U) << "no more than was measured, when there is a block for it";
}

struct Answer
{
    int result;
    unsigned long size;
};
std::vector<Answer> answers; // of the next calls, the first one last

int answer(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *)
{
    const Answer next = answers.back();
    answers.pop_back();
    *size = next.size;
    return next.result;
}

TEST_F(Prepared, CountsWhatAConversionOfTheProgramDoesNotWriteInTheEnd)
{
    static const int types[] = {8, KT_ARG_END};
    KTFormatter list[] = {{"claim", nullptr, 0, types, answer}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, &builtInFormTable};
    const Owner prepared = prepare("[%lc[1]%claim[2]]", &table);
    const struct
    {
        Answer first, second;
        int result;
        size_t size;
        char16_t unit = u'.'; // in front of it
    } rows[] = {
        {{KT_ERR_BUFFER_TOO_SMALL, 400}, {KT_ERR_BUFFER_TOO_SMALL, 500}, KT_ERR_BUFFER_TOO_SMALL, 503},
        {{0, 256}, {0, 257}, KT_ERR_BUFFER_TOO_SMALL, 260},
        {{0, 256}, {0, 257}, 0, 1, u'\0'},
        {{KT_ERR_BUFFER_TOO_SMALL, 400}, {-77, 0}, -77, 0},
        {{-77, 400}, {0, 0}, -77, 0},
        {{KT_ERR_BUFFER_TOO_SMALL, 65535}, {-77, 0}, -77, 0}, // 64 Ki units are taken, not more
        {{KT_ERR_BUFFER_TOO_SMALL, 65536}, {-77, 0}, KT_ERR_BUFFER_TOO_SMALL, 65539},
        {{KT_ERR_BUFFER_TOO_SMALL, ~0UL}, {0, 0}, KT_ERR_BUFFER_TOO_SMALL, ~size_t{0}},
    };
    for (const auto &row : rows)
    {
        answers = {row.second, row.first};
        Guarded<char> out(1000);
        size_t size = out.capacity();
        const KTArgument unit = KT_UNIT(row.unit);
        EXPECT_EQ(KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &size, out.data(), &unit, 1), row.result);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(out.text(), row.size > 1 ? "[." : row.size > 0 ? "[" : "");
    }
}

int copyUTF8(const char *, int, int, int, KTEncoder, void *, const KTArgument *arguments, size_t *size, char *out)
{
    const auto *const text = static_cast<const char *>(arguments[0].value.p);
    const size_t length = strnlen(text, arguments[0].length), room = *size;
    if (*text == '!')
        return -77;
    *size = length;
    if (length + 1 > room)
        return KT_ERR_BUFFER_TOO_SMALL;
    std::memcpy(out, text, length);
    return 0;
}

TEST_F(Prepared, TheFunctionForUTF8IsLookedUpWhenAFormatIsPrepared)
{
    KTFormatter list[] = {{"own", nullptr, 1, utf8StrList, answer}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, &builtInFormTable};
    const char *const format = "[%lc[1]%own[2]%lc[3]]";
    const auto arguments = [](const char *text, char16_t unit = u'.') {
        return std::vector{KT_UNIT(unit), KT_UTF8N(text, 3), KT_UNIT(0xDE00)};
    };
    const Owner before = prepare(format, &table);
    EXPECT_EQ(KTRegisterUTF8Format(nullptr, copyUTF8), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTRegisterUTF8Format(list, nullptr), 0) << "there was none";
    EXPECT_EQ(KTRegisterUTF8Format(list, copyUTF8), 0);
    EXPECT_EQ(KTRegisterUTF8Format(list, copyUTF8), 0);
    const Owner with = prepare(format, &table);
    EXPECT_EQ(formatted(with, arguments("ownership")), "[.own\uFFFD]");
    EXPECT_EQ(formatted(with, arguments("\u00E9!", 0xD83D)), "[\uFFFD\u00E9!\uFFFD]") << "it parts the halves";
    EXPECT_EQ(formatted(with, arguments("", 0xD83D)), "[\U0001F600]") << "nothing parts no halves";
    EXPECT_EQ(formatted(with, arguments("own", 0)), "[") << "U+0000 has ended the text";
    char out[9];
    size_t size = sizeof out;
    EXPECT_EQ(KTFormatPreparedUTF8(with.get(), 0, nullptr, &size, out, arguments("!").data(), 3), -77);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(KTRegisterUTF8Format(list, nullptr), 0);
    const Owner after = prepare(format, &table);
    for (const KTPreparedFormat *plain : {before.get(), after.get()})
    {
        answers = {{-78, 0}};
        EXPECT_EQ(KTFormatPreparedUTF8(plain, 0, nullptr, &(size = sizeof out), out, arguments("own").data(), 3), -78);
    }
}

/** The text that a program gets which repeats a call as long as the need grows, and how often it has to. */
std::string formattedInTheEnd(const Owner &prepared, const std::vector<KTArgument> &arguments, unsigned &calls)
{
    std::string text(100, '?');
    for (calls = 1;; ++calls)
    {
        size_t size = text.size();
        const int result =
            KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &size, text.data(), arguments.data(), arguments.size());
        if (result == 0 || size < text.size())
            return result == 0 ? text.substr(0, size) : KTResultName(result);
        text.resize(size + 1);
    }
}

/** Writes an 'é' for each unit of a text; `encodeOrFail` says of too little room that the text does not fit. */
int encodeInParentheses(const void *value, int, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    *size = KTUCS2strlen(static_cast<const UCS2 *>(value));
    std::fill_n(out, std::min(room, *size), u'\u00E9');
    return 0;
}

int encodeOrFail(const void *value, int type, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    encodeInParentheses(value, type, size, out);
    return *size < room ? 0 : KT_ERR_BUFFER_TOO_SMALL;
}

TEST_F(Prepared, TakesAsMuchMemoryForTheTextOfAConversionAsItsBufferAllows)
{
    static const int types[] = {KT_ARG_SIGNED, KT_ARG_END};
    KTFormatter list[] = {{"price", nullptr, 1, types, formatInteger}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, nullptr};
    const Owner huge = prepare("%1500000000price[1]", &table);
    const KTArgument number = KT_INT(7);
    char out[100];
    size_t size = sizeof out;
    FakeZel::record();
    EXPECT_EQ(KTFormatPreparedUTF8(huge.get(), 0, nullptr, &size, out, &number, 1), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 1500000000U);
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 0U);

    unsigned calls = 0;
    const Owner wide = prepare("[%70000price[1]][%-80000price[2]]", &table);
    EXPECT_EQ(formattedInTheEnd(wide, {number, number}, calls),
              "[" + std::string(69999, ' ') + "7][7" + std::string(79999, ' ') + "]");
    EXPECT_EQ(calls, 2U);
}

TEST_F(Prepared, CutsAndPadsWhatAnEncoderWroteWhateverItWantsRoomFor)
{
    const struct
    {
        const char *format;
        size_t length, written; // units of the text, and of what is written of it
        unsigned calls;
    } rows[] = {
        {"%N[1]%.25s[2]%O[3]", 20, 20, 1},         {"%N[1]%.25s[2]%O[3]", 300, 25, 1},
        {"%N[1]%300.280s[2]%O[3]", 400, 280, 2},   {"%N[1]%.25s[2]%O[3]", 70000, 25, 2},
        {"%N[1]%70001s[2]%O[3]", 70000, 70000, 3},
    };
    for (const auto &row : rows)
        for (const KTEncoder encoder : {encodeInParentheses, encodeOrFail})
        {
            SCOPED_TRACE(row.format + std::to_string(row.length) + (encoder == encodeInParentheses ? "" : " or fail"));
            formTable table = {false, {}, nullptr, encoder, &builtInFormTable};
            const std::string text(row.length, 'a');
            std::vector<char16_t> wide(100000);
            unsigned long units = wide.size();
            char format[40];
            std::strcpy(format, row.format);
            ASSERT_EQ(
                KTFormatStringWithPassThru(nullptr, false, &table, nullptr, &units, wide.data(), format, text.c_str()),
                0);
            unsigned calls = 0;
            const std::string written = formattedInTheEnd(prepare(format, &table), {KT_UTF8(text.c_str())}, calls);
            EXPECT_EQ(toUCS2(written), std::u16string(wide.data(), units));
            EXPECT_EQ(static_cast<size_t>(std::count(written.begin(), written.end(), '\xC3')), row.written);
            EXPECT_EQ(calls,
                      encoder == encodeInParentheses && row.length == 70000 && row.written == 25 ? 1 : row.calls);
        }
}

TEST_F(Prepared, ACharacterMayBeWrittenInHalves)
{
    static constexpr UCS2 halves[] = {0xD83D, 0xDE00, 0xD83D, 0};
    const Owner prepared = prepare("%.1U[1]%U[2]%lc[3]%.0s[4]%lc[5]");
    EXPECT_EQ(formatted(prepared, {KT_UCS2(halves), KT_UCS2(halves + 1), KT_UNIT(0xDE00), KT_UTF8("a"), KT_UNIT(0)}),
              "\U0001F600\U0001F600");
    EXPECT_EQ(formatted(prepared, {KT_UCS2(halves), KT_UCS2(u"-"), KT_UNIT(0xDE00), KT_UTF8("a"), KT_UNIT(u'b')}),
              "\uFFFD-\uFFFDb");
    const Owner mixed = prepare("%lc[1]%lc[2]%s[3]%U[4]%lc[5]");
    EXPECT_EQ(formatted(mixed, {KT_UNIT(0xD83D), KT_UNIT(0xD83D), KT_UTF8("\u00E9"), KT_UCS2(halves + 1), KT_UNIT(1)}),
              "\uFFFD\uFFFD\u00E9\uFFFD\uFFFD\1");
    EXPECT_EQ(formatted(mixed, {KT_UNIT(u'a'), KT_UNIT(0), KT_UTF8("b\u00E9"), KT_UCS2(u"c"), KT_UNIT(u'd')}), "a")
        << "U+0000 ends it for what comes behind, whatever it is";
}

TEST(Problem, NamesEveryKindOfArgument)
{
    ASSERT_EQ(KTInit(), 0);
    std::string names;
    for (const char *format : {"%hx[1]", "%d[1]", "%!u[1]", "%c[1]", "%lc[1]", "%f[1]", "%Lf[1]", "%s[1]", "%U[1]"})
    {
        KTProblem problem = {sizeof problem, 0, 0, 0, 0, 0, nullptr, nullptr, 0};
        EXPECT_EQ(KTCompareFormats(format, "", nullptr, &problem), KT_ERR_INVALID_PARAMETER);
        names += problem.found + std::string(", ");
    }
    for (const char *format : {"%*d[1]", "%.*d[1]"})
    {
        KTProblem problem = {sizeof problem, 0, 0, 0, 0, 0, nullptr, nullptr, 0};
        EXPECT_EQ(KTCompareFormats("%d[1]", format, nullptr, &problem), KT_ERR_INVALID_PARAMETER);
        names += problem.expected + std::string(", ");
    }
    EXPECT_EQ(names,
              "a 16-bit integer, a 32-bit integer, a 64-bit integer, an 8-bit character, a UCS-2 unit, a double, "
              "a long double, a UTF-8 string, a UCS-2 string, a width, a precision, ");
    KTClean();
}

TEST(Problem, IsToldAndMadeASentence)
{
    struct Row
    {
        const char *format, *reference;
        int result, rule;
        unsigned slot, position;
        const char *part; // of the format
    };
    const Row rows[] = {
        {"%s[2] %d[1]", "%d[1] %s[2]", 0, KT_RULE_NONE, 0, 0, ""},
        {"%u[1]", "%d[1]", 0, KT_RULE_NONE, 0, 0, ""},
        {"%E[1]", "%s[1]", 0, KT_RULE_NONE, 0, 0, ""},
        {"%*.*d[1]", "%*.*u[1]", 0, KT_RULE_NONE, 0, 0, ""},
        {"%*d[1]", "%d[1] of %d[2]", KT_ERR_INVALID_PARAMETER, KT_RULE_ARGUMENT_TYPE, 1, 1, "%*d[1]"},
        {"%.*d[1]", "%*d[1]", KT_ERR_INVALID_PARAMETER, KT_RULE_ARGUMENT_TYPE, 1, 1, "%.*d[1]"},
        {"\xFF %s[1]", "%d[1]", KT_ERR_INVALID_PARAMETER, KT_RULE_ARGUMENT_TYPE, 1, 1, "%s[1]"},
        {"%%%N[1]%hd[2]", "%d[1]", KT_ERR_INVALID_PARAMETER, KT_RULE_ARGUMENT_TYPE, 1, 2, "%hd[2]"},
        {"%d[1]", "%d[1]%s[2]", KT_ERR_INVALID_PARAMETER, KT_RULE_ARGUMENT_MISSING, 2, 2, ""},
        {"é%d[1]%.*s[2]", "%d[1]", KT_ERR_INVALID_PARAMETER, KT_RULE_ARGUMENT_EXTRA, 2, 2, "%.*s[2]"},
        {"%d[1]", "%d", KT_ERR_FORMAT_SYNTAX, KT_RULE_REFERENCE, 0, 0, ""},
        {"a %-5d", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_MISSING, 0, 0, "%-5d"},
        {"%d\tb", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_MISSING, 0, 0, "%d"},
        {"%d\r\n", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_MISSING, 0, 0, "%d"},
        {"a %d\nb", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_MISSING, 0, 0, "%d"},
        {"%d of %d[2]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_MISSING, 0, 0, "%d"},
        {"%1$d%d[2]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_MISSING, 0, 0, "%1$d"},
        {"50% off [1]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_MISSING, 0, 0, "% off"},
        {"%[1]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_UNKNOWN_CONVERSION, 0, 0, "%[1]"},
        {"a %d[1001] b", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_NUMBER_TOO_LARGE, 0, 0, "%d[1001]"},
        {"%99999999999d b", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_NUMBER_TOO_LARGE, 0, 0, "%99999999999d"},
        {"%d[1]%s[1]%u[1]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_REPEATED, 0, 1, "%s[1]"},
        {"%d[4]%s[1]%u[5]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_POSITION_GAP, 0, 2, "%d[4]"},
        {"%\xC3\xA9[1]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_NAME_NOT_ASCII, 0, 0, "%\xC3\xA9[1]"},
        {"%abcdefghijklmnopqrst[1]", "", KT_ERR_FORMAT_SYNTAX, KT_RULE_NAME_TOO_LONG, 0, 0, "%abcdefghijklmnopqrst[1]"},
    };
    ASSERT_EQ(KTInit(), 0);
    for (const Row &row : rows)
    {
        SCOPED_TRACE(std::string(row.format) + " against " + row.reference);
        KTProblem problem = {sizeof problem, -1, 9, 9, 9, 9, nullptr, nullptr, 9};
        EXPECT_EQ(KTCompareFormats(row.format, row.reference, nullptr, &problem), row.result);
        EXPECT_EQ(problem.rule, row.rule);
        EXPECT_EQ(problem.slot, row.slot);
        EXPECT_EQ(problem.position, row.position);
        EXPECT_EQ(std::string(row.format).substr(problem.offset, problem.length), row.part);
        EXPECT_EQ(problem.length, std::strlen(row.part));
        EXPECT_TRUE(problem.length > 0 || problem.offset == 0);
        EXPECT_EQ(problem.structSize, sizeof problem);
        char whole[200];
        size_t length = sizeof whole;
        ASSERT_EQ(KTProblemText(&problem, &length, whole), 0);
        EXPECT_EQ(length, std::strlen(whole));
        for (size_t capacity = 0; capacity <= length; ++capacity)
        {
            Guarded<char> out(capacity);
            size_t size = capacity;
            EXPECT_EQ(KTProblemText(&problem, &size, capacity > 0 ? out.data() : nullptr), KT_ERR_BUFFER_TOO_SMALL);
            EXPECT_TRUE(size == length && (capacity == 0 || out[0] == '\0'));
        }
    }
    KTProblem small = {offsetof(KTProblem, message) - 1, 77, 0, 0, 0, 0, nullptr, nullptr, 0};
    EXPECT_EQ(KTExplainFormat("a", nullptr, &small), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTCompareFormats("a", "a", nullptr, &small), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(small.rule, 77);
    for (const auto &[rule, sentence] :
         {std::pair<int, const char *>{99, "the format has a problem"},
          {KT_RULE_ARGUMENT_TYPE, "argument 1 is something else here, something else in the reference"}})
    {
        const KTProblem made = {sizeof made, rule, 1, 0, 0, 0, nullptr, nullptr, 0};
        char text[100];
        size_t size = sizeof text;
        EXPECT_EQ(KTProblemText(&made, &size, text), 0);
        EXPECT_STREQ(text, sentence);
    }
    KTClean();
}

} // namespace
