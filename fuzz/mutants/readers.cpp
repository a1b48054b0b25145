#include "mutants/reader.h"

#include "kelto.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <libintl.h>
#include <new>
#include <nl_types.h>
#include <sstream>
#include <unicode/ures.h>
#ifdef KELTO_HAS_BOOST_LOCALE
#include <boost/locale.hpp>
#endif

void consume(const void *text, size_t bytes)
{
    static volatile unsigned sum;
    for (size_t i = 0; i < bytes; ++i)
        sum = sum + static_cast<const unsigned char *>(text)[i];
}

void writeFile(const std::string &path, const std::string &bytes)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string messageText(unsigned number)
{
    constexpr const char *texts[] = {"The file could not be opened.",
                                     "Gr\xC3\xBC\xC3\x9F"
                                     "e aus \xE6\x9D\xB1\xE4\xBA\xAC",
                                     "%s[1] of %d[2] done", "Line one\nline two", ""};
    return texts[number % 5] + (" (" + std::to_string(number) + ")");
}

std::string messageKey(unsigned number)
{
    return "m" + std::to_string(number);
}

namespace
{

bool compile(const std::string &command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

void replaceAll(std::string &text, const std::string &from, const std::string &to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

/** The messages, each in a line of the catalog's source. */
template <typename Line> std::string lines(Line line)
{
    std::string source;
    for (unsigned number = 1; number <= messageCount; ++number)
    {
        std::string text = messageText(number);
        replaceAll(text, "\n", "\\n");
        source += line(number, text);
    }
    return source;
}

// ---- Kelto ----

bool makeKelto(const std::string &directory)
{
    writeFile(directory + "/messages.xlf",
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xliff version=\"1.2\">\n<file source-language=\"en-US\" "
              "product-name=\"Example\" product-version=\"1.0\">\n<header/>\n<body>\n" +
                  lines([](unsigned number, std::string text) {
                      replaceAll(text, "%s[1]", R"(<x ts="%s" id="1"/>)");
                      replaceAll(text, "%d[2]", R"(<x ts="%d" id="2"/>)");
                      return "<trans-unit id=\"" + std::to_string(number) + "\"><source>" + text +
                             "</source></trans-unit>\n";
                  }) +
                  "</body>\n</file>\n</xliff>\n");
    return true;
}

/** A damaged number may be huge; the numbers above this one have no messages but the highest. */
constexpr unsigned readOneByOne = 100000;

Outcome readKelto(const std::string &directory)
{
    [[maybe_unused]] static const int started = KTInit();
    std::string path = directory + "/messages.xlf";
    MessageTable *table = nullptr;
    const int result = KTLoadMessages(path.data(), &table);
    if (result != 0)
        return result == KT_ERR_NO_MEMORY ? Outcome::noMemory : Outcome::refused;
    char *message = nullptr;
    for (unsigned id = 1; id <= readOneByOne && KTGetMessage(table, id, &message) == 0; ++id)
        if (message != nullptr)
            consume(message, static_cast<size_t>(KTMsgLen(message)) + 2);
    return KTFreeMessages(table) == 0 ? Outcome::loaded : Outcome::unknown;
}

// ---- ICU's resource bundles ----

bool makeResources(const std::string &directory)
{
    writeFile(directory + "/xx.txt", "xx {\n" + lines([](unsigned number, const std::string &text) {
                                         return messageKey(number) + " { \"" + text + "\" }\n";
                                     }) + "}\n");
    return compile("genrb -d " + directory + " " + directory + "/xx.txt");
}

Outcome readResources(const std::string &directory)
{
    UErrorCode status = U_ZERO_ERROR;
    UResourceBundle *const bundle = ures_openDirect(directory.c_str(), "xx", &status);
    if (U_FAILURE(status))
        return status == U_MEMORY_ALLOCATION_ERROR ? Outcome::noMemory : Outcome::refused;
    for (unsigned number = 1; number <= messageCount; ++number)
    {
        int32_t length = 0;
        status = U_ZERO_ERROR;
        const UChar *const text = ures_getStringByKey(bundle, messageKey(number).c_str(), &length, &status);
        if (U_SUCCESS(status))
            consume(text, static_cast<size_t>(length) * sizeof *text);
    }
    ures_close(bundle);
    return Outcome::loaded;
}

// ---- .mo files, by the C library and by Boost.Locale ----

bool makeMo(const std::string &directory)
{
    writeFile(directory + "/messages.po",
              "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n\"Plural-Forms: nplurals=2; "
              "plural=n != 1;\\n\"\n" +
                  lines([](unsigned number, const std::string &text) {
                      return "msgid \"" + messageKey(number) + "\"\nmsgstr \"" + text + "\"\n";
                  }));
    return compile("mkdir -p " + directory + "/xx/LC_MESSAGES && msgfmt -o " + directory +
                   "/xx/LC_MESSAGES/messages.mo " + directory + "/messages.po");
}

Outcome readByGettext(const std::string &directory)
{
    setenv("LANGUAGE", "xx", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    bindtextdomain("messages", directory.c_str());
    textdomain("messages");
    bool isTranslated = false;
    for (unsigned number = 1; number <= messageCount; ++number)
    {
        const std::string key = messageKey(number);
        const char *const text = gettext(key.c_str());
        isTranslated = isTranslated || text != key.c_str();
        consume(text, std::strlen(text) + 1);
    }
    return isTranslated ? Outcome::loaded : Outcome::refused;
}

bool makeMoForBoost(const std::string &directory)
{
#ifdef KELTO_HAS_BOOST_LOCALE
    return makeMo(directory);
#else
    return directory.empty(); // it never is
#endif
}

Outcome readByBoost([[maybe_unused]] const std::string &directory)
{
#ifdef KELTO_HAS_BOOST_LOCALE
    try
    {
        boost::locale::generator generate;
        generate.add_messages_path(directory);
        generate.add_messages_domain("messages");
        const std::locale locale = generate("xx.UTF-8");
        bool isTranslated = false;
        for (unsigned number = 1; number <= messageCount; ++number)
        {
            const std::string text = boost::locale::translate(messageKey(number)).str(locale);
            isTranslated = isTranslated || text != messageKey(number);
            consume(text.data(), text.size());
        }
        return isTranslated ? Outcome::loaded : Outcome::refused;
    }
    catch (const std::bad_alloc &)
    {
        return Outcome::noMemory;
    }
    catch (const std::exception &)
    {
        return Outcome::refused;
    }
#else
    return Outcome::refused;
#endif
}

// ---- catgets ----

bool makeCat(const std::string &directory)
{
    writeFile(directory + "/messages.msg", "$set 1\n" + lines([](unsigned number, const std::string &text) {
                                               return std::to_string(number) + " " + text + "\n";
                                           }));
    return compile("gencat " + directory + "/messages.cat " + directory + "/messages.msg");
}

Outcome readCat(const std::string &directory)
{
    const nl_catd catalog = catopen((directory + "/messages.cat").c_str(), 0);
    if (catalog == reinterpret_cast<nl_catd>(-1))
        return Outcome::refused;
    for (unsigned number = 1; number <= messageCount; ++number)
    {
        const char *const text = catgets(catalog, 1, static_cast<int>(number), "");
        consume(text, std::strlen(text) + 1);
    }
    catclose(catalog);
    return Outcome::loaded;
}

} // namespace

const Reader keltoReader = {"kelto", "XLIFF", "messages.xlf", makeKelto, readKelto};

const Reader peerReaders[] = {
    {"icu", ".res", "xx.res", makeResources, readResources},
    {"gettext", ".mo", "xx/LC_MESSAGES/messages.mo", makeMo, readByGettext},
    {"boost", ".mo", "xx/LC_MESSAGES/messages.mo", makeMoForBoost, readByBoost},
    {"catgets", ".cat", "messages.cat", makeCat, readCat},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};
