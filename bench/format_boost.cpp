// Formatting by Boost.Locale.

#include "format.h"

#include <boost/locale/format.hpp>
#include <boost/locale/generator.hpp>

#include <locale>
#include <sstream>

namespace bench
{
namespace
{

std::locale boostLocale()
{
    static const std::locale locale = boost::locale::generator()("en_US.UTF-8");
    return locale;
}

/** A job that formats into a string. `fill` hands over the arguments, which live no longer than its expression. */
template <class Fill> std::unique_ptr<Job> formatting(std::string text, Fill fill)
{
    return job([text = std::move(text), fill, locale = boostLocale(), out = std::string()]() mutable {
        keep(text.data());
        boost::locale::format format(text);
        out = fill(format, locale);
        return std::string_view(out);
    });
}

const Register boostW1("W1", "Boost.Locale", [] {
    return formatting("{2}: {1}", [](auto &format, auto &locale) { return (format % 7 % "files").str(locale); });
});

const Register boostW3("W3", "Boost.Locale", [] {
    return formatting(longText("{1}"), [](auto &format, auto &locale) { return (format % 7).str(locale); });
});

} // namespace
} // namespace bench
