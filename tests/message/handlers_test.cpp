// The handlers of both passes and of the version query, driven by a parser of a program's own, on the records that they
// know and no byte more.

#include "message/escapes.h"
#include "message/exported_grammar.h"
#include "message/file_version.h"
#include "message/first_pass.h"
#include "message/loading.h"
#include "message/second_pass.h"

#include <cerrno>
#include <climits>
#include <expat.h>

namespace
{

class HandlersTest : public MessageTest
{
};

/** A state with bytes behind it that nobody may change. */
template <typename State> class GuardedState
{
public:
    explicit GuardedState(const State &initial) : state(initial)
    {
        std::fill(std::begin(m_behind), std::end(m_behind), filler);
    }
    ~GuardedState() { EXPECT_EQ(std::count(std::begin(m_behind), std::end(m_behind), filler), std::size(m_behind)); }

    State state;

private:
    static constexpr char filler = '\xA5';
    char m_behind[32];
};

void parse(const std::string &xml, void *state, XML_StartElementHandler start, XML_EndElementHandler end,
           XML_CharacterDataHandler text)
{
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr), XML_ParserFree);
    XML_SetUserData(parser.get(), state);
    XML_SetElementHandler(parser.get(), start, end);
    XML_SetCharacterDataHandler(parser.get(), text);
    EXPECT_EQ(XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), true), XML_STATUS_OK);
}

TEST_F(HandlersTest, FillATableThatIsTheLoaders)
{
    const std::string xml = MessageFile().unit(3, "a\\n" + placeholder("%s", "12")).unit(1, "b").xml();
    for (const bool raw : {false, true})
    {
        GuardedState<FirstPassState> first({});
        first.state.raw = raw;
        parse(xml, &first.state, startElement1, endElement1, characterData1);
        EXPECT_EQ(first.state.error, 0);
        EXPECT_EQ(first.state.highestId, 3);
        EXPECT_EQ(first.state.textSize, raw ? 10u : 14u);

        MessageTable table = {};
        table.language[0] = table.country[0] = '?';
        table.language[2] = table.country[2] = '?';
        std::vector<char *> messages(4);
        std::vector<char> text(first.state.textSize);
        GuardedState<SecondPassState> second({raw, 0, false, &table, messages.data(), 0, text.data()});
        parse(xml, &second.state, startElement2, endElement2, characterData2);
        EXPECT_EQ(second.state.error, 0);
        EXPECT_EQ(second.state.cursor, text.data() + text.size());
        EXPECT_STREQ(messages[3], raw ? "a\n%s" : "a\n%s[12]");
        EXPECT_STREQ(messages[1], "b");
        EXPECT_EQ(std::string(table.language) + table.country + table.productName + table.productVersion,
                  "enUSExample1.0");
        ZEL_free(table.productName);
        ZEL_free(table.productVersion);
    }
    std::array<char, 20> version{};
    GuardedState<VersionQueryState> query({false, version.data()});
    parse(xml, &query.state, startElement, nullptr, nullptr);
    EXPECT_TRUE(query.state.done);
    EXPECT_STREQ(version.data(), "1.0");
}

TEST_F(HandlersTest, MeasureAMessageOfAnyLength)
{
    GuardedState<FirstPassState> pass({});
    pass.state.depth = 4;
    pass.state.last = ELM_TRANS_UNIT;
    const char *attrs[] = {nullptr};
    startElement1(&pass.state, "source", attrs);
    pass.state.textSize = uint64_t{INT_MAX} + 1;
    characterData1(&pass.state, "0123456789", 10);
    endElement1(&pass.state, "source");
    EXPECT_EQ(pass.state.error, 0);
    EXPECT_EQ(pass.state.textSize, uint64_t{INT_MAX} + 13);
}

TEST_F(HandlersTest, DoNothingAfterAFailureAndTakeARawPlaceholderAsItIs)
{
    const char *attrs[] = {"ts", "%s", nullptr};
    char text[8] = "1234567", *messages[] = {text};
    FirstPassState first = {};
    endElement1(&first, "unknown");
    EXPECT_EQ(first.error, KT_ERR_BAD_MSG_FILE);
    first.last = ELM_SOURCE;
    const FirstPassState failed = first;
    SecondPassState second = {true, 0, true, nullptr, messages, 0, text};
    for (const int error : {0, -1})
    {
        second.error = error;
        startElement2(&second, "x", attrs);
        endElement2(&second, "x");
        characterData2(&second, "a", 1);
        characterData2(&second, "b", 0);
        startElement1(&first, "x", attrs);
        endElement1(&first, "source");
        characterData1(&first, "a", 1);
    }
    EXPECT_EQ(second.cursor, text + 3);
    EXPECT_STREQ(text, "%sa4567");
    EXPECT_TRUE(first.last == failed.last && first.depth == failed.depth && first.textSize == 0);
}

