// Every operation that allocates, opens, reads or starts something, with each of its steps failing in turn: first those
// of the platform, then the allocations that the library, expat, ICU and the C library make of the C heap. Whatever
// fails, the result is one of the row's, the outputs are untouched or empty, and nothing is left over.

#include "support/fake_zel.h"
#include "support/heap_faults.h"
#include "support/message_file_builder.h"
#include "support/ucs2.h"

#include <array>
#include <cstdarg>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

namespace
{

char messagePath[] = "/tmp/kelto-faults-XXXXXX";
char compiledPath[] = "/tmp/kelto-faults-XXXXXX";
std::string compiled;
char entityPath[] = "e.xlf", sparsePath[] = "s.xlf", longPath[] = "l.xlf", selectorsPath[] = "v.xlf"; // in memory
constexpr char eucJp[] = "EUC-JP";
constexpr char text[] = "a\xA4\xA2"
                        "b";
auto *const untouchedTable = reinterpret_cast<MessageTable *>(0x10);

/** Where the calls of the rows put their results. */
struct Outputs
{
    MessageTable *table = untouchedTable;
    formTable *copy = &builtInFormTable;
    KTParameter *parameters = nullptr;
    KTPreparedFormat *prepared = nullptr;
    std::array<char, 20> text = {"?"};
    Ucs2Buffer units{800};
    unsigned long size = 800;
    size_t bytes = 20;

    void expectNothing() const
    {
        EXPECT_TRUE(table == untouchedTable || table == nullptr);
        EXPECT_TRUE(copy == &builtInFormTable || copy == nullptr);
        EXPECT_TRUE(parameters == nullptr && prepared == nullptr);
        EXPECT_TRUE(text[0] == '?' || text[0] == '\0');
        EXPECT_EQ(bytes, 20u);
        EXPECT_TRUE(units.untouched() ? size == 800 : size == 0 && units[0] == 0);
    }

