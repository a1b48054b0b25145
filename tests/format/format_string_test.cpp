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
