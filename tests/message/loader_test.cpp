#include "message/loader.h"

#include "message/loading.h"
#include "platform/zel.h"

#include <climits>
#include <sstream>
#include <sys/resource.h>

namespace
{

class LoaderTest : public MessageTest
{
};

MessageFile file()
{
    return MessageFile();
}

std::string unit(const std::string &content)
{
    return "<trans-unit id=\"1\">" + content + "</trans-unit>";
}

std::string withBody(const std::string &body)
{
    return file().body(body).xml();
}

struct LoadRow
{
    const char *label;
    std::string xml;
    Loaded expected;
};

void expectLoads(const std::vector<LoadRow> &rows)
{
    for (const LoadRow &row : rows)
    {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(load(row.xml), row.expected);
    }
}

// ---- What a file may look like ----

// Beside what the guide to message files shows, which is tried with its page.
TEST_F(LoaderTest, AcceptsTheStructureAndNoOther)
{
    const std::string attributes = R"(<file source-language="en-US" product-name="Example" product-version="1.0">)";
    const std::string inFile = "<header/><body/>";
    const std::string start = "<xliff>" + attributes;
    const std::string end = "</file></xliff>";
    const std::string s = "<source>A</source>";
    const std::string n = "<note>N</note>";
    const Loaded empty = loaded("#0:");
    const Loaded a = loaded("#1: 1=\"A\"");
    expectLoads({
        {"no message", start + inFile + end, empty},
        {"body before header", start + "<body/><header/>" + end, empty},
        {"text and comments anywhere outside", start + "t<header>t</header><!-- c --><body>t<?p?></body>t" + end,
         empty},
        {"further attributes", "<xliff version='1.2'><file x='1'" + attributes.substr(5) + inFile + end, empty},
        {"6 bytes of language", file().attribute("source-language", "de-AUT").xml(), refused()},
        {"an empty version", file().attribute("product-version", "").xml(), refused()},
        {"another document element", "<file/>", refused()},
        {"no file", "<xliff/>", refused()},
        {"two files", start + inFile + "</file>" + attributes + inFile + end, refused()},
        {"xliff inside", start + "<xliff/>" + inFile + end, refused()},
        {"no header", start + "<body/>" + end, refused()},
        {"no body", start + "<header/>" + end, refused()},
        {"two headers", start + "<header/>" + inFile + end, refused()},
        {"two bodies", start + inFile + "<body/>" + end, refused()},
        {"header outside of file", "<xliff><header/>" + attributes + inFile + end, refused()},
        {"an element in header", start + "<header><note/></header><body/>" + end, refused()},
        {"another encoding",
         "<?xml version='1.0' encoding='ISO-8859-1'?>" + file().declaration("").unit(1, "\xFC").xml(),
         loaded("#1: 1=\"\xC3\xBC\"")},
        {"a prefixed name", start + "<h:header/><body/>" + end, refused()},
        {"a unit in a unit", withBody(unit(s + unit(s))), refused()},
        {"text around source", withBody(unit("t" + s + "t")), a},
        {"source after a group", withBody(unit("<context-group/>" + s)), refused()},
        {"notes and groups", withBody(unit(s + n + "<context-group>t<context>t</context></context-group>" + n)), a},
        {"context in a note", withBody(unit(s + "<note><context/></note>")), a},
        {"context in a unit", withBody(unit(s + "<context/>")), refused()},
        {"note in a note", withBody(unit(s + "<note>" + n + "</note>")), refused()},
        {"placeholder in a note", withBody(unit(s + "<note>" + placeholder("%s", "1") + "</note>")), refused()},
        {"note in source", withBody(unit("<source>" + n + "</source>")), refused()},
        {"text in a placeholder", file().unit(1, "A<x ts='%s' id='1'>t</x>B").xml(), loaded("#1: 1=\"A%s[1]B\"")},
        {"placeholder after context", file().unit(1, "A<context/>" + placeholder("%s", "1")).xml(), refused()},
        {"a placeholder with an empty ts", file().unit(1, "<x ts='' id='1'/>").xml(), refused()},
        {"a placeholder without id", file().unit(1, "<x ts='a'/>").xml(), refused()},
        {"any order", file().unit(5, "five").unit(2, "").xml(), loaded("#5: 2=\"\" 5=\"five\"")},
        {"the same ID twice", file().unit(1, "A").unit("ts='1'", "B").xml(), refusedLate()},
        {"line breaks and indentation", file().unit(1, "\n  a\r\n b\t").xml(), loaded("#1: 1=\"\n  a\n b\t\"")},
        {"an escape across a border of placeholders", file().unit(1, "\\<x ts='n' id='1'/>").xml(),
         loaded("#1: 1=\"\n[1]\"")},
    });
    EXPECT_EQ(load(file().unit(1, "A<x ts='%s' id='1'/>\\n").xml(), true), loaded("#1: 1=\"A%s\n\""));
    EXPECT_EQ(load(file().unit(1, "A<x ts='%s' id=''/>").xml(), true), refused());
}

// ---- How it is read ----

TEST_F(LoaderTest, GivesTheSameTableWhereverTheChunksEnd)
{
    const std::string accents = "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
    const auto padded = [&](size_t bytes) {
        return file()
            .header("<header>" + std::string(bytes, ' ') + "</header>")
            .unit(1, "a" + accents + "\\n&#233;\\" + placeholder(accents, "1"), note(accents))
            .unit("note='" + accents + "' ts='12'", accents + "\\\\\r\n<![CDATA[\\t" + accents + "]]>")
            .xml();
    };
    const Loaded expected = load(padded(0));
    ASSERT_EQ(expected, loaded("#12: 1=\"a" + accents + "\n\xC3\xA9\\" + accents + "[1]\" 12=\"" + accents + "\\\n\t" +
                               accents + "\""));
    for (size_t bytes = 1; bytes <= 300; ++bytes)
        ASSERT_EQ(load(padded(bytes)), expected) << "padded by " << bytes;
}

TEST_F(LoaderTest, CallsThePlatformInThePromisedOrder)
{
    const std::string xml = file().unit(3, "A\\n").xml(600);
    ASSERT_EQ(xml.size(), 600u) << "two full chunks, and an empty one that ends the file";
    FakeZel::file(memoryPath, xml);
    MessageTable *table = nullptr;
    const FakeZel::Observer observer([&](const Call &call) {
        const bool isBlock = call.operation == Operation::Malloc && call.number == 4 * sizeof(char *) + 5;
        EXPECT_FALSE(isBlock && table == nullptr) << "the handle is stored before the messages are allocated";
    });
    FakeZel::record();
    ASSERT_EQ(KTLoadMessages(memoryPath, &table), 0);
    std::string calls;
    for (const Call &call : FakeZel::calls())
    {
        std::ostringstream line;
        line << call.operation << ' ' << call.number;
        calls += line.str() + (call.operation == Operation::FileRead ? " @" + std::to_string(call.offset) : "") + "\n";
    }
    const std::string pass = "ParserCreate 0\nFileRead 300 @0\nFileRead 300 @300\nFileRead 300 @600\n";
    EXPECT_EQ(calls.substr(0, calls.find("Malloc 24")), "FileOpen 1\n" + pass + "Malloc 40\nMalloc 37\nParserFree 0\n" +
                                                            "ParserCreate 0\nFileRead 300 @0\nMalloc 8\nMalloc 4\n" +
                                                            pass.substr(31));
    EXPECT_EQ(calls.substr(calls.find("Malloc 24")),
              "Malloc 24\nMutexAcquire 0\nMutexRelease 0\nParserFree 0\nFileClose 0\n");
    FakeZel::file(memoryPath, file().unit(70000, "A").xml());
    FakeZel::record();
    ASSERT_EQ(KTLoadMessages(memoryPath, &table), 0);
    EXPECT_EQ(FakeZel::count(Operation::MutexAcquire), 1u) << "also for a table with an index of its IDs";
}

TEST_F(LoaderTest, TellsWhyAFileCannotBeOpened)
{
    for (const auto &[platform, result] : {std::pair{ZEL_ERR_FILE_ACCESS, int{KT_ERR_FILE_NOT_OPENED}},
                                           {ZEL_ERR_FILE_MISSING, int{KT_ERR_FILE_UNAVAILABLE}},
                                           {ZEL_ERR_END_OF_FILE, int{ZEL_ERR_END_OF_FILE}}})
    {
        FakeZel::file(memoryPath, file().xml());
        FakeZel::fail(Operation::FileOpen, 1, platform);
        EXPECT_EQ(loadFile(), refused(result));
        FakeZel::failOpenKeepingHandle(platform);
        EXPECT_EQ(loadFile(), refused(result)) << "with a handle stored";
    }
}

// ---- Files that are damaged, or change while they are read ----

TEST_F(LoaderTest, RefusesEveryTruncation)
{
    const std::string xml = file().unit(1, "a\\n" + placeholder("%s", "1"), note("n")).unit(3, "b<context/>t").xml();
    const size_t end = xml.rfind('>') + 1;
    for (size_t length = 0; length <= xml.size(); ++length)
        EXPECT_EQ(load(xml.substr(0, length)).result, length < end ? KT_ERR_BAD_MSG_FILE : 0) << length;
}

Loaded loadChanging(const std::string &first, const std::string &second)
{
    FakeZel::file(memoryPath, first).thenBytes(second);
    return loadFile();
}

TEST_F(LoaderTest, RefusesAFileThatNeedsAnotherAmountInTheSecondPass)
{
    const auto body = [](const std::string &xml) { return withBody(xml); };
    const std::string first = file().unit(1, "abcd").unit(2, "efgh").xml();
    const std::string u2 = "<trans-unit id='2'><source>efgh</source></trans-unit>";
    const LoadRow rows[] = {
        {"the same amount", file().unit(1, "ABC").unit(2, "DEFGH").xml(), loaded("#2: 1=\"ABC\" 2=\"DEFGH\"")},
        {"a placeholder that just fits", file().unit(1, "abcd").unit(2, placeholder("%", "1")).xml(),
         loaded("#2: 1=\"abcd\" 2=\"%[1]\"")},
        {"one byte more", file().unit(1, "abcde").unit(2, "efgh").xml(), refusedLate()},
        {"one byte less", file().unit(1, "abc").unit(2, "efgh").xml(), refusedLate()},
        {"text that does not fit", file().unit(1, std::string(1000, 'a')).xml(), refusedLate()},
        {"text that does not fit, in front of text that does", file().unit(1, "0123456789abc&lt;a").xml(),
         refusedLate()},
        {"a placeholder that does not fit", file().unit(1, placeholder("%s", "111111111")).xml(), refusedLate()},
        {"no room for the zero bytes", file().unit(1, "abcdefghijk").unit(2, "more").xml(), refusedLate()},
        {"no message", file().xml(), refusedLate()},
        {"an ID above the highest", file().unit(1, "abcd").unit(3, "efgh").xml(), refusedLate()},
        {"an empty unit with the ID 0", body("<trans-unit id='0'/>" + unit("<source>abcd</source>") + u2),
         refusedLate()},
        {"no ID", file().unit(1, "abcd").unit("", "efgh").xml(), refusedLate()},
        {"a duplicate ID", file().unit(1, "abcd").unit(1, "efgh").xml(), refusedLate()},
        {"the highest ID is missing", file().unit(1, "abcdefghij").xml(), refusedLate()},
        {"a unit without source", body(unit("") + "<trans-unit id='2'><source>abcdefghij</source></trans-unit>"),
         refusedLate()},
        {"the last unit without source", body(unit("<source>abcdefghij</source>") + "<trans-unit id='2'/>"),
         refusedLate()},
        {"a source outside of units", body("<source>abcd</source>" + u2), refusedLate()},
        {"an empty source outside of units", body("<source/>" + unit("<source>abcd</source>") + u2), refusedLate()},
        {"two sources in a unit", body(unit("<source>abcd</source><source>efgh</source>")), refusedLate()},
        {"text behind a message", body(unit("<source>ab<x ts='a' id='1'><source/></x>ef<trans-unit id='2'/></source>")),
         refusedLate()},
        {"a placeholder before all messages",
         body("<x ts='a' id='1'/>" + unit("<source>abcd</source>") + "<trans-unit id='2'><source/></trans-unit>"),
         refusedLate()},
        {"a file in the place of a unit",
         file().unit(1, "abcd").body("<file id='2'><source>efgh</source></file>").xml(), refusedLate()},
        {"a unit in a unit", body("<trans-unit id='1'>" + u2 + "<source>abcd</source></trans-unit>"), refusedLate()},
        {"two files",
         "<r>" + file().declaration("").unit(1, "abcd").xml() + file().declaration("").body(u2).xml() + "</r>",
         refusedLate()},
        {"no file", "<xliff>" + unit("<source>abcd</source>") + u2 + "</xliff>", refusedLate()},
        {"a file without a name", file().without("product-name").unit(1, "abcd").body(u2).xml(), refusedLate()},
        {"a placeholder without id", file().unit(1, "ab<x ts='s'/>cd").body(u2).xml(), refusedLate()},
        {"a placeholder without ts", file().unit(1, "ab<x id='1'/>cd").body(u2).xml(), refusedLate()},
        {"not well-formed", "<xliff>", refusedLate()},
        {"nothing", "", refusedLate()},
    };
    for (const LoadRow &row : rows)
    {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(loadChanging(first, row.xml), row.expected);
    }
    FakeZel::fail(Operation::Malloc, 3); // the product's name
    EXPECT_EQ(loadChanging(first, file().xml() + "<"), refusedLate()) << "what the parser says goes first";
    for (const auto &[read, expected] : {std::pair{3u, refused(-4)}, {4u, refusedLate(-4)}})
    {
        FakeZel::fail(Operation::FileRead, read, -4); // the first pass has three, the empty one included
        EXPECT_EQ(load(file().unit(1, "a").xml(600)), expected) << read;
    }
}

// ---- Sizes ----

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

rusage usage()
{
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return used;
}

TEST_F(LoaderTest, PaysForAHugeIdWithAddressSpaceOnly)
{
    FakeZel::file(memoryPath, file().unit(INT_MAX, "huge").unit(1, "one").xml());
    MessageTable *table = nullptr;
    rlimit before{};
    getrlimit(RLIMIT_AS, &before);
    const rlimit limited = {rlim_t{8} << 30, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &limited), 0);
    EXPECT_EQ(loadFile(), refusedLate(KT_ERR_NO_MEMORY));
    setrlimit(RLIMIT_AS, &before);

    const long peak = usage().ru_maxrss;
    const int result = KTLoadMessages(memoryPath, &table);
    EXPECT_LT(usage().ru_maxrss - peak, 100 * 1024);
    if (result == KT_ERR_NO_MEMORY)
        GTEST_SKIP() << "this system does not give out 16 GiB of address space";
    ASSERT_EQ(result, 0);
    char *message = nullptr;
    EXPECT_EQ(KTGetMessage(table, 1000000000, &message), 0);
    EXPECT_EQ(message, nullptr);
    unsigned id = 0;
    const long faults = usage().ru_minflt;
    EXPECT_EQ(KTNextMessage(table, 0, &id, &message), 0);
    EXPECT_EQ(KTNextMessage(table, id, &id, &message), 0);
    EXPECT_EQ(id, unsigned{INT_MAX});
    EXPECT_STREQ(message, "huge");
    EXPECT_LT(usage().ru_minflt - faults, 1000) << "pages between that a walk looked at";
    EXPECT_EQ(KTFreeMessages(table), 0);
}

#endif

} // namespace
