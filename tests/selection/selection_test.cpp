#include "selection/selection.h"

#include "format/started_test.h"

#include <cmath>

namespace
{

using Selection = StartedTest;

const Messages polish = {{12, "%101plural[1]"},
                         {102, "Skopiowano %d[1] plik do folderu %s[2]"},
                         {104, "Skopiowano %d[1] pliki do folderu %s[2]"},
                         {105, "Skopiowano %d[1] plików do folderu %s[2]"},
                         {107, "Nic nie skopiowano%nil[1] do folderu %s[2]"},
                         {13, "%201ordinal[2]"},
                         {206, "%.0s[1]%d[2]."}};

TEST_F(Selection, GivesTheSentenceOfTheNumber)
{
    MessageTable *const table = loadMessages(polish, "pl");
    const KTArgument folder = KT_UTF8("Faktury");
    const struct
    {
        unsigned id;
        std::vector<KTArgument> arguments;
        const char *locale, *text;
        unsigned selected;
    } rows[] = {
        {12, {KT_INT(22), folder}, nullptr, "Skopiowano 22 pliki do folderu Faktury", 104},
        {12, {KT_INT(1), folder}, nullptr, "Skopiowano 1 plik do folderu Faktury", 102},
        {12, {KT_INT(0), folder}, nullptr, "Nic nie skopiowano do folderu Faktury", 107},
        {12, {KT_INT(-12), folder}, nullptr, "Skopiowano -12 plików do folderu Faktury", 105},
        {12, {KT_INT(21), folder}, "ru_RU", "Skopiowano 21 plik do folderu Faktury", 102},
        {12, {KT_INT(22), folder}, "de", "KT_ERR_INVALID_MSG_ID", 0},
        {12, {KT_INT(22), KT_INT(7)}, nullptr, "KT_ERR_INVALID_PARAMETER", 104},
        {12, {folder, folder}, nullptr, "KT_ERR_INVALID_PARAMETER", 12},
        {12, {}, nullptr, "KT_ERR_INVALID_PARAMETER", 12},
        {13, {folder, KT_INT(3)}, nullptr, "3.", 206},
        {13, {folder, KT_DOUBLE(3)}, nullptr, "KT_ERR_INVALID_PARAMETER", 13},
        {104, {KT_INT(1), folder}, nullptr, "Skopiowano 1 pliki do folderu Faktury", 104},
    };
    for (const auto &row : rows)
    {
        unsigned id = row.id;
        const std::string missing = row.selected == 0 ? "none" : row.text;
        EXPECT_EQ(prepared(table, row.id, row.locale, row.arguments), row.text);
        EXPECT_EQ(selected(table, id, row.locale, row.arguments), missing);
        EXPECT_EQ(id, row.selected) << row.text;
    }
    unsigned id = 12;
    char *message = nullptr;
    ASSERT_EQ(KTSelectMessage(table, &id, nullptr, rows[0].arguments.data(), 2, &message), 0);
    formTable *forms = nullptr;
    UCS2 wide[80];
    unsigned long units = 80;
    EXPECT_EQ(KTGetVariantFormTable(&forms), 0);
    EXPECT_EQ(KTFormatStringWithPassThru(nullptr, false, forms, nullptr, &units, wide, message, 22, "Faktury"), 0);
    EXPECT_EQ(std::u16string(wide), u"Skopiowano 22 pliki do folderu Faktury");
}

TEST_F(Selection, TakesEveryKindOfNumberAndEveryPlaceOfARow)
{
    Messages messages = {{1, "%50plural[1]"}, {2, "%50.1plural[1]"}, {3, "%200select[1]"},  {4, "%300select[1]"},
                         {5, "%80plural[2]"}, {85, "%d[1] %f[2]"},   {300, "first%nil[1]"}, {363, "last%nil[1]"}};
    for (unsigned place = 0; place < 8; ++place)
        messages[50 + place] = messages[200 + place] = std::to_string(place) + "%nil[1]";
    MessageTable *const table = loadMessages(messages, "ar");
    const struct
    {
        unsigned id;
        KTArgument number;
        unsigned selected;
    } rows[] = {
        {1, KT_INT(0), 56},           {1, KT_INT(1), 57},
        {1, KT_INT(-1), 51},          {1, KT_UINT(2), 52},
        {1, KT_INT64(103), 53},       {1, KT_UINT64(UINT64_MAX), 54}, // ...15
        {1, KT_INT64(INT64_MIN), 53},                                 // ...08
        {1, KT_INT(100), 55},         {1, KT_DOUBLE(0.2), 56},
        {1, KT_DOUBLE(-0.0), 56},     {1, KT_DOUBLE(0.7), 57},
        {1, KT_DOUBLE(HUGE_VAL), 55}, {1, KT_DOUBLE(std::nan("")), 55},
        {2, KT_INT(0), 50},           {2, KT_DOUBLE(1), 51},
        {2, KT_DOUBLE(1.5), 55},      {3, KT_INT(0), 200},
        {3, KT_INT(7), 207},          {3, KT_INT(8), 200},
        {3, KT_INT(-3), 200},         {3, KT_UINT64(UINT64_MAX), 200},
        {4, KT_INT(63), 363},         {4, KT_INT(64), 300},
        {4, KT_INT(1), 300},
    };
    for (const auto &row : rows)
    {
        unsigned id = row.id;
        char *message = nullptr;
        EXPECT_EQ(KTSelectMessage(table, &id, nullptr, &row.number, 1, &message), 0);
        EXPECT_EQ(id, row.selected) << "row " << &row - rows;
        const bool isReal = row.number.type == KT_ARGUMENT_DOUBLE; // which "nil" does not take
        const bool fits = row.number.type != KT_ARGUMENT_UINT64 && row.number.value.i != INT64_MIN;
        const std::string text = messages[row.selected].substr(0, messages[row.selected].find('%'));
        if (!isReal && fits)
        {
            EXPECT_EQ(prepared(table, row.id, nullptr, {row.number}), text);
        }
    }
    // The selecting argument is counted as the call passes them.
    EXPECT_EQ(prepared(table, 5, "en", {KT_INT(3), KT_DOUBLE(2.5)}), "3 2.500000");
}

/** So many selectors, one after the other, and a text. */
Messages chain(unsigned selectors)
{
    Messages messages;
    unsigned id = 1;
    for (unsigned i = 0; i < selectors; ++i)
    {
        messages[id] = "%" + std::to_string(i * 10 + 10) + "select[1]";
        id = i * 10 + 10;
    }
    messages[id] = "%d[1]";
    return messages;
}

/** Rows of selectors that all lead to the next row; the last is texts. */
Messages lattice(unsigned rows, unsigned width)
{
    Messages messages = {{1, "%100select[1]"}};
    for (unsigned row = 1; row <= rows; ++row)
        for (unsigned i = 0; i < width; ++i)
            messages[row * 100 + i] = row == rows ? "%d[1]" : "%" + std::to_string(row * 100 + 100) + "select[1]";
    return messages;
}

TEST_F(Selection, RefusesWhatIsNoSelectorAndSaysWhy)
{
    const auto with = [](const std::string &selector) { return Messages{{1, selector}, {106, "%d[1]"}, {3000, "x"}}; };
    Messages back = {{1, "%10select[1]"}, {10, "%d[1]"}, {11, "%1select[1]"}};
    Messages ring = {{1, "%10plural[1]"}, {15, "%20plural[1]"}, {25, "%10plural[1]"}};
    Messages joined = {{1, "%10select[1]"}, {10, "%20select[1]"}, {11, "%20select[1]"}, {20, "%d[1]"}, {21, "%u[1]"}};
    Messages many = {{1, "%100select[1]"}};
    for (unsigned i = 0; i < 64; ++i)
        for (unsigned j = 0; j < 16; ++j)
        {
            many[100 + i] = "%" + std::to_string(1000 + i * 100) + "select[1]";
            many[1000 + i * 100 + j] = "%d[1]";
        }
    const std::string alone =
        " a message that selects another is one conversion such as %101plural[1], and nothing else";
    const std::string empty = " message 1 is missing, or has no message to select";
    const std::string deep = " leads back to itself, or through more than 8 messages that select another";
    const std::string large = " a width, precision or position is too large";
    const std::string none = "0 0+0 there is no problem";
    const struct
    {
        Messages messages;
        int result;
        std::string problem; // the message, the place in it, the sentence
    } rows[] = {
        {with("%101plural[1]"), 0, none},
        {with("x %101plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 2+13" + alone},
        {with("%101plural[1] files"), KT_ERR_FORMAT_SYNTAX, "1 0+13" + alone},
        {with("%d[1]%101plural[2]"), KT_ERR_FORMAT_SYNTAX, "1 5+13" + alone},
        {with("%101plural[1]%101plural[2]"), KT_ERR_FORMAT_SYNTAX, "1 0+13" + alone},
        {with("%-101plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+14" + alone},
        {with("%0101plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+14" + alone},
        {with("%101!plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+14" + alone},
        {with("%101.*plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+15" + alone},
        {with("%*plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+11" + alone},
        {with("%plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+10" + alone},
        {with("%101.1select[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+15" + alone},
        {with("%2147483648plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+20" + large},
        {with("%99999999999999999999plural[1]"), KT_ERR_FORMAT_SYNTAX, "1 0+30" + large},
        {with("%101plural[0]"), KT_ERR_FORMAT_SYNTAX,
         "1 0+13 the position of a conversion is not a number from 1 on in brackets"},
        {with("%101plural"), KT_ERR_FORMAT_SYNTAX,
         "1 0+10 a conversion has no position, as in %s[1] (a percent sign by itself is written %%)"},
        {with("%0plural[1]"), KT_ERR_INVALID_MSG_ID, "1 0+11" + empty},
        {with("%2147483647plural[1]"), KT_ERR_INVALID_MSG_ID, "1 0+20" + empty},
        {with("%2995ordinal[1]"), KT_ERR_INVALID_PARAMETER, "1 0+15 argument 1 selects and is missing"},
        {with("%101plural[2]"), KT_ERR_INVALID_PARAMETER, "1 0+13 argument 2 selects and is missing"},
        {{{1, "%10plural[1]"}, {15, "%s[1]"}}, KT_ERR_INVALID_PARAMETER, "1 0+12 argument 1 selects and is a text"},
        {{{1, "%10ordinal[1]"}, {15, "%f[1]"}}, KT_ERR_INVALID_PARAMETER, "1 0+13 argument 1 selects and is a double"},
        {{{1, "%10plural[1]"}, {11, "%f[1]%c[2]"}, {15, "a %f[1]%d[2]"}},
         KT_ERR_FORMAT_SYNTAX,
         "15 7+5 argument 2 is a 32-bit integer in message 15, an 8-bit character in those before it"},
        {{{1, "%10plural[1]"}, {11, "%d[1]%s[2]"}, {15, "%d[1]"}},
         KT_ERR_FORMAT_SYNTAX,
         "15 0+0 argument 2 is missing in message 15, a UTF-8 string in those before it"},
        {{{1, "%10plural[1]"}, {11, "%d[1]"}, {15, "%d[1]%s[2]"}},
         KT_ERR_FORMAT_SYNTAX,
         "15 5+5 argument 2 is a UTF-8 string in message 15, missing in those before it"},
        {{{1, "%10plural[1]"}, {11, "%d[1]"}, {15, "%q[1]"}},
         KT_ERR_FORMAT_SYNTAX,
         "15 0+5 no conversion has this name"},
        {{{2, "x"}}, KT_ERR_INVALID_MSG_ID, "1 0+0" + empty},
        {back, KT_ERR_FORMAT_SYNTAX, "11 0+11 message 11" + deep},
        {ring, KT_ERR_FORMAT_SYNTAX, "25 0+12 message 25" + deep},
        {joined, 0, none},
        {chain(8), 0, none},
        {chain(9), KT_ERR_FORMAT_SYNTAX, "80 0+12 message 80" + deep},
        {lattice(8, 64), 0, none},
        {many, KT_ERR_FORMAT_SYNTAX, "7002 0+5 more than 1024 messages are selected from"},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.messages.begin()->second + " row " + std::to_string(&row - rows));
        MessageTable *const table = loadMessages(row.messages);
        KTPreparedFormat *message = nullptr;
        EXPECT_EQ(KTPrepareMessage(table, 1, nullptr, nullptr, &message), row.result);
        KTFreePrepared(message);
        KTProblem problem = {sizeof problem, 0, 0, 0, 0, 0, nullptr, nullptr, 0};
        EXPECT_EQ(KTExplainMessage(table, 1, nullptr, &problem), row.result);
        char text[200];
        size_t size = sizeof text;
        EXPECT_EQ(KTProblemText(&problem, &size, text), 0);
        EXPECT_EQ(std::to_string(problem.message) + " " + std::to_string(problem.offset) + "+" +
                      std::to_string(problem.length) + " " + text,
                  row.problem);
        // The other way finds what lies on its own way alone.
        unsigned id = 1;
        char *selected = nullptr;
        const KTArgument number = KT_INT(3);
        const int result = KTSelectMessage(table, &id, nullptr, &number, 1, &selected);
        const bool isMissing = row.result == KT_ERR_INVALID_MSG_ID;
        const bool isFound = row.problem.find(alone) != std::string::npos || isMissing;
        EXPECT_TRUE(isFound ? result == (isMissing ? 0 : row.result) && selected == nullptr : true);
        EXPECT_EQ(KTFreeMessages(table), 0);
    }
}

int shout(const void *value, int, unsigned long *size, UCS2 *out)
{
    const std::u16string text = static_cast<const UCS2 *>(value) + std::u16string(u"!");
    text.copy(out, std::min<size_t>(*size, text.size()));
    *size = text.size();
    return 0;
}

int own(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *out)
{
    const bool fits = *size > 1;
    *size = 1;
    if (fits)
        *out = u'O';
    return fits ? 0 : KT_ERR_BUFFER_TOO_SMALL;
}

TEST_F(Selection, KeepsToTheConversionsAndTheEncoderOfTheCaller)
{
    MessageTable *const table = loadMessages(
        {{1, "%10plural[1]"}, {15, "%d[1]%N[2]%s[3]%O[4]"}, {16, "%nil[1]%N[2]%s[3]%O[4]"}, {2, "[%plural[1]]"}});
    const std::vector<KTArgument> none = {KT_INT(0), KT_UTF8("a")};
    KTFormatter list[] = {{"plural", nullptr, 1, signedIntList, own}, {nullptr, nullptr, 0, nullptr, nullptr}};
    KTFormatter nil[] = {{"nil", nullptr, 1, signedIntList, own}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable *variant = nullptr;
    formTable ownPlural = {false, {}, list, nullptr, &builtInFormTable}, ownNil = {false, {}, nil, shout, &ownPlural};
    EXPECT_EQ(KTGetVariantFormTable(&variant), 0);
    EXPECT_EQ(KTRegisterEncoder(shout), 0);
    const struct
    {
        unsigned id;
        formTable *forms;
        std::vector<KTArgument> arguments;
        const char *text;
    } rows[] = {
        {1, nullptr, none, "a"},
        {1, variant, none, "a!"},
        {1, &builtInFormTable, none, "a!"},
        {1, &ownNil, none, "Oa!"},
        {2, nullptr, {}, "KT_ERR_FORMAT_SYNTAX"},
        {2, &ownPlural, {KT_INT(1)}, "[O]"}, // a conversion of the program's own, where it is not alone
    };
    for (const auto &row : rows)
    {
        KTPreparedFormat *message = nullptr;
        const int result = KTPrepareMessage(table, row.id, nullptr, row.forms, &message);
        EXPECT_EQ(result == 0 ? formatted(message, row.arguments) : KTResultName(result), row.text);
        KTFreePrepared(message);
    }
    EXPECT_EQ(KTRegisterEncoder(nullptr), 0);
}

TEST_F(Selection, TellsTheSlotsAndOutlivesItsTable)
{
    MessageTable *const table = loadMessages({{1, "%10plural[1]"}, {11, "%nil[1]%.0s[2]"}, {15, "%u[1]%s[2]"}});
    KTPreparedFormat *message = nullptr;
    ASSERT_EQ(KTPrepareMessage(table, 1, nullptr, nullptr, &message), 0);
    EXPECT_EQ(KTFreeMessages(table), 0);
    const KTSlot *slots = nullptr;
    ASSERT_EQ(KTPreparedSlots(message, &slots), 2U);
    EXPECT_TRUE(slots[0].code == KT_SLOT_INT32 && slots[1].code == KT_SLOT_UTF8 && slots[1].position == 2);
    EXPECT_EQ(formatted(message, {KT_UINT(3000000000), KT_UTF8("a")}), "3000000000a") << "as the variant has it";
    EXPECT_EQ(formatted(message, {KT_INT(1), KT_UTF8("a")}), "");
    UCS2 wide[8];
    size_t size = 8;
    const KTArgument arguments[] = {KT_INT(7), KT_UTF8("a")};
    EXPECT_EQ(KTFormatPrepared(message, 0, nullptr, &size, wide, arguments, 2), 0);
    EXPECT_EQ(std::u16string(wide), u"7a");
    size = 8;
    EXPECT_EQ(KTFormatPrepared(message, 0, nullptr, &size, wide, nullptr, 2), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(size, 8U);
    KTFreePrepared(message);
}

TEST_F(Selection, RefusesNullAndHandlesThatAreNotLoaded)
{
    MessageTable *const table = loadMessages(polish);
    EXPECT_EQ(KTFreeMessages(table), 0);
    unsigned id = 12;
    char text[] = "", *message = text;
    KTPreparedFormat *format = reinterpret_cast<KTPreparedFormat *>(8);
    KTProblem small = {sizeof small - 16, 0, 0, 0, 0, 0, nullptr, nullptr, 0};
    EXPECT_EQ(KTSelectMessage(table, &id, nullptr, nullptr, 0, &message), KT_ERR_TABLE_NOT_FOUND);
    EXPECT_TRUE(message == nullptr && id == 12);
    EXPECT_EQ(KTPrepareMessage(table, 12, nullptr, nullptr, &format), KT_ERR_TABLE_NOT_FOUND);
    EXPECT_EQ(format, nullptr);
    EXPECT_EQ(KTExplainMessage(table, 12, nullptr, nullptr), KT_ERR_TABLE_NOT_FOUND);
    for (const int result : {KTSelectMessage(table, nullptr, nullptr, nullptr, 0, &message),
                             KTSelectMessage(table, &id, nullptr, nullptr, 0, nullptr),
                             KTSelectMessage(table, &id, nullptr, nullptr, 1, &message),
                             KTPrepareMessage(table, 12, nullptr, nullptr, nullptr),
                             KTExplainMessage(table, 12, nullptr, &small), KTGetVariantFormTable(nullptr)})
        EXPECT_EQ(result, KT_ERR_INVALID_PARAMETER);
    // A program that was compiled when the record was smaller has nothing written behind it.
    KTProblem earlier = {offsetof(KTProblem, message), 0, 0, 0, 0, 0, nullptr, nullptr, 77};
    EXPECT_EQ(KTExplainFormat("%q[1]", nullptr, &earlier), KT_ERR_FORMAT_SYNTAX);
    EXPECT_TRUE(earlier.rule == KT_RULE_UNKNOWN_CONVERSION && earlier.message == 77);
}

} // namespace
