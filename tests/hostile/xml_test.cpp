// The known ways to hurt an XML parser, or the program behind it, with a document.

#include "message/loading.h"

#include <array>
#include <cstdio>
#include <dlfcn.h>
#include <expat.h>
#include <fstream>
#include <unistd.h>

namespace
{

class HostileXml : public MessageTest
{
};

std::string withDeclarations(const std::string &declarations, const std::string &source)
{
    return "<!DOCTYPE xliff [" + declarations + "]>" + MessageFile().declaration("").unit(1, source).xml();
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

int version(const std::string &xml)
{
    FakeZel::file(memoryPath, xml);
    std::array<char, 20> text{};
    return KTGetMsgFileVer(memoryPath, text.data());
}

// ---- Entities ----

TEST_F(HostileXml, RefusesEntitiesThatExplode)
{
    const auto doubling = repeat(
        40, [](size_t i) { return "<!ENTITY e" + number(i + 1) + " '&e" + number(i) + ";&e" + number(i) + ";'>"; });
    struct Row
    {
        const char *label;
        std::string xml;
    };
    const std::string longEntity = "<!ENTITY e '" + std::string(100000, 'x') + "'>";
    for (const Row &row : {
             Row{"nested", withDeclarations("<!ENTITY e0 'lol'>" + doubling, "&e40;")},
             Row{"nested in an attribute",
                 withDeclarations("<!ENTITY e0 'lol'>" + doubling, placeholder("%s", "1") + "<x ts='&e40;' id='1'/>")},
             Row{"quadratic", withDeclarations(longEntity, repeated("&e;", 10000))},
             Row{"quadratic by placeholders in an entity",
                 withDeclarations("<!ENTITY e '" + repeated("<x ts=\"" + std::string(300, 'x') + "\" id=\"1\"/>", 300) +
                                      "'>",
                                  repeated("&e;", 30000))},
             Row{"itself", withDeclarations("<!ENTITY e '&f;'><!ENTITY f '&e;'>", "&e;")},
         })
    {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(load(row.xml), refused());
        EXPECT_TRUE(blockSizes().empty()) << "refused before memory is taken for it";
    }
    EXPECT_EQ(load(withDeclarations("<!ENTITY e 'lol'>", repeated("&e;", 1000))),
              loaded("#1: 1=\"" + repeated("lol", 1000) + "\""));
}

// Each step of the chain costs the parser stack: 30,000 of them end a process that has 8 MiB.
TEST_F(HostileXml, RefusesChainsOfEntitiesThatWouldExhaustTheStack)
{
    const auto chain = [](size_t n) {
        return repeat(n, [&](size_t i) {
            return std::string("<!ENTITY e") + number(i) + " '&e" + number(i == 0 ? n : i - 1) + ";'>";
        });
    };
    constexpr size_t many = 100000, few = 90;
    for (const auto &[n, result] : {std::pair{many, int{KT_ERR_BAD_MSG_FILE}}, {few, 0}})
    {
        const std::string last = "e" + number(n - 1) + ";";
        const std::string declarations = "<!ENTITY e" + number(n) + " 'end'>" + chain(n);
        for (const std::string &xml : {withDeclarations(declarations, "&" + last),
                                       withDeclarations(declarations, "<x ts='&" + last + "' id='1'/>")})
        {
            EXPECT_EQ(load(xml).result, result) << n;
            EXPECT_EQ(version(xml), result) << n;
        }
    }
    EXPECT_EQ(load(withDeclarations("<!--" + std::string(100000, ' ') + "-->" + "<!ENTITY e100000 'end'>" + chain(many),
                                    "&e99999;")),
              refused())
        << "behind a token that parsers hold back until it is complete";
}

TEST_F(HostileXml, ReadsNoExternalEntityFromAnywhere)
{
    const std::string secretPath = testing::TempDir() + "kelto-secret-" + number(static_cast<size_t>(getpid()));
    std::ofstream(secretPath) << "<!ENTITY e 'secret'>";
    const std::string url = "file://" + secretPath;
    const std::string external = "<!ENTITY e SYSTEM '" + url + "'>";
    struct Row
    {
        const char *label;
        std::string xml, message;
    };
    for (const Row &row : {
             Row{"general, by URL", withDeclarations(external, "a&e;b"), "ab"},
             Row{"general, by path", withDeclarations("<!ENTITY e SYSTEM '" + secretPath + "'>", "a&e;b"), "ab"},
             Row{"general, public", withDeclarations("<!ENTITY e PUBLIC 'p' '" + url + "'>", "a&e;b"), "ab"},
             Row{"parameter", withDeclarations("<!ENTITY % p SYSTEM '" + url + "'>%p;", "a&e;b"), "ab"},
             Row{"document type",
                 "<!DOCTYPE xliff SYSTEM '" + url + "'>" + MessageFile().declaration("").unit(1, "a&e;b").xml(), "ab"},
         })
    {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(load(row.xml), loaded("#1: 1=\"" + row.message + "\""));
        EXPECT_EQ(FakeZel::count(Operation::FileOpen), 1u) << "the message file alone";
    }
    EXPECT_EQ(load(withDeclarations(external, "<x ts='&e;' id='1'/>")), refused()) << "in an attribute";
    EXPECT_EQ(std::remove(secretPath.c_str()), 0);
}

// ---- Attributes ----

TEST_F(HostileXml, TakesDefaultAttributesAndLimitsThem)
{
    const std::string unit = "<trans-unit><source>a<x id='1'/></source></trans-unit>";
    const auto withBody = [](const std::string &declarations, const std::string &body) {
        return "<!DOCTYPE xliff [" + declarations + "]>" + MessageFile().declaration("").body(body).xml();
    };
    EXPECT_EQ(load(withBody("<!ATTLIST trans-unit id CDATA '9'><!ATTLIST x ts CDATA '%s'>", unit)),
              loaded("#9: 9=\"a%s[1]\""));

    const auto attributes = [](size_t n) {
        return repeat(n, [](size_t i) { return " a" + number(i) + " CDATA 'v'"; });
    };
    EXPECT_EQ(load(withBody("<!ATTLIST note" + attributes(200) + ">", "")).result, 0);
    EXPECT_EQ(load(withBody("<!ATTLIST note" + attributes(5000) + ">", "")), refused())
        << "each would be given to each element";

    const std::string longText = "<!ATTLIST x ts CDATA '" + std::string(20000, 'x') + "'>";
    const auto units = [](size_t n) {
        return "<trans-unit id='1'><source>" + repeated("<x id='1'/>", n) + "</source></trans-unit>";
    };
    EXPECT_EQ(load(withBody(longText, units(100))).result, 0) << "2 MB of text";
    EXPECT_EQ(load(withBody(longText, units(5000))), refused()) << "100 MB of text in a file of 75 KB";
    EXPECT_TRUE(blockSizes().empty()) << "refused before memory is taken for it";
}

TEST_F(HostileXml, Takes16000Attributes)
{
    const std::string attributes = repeat(16000, [](size_t i) { return " a" + number(i) + "='v'"; });
    EXPECT_EQ(load(MessageFile().unit(attributes + " id='7'", "text").xml()), loaded("#7: 7=\"text\""));
    EXPECT_EQ(load(MessageFile().unit(attributes + " a8000='v' id='7'", "text").xml()), refused())
        << "one of them twice";
}

// ---- Depth ----

TEST_F(HostileXml, Survives100000NestedElements)
{
    constexpr size_t depth = 100000;
    const std::string inside = repeated("<note>", depth) + repeated("</note>", depth);
    EXPECT_EQ(load(MessageFile().unit(1, "a", inside).xml()), refused());
    const std::string file = "<file product-version='1.2'>";
    EXPECT_EQ(version(repeated("<a>", depth) + file), KT_ERR_BAD_MSG_FILE) << "no end of the document";
    EXPECT_EQ(version(repeated("<a>", depth) + file + "</file>" + repeated("</a>", depth)), 0);
    EXPECT_EQ(
        load(withDeclarations("<!ELEMENT a " + std::string(depth, '(') + "b" + std::string(depth, ')') + ">", "a")),
        loaded("#1: 1=\"a\""));
}

// ---- Encodings ----

TEST_F(HostileXml, RefusesMalformedText)
{
    const auto utf16 = [](const std::u16string &inserted) {
        std::u16string wide = u"\uFEFF";
        for (const char c : MessageFile().declaration("").unit(1, "@").xml())
            wide += c == '@' ? inserted : std::u16string(1, static_cast<char16_t>(c));
        std::string bytes;
        for (const char16_t unit : wide)
            bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
        return bytes;
    };
    EXPECT_EQ(load(utf16(u"\U0001F600")), loaded("#1: 1=\"\xF0\x9F\x98\x80\""));
    EXPECT_EQ(load(utf16(std::u16string(1, char16_t{0xD83D}))), refused()) << "half a pair";
    EXPECT_EQ(load(utf16(std::u16string(1, char16_t{0xDE00}))), refused()) << "the other half";
    EXPECT_EQ(load(utf16(u"a") + "x"), refused()) << "half a unit at the end";

    for (const char *bytes : {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xE0\x80\x80", "\xE2\x82",
                              "\xED\xA0\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF0\x9F\x98",
                              "\xF8\x88\x80\x80\x80", "\xFE", "\xFF", "\xEF\xBF\xBF"})
        for (const std::string &xml :
             {MessageFile().unit(1, bytes).xml(),
              MessageFile().unit(1, "<x ts='" + std::string(bytes) + "' id='1'/>").xml(),
              MessageFile().attribute("product-name", bytes).xml(), MessageFile().unit(1, "", note(bytes)).xml()})
            EXPECT_EQ(load(xml), refused()) << xml;
    for (const char *reference : {"&#xD800;", "&#xDFFF;", "&#xFFFE;", "&#x110000;", "&#99999999999;", "&#1;"})
        EXPECT_EQ(load(MessageFile().unit(1, reference).xml()), refused()) << reference;
}

TEST_F(HostileXml, RefusesEncodingsDeclaredFalsely)
{
    const auto declaring = [](const char *encoding) {
        return MessageFile().declaration("<?xml version='1.0' encoding='" + std::string(encoding) + "'?>");
    };
    for (const char *encoding : {"UTF-16", "UTF-16LE", "UTF-32", "none", "", "UTF-8\xFF"})
        EXPECT_EQ(load(declaring(encoding).unit(1, "a").xml()), refused()) << encoding;
    EXPECT_EQ(load(declaring("US-ASCII").unit(1, "\xC3\xA9").xml()), refused());
    EXPECT_EQ(load("\xEF\xBB\xBF" + declaring("UTF-16").unit(1, "a").xml()), refused());
    EXPECT_EQ(load(declaring("ISO-8859-1").unit(1, "\xC3\xA9").xml()), loaded("#1: 1=\"\xC3\x83\xC2\xA9\""))
        << "every byte is a character there";
}

// ---- Work ----

/** Characters of two bytes that parsers have looked at. Theirs is an encoding of this test's own, which counts. */
size_t charactersSeen = 0;
bool isCounting = false;

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

/** How often characters were looked at while the document loaded. */
size_t countWork(const std::string &xml)
{
    isCounting = true;
    charactersSeen = 0;
    EXPECT_EQ(load(xml).result, 0);
    isCounting = false;
    return charactersSeen;
}

} // namespace

extern "C" void XML_SetElementHandler(XML_Parser parser, XML_StartElementHandler start, XML_EndElementHandler end)
{
    static const auto real =
        reinterpret_cast<decltype(&XML_SetElementHandler)>(dlsym(RTLD_NEXT, "XML_SetElementHandler"));
    real(parser, start, end);
    if (isCounting)
        XML_SetUnknownEncodingHandler(parser, countingEncoding, nullptr);
}

namespace
{

TEST_F(HostileXml, RefusesATokenOfMoreThan32MiB)
{
    EXPECT_EQ(load(MessageFile().declaration("<!--" + std::string(33 << 20, ' ') + "-->").unit(1, "a").xml()),
              refused());
    EXPECT_TRUE(blockSizes().empty());
}

TEST_F(HostileXml, ATokenOfAMegabyteIsNotReadAnewWithEveryChunk)
{
    const auto withToken = [](const std::string &before, size_t bytes, const std::string &after) {
        return MessageFile()
            .declaration("<?xml version='1.0' encoding='counted'?>")
            .unit(1, "", before + std::string(bytes, '\xC3') + after)
            .xml();
    };
    constexpr size_t megabyte = 1000000;
    for (const auto &[before, after] : {std::pair{"<!--", "-->"},
                                        {"<note a='", "'/>"},
                                        {"<?p ", "?>"},
                                        {"<note>", "</note>"},
                                        {"<note><![CDATA[", "]]></note>"}})
    {
        SCOPED_TRACE(before);
        EXPECT_LE(countWork(withToken(before, megabyte, after)), 10 * megabyte) << "both passes together";
    }
}

} // namespace
