// Loading a message file, beside what two passes of the XML parser cost by themselves.

#include "workload.h"

#include "kelto.h"

#include <expat.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nl_types.h>

namespace bench
{
namespace
{

/** What the contenders are compared by: how many messages there are. */
std::string_view answer(std::string &text, int messages)
{
    text = std::to_string(messages);
    return text;
}

std::unique_ptr<Job> keltoLoad(const char *file, unsigned int messages)
{
    return job([path = catalog(file), messages, text = std::string()]() mutable {
        MessageTable *table = nullptr;
        char *last = nullptr;
        KTLoadMessages(path.data(), &table);
        const bool complete = KTGetMessage(table, messages, &last) == 0 && last != nullptr &&
                              KTGetMessage(table, messages + 1, &last) == KT_ERR_INVALID_MSG_ID;
        KTFreeMessages(table);
        return answer(text, complete ? static_cast<int>(messages) : -1);
    });
}

/** The same messages compiled; the catalog is written once, beside the others. */
std::string compiled(const char *file)
{
    std::string path = catalog(file);
    MessageTable *table = nullptr;
    size_t bytes = 0;
    require(KTLoadMessages(path.data(), &table) == 0, "a message file cannot be loaded");
    KTCompileMessages(table, &bytes, nullptr);
    std::string data(bytes, '\0');
    require(KTCompileMessages(table, &bytes, data.data()) == 0, "a message file cannot be compiled");
    KTFreeMessages(table);
    path += ".ktc";
    std::ofstream(path, std::ios::binary) << data;
    return path;
}

std::unique_ptr<Job> compiledLoad(const char *file, unsigned int messages)
{
    return job([path = compiled(file), messages, text = std::string()]() mutable {
        MessageTable *table = nullptr;
        char *last = nullptr;
        KTLoadCompiledMessages(path.c_str(), &table);
        const bool complete = KTGetMessage(table, messages, &last) == 0 && last != nullptr;
        KTFreeMessages(table);
        return answer(text, complete ? static_cast<int>(messages) : -1);
    });
}

/** Bare expat, twice, in chunks of 300 bytes from memory, with the three handlers of a loader, doing nothing. */
class ExpatPasses
{
public:
    explicit ExpatPasses(const char *file)
    {
        std::ifstream input(catalog(file), std::ios::binary);
        m_document.assign(std::istreambuf_iterator<char>(input), {});
        require(!m_document.empty(), "a message file cannot be read");
    }
    /** Parses once; the elements seen that a loader takes for a message. */
    int parse()
    {
        constexpr size_t chunkBytes = 300;
        int messages = 0;
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &messages);
        XML_SetElementHandler(parser, start, end);
        XML_SetCharacterDataHandler(parser, text);
        XML_Status status = XML_STATUS_OK;
        for (size_t at = 0; at <= m_document.size() && status == XML_STATUS_OK; at += chunkBytes)
        {
            const size_t length = std::min(chunkBytes, m_document.size() - at);
            status = XML_Parse(parser, m_document.data() + at, static_cast<int>(length), length < chunkBytes);
        }
        XML_ParserFree(parser);
        require(status == XML_STATUS_OK, "expat rejects a message file");
        return messages;
    }

private:
    static void start(void *messages, const char *name, const char **)
    {
        if (name[0] == 't')
            ++*static_cast<int *>(messages);
    }
    static void end(void *, const char *) {}
    static void text(void *, const char *, int) {}

    std::string m_document;
};

std::unique_ptr<Job> expatLoad(const char *file)
{
    return job([passes = ExpatPasses(file), text = std::string()]() mutable {
        passes.parse();
        return answer(text, passes.parse());
    });
}

const Register kelto2000("W6/2000", kelto, [] { return keltoLoad("messages-2000.xlf", 2000); });
const Register kelto20000("W6/20000", kelto, [] { return keltoLoad("messages-20000.xlf", 20000); });
const Register compiled2000("W6c/2000", kelto, [] { return compiledLoad("messages-2000.xlf", 2000); });
const Register compiled20000("W6c/20000", kelto, [] { return compiledLoad("messages-20000.xlf", 20000); });
const Register expat2000("W6/2000", "expat", [] { return expatLoad("messages-2000.xlf"); });
const Register expat20000("W6/20000", "expat", [] { return expatLoad("messages-20000.xlf"); });

#ifdef KELTO_BENCH_CATGETS

const Register catopen2000("W6c/2000", "catopen", [] {
    return job([path = catalog("kelto-bench.cat"), text = std::string()]() mutable {
        const nl_catd messages = catopen(path.c_str(), 0);
        const bool complete = *catgets(messages, 1, 2000, "") != '\0';
        catclose(messages);
        return answer(text, complete ? 2000 : -1);
    });
});

#endif

} // namespace
} // namespace bench
