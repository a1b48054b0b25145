// Conversions and encoders with a context: what their functions are told, what becomes of the texts they give, and when
// a table is refused.

#include "format/started_test.h"
#include "support/fake_zel.h"

#include <memory>
#include <vector>

namespace
{

constexpr uint32_t kindOfBox = 7;
struct Box
{
    const char *content;
};

const int boxTypes[] = {KT_ARG_POINTER, KT_ARG_END};
const int allTypes[] = {KT_ARG_SIGNED, KT_ARG_UNSIGNED, KT_ARG_CHARACTER, KT_ARG_DOUBLE, KT_ARG_UTF8,
                        KT_ARG_UCS2,   KT_ARG_SIGNED,   KT_ARG_SIGNED,    KT_ARG_SIGNED, KT_ARG_END};

/** What the functions share: their context. */
struct State
{
    std::string mark = "#";
    int ended = 0;
};

void endState(void *context)
{
    ++static_cast<State *>(context)->ended;
}

int writeBox(void *context, KTOwnCall *call)
{
    const std::string content = static_cast<const Box *>(call->arguments->value.p)->content;
    const std::string text = static_cast<State *>(context)->mark + content;
    return content == "fails" ? KT_ERR_CONVERSION_FAILED
           : content.empty()  ? 0
                              : KTGiveText(call, KT_UTF8(text.c_str()));
}

int writeAll(void *, KTOwnCall *call)
{
    std::string text = std::string(call->name) + ' ' + std::to_string(call->width);
    call->width = call->precision = KT_ABSENT;
    for (size_t i = 0; i < call->count; ++i)
    {
        char value[60];
        size_t size = sizeof value;
        EXPECT_EQ(KTArgumentText(call->arguments + i, &size, value), 0);
        text += ' ' + std::string(value);
    }
    return KTGiveText(call, KT_UTF8N(text.data(), text.size()));
}

int giveNumber(void *, KTOwnCall *call)
{
    return KTGiveText(call, *call->arguments);
}

int bracketUTF8(void *context, KTOwnCall *call)
{
    const std::string text =
        '<' + static_cast<State *>(context)->mark + static_cast<const char *>(call->arguments->value.p) + '>';
    return KTGiveText(call, KT_UTF8(text.c_str()));
}

int bracketUCS2(void *, KTOwnCall *call)
{
    const std::u16string text = u'{' + std::u16string(static_cast<const UCS2 *>(call->arguments->value.p)) + u'}';
    return KTGiveText(call, KT_UCS2N(text.data(), text.size()));
}

struct FreeOwn
{
    void operator()(KTOwnTable *own) const { KTFreeOwnTable(own); }
};
using Own = std::unique_ptr<KTOwnTable, FreeOwn>;

class OwnTable : public StartedTest
{
protected:
    /** A table with the conversions above, which is not finished. */
    Own begin()
    {
        Own own(KTNewOwnTable());
        KTAddConversion(own.get(), "box", boxTypes, kindOfBox, writeBox, &m_state, endState);
        KTAddConversion(own.get(), "all", allTypes, 0, writeAll, nullptr, nullptr);
        KTAddConversion(own.get(), "number", signedIntList, 0, giveNumber, nullptr, nullptr);
        return own;
    }

    static formTable *finish(const Own &own, formTable *next = nullptr, unsigned options = 0)
    {
        size_t size = 0;
        formTable *table = nullptr;
        EXPECT_EQ(KTFinishOwnTable(own.get(), next, options, &table, &size, nullptr), 0);
        return table;
    }

    static std::string refusal(KTOwnTable *own, formTable *next = nullptr, unsigned options = 0)
    {
        char why[200] = "?";
        size_t size = sizeof why;
        formTable *table = &builtInFormTable;
        EXPECT_NE(KTFinishOwnTable(own, next, options, &table, &size, why), 0);
        EXPECT_EQ(table, nullptr);
        EXPECT_EQ(std::string(why).size(), size);
        return why;
    }

    /** The text in both encodings, in each room up to its own; or the name of the result. */
    static std::string text(formTable *table, const char *format, const std::vector<KTArgument> &arguments)
    {
        KTPreparedFormat *prepared = nullptr;
        EXPECT_EQ(KTPrepareFormat(format, table, &prepared), 0) << format;
        std::string bytes(400, '?');
        std::u16string units(400, u'?');
        int result = 0;
        size_t size = 0, unitSize = units.size();
        for (size_t room = 0; room == 0 || (result == KT_ERR_BUFFER_TOO_SMALL && room < bytes.size()); ++room)
        {
            size = room;
            result =
                KTFormatPreparedUTF8(prepared, 0, nullptr, &size, bytes.data(), arguments.data(), arguments.size());
        }
        EXPECT_EQ(KTFormatPrepared(prepared, 0, nullptr, &unitSize, units.data(), arguments.data(), arguments.size()),
                  result);
        KTFreePrepared(prepared);
        if (result != 0)
            return KTResultName(result);
        std::string same(1200, '?');
        size_t sameSize = same.size();
        EXPECT_EQ(KTUCS2ToUTF8(units.c_str(), &sameSize, same.data()), 0);
        EXPECT_EQ(same.substr(0, sameSize), bytes.substr(0, size));
        return bytes.substr(0, size);
    }

