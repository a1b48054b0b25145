/**
 * @file kelto-locale.hpp
 * The add-on for C++17: catalogs whose languages write numbers, amounts and dates as their readers do.
 *
 *     #include <kelto-locale.hpp>
 *     #include <iostream>
 *
 *     int main()
 *     {
 *         kelto::catalog_options options;
 *         options.conversions = kelto::locale_conversions("Europe/Warsaw");
 *         const kelto::catalog store = kelto::catalog::find("store", "messages", options);
 *         std::cout << store.format(1, KELTO_DEFAULT("%number[1] files for %money[2]"), 1234567,
 *                                   kelto::money{"29.95", "EUR"}) << '\n';
 *     }
 *
 * Link with kelto-locale and kelto. docs/locale.md is the guide; kelto-locale.h has the conversions, whose names
 * KELTO_DEFAULT knows without this header too.
 */
#ifndef KELTO_LOCALE_HPP
#define KELTO_LOCALE_HPP

#include "kelto.hpp"

#include "kelto-locale.h"

#include <initializer_list>
#include <mutex>
#include <vector>

namespace kelto
{

/** An amount for "%money", "1234.50" and "EUR": a decimal text, since money is no double. */
struct money
{
    std::string amount;
    std::string currency;
};

/** A measure for "%unit", 1.5 and "kilobyte". */
struct measure
{
    double value;
    std::string unit;
};

/** Texts for "%and" and "%or": of any range of what converts to a std::string_view. A line feed in one is a blank. */
class items
{
public:
    template <class Range> explicit items(const Range &range)
    {
        for (const auto &each : range)
            add(each);
    }
    items(std::initializer_list<std::string_view> list)
    {
        for (const std::string_view each : list)
            add(each);
    }

    /** An item a line. */
    const std::string &lines() const noexcept { return lines_; }

private:
    void add(std::string_view item)
    {
        for (const char character : item)
            lines_ += character != '\n' && character != '\0' ? character : ' ';
        lines_ += '\n';
    }

    std::string lines_;
};

template <> struct argument_of<money>
{
    static std::pair<std::string_view, std::string_view> convert(const money &value) noexcept
    {
        return {value.amount, value.currency};
    }
};
template <> struct argument_of<measure>
{
    static std::pair<double, std::string_view> convert(const measure &value) noexcept
    {
        return {value.value, value.unit};
    }
};
template <> struct argument_of<items>
{
    static std::string_view convert(const items &value) noexcept { return value.lines(); }
};

namespace detail
{

/** The languages that catalogs have asked for, open as long as one of these is. */
class open_languages
{
public:
    explicit open_languages(const std::string &timeZone) : held_(started_), timeZone_(timeZone) {}
    open_languages(const open_languages &) = delete;
    open_languages &operator=(const open_languages &) = delete;
    ~open_languages()
    {
        for (KTLLanguage *const language : languages_)
            KTLCloseLanguage(language);
    }

    /** The result of the start; a failure also where there is no such time zone. */
    int begin() noexcept
    {
        KTLLanguage *root = nullptr;
        int result = started_.value();
        if (result == 0)
            result = timeZone_.find('\0') == std::string::npos ? KTLOpenLanguage("root", zone(), &root)
                                                               : static_cast<int>(KT_ERR_INVALID_PARAMETER);
        KTLCloseLanguage(root);
        return result;
    }

    /** A KTConversionsFunction. */
    static formTable *table_of(void *languages, const char *name) noexcept
    {
        return static_cast<open_languages *>(languages)->open(name);
    }

private:
    const char *zone() const noexcept { return timeZone_.empty() ? nullptr : timeZone_.c_str(); }

    formTable *open(const char *name) noexcept
    {
        KTLLanguage *language = nullptr;
        KTLOpenLanguage(name, zone(), &language);
        const auto keep = [&] {
            const std::lock_guard<std::mutex> lock(mutex_);
            languages_.push_back(language);
            return 0;
        };
        if (guarded<KELTO_HAS_EXCEPTIONS>(keep, [] {}) != 0) // no memory: the conversions that all languages have
        {
            KTLCloseLanguage(language);
            language = nullptr;
        }
        return KTLFormTable(language);
    }

    std::error_code started_;
    library held_; // ends when the languages are closed
    std::string timeZone_;
    std::mutex mutex_;
    std::vector<KTLLanguage *> languages_;
};

} // namespace detail

/**
 * Conversions for catalog_options::conversions: each language of a catalog, and the text in the source, writes with its
 * own. Catalogs may share what this gives.
 * @param time_zone  where dates and times are shown, as "Europe/Warsaw"; empty for UTC.
 * @param failure    a std::error_code: set where there is no such time zone, or where the library cannot be started.
 *                   Without one that is thrown.
 */
inline language_conversions locale_conversions(const std::string &time_zone KELTO_OR_THROW,
                                               detail::outcome<> failure KELTO_OR_THROW)
{
    auto languages = std::make_shared<detail::open_languages>(time_zone);
    const int result = languages->begin();
    failure.set(result, [&] {
        return "kelto::locale_conversions(\"" + time_zone +
               "\"): " + (result == KT_ERR_INVALID_PARAMETER ? "there is no such time zone" : KTResultText(result));
    });
    if (result != 0)
        return {};
    return {detail::open_languages::table_of, std::move(languages)};
}

} // namespace kelto

#endif