    void release() const
    {
        EXPECT_EQ(table != untouchedTable ? KTFreeMessages(table) : 0, 0);
        EXPECT_EQ(copy != &builtInFormTable ? KTFreeFormTable(copy) : 0, 0);
        ZEL_free(parameters);
        KTFreePrepared(prepared);
    }
};

Outputs got;

int formatList(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int result = KTvFormatStringWithPassThru(nullptr, true, &builtInFormTable, nullptr, &got.size,
                                                   got.units.data(), const_cast<char *>(format), arguments);
    va_end(arguments);
    return result;
}

// A long text, an own width, and a number longer than the formatter's own buffer: each takes memory of its own.
char manyForms[] = "%s[1]%U[2]%*.*d[3]%E[4]%DND[5]%D[6]%.400Lf[7]%s[8]%s[9]%s[10]%s[11]";

int formatPointers()
{
    int width = 4, precision = 1, number = 5;
    long double real = 1.5L;
    char s[] = "a";
    UCS2 u[] = u"b";
    void *slots[] = {s, u, &width, &precision, &number, s, u, s + 1, &real, s, s, s, s, nullptr};
    return KTvpFormatString(nullptr, true, &got.size, got.units.data(), manyForms, slots);
}

int formatNameInPlace()
{
    std::fill_n(got.units.data(), 300, u'/');
    got.units.data()[300] = 0;
    void *slot = got.units.data();
    unsigned long size = got.size;
    const int result = formatDN("DNS", -1, -1, 0, nullptr, nullptr, &slot, &size, got.units.data());
    std::fill_n(got.units.data(), 301, Ucs2Buffer::filler);
    return result;
}

int formatVeryLongNumber()
{
    static std::array<UCS2, 20000> units;
    unsigned long size = units.size();
    long double number = 1e300L;
    void *slot = &number;
    return formatDouble("f", -1, 16445, FLAG_L, nullptr, nullptr, &slot, &size, units.data());
}

/** Writes 300 units, more than the library has at hand for a text that is to become UTF-8. */
int formatOwn(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *out)
{
    const bool fits = *size > 300;
    *size = 300;
    if (fits)
        std::fill_n(out, 300, u'o');
    return fits ? 0 : KT_ERR_BUFFER_TOO_SMALL;
}

KTFormatter ownList[] = {{"own", nullptr, 1, utf8StrList, formatOwn}, {nullptr, nullptr, 0, nullptr, nullptr}};
formTable ownTable = {false, {}, ownList, nullptr, &builtInFormTable};
char ownForms[] = "%own[1]%.400Lf[2]";

KTPreparedFormat *prepared; // of ownForms, while the library is started
MessageTable *selectors;    // likewise
constexpr long double real = 1.5L;
const std::string longText(600, 't'); // is copied for its terminator
const KTArgument preparedArguments[] = {KT_UTF8N(longText.data(), 600), KT_LONG_DOUBLE(&real)};

int formatPreparedUTF8()
{
    std::array<char, 800> utf8 = {"?"};
    size_t size = utf8.size();
    const int result = KTFormatPreparedUTF8(prepared, 0, nullptr, &size, utf8.data(), preparedArguments, 2);
    EXPECT_TRUE(result == 0 ? size == 300 + 402 && utf8[size] == '\0' : size == 0 && utf8[0] == '\0');
    return result;
}

/** 0 where a function gave what it gives when nothing fails, else what it gave. */
int compared(long outcome, long success)
{
    return outcome == success ? 0 : outcome == 0 ? -1 : static_cast<int>(outcome);
}

int found(const char *place)
{
    return place != nullptr ? 0 : -1;
}

int stepThroughText()
{
    std::string walked = text;
    const bool isNext = KTNextChar(eucJp, walked.data()) == 0xA4A2; // known before the rest can fail
    const bool isStepped = walked.c_str() == std::string(text + 1);
    EXPECT_TRUE(isStepped || walked == text) << "a text stays whole";
    return isNext && isStepped ? 0 : -1;
}

constexpr UCS2 elevenConversions[] = u"%d[1]%d[2]%d[3]%d[4]%d[5]%d[6]%d[7]%d[8]%d[9]%d[10]%d[11]";
constexpr int noMemory = KT_ERR_NO_MEMORY, notOpened = KT_ERR_CONVERTER_OPEN_FAILED;
const std::set<int> converting = {noMemory, notOpened};

// No parser; a parser that runs out of memory and so takes no more of the file; a file without its buffer; the rest.
const std::set<int> fileFailures = {-1, KT_ERR_BAD_MSG_FILE, noMemory};
// Where there is no memory to find out how large the stack is, or for an index, it is done without.
const std::set<int> fileFailuresOrNone = {0, -1, KT_ERR_BAD_MSG_FILE, noMemory};

struct Row
{
    const char *label;
    unsigned steps;             // of the platform, which can fail
    std::set<int> heapFailures; // what the call may return when the heap fails; none: it asks nothing of that
    std::function<int()> call;
    bool isStartUp = false;

