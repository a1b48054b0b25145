#include "format/started_test.h"
#include "support/fake_zel.h"

#include <cstring>

namespace
{

using FormTable = StartedTest;
using Copy = std::unique_ptr<formTable, int (*)(formTable *)>;

Copy copyOfBuiltIn(int options)
{
    formTable *table = nullptr;
    EXPECT_EQ(KTGetBuiltInFormTable(options, &table), 0);
    return {table, KTFreeFormTable};
}

struct Found
{
    Flag_t type;
    const KTFormatter *record;
};

/** What a chain of tables knows under a name, perhaps with modifiers before it. */
Found find(const std::string &name, formTable *table)
{
    const std::u16string specification = u"%" + std::u16string(name.begin(), name.end()) + u"[1]";
    const UCS2 *cursor = specification.c_str();
    Flag_t type;
    int width, precision, flags;
    KTFormatter *formatter;
    EXPECT_EQ(parseConvSpec(&cursor, table, &type, &width, &precision, &flags, &formatter), 1);
    return {type, formatter};
}

TEST_F(FormTable, TheSharedTableIsOneAndCompletelyIndexed)
{
    formTable *first = nullptr, *second = nullptr;
    EXPECT_EQ(KTGetBuiltInFormTable(0, &first), 0);
    EXPECT_EQ(KTGetBuiltInFormTable(2, &second), 0);
    EXPECT_EQ(first, &builtInFormTable);
    EXPECT_EQ(second, &builtInFormTable);
    EXPECT_EQ(KTFreeFormTable(first), 0) << "it is left alone";
    EXPECT_EQ(KTFreeFormTable(nullptr), 0);
    EXPECT_NE(std::end(builtInFormList)[-2].name, nullptr) << "no record is missing";
    for (int letter = 'a'; letter <= 'z'; ++letter)
    {
        int place = 0;
        while (builtInFormList[place].name != nullptr && (builtInFormList[place].name[0] | 0x20) != letter)
            ++place;
        EXPECT_EQ(first->letterIndex[letter - 'a'], builtInFormList[place].name != nullptr ? place + 1 : 0) << letter;
    }
}

TEST_F(FormTable, ACopyKnowsAllNamesOrThePrintfLikeOnesAndNoShortOnes)
{
    const Copy full = copyOfBuiltIn(1), reduced = copyOfBuiltIn(3);
    std::string kept;
    for (int i = 0; builtInFormList[i].name != nullptr; ++i)
    {
        const std::string name = builtInFormList[i].name;
        EXPECT_EQ(find(name, nullptr).type, i) << name;
        EXPECT_EQ(find(name, full.get()).type, CONV_EXTERNAL) << name;
        EXPECT_NE(full->formList[i].name, builtInFormList[i].name);
        EXPECT_EQ(reduced->formList[i].format, builtInFormList[i].format);
        const bool isKept = find(name, reduced.get()).type == CONV_EXTERNAL;
        EXPECT_STREQ(reduced->formList[i].name, isKept ? name.c_str() : "");
        kept += isKept ? name + ' ' : "";
    }
    EXPECT_EQ(kept, "d u U o x X f c s ");
    for (const char *name : {"l", "ul"})
    {
        full->nextTable = nullptr;
        EXPECT_EQ(find(name, full.get()).type, CONV_UNKNOWN);
        full->nextTable = &builtInFormTable;
        EXPECT_EQ(find(name, full.get()).type, name[0] == 'l' ? CONV_d : CONV_u);
    }
}

TEST_F(FormTable, TheShortNamesComeBeforeTheRecords)
{
    const char *const name = std::exchange(builtInFormList[CONV_U].name, "ul");
    EXPECT_EQ(find("ul", nullptr).type, CONV_u);
    builtInFormList[CONV_U].name = name;
}

TEST_F(FormTable, LooksAlongTheChainAndTakesTheFirst)
{
    KTFormatter second[] = {{"beta", nullptr, 1, signedIntList, formatInteger},
                            {"d", nullptr, 1, signedIntList, formatInteger},
                            {nullptr, nullptr, 0, nullptr, nullptr}};
    KTFormatter first[] = {{"alpha", nullptr, 1, signedIntList, formatInteger},
                           {"Alp", nullptr, 1, signedIntList, formatInteger},
                           {"gamma", nullptr, 1, signedIntList, formatInteger},
                           {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable later = {false, {}, second, nullptr, &builtInFormTable};
    formTable empty = {true, {}, nullptr, nullptr, &later};
    formTable table = {true, {1}, first, nullptr, &empty};
    EXPECT_EQ(find("Alp", &table).type, CONV_EXTERNAL);
    EXPECT_EQ(find("Alp", &table).record, &first[1]);
    EXPECT_EQ(find("ALP", &table).type, CONV_UNKNOWN) << "names are case-sensitive";
    EXPECT_EQ(find("alph", &table).type, CONV_UNKNOWN) << "and matched whole";
    EXPECT_EQ(find("gamma", &table).type, CONV_UNKNOWN) << "its letter is not in the index";
    EXPECT_EQ(find("d", &table).record, &second[1]);
    EXPECT_EQ(find("x", &table).type, CONV_x);
    EXPECT_EQ(find("N", &table).type, CONV_N);
}

int asks(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *, UCS2 *)
{
    return 0;
}

TEST_F(FormTable, IsToldWhatIsWrongWithIt)
{
    constexpr int pointer[] = {KT_ARG_POINTER, KT_ARG_END};
    KTFormatter behind[] = {{"raw", nullptr, 1, pointer, formatInteger}, {}};
    KTFormatter records[] = {{"a", nullptr, 1, pointer, asks}, {"9", nullptr, 1, pointer, asks}, {}};
    formTable chained = {false, {}, behind, nullptr, nullptr};
    formTable table = {false, {}, records, nullptr, nullptr};
    const std::string name = "no conversion can have the name \"9\"";
    const std::string type = "the conversion \"raw\" takes a pointer of no type";
    const std::string encoder = "there is no encoder that could be applied everywhere";
    const auto told = [&](unsigned options, size_t room) {
        char text[200] = "";
        size_t size = room;
        const int result = KTExplainFormTable(&table, asks, options, &size, text);
        EXPECT_EQ(result == 0, size == 0);
        EXPECT_TRUE(size >= room || size == std::strlen(text)) << size;
        return std::string(text);
    };
    EXPECT_EQ(told(0, 200), name);
    records[1] = {};
    EXPECT_EQ(told(0, 200), "");
    table.nextTable = &chained;
    EXPECT_EQ(told(KT_ENCODE_ALL, 200), type + ": " + encoder);
    EXPECT_EQ(told(0, 10), type.substr(0, 9));
    chained.formList = nullptr;
    chained.encoder = [](const void *, int, unsigned long *, UCS2 *) { return 0; };
    EXPECT_EQ(told(KT_ENCODE_ALL, 200), "");
    size_t size = 0;
    EXPECT_EQ(KTExplainFormTable(&table, asks, 0, &size, nullptr), 0);
    EXPECT_EQ(KTExplainFormTable(nullptr, asks, 0, &size, nullptr), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTExplainFormTable(&table, asks, 0, nullptr, nullptr), KT_ERR_INVALID_PARAMETER);
}

TEST_F(FormTable, ACopyIsOneBlockAndCarriesTheEncoderOfItsTime)
{
    const KTEncoder encoder = [](const void *, int, unsigned long *, UCS2 *) { return 0; };
    FakeZel::record();
    const Copy before = copyOfBuiltIn(1);
    ASSERT_EQ(KTRegisterEncoder(encoder), 0);
    const Copy after = copyOfBuiltIn(3);
    ASSERT_EQ(KTRegisterEncoder(nullptr), 0);
    EXPECT_EQ(FakeZel::operations(),
              (std::vector<Operation>{Operation::Malloc, Operation::MutexAcquire, Operation::MutexRelease,
                                      Operation::Malloc, Operation::MutexAcquire, Operation::MutexRelease}));
    EXPECT_EQ(before->encoder, nullptr);
    EXPECT_EQ(after->encoder, encoder);
    EXPECT_EQ(builtInFormTable.encoder, nullptr);
}

} // namespace
