#include "format/started_test.h"
#include "support/fake_zel.h"

#include <numeric>
#include <random>

namespace
{

using FormatString = StartedTest;

using Checked = std::pair<int, size_t>;

/** The result of a check, and how many positions from 1 on have a record; the array is freed. */
Checked check(const std::u16string &format)
{
    KTParameter *parameters = nullptr;
    const int result = checkSyntax(format.c_str(), nullptr, &parameters);
    size_t records = 0;
    while (parameters != nullptr && parameters[records].formatter != nullptr)
        ++records;
    ZEL_free(parameters);
    return {result, records};
}

TEST_F(FormatString, ListsConversionsByPosition)
{
    KTParameter *parameters = nullptr;
    ASSERT_EQ(checkSyntax(u"%s[2] = %-5d[1]", nullptr, &parameters), 0);
    EXPECT_EQ(parameters[0].type, CONV_d);
    EXPECT_EQ(parameters[0].width, 5);
    EXPECT_EQ(parameters[0].flags, FLAG_MINUS);
    EXPECT_EQ(parameters[0].argIndex, 0);
    EXPECT_EQ(parameters[1].type, CONV_s);
    EXPECT_EQ(parameters[2].formatter, nullptr);
    ZEL_free(parameters);
    for (const char16_t *format : {u"", u"100%% sure"})
    {
        parameters = reinterpret_cast<KTParameter *>(&parameters);
        EXPECT_EQ(checkSyntax(format, nullptr, &parameters), 0);
        EXPECT_EQ(parameters, nullptr) << "no array without conversions";
    }
}

TEST_F(FormatString, NeedsThePositionsOneToNOnceEach)
{
    EXPECT_EQ(check(u"%N[1]%d[2]%O[3]"), (Checked{0, 3}));
    EXPECT_EQ(check(u"%d[1] and %"), (Checked{KT_ERR_FORMAT_SYNTAX, 1})) << "the caller gets the array built so far";
    EXPECT_EQ(check(u"%%%"), (Checked{KT_ERR_FORMAT_SYNTAX, 0}));
    EXPECT_EQ(check(u"%d[1]%d[4]%d[5]").first, KT_ERR_FORMAT_SYNTAX);
    std::u16string repeated;
    for (int i = 0; i < 40; ++i)
        repeated += u"%d[1]";
    EXPECT_EQ(check(repeated).first, KT_ERR_FORMAT_SYNTAX);
}

TEST_F(FormatString, AcceptsEveryPermutation)
{
    std::mt19937 random(1);
    for (const size_t n : {10, 0, 1, 2, 9, 11, 25, 100, 101, 1500, 5000})
    {
        std::vector<size_t> positions(n);
        std::iota(positions.begin(), positions.end(), 1);
        std::shuffle(positions.begin(), positions.end(), random);
        std::string format;
        for (const size_t position : positions)
            format += "%d[" + std::to_string(position) + "]";
        EXPECT_EQ(check({format.begin(), format.end()}), (Checked{0, n}));
        KTPreparedFormat *prepared = nullptr;
        ASSERT_EQ(KTPrepareFormat(format.c_str(), nullptr, &prepared), 0) << n;
        const KTSlot *slots = nullptr;
        ASSERT_EQ(KTPreparedSlots(prepared, &slots), n);
        for (size_t i = 0; i < n; ++i)
            ASSERT_EQ(slots[i].position, i + 1);
        KTFreePrepared(prepared);
    }
}

/** What a walk finds: of each conversion its text and position, its slots as "code/role", or the rule it breaks. */
std::string walk(const std::string &format, formTable *table = nullptr)
{
    KTSlot slots[2];
    KTConversion found{};
    found.structSize = sizeof found;
    found.slotList = slots;
    found.slotRoom = std::size(slots);
    std::string text;
    while (KTNextConversion(format.c_str(), table, &found))
    {
        text += format.substr(found.offset, found.length) + " is " + std::to_string(found.position);
        if (found.rule != KT_RULE_NONE)
            text += " breaks " + std::to_string(found.rule);
        else if (found.formatter != nullptr)
            text += std::string(" ") + found.formatter->name + " of " + std::to_string(found.slotCount);
        for (size_t i = 0; i < std::min(found.slotCount, found.slotRoom); ++i)
            text += " " + std::to_string(slots[i].code) + "/" + std::to_string(slots[i].role);
        text += "\n";
    }
    return text;
}

TEST_F(FormatString, IsWalkedOverWhetherItIsRightOrNot)
{
    static const int types[] = {KT_ARG_POINTER, 9, KT_ARG_UNSIGNED, KT_ARG_END};
    KTFormatter list[] = {{"two", nullptr, 2, types, formatIP}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, &builtInFormTable};
    const std::pair<std::string, std::string> rows[] = {
        {"100%% \u00E9", ""},
        {"\u00E9%s[2] of %-5!d[1]%%", "%s[2] is 2 s of 1 11/0\n%-5!d[1] is 1 d of 1 5/0\n"},
        {"%*.*f[7]%d[7]", "%*.*f[7] is 7 f of 3 3/1 3/2\n%d[7] is 7 d of 1 3/0\n"},
        {"%N[1]%c[2]%O[3]", "%N[1] is 1\n%c[2] is 2 c of 1 7/0\n%O[3] is 3\n"},
        {"%!two[1]", "%!two[1] is 1 two of 2 13/0 6/0\n"},
        {"%q[2] %d[0]%d[1", "%q[2] is 2 breaks 6\n%d[0] is 0 breaks 2\n%d[1 is 0 breaks 2\n"},
        {"50% off, %d of %d[2]", "% off, is 0 breaks 1\n%d is 0 breaks 1\n%d[2] is 2 d of 1 3/0\n"},
        {"%99999999999d[1]%d[2000000000]%",
         "%99999999999d[1] is 0 breaks 3\n%d[2000000000] is 2000000000 d of 1 3/0\n% is 0 breaks 1\n"},
    };
    for (const auto &[format, expected] : rows)
        EXPECT_EQ(walk(format, &table), expected) << format;
    KTConversion found{};
    EXPECT_FALSE(KTNextConversion("%d[1]", nullptr, &found)) << "without its size";
    EXPECT_FALSE(KTNextConversion("%d[1]", nullptr, nullptr));
    found.structSize = sizeof found;
    EXPECT_FALSE(KTNextConversion(nullptr, nullptr, &found));
    KTClean();
    EXPECT_TRUE(KTNextConversion("%*d[3]", nullptr, &found)) << "also while the library is stopped";
    EXPECT_TRUE(found.slotCount == 2 && found.width == KT_FROM_ARGUMENTS && found.precision == KT_ABSENT);
    ASSERT_EQ(KTInit(), 0);
}

TEST_F(FormatString, AHugePositionCostsNoMemory)
{
    FakeZel::record();
    EXPECT_EQ(check(u"%d[2000000000]").first, KT_ERR_FORMAT_SYNTAX);
    EXPECT_EQ(check(u"%d[1001]").first, KT_ERR_FORMAT_SYNTAX);
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 0u);
    FakeZel::record();
    EXPECT_EQ(check(u"%d[995]").first, KT_ERR_FORMAT_SYNTAX);
    ASSERT_EQ(FakeZel::count(Operation::Malloc), 1u) << "one array that holds the position at once";
    EXPECT_EQ(FakeZel::calls()[0].number, (1000 + 1) * sizeof(KTParameter)) << "a multiple of ten, and an empty record";
    EXPECT_EQ(check(std::u16string(2000, u' ') + u"%d[1001]").first, KT_ERR_FORMAT_SYNTAX);
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 2u);
}

} // namespace
