// The known ways to hurt an XML parser, or the program behind it, with a document; and what only looks like one.

#include "message/loading.h"

#include <array>
#include <cstdio>
#include <dlfcn.h>
#include <expat.h>
#include <fstream>
#include <pthread.h>
#include <ucontext.h>
#include <unistd.h>

namespace
{

class HostileXml : public MessageTest
{
};

struct Row
{
    const char *label;
    std::string xml;
    Loaded expected;
};

const Loaded loadedA = loaded("#1: 1=\"a\"");

void expectLoads(const std::vector<Row> &rows)
{
    for (const Row &row : rows)
    {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(load(row.xml), row.expected);
        EXPECT_TRUE(row.expected.result == 0 || FakeZel::blockSizes().empty())
            << "refused before memory is taken for it";
    }
}

std::string number(size_t value)
{
    return std::to_string(value);
}

/** Calls with 0 to n - 1 and joins the texts. */
template <typename Text> std::string repeat(size_t n, Text text)
{
    std::string all;
    for (size_t i = 0; i < n; ++i)
        all += text(i);
    return all;
}

std::string repeated(const std::string &text, size_t n)
{
    return repeat(n, [&](size_t) { return text; });
}

std::string entity(const std::string &name, const std::string &value)
{
    return "<!ENTITY " + name + " '" + value + "'>";
}

std::string withDeclarations(const std::string &declarations, const MessageFile &file)
{
    return "<!DOCTYPE xliff [" + declarations + "]>" + MessageFile(file).declaration("").xml();
}

std::string withDeclarations(const std::string &declarations, const std::string &source)
{
    return withDeclarations(declarations, MessageFile().unit(1, source));
}

/** e1 refers to e0, e2 to e1 and so on; declared from one end or from the other. */
std::string chain(size_t n, bool upwards)
{
    return entity("e0", "end") + repeat(n, [&](size_t i) {
               const size_t k = upwards ? i + 1 : n - i;
               return entity("e" + number(k), "&e" + number(k - 1) + ";");
           });
}

int version(const std::string &xml)
{
    FakeZel::file(memoryPath, xml);
    std::array<char, 20> text{};
    return KTGetMsgFileVer(memoryPath, text.data());
}

// ---- Entities ----

TEST_F(HostileXml, RefusesEntitiesThatExplodeAndNoOthers)
{
    const auto doubling = entity("e0", "lol") + repeat(40, [](size_t i) {
                              return entity("e" + number(i + 1), repeated("&e" + number(i) + ";", 2));
                          });
    const auto hidden = [](size_t n) {
        return withDeclarations(
            repeat(n, [](size_t i) { return entity("e" + number(i + 1), "&#38;x&#38;;&#38;e" + number(i) + ";"); }),
            "a");
    };
    const auto deepAndFlat = [](size_t n) {
        return withDeclarations(
            chain(60, true) + entity("f0", "&e60;&g;") + entity("g", "&e0;") +
                repeat(n, [](size_t i) { return entity("f" + number(i + 1), "&f" + number(i) + ";"); }),
            "a");
    };
    const auto followed = [](size_t n) {
        return withDeclarations(
            repeat(20000, [](size_t i) { return entity("e" + number(i), "&f0;"); }) +
                repeat(n, [](size_t i) { return entity("f" + number(i), "&f" + number(i + 1) + ";"); }),
            "a");
    };
    const std::string longEntity = entity("e", std::string(50000, 'x'));
    const std::string placeholders = repeated("<x ts=\"" + std::string(300, 'x') + "\" id=\"1\"/>", 300);
    expectLoads({
        {"nested", withDeclarations(doubling, "&e40;"), refused()},
        {"nested in an attribute", withDeclarations(doubling, "<x ts='&e40;' id='1'/>"), refused()},
        {"quadratic", withDeclarations(longEntity, repeated("&e;", 10000)), refused()},
        {"by placeholders", withDeclarations(entity("e", placeholders), repeated("&e;", 30000)), refused()},
        {"itself", withDeclarations(entity("e", "&e;"), "&e;"), refused()},
        {"itself by another", withDeclarations(entity("e", "&f;") + entity("f", "&e;"), "&e;"), refused()},
        {"9 MB of text", withDeclarations(longEntity, repeated("&e;", 180)),
         loaded("#1: 1=\"" + std::string(9000000, 'x') + "\"")},
        {"references to no other entity",
         withDeclarations(repeat(5000, [](size_t i) { return entity("e" + number(i), "&amp;&#38;lt;&#38;#60;"); }) +
                              entity("none", "&#38;;&#38;x"),
                          "&e7;"),
         loaded("#1: 1=\"&<<\"")},
        {"itself, in what the parser passes over",
         withDeclarations(entity("e", "<!-- &e; --><![CDATA[&e;]]><?e &e;?>a"), "&e;"), loaded("#1: 1=\"&e;a\"")},
        {"101 behind what the parser passes over",
         withDeclarations(chain(100, true) + entity("e", "<!-- > --><?e?><e/>&e100;"), "a"), refused()},
        {"shared", // on several ways to the same one, which is declared behind those that refer to it
         withDeclarations(entity("e", "&z;") + entity("b", "&d;") + entity("a", "&b;&d;") + entity("d", "&e;") +
                              entity("z", "!"),
                          "&a;"),
         loaded("#1: 1=\"!!\"")},
        {"100 behind what is no reference", hidden(100), loadedA},
        {"101 behind what is no reference", hidden(101), refused()},
        {"100 deep in one place, flat in another that is declared later", deepAndFlat(39), loadedA},
        {"101 deep in one place, flat in another that is declared later", deepAndFlat(40), refused()},
        {"5,000 that are flat",
         withDeclarations(repeat(5000, [](size_t i) { return entity("e" + number(i), "&f;[&f;"); }) + entity("f", "a"),
                          "&e7;"),
         loaded("#1: 1=\"a[a\"")},
        {"20,000 that are followed 60 times", followed(60), loadedA},
        {"20,000 that are followed 61 times", followed(61), refused()},
    });
}

TEST_F(HostileXml, LoadsCirclesOfEntitiesThatAreNotUsed)
{
    // Each of the circle refers to the next and to the first of a chain; the last closes it.
    const auto circle = [](size_t n, size_t chained, const std::string &source = "a") {
        return withDeclarations(repeat(n,
                                       [&](size_t i) {
                                           return entity("c" + number(i),
                                                         "&e" + number(chained) + ";&c" + number((i + 1) % n) + ";");
                                       }) +
                                    chain(chained, true),
                                source);
    };
    const auto manyCircles = [](size_t n) {
        return withDeclarations(repeat(n, [](size_t i) { return entity("c" + number(i), "&d" + number(i) + ";&g;"); }) +
                                    entity("g", repeated("&h;[&i;", 500)) +
                                    repeat(n, [](size_t i) { return entity("d" + number(i), "&c" + number(i) + ";"); }),
                                "a");
    };
    // Two circles, of 51 and of n + 1, become one by the last declaration.
    const auto joined = [](size_t n) {
        const auto next = [](const char *name, size_t i, size_t count) {
            return entity(name + number(i), i + 1 < count ? "&" + (name + number(i + 1)) + ";" : "&a;&b;");
        };
        return withDeclarations(entity("a", "&c0;") + repeat(50, [&](size_t i) { return next("c", i, 50); }) +
                                    repeat(n, [&](size_t i) { return next("d", i, n); }) + entity("b", "&d0;"),
                                "a");
    };
    const std::pair<const char *, std::string> loaded[] = {
        {"one", circle(1, 0)},
        {"100", circle(100, 0)},
        {"40 above 60", circle(40, 60)},
        {"100 of two", joined(48)},
        {"20,000 of 2", manyCircles(20000)},
    };
    for (const auto &[label, xml] : loaded)
    {
        EXPECT_EQ(load(xml), loadedA) << label;
        EXPECT_EQ(version(xml), 0) << label;
    }
    const std::pair<const char *, std::string> refusedOnes[] = {
        {"101", circle(101, 0)},
        {"41 above 60", circle(41, 60)},
        {"101 of two", joined(49)},
        {"used", circle(3, 0, "&c1;")},
        {"used in an attribute", circle(3, 0, "<x ts='&c1;' id='1'/>")},
        {"used by a default", withDeclarations(entity("e", "&e;") + "<!ATTLIST x ts CDATA '&e;'>", "a")},
    };
    for (const auto &[label, xml] : refusedOnes)
        EXPECT_EQ(load(xml), refused()) << label;
}

// Each step of the chain costs the parser stack: 30,000 of them end a process that has 8 MiB.
TEST_F(HostileXml, RefusesChainsOfEntitiesThatWouldExhaustTheStack)
{
    for (const auto &[n, result] :
         {std::pair<size_t, int>{100000, KT_ERR_BAD_MSG_FILE}, {101, KT_ERR_BAD_MSG_FILE}, {100, 0}})
        for (const bool upwards : {true, false})
            for (const char *source : {"&eN;", "<x ts='&eN;' id='1'/>"})
            {
                std::string used = source;
                const std::string xml = withDeclarations(chain(n, upwards), used.replace(used.find('N'), 1, number(n)));
                EXPECT_EQ(load(xml).result, result) << n << source;
                EXPECT_EQ(version(xml), result) << n << source;
            }
    EXPECT_EQ(load(withDeclarations("<!--" + std::string(100000, ' ') + "-->" + chain(100000, true), "a")), refused())
        << "behind a token that is read in long steps";
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which need stack themselves

TEST_F(HostileXml, ExpandsNoMoreThanTheStackOfAThreadBears)
{
    const auto run = [](void *) -> void * {
        MessageTable *table = nullptr;
        return reinterpret_cast<void *>(intptr_t{KTLoadMessages(memoryPath, &table)});
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 40 * 1024), 0);
    std::string results;
    for (size_t n = 10; n <= 100; n += 10)
    {
        FakeZel::file(memoryPath, withDeclarations(chain(n, true), "&e" + number(n) + ";"));
        pthread_t thread;
        void *result = nullptr;
        ASSERT_EQ(pthread_create(&thread, &attributes, run, nullptr), 0);
        pthread_join(thread, &result);
        results += result == nullptr ? "loaded " : "refused ";
    }
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(results.find("loaded loaded loaded "), 0u) << results;
    EXPECT_NE(results.find(" refused refused refused "), results.npos) << results;
}

TEST_F(HostileXml, ExpandsAsDeepAsAnywhereOnAStackThatTheSystemDoesNotKnow)
{
    static char stack[256 * 1024];
    static MessageTable *table = nullptr;
    FakeZel::file(memoryPath, withDeclarations(chain(100, true), "&e100;"));
    ucontext_t here, other;
    ASSERT_EQ(getcontext(&other), 0);
    other.uc_stack = {stack, 0, sizeof stack};
    other.uc_link = &here;
    makecontext(
        &other, [] { KTLoadMessages(memoryPath, &table); }, 0);
    ASSERT_EQ(swapcontext(&here, &other), 0);
    EXPECT_EQ(KTFreeMessages(table), 0);
}

#endif

TEST_F(HostileXml, ReadsNoExternalEntityFromAnywhere)
{
    const std::string secretPath = testing::TempDir() + "kelto-secret-" + number(static_cast<size_t>(getpid()));
    std::ofstream(secretPath) << "<!ENTITY e 'secret'>";
    const std::string url = "'file://" + secretPath + "'";
    const std::string external = "<!ENTITY e SYSTEM '" + secretPath + "'>";
    const Loaded withoutIt = loaded("#1: 1=\"ab\"");
    expectLoads({
        {"general, by path", withDeclarations(external, "a&e;b"), withoutIt},
        {"general, public", withDeclarations("<!ENTITY e PUBLIC 'p' " + url + ">", "a&e;b"), withoutIt},
        {"parameter", withDeclarations("<!ENTITY % p SYSTEM " + url + ">%p;", "a&e;b"), withoutIt},
        {"document type", "<!DOCTYPE xliff SYSTEM " + url + ">" + MessageFile().declaration("").unit(1, "a&e;b").xml(),
         withoutIt},
        {"in an attribute", withDeclarations(external, "<x ts='&e;' id='1'/>"), refused()},
    });
    EXPECT_EQ(FakeZel::count(Operation::FileOpen), 1u) << "the message file alone";
    EXPECT_EQ(std::remove(secretPath.c_str()), 0);
}

// ---- Attributes, depth ----

std::string attributes(const std::string &element, size_t n, const std::string &rest = " CDATA 'v'")
{
    return "<!ATTLIST " + element + repeat(n, [&](size_t i) { return " a" + number(i) + rest; }) + ">";
}

TEST_F(HostileXml, TakesDeclaredAttributesAsLongAsTheyCostLittle)
{
    const MessageFile a = MessageFile().unit(1, "a");
    const auto notes = [](size_t n) { return MessageFile().unit(1, "a", repeated("<note/>", n)); };
    const auto units = [](size_t n) { return repeated("<x id='1'/>", n); };
    const std::string longText = "<!ATTLIST x ts CDATA '" + std::string(20000, 'x') + "'>";
    const std::string longId = "<!ATTLIST trans-unit id CDATA '" + std::string(1000000, '0') + "1'>";
    expectLoads({
        {"defaults",
         withDeclarations("<!ATTLIST trans-unit id CDATA '9'><!ATTLIST x ts CDATA '%s'>",
                          MessageFile().unit("", "a<x id='1'/>")),
         loaded("#9: 9=\"a%s[1]\"")},
        {"16,000 of an element", withDeclarations(attributes("note", 16000), notes(10)), loadedA},
        {"30,000 of one", withDeclarations(attributes("note", 30000), a), refused()},
        {"30,000 of two", withDeclarations(attributes("note", 15000) + attributes("header", 15000), a), loadedA},
        {"100,000 without a value", withDeclarations(attributes("note", 100000, " CDATA #IMPLIED"), a), loadedA},
        {"30,000 that identify", withDeclarations(attributes("note", 30000, " ID #IMPLIED"), a), refused()},
        {"given to many elements", withDeclarations(attributes("note", 2000), notes(100000)), refused()},
        {"10 MB of text",
         withDeclarations(longText, units(500)),
         {0, loaded("#1: 1=\"").content + repeated(std::string(20000, 'x') + "[1]", 500) + "\""}},
        {"40 MB of text, and as much from an entity",
         withDeclarations(longText + entity("e", std::string(100000, 'e')), units(2000) + repeated("&e;", 400)),
         refused()},
        {"long numbers",
         withDeclarations(longId, MessageFile().body(repeated("<trans-unit><source/></trans-unit>", 400))), refused()},
    });
    // Text of 20,003 bytes each, against 64 MiB, and against 100 times the file.
    for (const auto &[n, padding, result] : {std::tuple{3354, 0, 0},
                                             {3355, 0, KT_ERR_BAD_MSG_FILE},
                                             {3600, 664000, 0},
                                             {3600, 656000, KT_ERR_BAD_MSG_FILE}})
    {
        const std::string comment = "<!--" + std::string(static_cast<size_t>(padding), ' ') + "-->";
        FakeZel::file(memoryPath, withDeclarations(longText + comment, units(static_cast<size_t>(n))));
        MessageTable *table = nullptr;
        EXPECT_EQ(KTLoadMessages(memoryPath, &table), result) << n << " in " << padding;
        KTFreeMessages(table);
    }
    EXPECT_EQ(version(withDeclarations(attributes("note", 30000), a)), KT_ERR_BAD_MSG_FILE);
    const std::string manyNotes = withDeclarations(attributes("note", 2000), notes(100000));
    for (const auto &[n, result] : {std::pair<size_t, int>{1000, 0}, {100000, KT_ERR_BAD_MSG_FILE}})
        EXPECT_EQ(version("<!DOCTYPE r [" + attributes("note", 2000) + "]><r>" + repeated("<note/>", n) +
                          "<file product-version='1'/></r>"),
                  result);
    FakeZel::file(memoryPath, a.xml()).thenBytes(manyNotes);
    EXPECT_EQ(loadFile(), refusedLate()) << "in either pass";
    FakeZel::file(memoryPath, withDeclarations("<!ATTLIST x id CDATA '" + std::string(1000000, '1') + "'>",
                                               repeated("<x ts='a'/>", 1000)));
    EXPECT_EQ(loadFile(true), loaded("#1: 1=\"" + std::string(1000, 'a') + "\"")) << "positions are not read";
    const std::string many = repeat(16000, [](size_t i) { return " a" + number(i) + "='v'"; });
    EXPECT_EQ(load(MessageFile().unit(many + " id='7'", "a").xml()), loaded("#7: 7=\"a\""));
}

TEST_F(HostileXml, Survives100000NestedElements)
{
    constexpr size_t depth = 100000;
    const std::string inside = repeated("<note>", depth) + repeated("</note>", depth);
    EXPECT_EQ(load(MessageFile().unit(1, "a", inside).xml()), refused());
    const std::string file = "<file product-version='1.2'/>";
    EXPECT_EQ(version(repeated("<a>", depth) + file + repeated("</a>", depth)), 0);
}

// ---- Long tokens ----

/** Characters of two bytes that parsers have looked at. Theirs is an encoding of this test's own, which counts. */
size_t charactersSeen = 0;
bool isCounting = false;
thread_local std::string deferrals; // as parsers of this thread were told

int countCharacter(void *, const char *)
{
    ++charactersSeen;
    return u'a';
}

int countingEncoding(void *, const XML_Char *, XML_Encoding *encoding)
{
    for (int byte = 0; byte < 256; ++byte)
        encoding->map[byte] = byte < 128 ? byte : -2;
    encoding->convert = countCharacter;
    return XML_STATUS_OK;
}

template <typename Function> Function *real(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" void XML_SetElementHandler(XML_Parser parser, XML_StartElementHandler start, XML_EndElementHandler end)
{
    real<decltype(XML_SetElementHandler)>("XML_SetElementHandler")(parser, start, end);
    if (isCounting)
        XML_SetUnknownEncodingHandler(parser, countingEncoding, nullptr);
}

extern "C" XML_Bool XML_SetReparseDeferralEnabled(XML_Parser parser, XML_Bool enabled)
{
    deferrals += enabled == XML_FALSE ? "off " : "on ";
    auto *const next = real<decltype(XML_SetReparseDeferralEnabled)>("XML_SetReparseDeferralEnabled");
    return next != nullptr ? next(parser, enabled) : XML_TRUE;
}

namespace
{

TEST_F(HostileXml, ReadsALongTokenAnewOnlyWithinABudget)
{
    constexpr size_t megabyte = 1000000;
    for (const auto &[before, after] : {std::pair{"<!--", "-->"}, {"<note a='", "'/>"}, {"<note>", "</note>"}})
    {
        const std::string xml = MessageFile()
                                    .declaration("<?xml version='1.0' encoding='counted'?>")
                                    .unit(1, "", before + std::string(megabyte, '\xC3') + after)
                                    .xml();
        charactersSeen = 0;
        isCounting = true;
        EXPECT_EQ(load(xml).result, 0) << before;
        isCounting = false;
        EXPECT_LE(charactersSeen, 2 * 18 * megabyte) << before << ": 33 bytes each time, both passes together";
    }
    const auto comment = [](size_t bytes) {
        return MessageFile().declaration("<!--" + std::string(bytes - 7, ' ') + "-->").unit(1, "a").xml();
    };
    constexpr size_t longest = size_t{24} << 20;
    expectLoads({{"24 MiB", comment(longest), loadedA}, {"more", comment(longest + 600), refused()}});
}

TEST_F(HostileXml, HearsOfALongTokenInTheChunkOfItsEnd)
{
    const std::string comment = "<!--" + std::string(5200, ' ') + "-->";
    const MessageFile file = MessageFile().declaration(comment).header(std::string(600, ' ')).unit(40, "<fault>");
    EXPECT_EQ(version(file.xml(7000)), 0) << "a licence, and a fault behind the version";
    EXPECT_EQ(version(MessageFile(file).attribute("product-name", std::string(4500, 'n')).xml(12000)), 0);

    // Chunks are counted from 1; the one behind the token's last cannot be read.
    constexpr size_t chunkBytes = 300;
    const auto failBehind = [](const std::string &xml, const std::string &token) {
        FakeZel::file(memoryPath, xml);
        FakeZel::clearFaults();
        FakeZel::fail(Operation::FileRead,
                      static_cast<unsigned>((xml.find(token) + token.size() - 1) / chunkBytes + 2));
    };
    for (size_t bytes = 5000; bytes < 40000; bytes += 7001)
    {
        std::array<char, 20> text{};
        failBehind(comment + "<xliff><file product-version='1.0' product-name='" + std::string(bytes, 'n') + "'>" +
                       std::string(1000, ' '),
                   "n'>");
        EXPECT_EQ(KTGetMsgFileVer(memoryPath, text.data()), 0) << bytes;
        failBehind(
            MessageFile().unit(1, placeholder(std::string(bytes, 't'), "1"), "<bad/>" + std::string(1000, ' ')).xml(),
            "<bad/>");
        EXPECT_EQ(loadFile(), refused()) << bytes;
    }
    FakeZel::clearFaults();
    deferrals.clear();
    EXPECT_EQ(load(comment + MessageFile().declaration("").unit(1, "a").xml()), loadedA);
    EXPECT_EQ(version("<file product-version='1'/>"), 0);
    EXPECT_EQ(deferrals, "off off off ");
}

} // namespace
