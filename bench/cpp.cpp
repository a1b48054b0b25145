// The C++ layer; what it does by calls of the C interface stands in prepared.cpp.

#include "format.h"

#include "kelto.hpp"

#include <iterator>

namespace bench
{
namespace
{

/** The catalog in which lookup.cpp looks, as a C++ program loads it. */
kelto::catalog messages()
{
    kelto::catalog loaded = kelto::catalog::load(catalog("messages-2000.xlf"));
    require(loaded.format(formattedMessage, 7, "files") == "files: 7", "a message is not what was expected");
    return loaded;
}

const Register again("W9c", bench::kelto, [] {
    return job([store = messages(), out = std::string()]() mutable {
        out.clear();
        store.format_to(std::back_inserter(out), formattedMessage, 7, "files");
        return std::string_view(out);
    });
});

const Register checked("W9c", "Kelto, KELTO_DEFAULT", [] {
    return job([store = messages(), out = std::string()]() mutable {
        out.clear();
        store.format_to(std::back_inserter(out), formattedMessage, KELTO_DEFAULT("%s[2]: %d[1]"), 7, "files");
        return std::string_view(out);
    });
});

/** A new string of each call, with an argument of some length. */
std::unique_ptr<Job> newString(const char *what)
{
    return job([store = messages(), what, out = std::string()]() mutable {
        out = store.format(formattedMessage, 7, what);
        return std::string_view(out);
    });
}

const Register freshShort("W9c/short", bench::kelto, [] { return newString(shortArgument); });
const Register freshLong("W9c/long", bench::kelto, [] { return newString(longArgument); });
const Register againShort("W9c/again", bench::kelto, [] {
    return job([store = messages(), out = std::string()]() mutable {
        out.clear();
        store.format_to(std::back_inserter(out), formattedMessage, 7, shortArgument);
        return std::string_view(out);
    });
});

const Register selecting("L2/catalog", bench::kelto, [] {
    return job([store = kelto::catalog::load(catalog("plural.xlf")), out = std::string()]() mutable {
        out.clear();
        store.format_to(std::back_inserter(out), 12, 22, "Faktury");
        return std::string_view(out);
    });
});

} // namespace
} // namespace bench