    friend std::ostream &operator<<(std::ostream &out, const Row &row) { return out << row.label; }
};

const Row rows[] = {
    {"start", 6, {KT_ERR_NOT_INITIALIZED, 0}, KTInit, true}, // 0 without the locale, which is not set then
    // Opening; a parser and four reads, twice; the table and its texts, the block and a working copy, the list's item.
    {"load", 16, fileFailures, [] { return KTLoadMessages(messagePath, &got.table); }},
    {"entities that refer to others", 10, fileFailuresOrNone, [] { return KTLoadMessages(entityPath, &got.table); }},
    {"table with an index", 10, fileFailuresOrNone, [] { return KTLoadMessages(sparsePath, &got.table); }},
    {"compiled file", 13, fileFailures, [] { return KTLoadCompiledMessages(compiledPath, &got.table); }},
    {"compiled data", 5, {}, [] { return KTLoadCompiledData(compiled.data(), compiled.size(), &got.table); }},
    {"version", 3, fileFailures, [] { return KTGetMsgFileVer(messagePath, got.text.data()); }},
    // By 300 bytes, until what the parser read again is 1 MiB and 32 times the file so far; then by as much as that.
    {"version behind a token that is read in long steps", 244, fileFailures,
     [] { return KTGetMsgFileVer(longPath, got.text.data()); }},
    {"copy of the form table", 1, {}, [] { return KTGetBuiltInFormTable(3, &got.copy); }},
    {"records of a format, ten and then twenty",
     2,
     {},
     [] { return checkSyntax(elevenConversions, nullptr, &got.parameters); }},
    // The format, the records twice, the slots; a cell per argument, and what the conversions write first elsewhere.
    {"list", 24, {}, [] { return formatList(manyForms, "a", u"b", 4, 1, 5, "e", u"n", "1", 1.5L, "", "", "", ""); }},
    {"pointers", 10, {}, formatPointers},
    {"long number", 5, {}, [] { return formatList("%f[1]", 1e300); }},
    {"number for which the C library takes memory", 1, {noMemory}, formatVeryLongNumber},
    {"name in its own place", 1, {}, formatNameInPlace},
    // The parameters, which are many, and the prepared format; of a prepared one the long number, a buffer for the own
    // text.
    {"prepare", 2, {}, [] { return KTPrepareFormat(manyForms, nullptr, &got.prepared); }},
    {"explain", 2, {}, [] { return KTExplainFormat(manyForms, nullptr, nullptr); }},
    // Of a selector with a row of eleven selectors, each of one and the same text: the numbers of the messages, twice,
    // and each prepared once; then what they are owned by.
    {"prepare message", 16, {}, [] { return KTPrepareMessage(selectors, 1, "pl", nullptr, &got.prepared); }},
    {"compare formats", 2, {}, [] { return KTCompareFormats("%d[1]", "%d[1]", nullptr, nullptr); }},
    {"prepared",
     2,
     {},
     [] { return KTFormatPrepared(prepared, 0, nullptr, &got.size, got.units.data(), preparedArguments, 2); }},
    {"prepared, UTF-8", 3, {}, formatPreparedUTF8},

    {"no memory needed", 0, {0}, [] { return KTUTF8ToUCS2("a\u3042", &got.bytes, got.units.data()); }},
    {"to UCS-2", 0, {notOpened}, [] { return KTMultiByteToUCS2(eucJp, 0, 0, text, &got.bytes, got.units.data()); }},
    {"to UTF-8", 0, converting, [] { return KTMultiByteToUTF8(eucJp, 0, 0, text, &got.bytes, got.text.data()); }},
    {"from UTF-8", 0, converting, [] { return KTUTF8ToMultiByte(eucJp, 0, 0, "\u3042", &got.bytes, got.text.data()); }},
    {"first unit", 0, {-1}, [] { return compared(KTMBCharToUChar(eucJp, 0xA4A2), 0x3042); }},
    {"length", 0, converting, [] { return compared(KTMultiByteStrclen(eucJp, text), 3); }},
    {"first", 0, {-1}, [] { return compared(KTFirstChar(eucJp, text), 'a'); }},
    {"copy", 0, {-1}, [] { return found(KTMultiByteStrncpy(got.text.data(), eucJp, text, 2)); }},
    {"upper", 0, converting, [] { return compared(KTMultiByteStrupr(eucJp, text, &got.bytes, got.text.data()), 4); }},
    {"find", 0, {-1}, [] { return found(KTMultiByteStrstr(eucJp, text, eucJp, "b")); }},
    {"find last", 0, {-1}, [] { return found(KTMultiByteStrrchr(eucJp, text, eucJp, 'b', got.text.data())); }},
    {"compare", 0, converting, [] { return KTMultiByteStrcmp(eucJp, "a", "utf-8", "a"); }},
    {"step", 0, {-1}, stepThroughText},
};

int lowestFreeDescriptor()
{
    const int descriptor = open("/dev/null", O_RDONLY);
    close(descriptor);
    return descriptor;
}

void writeFile(char *path, const std::string &bytes)
{
    const int file = mkstemp(path);
    ASSERT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(file);
}

class Faults : public testing::TestWithParam<Row>
{
protected:
    static void SetUpTestSuite()
    {
        const std::string xml = MessageFile().unit(2, placeholder("%s", "1"), note(std::string(700, 'n'))).xml();
        writeFile(messagePath, xml);
        MessageTable *table = nullptr;
        size_t size = 0;
        ASSERT_EQ(KTInit() + KTLoadMessages(messagePath, &table), 0);
        ASSERT_EQ(KTCompileMessages(table, &size, nullptr), KT_ERR_BUFFER_TOO_SMALL);
        compiled.resize(size);
        ASSERT_EQ(KTCompileMessages(table, &size, compiled.data()) + KTClean(), 0);
        writeFile(compiledPath, compiled);
    }
    static void TearDownTestSuite()
    {
        unlink(messagePath);
        unlink(compiledPath);
    }

