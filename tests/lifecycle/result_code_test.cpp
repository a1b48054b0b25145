#include "kelto.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace
{

/** The result codes that the header declares, by name: its lines "    KT_ERR_… = -7983, …". */
std::map<std::string, int> declaredCodes()
{
    std::ifstream header(KELTO_SOURCE_DIR "/include/kelto.h");
    std::map<std::string, int> codes;
    for (std::string line; std::getline(header, line);)
    {
        std::istringstream words(line);
        std::string name, equals;
        int code = 0;
        if (words >> name >> equals >> code && name.compare(0, 7, "KT_ERR_") == 0 && equals == "=")
            codes[name] = code;
    }
    return codes;
}

} // namespace

TEST(ResultCode, EveryDeclaredCodeHasItsNameAndATextOfItsOwn)
{
    const std::map<std::string, int> codes = declaredCodes();
    EXPECT_EQ(codes.size(), 13u);
    std::set<int> values;
    std::set<std::string> texts;
    for (const auto &[name, code] : codes)
    {
        SCOPED_TRACE(name);
        EXPECT_STREQ(KTResultName(code), name.c_str());
        ASSERT_NE(KTResultText(code), nullptr);
        const std::string text = KTResultText(code);
        EXPECT_FALSE(text.empty());
        EXPECT_NE(text.back(), '.');
        values.insert(code);
        texts.insert(text);
    }
    EXPECT_EQ(values.size(), codes.size());
    EXPECT_EQ(texts.size(), codes.size());
}

TEST(ResultCode, OtherNumbersHaveATextButNoName)
{
    for (const int code : {0, -1, 1, -5994, -7982, -7984, -7985, -7988, -7990, -8000, 2147483647})
    {
        SCOPED_TRACE(code);
        EXPECT_EQ(KTResultName(code), nullptr);
        ASSERT_NE(KTResultText(code), nullptr);
        EXPECT_STRNE(KTResultText(code), "");
    }
    EXPECT_STRNE(KTResultText(0), KTResultText(-5994)) << "success is no failure";
    EXPECT_STRNE(KTResultText(-1), KTResultText(-5994));
}
