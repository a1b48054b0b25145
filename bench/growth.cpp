// W11: how the cost grows with the work. Each family is measured at 1, 4, 16 and 64 times its smallest size.

#include "workload.h"

#include "kelto.h"

#include <cstdio>
#include <unistd.h>

namespace bench
{
namespace
{

constexpr size_t sizes[] = {1, 4, 16, 64};

std::string repeated(std::string_view text, size_t times)
{
    std::string all;
    for (size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

/** A format call whose arguments are pointers, into a buffer that is large enough. */
class FormatCall
{
public:
    FormatCall(std::string format, std::vector<void *> arguments, size_t units)
        : m_format(std::move(format)), m_arguments(std::move(arguments)), m_out(units + 1)
    {
        m_arguments.push_back(nullptr);
    }
    std::u16string_view operator()()
    {
        unsigned long units = m_out.size();
        const int result = KTvpFormatString(nullptr, false, &units, m_out.data(), m_format.data(), m_arguments.data());
        require(result == 0, "a format of the growth benchmarks fails");
        return {m_out.data(), units};
    }

private:
    std::string m_format;
    std::vector<void *> m_arguments;
    std::vector<UCS2> m_out;
};

int number = 1234567;

std::unique_ptr<Job> literalText(size_t times)
{
    const size_t units = 250 * times;
    return job(FormatCall(std::string(units, 'x') + "%d[1]", {&number}, units + 7));
}

std::unique_ptr<Job> argumentText(size_t times)
{
    const size_t bytes = 250 * times;
    return job([text = std::string(bytes, 'x'), out = std::vector<UCS2>(bytes + 1)]() mutable {
        unsigned long units = out.size();
        char format[] = "%s[1]";
        KTFormatString(nullptr, false, &units, out.data(), format, text.c_str());
        return std::u16string_view(out.data(), units);
    });
}

std::unique_ptr<Job> conversions(size_t times)
{
    const size_t count = 10 * times;
    std::string format;
    for (size_t position = count; position >= 1; --position)
        format += "%d[" + std::to_string(position) + "]";
    return job(FormatCall(std::move(format), std::vector<void *>(count, &number), 7 * count));
}

std::unique_ptr<Job> width(size_t times)
{
    const size_t units = 100 * times;
    return job(FormatCall("%" + std::to_string(units) + "d[1]", {&number}, units));
}

std::unique_ptr<Job> nameComponents(size_t times)
{
    return job([name =
                    [times] {
                        std::vector<UCS2> units;
                        for (const char c : "CN=name" + repeated(".OU=component", 4 * times))
                            units.push_back(static_cast<UCS2>(c));
                        units.push_back(0);
                        return units;
                    }(),
                out = std::vector<UCS2>(200 * times)]() mutable {
        unsigned long units = out.size();
        char format[] = "%DND[1]";
        const int result = KTFormatString(nullptr, false, &units, out.data(), format, name.data());
        require(result == 0, "a distinguished name cannot be formatted");
        return std::u16string_view(out.data(), units);
    });
}

/** A file that exists as long as this object. */
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string &text) : m_path(catalog("growth-XXXXXX"))
    {
        const int descriptor = mkstemp(m_path.data());
        FILE *file = fdopen(descriptor, "w");
        require(file != nullptr && fwrite(text.data(), 1, text.size(), file) == text.size() && fclose(file) == 0,
                "a message file cannot be written");
    }
    TemporaryFile(TemporaryFile &&other) noexcept : m_path(std::exchange(other.m_path, {})) {}
    ~TemporaryFile()
    {
        if (!m_path.empty())
            unlink(m_path.c_str());
    }
    char *path() { return m_path.data(); }

private:
    std::string m_path;
};

/** A job that loads a file and releases it again; what it gives is the result code, which must be as expected. */
std::unique_ptr<Job> load(const std::string &text, int expected)
{
    return job([file = TemporaryFile(text), expected, given = std::string()]() mutable {
        MessageTable *table = nullptr;
        const int result = KTLoadMessages(file.path(), &table);
        require(result == expected, "a load of the growth benchmarks has another result than expected");
        if (result == 0)
            KTFreeMessages(table);
        given = std::to_string(result);
        return std::string_view(given);
    });
}

std::string document(const std::string &body)
{
    return "<xliff><file source-language=\"de\" product-name=\"n\" product-version=\"1\"><header/><body>" + body +
           "</body></file></xliff>";
}

std::string unit(size_t id, const std::string &attributes, const std::string &source)
{
    return "<trans-unit id=\"" + std::to_string(id) + "\"" + attributes + "><source>" + source +
           "</source></trans-unit>\n";
}

std::unique_ptr<Job> messages(size_t times)
{
    std::string body;
    for (size_t id = 1; id <= 25 * times; ++id)
        body += unit(id, "", "Datei <x ts=\"%s\" id=\"1\"/> wurde kopiert.");
    return load(document(body), 0);
}

std::unique_ptr<Job> messageLength(size_t times)
{
    return load(document(unit(1, "", repeated("Eine lange Nachricht, ", 50 * times))), 0);
}

std::unique_ptr<Job> depth(size_t times)
{
    const size_t levels = 100 * times;
    return load(repeated("<xliff>", levels) + repeated("</xliff>", levels), KT_ERR_BAD_MSG_FILE);
}

// Long enough: what the parser reads again of a short tag is not bounded by the file's length.
std::unique_ptr<Job> attributes(size_t times)
{
    std::string text;
    for (size_t i = 0; i < 200 * times; ++i)
        text += " a" + std::to_string(i) + "=\"value\"";
    return load(document(unit(1, text, "text")), 0);
}

std::unique_ptr<Job> catalogs(size_t times)
{
    class Tables
    {
    public:
        explicit Tables(size_t count)
        {
            TemporaryFile file(document(unit(1, "", "text")));
            m_tables.resize(count);
            for (MessageTable *&table : m_tables)
                require(KTLoadMessages(file.path(), &table) == 0, "a catalog cannot be loaded");
        }
        Tables(Tables &&) = default;
        ~Tables()
        {
            for (MessageTable *table : m_tables)
                KTFreeMessages(table);
        }
        MessageTable *oldest() const { return m_tables.front(); }

    private:
        std::vector<MessageTable *> m_tables;
    };
    return job([tables = Tables(5 * times)] {
        char *message = nullptr;
        KTGetMessage(tables.oldest(), 1, &message);
        return std::string_view(message, 4);
    });
}

/** All sizes of a family: works named W11/<family>/<size>. */
class RegisterFamily
{
public:
    RegisterFamily(const std::string &family, std::unique_ptr<Job> (*setUp)(size_t times))
    {
        for (const size_t size : sizes)
            Register("W11/" + family + "/" + std::to_string(size), kelto, [setUp, size] { return setUp(size); });
    }
};

const RegisterFamily families[] = {
    {"literal text", literalText},       {"argument text", argumentText},
    {"conversions", conversions},        {"width", width},
    {"name components", nameComponents}, {"messages", messages},
    {"message length", messageLength},   {"depth", depth},
    {"attributes", attributes},          {"catalogs", catalogs},
};

} // namespace
} // namespace bench