TEST_F(HandlersTest, KnowExactNamesOnly)
{
    struct Row
    {
        std::string name; // a block of its own, so that a sanitizer sees a read beyond the end
        ElementID id;
        int level;
    };
    // Those that files use are tried by loading; these are the ones that come close.
    for (const Row &row : {Row{"context-group", ELM_CONTEXT_GROUP, 4},
                           {"context", ELM_CONTEXT, 5},
                           {"x", ELM_X, 5},
                           {"", ELM_UNKNOWN, -1},
                           {"X", ELM_UNKNOWN, -1},
                           {"xl", ELM_UNKNOWN, -1},
                           {"context-", ELM_UNKNOWN, -1},
                           {"context-group-and-more", ELM_UNKNOWN, -1}})
    {
        ElementID id = ELM_NOTE;
        int level = 77;
        mapElmtName(row.name.c_str(), &id, &level);
        EXPECT_EQ(id, row.id) << row.name;
        EXPECT_EQ(level, row.level) << row.name;

        FirstPassState pass = {};
        pass.depth = level;
        const char *attrs[] = {nullptr};
        startElement1(&pass, row.name.c_str(), attrs);
        EXPECT_EQ(pass.error, id == ELM_UNKNOWN || id == ELM_X ? KT_ERR_BAD_MSG_FILE : 0) << row.name;
    }
    const char *attrs[] = {"id", "1", "ids", "2", "i", "", "id", "3", nullptr};
    EXPECT_STREQ(getAttrValue(attrs, "id"), "1");
    EXPECT_STREQ(getAttrValue(attrs, "ids"), "2");
    EXPECT_STREQ(getAttrValue(attrs, "i"), "");
    EXPECT_EQ(getAttrValue(attrs, "ID"), nullptr);
    EXPECT_EQ(getAttrValue(attrs + 8, "id"), nullptr);
}

TEST_F(HandlersTest, TakesTheLow32BitsOfADecimalId)
{
    struct Row
    {
        const char *text;
        int id; // 0: refused
    };
    for (const Row &row :
         {Row{"7", 7}, Row{"12abc", 12}, Row{" \t+7", 7}, Row{"007", 7}, Row{"0x10", 0}, Row{"0", 0}, Row{"-3", 0},
          Row{"abc", 0}, Row{"1.5", 1}, Row{"12345678", 12345678}, Row{"123456789", 123456789},
          Row{"2147483647", INT_MAX}, Row{"2147483648", 0}, Row{"4294967297", 1}, Row{"-4294967295", 1},
          Row{"0000000000000000000012", 12}, Row{"9223372036854775807", 0}, Row{"99999999999999999999", 0}})
    {
        FirstPassState pass = {};
        pass.depth = 3;
        pass.last = ELM_BODY;
        const char *attrs[] = {"id", row.text, nullptr};
        errno = 77;
        startElement1(&pass, "trans-unit", attrs);
        EXPECT_EQ(pass.error, row.id != 0 ? 0 : KT_ERR_BAD_MSG_FILE) << '"' << row.text << '"';
        EXPECT_EQ(pass.highestId, row.id) << row.text;
        EXPECT_EQ(errno, 77) << row.text;
    }
}

TEST(Escapes, AreResolvedInPlace)
{
    struct Row
    {
        const char *before, *after;
    };
    for (const Row &row : {Row{"", ""}, Row{"plain", "plain"}, Row{"\\\\", "\\"}, Row{"\\t\\r\\n\\\"", "\t\r\n\""},
                           Row{"a\\\\nb", "a\\nb"}, Row{"\\\\\\n", "\\\n"}, Row{"\\a\\0\\'\\N", "\\a\\0\\'\\N"},
                           Row{"\\x\\n", "\\x\n"}, Row{"end\\", "end\\"}, Row{"\\", "\\"}, Row{"\\n\\", "\n\\"},
                           Row{"\\\\\\\\", "\\\\"}, Row{"\\\xC3\xA9\\t", "\\\xC3\xA9\t"}})
    {
        const std::string before = row.before;
        std::vector<char> text(before.c_str(), before.c_str() + before.size() + 1);
        text.insert(text.end(), {'\0', '!'}); // the second zero byte, and what lies behind the message
        handleEscape(text.data());
        std::string expected = row.after;
        expected.resize(before.size() + 2);
        EXPECT_EQ(std::string(text.begin(), text.end()), expected + "!") << before;
    }
}

} // namespace
