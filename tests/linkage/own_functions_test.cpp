// A program that has a function of its own under every internal name of the library (own_functions.c, made from the
// list of exported names; each ends the program) still gets what the library promises.

#include "check.h"
#include "kelto.h"

#include <string>

extern "C" void startElement(); // the program's own, as a sample: it must be the one that this program would call

// One that the library does call, and that knows a single answer: it may change the name of the charset, no number.
extern "C" char *nl_langinfo(int)
{
    static char name[] = "UTF-8";
    return name;
}

namespace
{

constexpr char messageFile[] = R"(<xliff><file source-language="en" product-name="Example" product-version="1.0">
<header/><body>
<trans-unit id="1"><source>\tOn <x ts="%DT" id="1"/>: <x ts="%DND" id="2"/> <x ts="%EID" id="3"/> <x ts="%l" id="4"/>
<x ts="%X" id="5"/> <x ts="%6.1f" id="6"/> )"
                               R"(<x ts="%s" id="7"/><x ts="%U" id="8"/><x ts="%c" id="9"/></source></trans-unit>
</body></file></xliff>)";

std::string writeMessageFile()
{
    const char *const folder = std::getenv("TMPDIR");
    std::string path = std::string(folder != nullptr ? folder : "/tmp") + "/kelto-own-functions-XXXXXX";
    const int descriptor = mkstemp(path.data());
    CHECK(descriptor >= 0);
    std::FILE *const file = fdopen(descriptor, "w");
    CHECK(file != nullptr && std::fputs(messageFile, file) >= 0 && std::fclose(file) == 0);
    return path;
}

} // namespace

int main(int argc, char **)
{
    CHECK(KTInit() == 0);
    std::string path = writeMessageFile();
    char version[20];
    MessageTable *table = nullptr;
    const int versionResult = KTGetMsgFileVer(path.data(), version);
    const int loadResult = KTLoadMessages(path.data(), &table);
    std::remove(path.c_str());
    CHECK(versionResult == 0 && version == std::string("1.0"));
    CHECK(loadResult == 0);

    char *message = nullptr;
    CHECK(KTGetMessage(table, 1, &message) == 0 && message != nullptr);
    UCS2 text[200];
    unsigned long units = 200;
    CHECK(KTFormatString(nullptr, false, &units, text, message, "2006-05-17'T08:09:10Z", u"a.b", 0x1234, 5000000000L,
                         0xABC, 2.5, "s", u"u", 'c') == 0);
    char utf8[400];
    size_t bytes = sizeof utf8;
    CHECK(KTUCS2ToUTF8(text, &bytes, utf8) == 0);
    const std::string expected = "\tOn 05/17/2006 08:09:10: a.b ";
    CHECK(std::string(utf8).compare(0, expected.size(), expected) == 0);
    CHECK(std::string(utf8).find(" 5000000000\nABC    2.5 suc") != std::string::npos);
    CHECK(KTFreeMessages(table) == 0);
    CHECK(KTClean() == 0);

    if (argc > 1) // keeps the program's own function, which ends it, without calling it
        startElement();
    return 0;
}
