// Formatting by {fmt}, with formats that are known only at run time, as those of a catalog are.

#include "format.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <array>

namespace bench
{
namespace
{

using Bytes = std::array<char, formatRoom>;

const Register fmtW1({"W1", "W1p/UTF-8"}, "{fmt}", [] {
    return job([format = std::string("{1}: {0}"), out = Bytes()]() mutable {
        keep(format.data());
        const auto end = fmt::format_to_n(out.data(), out.size(), fmt::runtime(format), 7, "files");
        return std::string_view(out.data(), end.size);
    });
});

/** What no format that comes from a catalog can be: known to the compiler. */
const Register compiledW1("W1p/UTF-8", "{fmt}, FMT_COMPILE", [] {
    return job([text = "files", number = 7, out = Bytes()]() mutable {
        keep(&number);
        const auto end = fmt::format_to_n(out.data(), out.size(), FMT_COMPILE("{1}: {0}"), number, text);
        return std::string_view(out.data(), end.size);
    });
});

const Register fmtW2({"W2", "W2p"}, "{fmt}", [] {
    const std::string format = "{0:<14}|{1:5}|{2:7.2f}|{3:08x}|{4}|{5:12.3f}|{6}|{7:.1f}|{8:<6}|{9:>10}";
    return job([format, a = TenArguments(), out = Bytes()]() mutable {
        keep(format.data());
        keep(&a);
        const auto end = fmt::format_to_n(out.data(), out.size(), fmt::runtime(format), a.user, a.files, a.done, a.mask,
                                          a.volume, a.size, a.id, a.load, a.delta, a.state);
        return std::string_view(out.data(), end.size);
    });
});

const Register fmtW3({"W3", "W3p"}, "{fmt}", [] {
    return job([format = longText("{0}"), out = Bytes()]() mutable {
        keep(format.data());
        const auto end = fmt::format_to_n(out.data(), out.size(), fmt::runtime(format), 7);
        return std::string_view(out.data(), end.size);
    });
});

const Register fmtW3Mixed("W3/mixed", "{fmt}", [] {
    return job([format = longMixedText("{0}"), out = Bytes()]() mutable {
        keep(format.data());
        const auto end = fmt::format_to_n(out.data(), out.size(), fmt::runtime(format), 7);
        return std::string_view(out.data(), end.size);
    });
});

const Register fmtW4({"W4", "W4p"}, "{fmt}", [] {
    return job([format = std::string("{1}: {0}"), out = Bytes()]() mutable {
        keep(format.data());
        auto end = fmt::format_to_n(out.data(), shortRoom, fmt::runtime(format), 7, "files");
        if (end.size > shortRoom)
            end = fmt::format_to_n(out.data(), end.size, fmt::runtime(format), 7, "files");
        return std::string_view(out.data(), end.size);
    });
});

/** W9c without a catalog: the format is one of the run time, as that of a message is. */
std::unique_ptr<Job> newString(const char *what)
{
    return job([format = std::string("{1}: {0}"), what, out = std::string()]() mutable {
        keep(format.data());
        out = fmt::format(fmt::runtime(format), 7, what);
        return std::string_view(out);
    });
}

const Register fmtShort("W9c/short", "{fmt}", [] { return newString(shortArgument); });
const Register fmtLong("W9c/long", "{fmt}", [] { return newString(longArgument); });
const Register fmtAgain("W9c/again", "{fmt}", [] {
    return job([format = std::string("{1}: {0}"), out = std::string()]() mutable {
        keep(format.data());
        out.clear();
        fmt::format_to(std::back_inserter(out), fmt::runtime(format), 7, shortArgument);
        return std::string_view(out);
    });
});

} // namespace
} // namespace bench
