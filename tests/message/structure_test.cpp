#include "message/structure.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

TEST(ElementMap, FindsExactNamesOnly)
{
    struct Row
    {
        const char *name;
        ElementID id;
        int level;
    };
    // Those that files use are tried by loading; these are the ones that come close.
    const Row rows[] = {{"context-group", ELM_CONTEXT_GROUP, 4},
                        {"context", ELM_CONTEXT, 5},
                        {"x", ELM_X, 5},
                        {"", ELM_UNKNOWN, -1},
                        {"X", ELM_UNKNOWN, -1},
                        {"xl", ELM_UNKNOWN, -1},
                        {"context-", ELM_UNKNOWN, -1},
                        {"context-group-and-more", ELM_UNKNOWN, -1}};
    for (const Row &row : rows)
    {
        const std::string name = row.name; // a block of its own, so that a sanitizer sees a read beyond the end
        ElementID id = ELM_NOTE;
        int level = 77;
        mapElmtName(name.c_str(), &id, &level);
        EXPECT_EQ(id, row.id) << row.name;
        EXPECT_EQ(level, row.level) << row.name;
    }
}

TEST(Attributes, AreFoundByTheirExactName)
{
    const char *attrs[] = {"id", "1", "ids", "2", "i", "", "id", "3", nullptr};
    EXPECT_STREQ(getAttrValue(attrs, "id"), "1");
    EXPECT_STREQ(getAttrValue(attrs, "ids"), "2");
    EXPECT_STREQ(getAttrValue(attrs, "i"), "");
    EXPECT_EQ(getAttrValue(attrs, "ID"), nullptr);
    EXPECT_EQ(getAttrValue(attrs + 8, "id"), nullptr);
}

} // namespace