    State m_state;
};

TEST_F(OwnTable, WritesConversionsWithTheirContext)
{
    const Own own = begin();
    KTSetEncoder(own.get(), KT_ARG_UCS2, bracketUCS2, nullptr, nullptr);
    KTSetEncoder(own.get(), KT_ARG_UTF8, bracketUTF8, &m_state, endState);
    formTable *const table = finish(own);
    formTable copied = *table, front = {false, {}, nullptr, nullptr, table};
    const Box box = {"é😀"}, failing = {"fails"}, empty = {""};
    const KTArgument object = KT_POINTER(kindOfBox, &box);
    const std::vector<KTArgument> values = {KT_INT(-1),    KT_UINT(2), KT_CHAR('c'), KT_DOUBLE(0.5), KT_UTF8("u"),
                                            KT_UCS2(u"w"), KT_INT(7),  KT_INT(8),    KT_INT(9)};
    m_state.mark = "~";
    const struct
    {
        formTable *table;
        const char *format;
        std::vector<KTArgument> arguments;
        std::string text;
    } rows[] = {
        {table, "%box[1]|%6box[2]|%-06box[3]|%.2box[4]|", {object, object, object, object}, "~é😀|  ~é😀|~é😀00|~é|"},
        {table, "%4all[1]", values, "all 4 -1 2 c 0.5 u w 7 8 9"},
        {table,
         "%N[1]%box[2] %6s[3] %c[4] %lc[5]%O[6] %s[7]",
         {object, KT_UTF8("a"), KT_CHAR('\xE9'), KT_UNIT(0xD83D), KT_UTF8("a")},
         "<~~é😀>   <~a> <~é> \xEF\xBF\xBD a"},
        {&copied, "%N[1]%s[2]", {KT_UTF8("a")}, "<~a>"},
        {&front, "%N[1]%s[2]%box[3]", {KT_UTF8("a"), object}, "<~a><~~é😀>"},
        {table, "%box[1].", {KT_POINTER(kindOfBox, &empty)}, "."},
        {table, "%box[1]", {KT_POINTER(kindOfBox, &failing)}, "KT_ERR_CONVERSION_FAILED"},
        {table, "%box[1]", {KT_POINTER(kindOfBox + 1, &box)}, "KT_ERR_INVALID_PARAMETER"},
        {table, "%box[1]", {KT_POINTER(kindOfBox, nullptr)}, "KT_ERR_INVALID_PARAMETER"},
        {table, "%number[1]", {KT_INT(7)}, "KT_ERR_INVALID_PARAMETER"},
        {table, "%d[1]", {KT_INT(7)}, "7"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(text(row.table, row.format, row.arguments), row.text) << row.format;
    UCS2 out[20];
    for (const char *format : {"%N[1]%s[2]", "%box[1]"}) // without typed arguments nothing is written unencoded
    {
        unsigned long size = 20;
        EXPECT_EQ(
            KTFormatStringWithPassThru(nullptr, false, table, nullptr, &size, out, const_cast<char *>(format), "x"),
            KT_ERR_INVALID_PARAMETER);
    }
}

TEST_F(OwnTable, BringsItsOptionIntoEveryCall)
{
    const Own inner = begin();
    KTSetEncoder(inner.get(), KT_ARG_UCS2, bracketUCS2, nullptr, nullptr);
    const Own outer(KTNewOwnTable());
    formTable *const table = finish(outer, finish(inner, nullptr, KT_ENCODE_ALL));
    const Box box = {"a"};
    EXPECT_EQ(text(table, "%s[1] %d[2] %box[3]", {KT_UTF8("a"), KT_INT(7), KT_POINTER(kindOfBox, &box)}),
              "{a} {7} {#a}");
    KTCatalogOptions options = {};
    options.structSize = sizeof options;
    options.table = table;
    KTCatalog *catalog = nullptr;
    ASSERT_EQ(KTOpenCatalog("nowhere", "store", &options, &catalog), 0);
    const KTArgument arguments[] = {KT_POINTER(kindOfBox, &box), KT_POINTER(kindOfBox + 1, &box)};
    char line[80];
    size_t size = sizeof line;
    EXPECT_EQ(KTCatalogFormatUTF8(catalog, 1, "%box[1]", &size, line, arguments, 1), 0);
    EXPECT_STREQ(line, "{#a}");
    size = sizeof line;
    EXPECT_EQ(KTCatalogFormatUTF8(catalog, 1, nullptr, &size, line, arguments, 2), 0);
    EXPECT_STREQ(line, "[store 1: {(pointer)}, {(pointer)}]") << "the outer table has no conversion for it";
    KTCloseCatalog(catalog);
}

TEST_F(OwnTable, SaysWhyItIsRefusedAndEndsItsContexts)
{
    KTFormatter raw[] = {{"raw", nullptr, 1, boxTypes, formatInteger}, {}};
    formTable unsafe = {false, {}, raw, nullptr, nullptr};
    EXPECT_EQ(refusal(begin().get(), &unsafe), "the conversion \"raw\" takes a pointer of no type");
    EXPECT_EQ(refusal(begin().get(), nullptr, KT_ENCODE_ALL), "there is no encoder that could be applied everywhere");
    EXPECT_EQ(refusal(begin().get(), nullptr, KT_TAG), KTResultText(KT_ERR_INVALID_PARAMETER));
    EXPECT_EQ(refusal(nullptr), KTResultText(KT_ERR_NO_MEMORY));
    KTAddConversion(nullptr, "box", boxTypes, kindOfBox, writeBox, &m_state, endState);
    KTSetEncoder(nullptr, KT_ARG_UTF8, bracketUTF8, &m_state, endState);
    EXPECT_EQ(m_state.ended, 5);
    const Own twice = begin();
    finish(twice);
    EXPECT_EQ(refusal(twice.get()), KTResultText(KT_ERR_INVALID_PARAMETER));
    const Own named(KTNewOwnTable());
    KTAddConversion(named.get(), "abcdefghijklmnopqrstuv", boxTypes, 0, writeBox, nullptr, nullptr);
    EXPECT_EQ(refusal(named.get()), "no conversion can have the name \"abcdefghijklmnopqrst\"");
    size_t none = 0;
    EXPECT_EQ(KTFinishOwnTable(named.get(), nullptr, 0, nullptr, &none, nullptr), KT_ERR_INVALID_PARAMETER);
    KTFreeOwnTable(nullptr);
}

TEST(OwnTableAlone, StartsTheLibrary)
{
    formTable *table = nullptr;
    size_t size = 0;
    FakeZel::failNth(1);
    Own own(KTNewOwnTable());
    EXPECT_EQ(KTFinishOwnTable(own.get(), nullptr, 0, &table, &size, nullptr), KT_ERR_NOT_INITIALIZED);
    FakeZel::clearFaults();
    own.reset(KTNewOwnTable());
    size = 0;
    EXPECT_EQ(KTFinishOwnTable(own.get(), nullptr, 0, &table, &size, nullptr), 0);
    EXPECT_EQ(KTGetBuiltInFormTable(0, &table), 0);
    own = nullptr;
    EXPECT_EQ(KTGetBuiltInFormTable(0, &table), KT_ERR_NOT_INITIALIZED);
}

TEST(ObjectTypes, AreOneWhereNoOtherCanHaveTheirKey)
{
    const struct
    {
        const char *name, *other;
        bool isOne;
    } rows[] = {{"N4shop5moneyE", "N4shop5moneyE", true},
                {"5money", "6weight", false},
                {"5Zebra", "5Zebra", true},
                {"5ZebraZ", "5ZebraZ", false},
                {"*5money", "*5money", false},
                {"N12_GLOBAL__N_15moneyE", "N12_GLOBAL__N_15moneyE", false},
                {"Z4mainE1a", "Z4mainE1a", false},
                {nullptr, "1a", false},
                {"1a", nullptr, false},
                {"1Z", "1Z", true}};
    for (const auto &row : rows)
    {
        const KTObjectType type = {row.name, "", 0, nullptr}, other = {row.other, "", 0, nullptr};
        const KTObject object = {&type, &row};
        const KTArgument argument = KT_POINTER(KT_KIND_OBJECT, &object), none = KT_POINTER(1, &object);
        EXPECT_EQ(KTObjectOfType(&argument, &other), row.isOne ? &row : nullptr)
            << (row.name != nullptr ? row.name : "");
        EXPECT_EQ(KTObjectOfType(&argument, &type), &row);
        EXPECT_EQ(KTObjectOfType(&none, &type), nullptr);
    }
}

} // namespace
