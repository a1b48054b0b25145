#include "format/formatting.h"
#include "support/fake_zel.h"

#include <thread>

namespace
{

using FormTable = StartedTest;

/** A private copy, freed at the end of the scope. */
class Copy
{
public:
    explicit Copy(int options) { EXPECT_EQ(KTGetBuiltInFormTable(options, &m_table), 0); }
    ~Copy() { EXPECT_EQ(KTFreeFormTable(m_table), 0); }
    Copy(const Copy &) = delete;
    Copy &operator=(const Copy &) = delete;
    formTable *get() const { return m_table; }
    formTable *operator->() const { return m_table; }

private:
    formTable *m_table = nullptr;
};

/** The type under which a table chain knows a name, perhaps with modifiers before it. */
Flag_t typeOf(const std::u16string &name, formTable *table, KTFormatter **found = nullptr)
{
    const std::u16string specification = u"%" + name + u"[1]";
    const UCS2 *cursor = specification.c_str();
    Flag_t type;
    int width, precision, flags;
    KTFormatter *formatter;
    EXPECT_EQ(parseConvSpec(&cursor, table, &type, &width, &precision, &flags, &formatter), 1);
    if (found != nullptr)
        *found = formatter;
    return type;
}

const std::u16string printfLike[] = {u"d", u"u", u"U", u"o", u"x", u"X", u"f", u"c", u"s"};
const std::u16string others[] = {u"DND", u"DNS", u"DT", u"D", u"T", u"E", u"EID", u"IP"};

int doNothing(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *)
{
    *size = 0;
    return 0;
}

int encodeNothing(const void *, int, unsigned long *size, UCS2 *)
{
    *size = 0;
    return 0;
}

TEST_F(FormTable, TheSharedTableIsOneAndCompletelyIndexed)
{
    formTable *first = nullptr, *second = nullptr;
    EXPECT_EQ(KTGetBuiltInFormTable(0, &first), 0);
    EXPECT_EQ(KTGetBuiltInFormTable(2, &second), 0);
    EXPECT_EQ(first, &builtInFormTable);
    EXPECT_EQ(second, &builtInFormTable);
    EXPECT_EQ(KTFreeFormTable(first), 0) << "it is left alone";
    for (int letter = 0; letter < 26; ++letter)
    {
        int place = 0;
        for (int i = 16; i >= 0; --i)
            if ((builtInFormList[i].name[0] | 0x20) == 'a' + letter)
                place = i + 1;
        EXPECT_EQ(first->letterIndex[letter], place) << static_cast<char>('a' + letter);
    }
}

TEST_F(FormTable, ACopyKnowsAllNamesOrThePrintfLikeOnes)
{
    const Copy full(1);
    const Copy reduced(3);
    for (const auto &name : printfLike)
    {
        EXPECT_EQ(typeOf(name, full.get()), CONV_EXTERNAL);
        EXPECT_EQ(typeOf(name, reduced.get()), CONV_EXTERNAL);
    }
    for (const auto &name : others)
    {
        EXPECT_EQ(typeOf(name, full.get()), CONV_EXTERNAL);
        EXPECT_EQ(typeOf(name, reduced.get()), CONV_UNKNOWN);
    }
    for (const formTable *copy : {full.get(), reduced.get()})
        for (int i = 0; i < 18; ++i)
        {
            EXPECT_TRUE(i == 17 || copy->formList[i].name != builtInFormList[i].name);
            EXPECT_EQ(copy->formList[i].format, builtInFormList[i].format);
        }
}

TEST_F(FormTable, TheShortNamesBelongToTheBuiltInTableAlone)
{
    const Copy copy(1);
    EXPECT_EQ(typeOf(u"l", copy.get()), CONV_UNKNOWN);
    EXPECT_EQ(typeOf(u"ul", copy.get()), CONV_UNKNOWN);
    copy->nextTable = &builtInFormTable;
    EXPECT_EQ(typeOf(u"l", copy.get()), CONV_d);
    EXPECT_EQ(typeOf(u"ul", copy.get()), CONV_u);
}

TEST_F(FormTable, TheShortNamesComeBeforeTheRecords)
{
    const char *const name = builtInFormList[CONV_U].name;
    builtInFormList[CONV_U].name = "ul";
    EXPECT_EQ(typeOf(u"ul", nullptr), CONV_u);
    builtInFormList[CONV_U].name = name;
    EXPECT_EQ(typeOf(u"U", nullptr), CONV_U);
}

TEST_F(FormTable, LooksAlongTheChainAndTakesTheFirst)
{
    KTFormatter second[] = {{"beta", nullptr, 1, signedIntList, doNothing},
                            {"d", nullptr, 1, signedIntList, doNothing},
                            {nullptr, nullptr, 0, nullptr, nullptr}};
    KTFormatter first[] = {{"alpha", nullptr, 1, signedIntList, doNothing},
                           {"Alp", nullptr, 1, signedIntList, doNothing},
                           {"gamma", nullptr, 1, signedIntList, doNothing},
                           {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable later = {false, {}, second, nullptr, &builtInFormTable};
    formTable empty = {true, {}, nullptr, nullptr, &later};
    formTable table = {true, {1}, first, nullptr, &empty};
    KTFormatter *found = nullptr;
    EXPECT_EQ(typeOf(u"Alp", &table, &found), CONV_EXTERNAL);
    EXPECT_EQ(found, &first[1]);
    EXPECT_EQ(typeOf(u"ALP", &table), CONV_UNKNOWN) << "names are case-sensitive";
    EXPECT_EQ(typeOf(u"alph", &table), CONV_UNKNOWN) << "and matched whole";
    EXPECT_EQ(typeOf(u"gamma", &table), CONV_UNKNOWN) << "its letter is not in the index";
    EXPECT_EQ(typeOf(u"d", &table, &found), CONV_EXTERNAL);
    EXPECT_EQ(found, &second[1]);
    EXPECT_EQ(typeOf(u"x", &table), CONV_x);
    EXPECT_EQ(typeOf(u"N", &table, &found), CONV_N);
    EXPECT_EQ(found, &builtInFormList[17]);
}

TEST_F(FormTable, AnUnusableRecordMakesItsNameUnknown)
{
    KTFormatter list[] = {{"d", nullptr, 1, signedIntList, nullptr},
                          {"u", nullptr, 1, nullptr, doNothing},
                          {"x", nullptr, 2, signedIntList, doNothing},
                          {"s", nullptr, 0, utf8StrList, doNothing},
                          {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, &builtInFormTable};
    for (const char16_t *name : {u"d", u"u", u"x", u"s"})
        EXPECT_EQ(typeOf(name, &table), CONV_UNKNOWN);
    EXPECT_EQ(typeOf(u"X", &table), CONV_X);
}

TEST_F(FormTable, ACopyCarriesTheEncoderOfItsTime)
{
    const Copy before(1);
    ASSERT_EQ(KTRegisterEncoder(encodeNothing), 0);
    const Copy after(1);
    ASSERT_EQ(KTRegisterEncoder(nullptr), 0);
    EXPECT_EQ(before->encoder, nullptr);
    EXPECT_EQ(after->encoder, encodeNothing);
    EXPECT_EQ(builtInFormTable.encoder, nullptr);
}

TEST_F(FormTable, RegisteringHoldsItsMutex)
{
    FakeZel::record();
    ASSERT_EQ(KTRegisterEncoder(nullptr), 0);
    EXPECT_EQ(FakeZel::operations(), (std::vector<Operation>{Operation::MutexAcquire, Operation::MutexRelease}));
}

TEST_F(FormTable, ACopyIsOneBlockAndItsFailureIsReported)
{
    FakeZel::record();
    {
        const Copy copy(1);
        EXPECT_EQ(FakeZel::operations(), std::vector<Operation>{Operation::Malloc});
    }
    FakeZel::fail(Operation::Malloc);
    formTable *table = &builtInFormTable;
    EXPECT_EQ(KTGetBuiltInFormTable(1, &table), KT_ERR_NO_MEMORY);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(KTFreeFormTable(nullptr), 0);
}

TEST(StoppedFormTable, IsRefusedBeforeAnythingIsTouched)
{
    formTable *table = &builtInFormTable;
    EXPECT_EQ(KTGetBuiltInFormTable(1, &table), KT_ERR_NOT_INITIALIZED);
    EXPECT_EQ(table, &builtInFormTable);
    EXPECT_EQ(KTRegisterEncoder(encodeNothing), KT_ERR_NOT_INITIALIZED);
    EXPECT_EQ(builtInFormTable.encoder, nullptr);
    EXPECT_EQ(KTFreeFormTable(nullptr), KT_ERR_NOT_INITIALIZED);
    EXPECT_EQ(KTGetFormTableSize(), 0);
}

TEST_F(FormTable, TheEncoderMayChangeWhileOthersFormatAndCopy)
{
    std::thread writer([] {
        for (int i = 0; i < 200; ++i)
            KTRegisterEncoder(i % 2 == 0 ? encodeNothing : nullptr);
    });
    for (int i = 0; i < 50; ++i)
    {
        UCS2 out[10];
        unsigned long size = 10;
        ASSERT_EQ(formatInto(&size, out, {false, &builtInFormTable, nullptr}, "%N[1]%s[2]", "a"), 0);
        ASSERT_LE(size, 1u);
        const Copy copy(1);
        ASSERT_TRUE(copy->encoder == nullptr || copy->encoder == encodeNothing);
    }
    writer.join();
    KTRegisterEncoder(nullptr);
}

} // namespace