    void SetUp() override
    {
        FakeZel::file(entityPath,
                      MessageFile()
                          .declaration("<!DOCTYPE xliff [<!ENTITY a '&b;&c;'><!ENTITY b '&c;'><!ENTITY c ''>]>")
                          .unit(1, "&a;")
                          .xml());
        FakeZel::file(sparsePath, MessageFile().unit(70000, "a").xml());
        FakeZel::file(longPath, MessageFile().declaration("<!--" + std::string(50000, ' ') + "-->").xml(200000));
        MessageFile file = MessageFile().unit(1, "%20select[1]").unit(100, "%d[1]");
        for (int id = 20; id <= 30; ++id)
            file.unit(id, "%100select[1]");
        FakeZel::file(selectorsPath, file.xml());
        const bool isStarted = !GetParam().isStartUp;
        ASSERT_EQ(isStarted ? KTInit() + KTPrepareFormat(ownForms, &ownTable, &prepared) +
                                  KTLoadMessages(selectorsPath, &selectors)
                            : 0,
                  0);
    }
    void TearDown() override
    {
        KTFreePrepared(std::exchange(prepared, nullptr));
        GetParam().isStartUp ? 0 : KTClean();
    }

    void runOnce(unsigned n, unsigned &failures, const std::function<void(unsigned)> &arm,
                 const std::function<unsigned()> &disarm, const std::function<std::set<int>()> &expected)
    {
        SCOPED_TRACE(GetParam().label + (": step " + std::to_string(n)));
        const Outstanding before = FakeZel::outstanding();
        const int descriptor = lowestFreeDescriptor();
        got = Outputs();
        arm(n);
        const int result = GetParam().call();
        if (result == 0)
            GetParam().isStartUp ? (void)KTClean() : got.release();
        else
            got.expectNothing();
        failures = disarm();
        EXPECT_EQ((failures > 0 ? expected() : std::set<int>{0}).count(result), 1u) << result;
        EXPECT_EQ(FakeZel::outstanding(), before);
        EXPECT_EQ(lowestFreeDescriptor(), descriptor) << "a file stays open";
    }
};

std::set<int> expectedOfPlatform(bool isStartUp)
{
    const Operation operation = FakeZel::lastFault();
    if (operation == Operation::FileOpen || operation == Operation::FileRead)
        return {FakeZel::defaultCode};
    return {isStartUp ? KT_ERR_NOT_INITIALIZED : operation == Operation::ParserCreate ? -1 : noMemory};
}

TEST_P(Faults, OfThePlatformAreReportedAndUndone)
{
    unsigned n = 0;
    for (unsigned failures = 1; failures > 0 && n < 1000;)
        runOnce(
            ++n, failures, [](unsigned step) { FakeZel::failNth(step); }, FakeZel::clearFaults,
            [] { return expectedOfPlatform(GetParam().isStartUp); });
    EXPECT_EQ(n - 1, GetParam().steps);
}

TEST_P(Faults, OfTheHeapAreReportedAndUndone)
{
    if (!HeapFaults::arePossible || GetParam().heapFailures.empty())
        return;
    const auto armHeap = [](unsigned step) { HeapFaults::arm(step); };
    unsigned n = 0;
    runOnce(1000, n, armHeap, HeapFaults::disarm, [] { return GetParam().heapFailures; }); // fills caches
    for (unsigned failures = 1; failures > 0 && n < 1000;)
    {
        runOnce(++n, failures, armHeap, HeapFaults::disarm, [] { return GetParam().heapFailures; });
        EXPECT_EQ(HeapFaults::outstanding(), 0) << n;
    }
    EXPECT_EQ(n == 1, GetParam().heapFailures == std::set<int>{0}) << "only what needs none is never refused";
}

/** Opens the catalog of a compiled file and of one that has to be parsed, and formats; the text. */
std::string catalogText()
{
    KTCatalogOptions options = {};
    options.structSize = sizeof options;
    options.languages = "de";
    options.onProblem = [](void *, const KTCatalogProblem *problem) { EXPECT_NE(*problem->text, '\0'); };
    KTCatalog *catalog = nullptr;
    const int result = KTOpenCatalog("d", "store", &options, &catalog);
    EXPECT_TRUE(result == 0 || (result == KT_ERR_NO_MEMORY && catalog == nullptr) || result == KT_ERR_NOT_INITIALIZED);
    std::string texts;
    for (const int64_t id : {2, 3, 4, 2}) // of German, of English, of the source, and known
    {
        const KTArgument argument = KT_UTF8("x");
        char line[40];
        size_t size = sizeof line;
        EXPECT_EQ(KTCatalogFormatUTF8(catalog, id, "source %s[1]", &size, line, &argument, 1), 0);
        texts += line + std::string("|");
    }
    KTCloseCatalog(catalog);
    return texts;
}

TEST(CatalogFaults, LeaveATextAndNothingElse)
{
    FakeZel::file("d/de/store.xlf", MessageFile().unit(2, "zwei %s[1]").xml());
    FakeZel::file("d/en/store.xlf", MessageFile().unit(3, "three %s[1]").xml());
    ASSERT_EQ(catalogText(), "zwei x|three x|source x|zwei x|"); // and fills caches
    const auto expectTexts = [](unsigned n) {
        const std::string texts = catalogText();
        EXPECT_EQ(std::count(texts.begin(), texts.end(), 'x'), 4) << n << texts;
    };
    const Outstanding before = FakeZel::outstanding();
    unsigned n = 0;
    do
    {
        FakeZel::failNth(++n);
        expectTexts(n);
        EXPECT_EQ(FakeZel::outstanding(), before) << n;
    } while (FakeZel::clearFaults() > 0 && n < 1000);
    EXPECT_GT(n, 30u);
    if (!HeapFaults::arePossible)
        return;
    n = 0;
    do
    {
        HeapFaults::arm(++n);
        expectTexts(n);
        EXPECT_EQ(HeapFaults::outstanding(), 0) << n;
    } while (HeapFaults::disarm() > 0 && n < 1000);
    EXPECT_GT(n, 20u);
}

/** Builds a table with a context, opens a format with it, and formats. @return what failed, or 0 and the text. */
int formatOwnContext(std::string &written)
{
    const KTOwnFunction give = [](void *, KTOwnCall *call) { return KTGiveText(call, *call->arguments); };
    KTOwnTable *const own = KTNewOwnTable();
    KTAddConversion(own, "own", utf8StrList, 0, give, &written,
                    [](void *ended) { static_cast<std::string *>(ended)->push_back('.'); });
    KTSetEncoder(own, KT_ARG_UTF8, give, nullptr, nullptr);
    KTCatalogOptions options = {};
    options.structSize = sizeof options;
    KTCatalog *catalog = nullptr;
    size_t size = 0;
    int result = KTFinishOwnTable(own, nullptr, KT_ENCODE_ALL, &options.table, &size, nullptr);
    if (result == 0)
        result = KTOpenCatalogFormat("%own[1]", &options, &catalog);
    std::array<char, 700> line = {};
    size = line.size();
    const KTArgument argument = KT_UTF8(longText.c_str());
    if (result == 0)
        result = KTCatalogFormatUTF8(catalog, 1, nullptr, &size, line.data(), &argument, 1);
    written = line.data() + written;
    KTCloseCatalog(catalog);
    KTFreeOwnTable(own);
    return result;
}

TEST(CatalogFaults, LeaveNothingOfTablesWithAContext)
{
    const auto expectTextOrResult = [](unsigned n) {
        std::string written;
        const int result = formatOwnContext(written);
        EXPECT_EQ(written, result == 0 ? longText + '.' : ".") << n;
        EXPECT_TRUE(result == 0 || result == KT_ERR_NO_MEMORY || result == KT_ERR_NOT_INITIALIZED)
            << n << ' ' << result;
        return result;
    };
    ASSERT_EQ(expectTextOrResult(0), 0);
    const Outstanding before = FakeZel::outstanding();
    unsigned n = 0;
    do
    {
        FakeZel::failNth(++n);
        expectTextOrResult(n);
        EXPECT_EQ(FakeZel::outstanding(), before) << n;
    } while (FakeZel::clearFaults() > 0 && n < 1000);
    EXPECT_GT(n, 9u);
    n = 0;
    do
    {
        HeapFaults::arm(++n);
        expectTextOrResult(n);
        EXPECT_EQ(HeapFaults::outstanding(), 0) << n;
    } while (HeapFaults::arePossible && HeapFaults::disarm() > 0 && n < 1000);
}

INSTANTIATE_TEST_SUITE_P(, Faults, testing::ValuesIn(rows), [](const auto &row) {
    std::string name = row.param.label;
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return std::isalnum(c) == 0; }), name.end());
    return name;
});

} // namespace
