#include "kelto.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{

/** What the encoder below does next. */
struct
{
    int result;
    unsigned long length;
} report;

/** Writes as many 'x' as it reports, as far as there is room. */
int encode(const void * /*value*/, int /*dataType*/, unsigned long *sizeInOut, UCS2 *out)
{
    std::fill_n(out, std::min(report.length, *sizeInOut), u'x');
    *sizeInOut = report.length;
    return report.result;
}

struct EncoderCase
{
    const char *label;
    const char *format;
    int returned;
    unsigned long reported;
    int result;
    unsigned long size;
};

constexpr int failure = -55;
constexpr unsigned long capacity = 10;

// The table of the page; without a '.' no precision is in play.
const EncoderCase encoderCases[] = {
    {"a text that fits", "%N[1]%5s[2]", 0, 3, 0, 5},
    {"a text that fits once it is cut", "%N[1]%.3s[2]", 0, 20, 0, 3},
    {"a text that does not fit", "%N[1]%s[2]", 0, 20, KT_ERR_BUFFER_TOO_SMALL, 20},
    {"a character that fits", "%N[1]%5c[2]", 0, 3, 0, 5},
    {"a character that does not fit", "%N[1]%c[2]", 0, 20, KT_ERR_BUFFER_TOO_SMALL, 20},
    {"no room for a text", "%N[1]%s[2]", KT_ERR_BUFFER_TOO_SMALL, 20, KT_ERR_BUFFER_TOO_SMALL, 20},
    {"no room for a text that fits once it is cut", "%N[1]%.3s[2]", KT_ERR_BUFFER_TOO_SMALL, 20,
     KT_ERR_BUFFER_TOO_SMALL, 3},
    {"no room for a character", "%N[1]%25c[2]", KT_ERR_BUFFER_TOO_SMALL, 20, KT_ERR_BUFFER_TOO_SMALL, 25},
    {"a failed text that fits", "%N[1]%5s[2]", failure, 0, failure, 0},
    {"a failed text that does not fit", "%N[1]%s[2]", failure, capacity, KT_ERR_BUFFER_TOO_SMALL, capacity},
    {"a failed character", "%N[1]%5c[2]", failure, 0, KT_ERR_BUFFER_TOO_SMALL, 5},
};

} // namespace

TEST(Extending, FormattersMakeOfAnEncodersReportWhatThePageSays)
{
    ASSERT_EQ(KTInit(), 0);
    formTable table = {false, {}, nullptr, encode, &builtInFormTable};
    for (const EncoderCase &row : encoderCases)
    {
        SCOPED_TRACE(row.label);
        report = {row.returned, row.reported};
        UCS2 out[capacity];
        unsigned long size = capacity;
        char character = 'a';
        void *arguments[] = {&character, nullptr};
        char text[] = "a";
        if (row.format[std::string(row.format).size() - 4] == 's')
            arguments[0] = text;
        EXPECT_EQ(KTvpFormatStringWithPassThru(nullptr, false, &table, nullptr, &size, out,
                                               const_cast<char *>(row.format), arguments),
                  row.result);
        EXPECT_EQ(size, row.size);
    }
    KTClean();
}
