// The C++ layer; what it does by calls of the C interface stands in prepared.cpp.

#include "workload.h"

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

const Register fresh("W9c", "Kelto, a new string", [] {
    return job([store = messages(), out = std::string()]() mutable {
        out = store.format(formattedMessage, 7, "files");
        return std::string_view(out);
    });
});

} // namespace
} // namespace bench
