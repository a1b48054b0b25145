#include "kelto.h"
#include "text.h"

#include <gtest/gtest.h>

namespace
{

constexpr struct
{
    unsigned id;
    const char *name;
    const char *english;
} rows[] = {
#define KELTO_TEXT(id, name, english) {id, #name, english},
#include "texts.inc"
#undef KELTO_TEXT
};

std::string english(const tool::Shown &shown)
{
    return shown.phrase.empty() ? "no text has this number" : tool::sayInEnglish(shown.phrase[0]);
}

// That the German file agrees with the English one is for `kelto check`, in the transcripts of the program.
TEST(Texts, AreThoseOfTheEnglishFileAndOfTheLibrary)
{
    ASSERT_EQ(KTInit(), 0);
    std::string path = KELTO_SOURCE_DIR "/tools/messages/en/kelto.xlf";
    MessageTable *table = nullptr;
    ASSERT_EQ(KTLoadMessages(path.data(), &table), 0);
    size_t row = 0;
    unsigned id = 0;
    for (char *text = nullptr; KTNextMessage(table, id, &id, &text) == 0; ++row)
    {
        ASSERT_LT(row, std::size(rows)) << "a message has no name";
        EXPECT_EQ(id, rows[row].id) << rows[row].name << ": the numbers ascend in the file";
        EXPECT_STREQ(text, rows[row].english) << rows[row].name;
    }
    EXPECT_EQ(row, std::size(rows));

    for (int result = KT_ERR_NO_MEMORY; result <= KT_ERR_NOT_INITIALIZED; ++result)
        if (KTResultName(result) != nullptr)
        {
            EXPECT_EQ(english(tool::textNumbered(static_cast<unsigned>(8100 + result), "")), KTResultText(result));
        }
    for (int rule = KT_RULE_POSITION_MISSING; rule <= KT_RULE_POSITION_GAP; ++rule)
    {
        const KTProblem problem{sizeof problem, rule, 0, 7, 0, 0, nullptr, nullptr, 0};
        char sentence[200];
        size_t size = sizeof sentence;
        ASSERT_EQ(KTProblemText(&problem, &size, sentence), 0);
        EXPECT_EQ(english(tool::problemShown(problem)), sentence);
    }
    KTFreeMessages(table);
    KTClean();
}

} // namespace
