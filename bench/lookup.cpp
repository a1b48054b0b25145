// Fetching a message, alone and as a part of the way from key to text: Kelto and the C library's catalogs.

#include "lookup.h"

#include "format.h"

#include <libintl.h>
#include <nl_types.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace bench
{
namespace
{

std::unique_ptr<Job> keltoLookup(size_t catalogs)
{
    return job([catalogs = OpenCatalogs(catalogs)] {
        char *message = nullptr;
        KTGetMessage(catalogs.oldest(), plainMessage, &message);
        return std::string_view(message, message != nullptr ? plainBytes : 0);
    });
}

const Register kelto1("W5/1", kelto, [] { return keltoLookup(1); });
const Register kelto20("W5/20", kelto, [] { return keltoLookup(20); });

const Register keltoW9("W9", kelto, [] {
    return job([catalogs = OpenCatalogs(1), wide = std::array<UCS2, formatRoom>(),
                out = std::array<char, formatRoom>()]() mutable {
        char *message = nullptr;
        unsigned long units = wide.size();
        size_t bytes = out.size();
        KTGetMessage(catalogs.oldest(), formattedMessage, &message);
        KTFormatString(nullptr, false, &units, wide.data(), message, 7, "files");
        KTUCS2ToUTF8(wide.data(), &bytes, out.data());
        return std::string_view(out.data(), bytes);
    });
});

#ifdef KELTO_BENCH_CATGETS

class CatgetsCatalogs
{
public:
    explicit CatgetsCatalogs(size_t count)
    {
        while (m_catalogs.size() < count)
        {
            m_catalogs.push_back(catopen(catalog("kelto-bench.cat").c_str(), 0));
            require(m_catalogs.back() != reinterpret_cast<nl_catd>(-1), "catopen fails");
        }
    }
    CatgetsCatalogs(CatgetsCatalogs &&) = default;
    ~CatgetsCatalogs()
    {
        for (nl_catd open : m_catalogs)
            catclose(open);
    }
    nl_catd oldest() const { return m_catalogs.front(); }

private:
    std::vector<nl_catd> m_catalogs;
};

std::unique_ptr<Job> catgetsLookup(size_t catalogs)
{
    return job([catalogs = CatgetsCatalogs(catalogs)] {
        return std::string_view(catgets(catalogs.oldest(), 1, plainMessage, ""), plainBytes);
    });
}

const Register catgets1("W5/1", "catgets", [] { return catgetsLookup(1); });
const Register catgets20("W5/20", "catgets", [] { return catgetsLookup(20); });

const Register catgetsW9({"W9", "W9p"}, "catgets, snprintf", [] {
    return job([catalogs = CatgetsCatalogs(1), out = std::array<char, formatRoom>()]() mutable {
        const char *format = catgets(catalogs.oldest(), 1, formattedMessage, "");
        const int length = snprintf(out.data(), out.size(), format, 7, "files");
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

#endif

#ifdef KELTO_BENCH_GETTEXT

constexpr const char *domain = "kelto-bench";

/** Binds domains to the catalogs, which lie under de/LC_MESSAGES; the others are copies under other names. */
void openDomains(size_t count)
{
    setenv("LANGUAGE", "de", 1);
    bindtextdomain(domain, KELTO_BENCH_CATALOGS);
    require(strcmp(dgettext(domain, plainKey), plainKey) != 0, "gettext does not find its catalog");
    for (size_t i = 1; i < count; ++i)
    {
        const std::string other = domain + std::to_string(i);
        bindtextdomain(other.c_str(), KELTO_BENCH_CATALOGS);
        require(strcmp(dgettext(other.c_str(), plainKey), plainKey) != 0, "gettext does not find a copy");
    }
}

std::unique_ptr<Job> gettextLookup(size_t catalogs)
{
    openDomains(catalogs);
    return job([] { return std::string_view(dgettext(domain, plainKey), plainBytes); });
}

const Register gettext1("W5/1", "gettext", [] { return gettextLookup(1); });
const Register gettext20("W5/20", "gettext", [] { return gettextLookup(20); });

const Register gettextW9({"W9", "W9p"}, "gettext, snprintf", [] {
    openDomains(1);
    return job([out = std::array<char, formatRoom>()]() mutable {
        const int length = snprintf(out.data(), out.size(), dgettext(domain, formattedKey), 7, "files");
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

#endif

} // namespace
} // namespace bench
