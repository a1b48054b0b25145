#include "kelto.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>

namespace
{

/** The result codes that the header declares, by name: its lines "    KT_ERR_… = -7983, …". */
std::map<std::string, int> declaredCodes()
{
    std::ifstream header(KELTO_SOURCE_DIR "/include/kelto.h");
    std::map<std::string, int> codes;
    for (std::string line, name, equals; std::getline(header, line);)
        if (int code = 0; std::istringstream(line) >> name >> equals >> code && name.find("KT_ERR_") == 0)
            codes[name] = code;
    return codes;
}

TEST(ResultCode, HasItsNameIfDeclaredAndATextOfItsOwnInAnyCase)
{
    std::map<std::string, int> codes = declaredCodes();
    EXPECT_GE(codes.size(), 13u);
    std::set<std::string> texts = {""};
    codes["success"] = 0, codes["no parser"] = -1, codes["any other"] = -5994;
    for (const auto &[name, code] : codes)
    {
        const bool isDeclared = name.find("KT_ERR_") == 0;
        EXPECT_STREQ(KTResultName(code), isDeclared ? name.c_str() : nullptr);
        const auto [text, isNew] = texts.insert(KTResultText(code));
        EXPECT_TRUE(isNew && text->back() != '.') << name;
    }
    for (const int code : {1, -7982, -7984, -7985, -7988, -7990, -8000, 2147483647})
    {
        EXPECT_EQ(KTResultName(code), nullptr) << code;
        EXPECT_STREQ(KTResultText(code), KTResultText(-5994)) << code;
    }
}

} // namespace
