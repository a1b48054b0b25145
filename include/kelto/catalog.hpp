/** @file catalog.hpp Messages by number, in all the languages that a user may be given. Include kelto.hpp. */
#ifndef KELTO_CATALOG_HPP
#define KELTO_CATALOG_HPP

#include "default_text.hpp"
#include "format.hpp"

namespace kelto
{

/** The number of a message: an integer or an enumerator. One below 0 or above 4294967295 is that of no message. */
class message_id
{
public:
    template <class Number, class = std::enable_if_t<std::is_integral_v<Number> || std::is_enum_v<Number>>>
    constexpr message_id(Number number) noexcept
        : bits_(static_cast<std::uint64_t>(number)), isNegative_(number < Number())
    {
        static_assert(!std::is_same_v<Number, bool>, "kelto: a bool is no message number");
        static_assert(sizeof(Number) <= sizeof bits_, "kelto: a message number has at most 64 bits");
    }

    /** The number; 4294967295, which no message has, for one that does not fit. */
    constexpr std::uint32_t value() const noexcept { return fits() ? static_cast<std::uint32_t>(bits_) : UINT32_MAX; }

    /** Whether the number is one of 32 bits. */
    constexpr bool fits() const noexcept { return !isNegative_ && bits_ <= UINT32_MAX; }

    /** The number as it was given, in decimal. */
    std::string to_string() const
    {
        return isNegative_ ? std::to_string(static_cast<std::int64_t>(bits_)) : std::to_string(bits_);
    }

private:
    friend class catalog;
    std::uint64_t bits_;
    bool isNegative_;
};

/** Messages by number. There is a text for each, at last "[store 3: report.txt, 12]"; see "The ladder" in kelto.h. */
class catalog : detail::text_source<false>
{
public:
    /**
     * The catalogs of the user's languages and of the source language: the files that KTFindCatalog() finds. A file
     * that is missing, malformed or unreadable is passed over; without any file the texts are those in the source.
     * @param name       the name of the catalog, without a '/'.
     * @param directory  the folder that holds a folder per language.
     * @param failure    a std::error_code: set where the library cannot be started, or where name or directory are
     *                   impossible. Without one that is thrown.
     */
    static catalog find(const std::string &name, const std::string &directory,
                        const catalog_options &options KELTO_OR_THROW, detail::outcome<> failure KELTO_OR_THROW)
    {
        return catalog(options, failure, "find(\"" + name + "\", \"" + directory + '"', KTOpenCatalog,
                       directory.c_str(), name.c_str());
    }
    static catalog find(const std::string &name, const std::string &directory, std::error_code &failure)
    {
        return find(name, directory, {}, failure);
    }

    /** One file, "….ktc" or "….xlf", as the only language. After a failure, the texts are those in the source. */
    static catalog load(const std::string &path, const catalog_options &options KELTO_OR_THROW,
                        detail::outcome<> failure KELTO_OR_THROW)
    {
        return catalog(options, failure, "load(\"" + path + '"', KTOpenCatalogFile, path.c_str());
    }
    static catalog load(const std::string &path, std::error_code &failure) { return load(path, {}, failure); }

    /** A compiled catalog in the program, as the only language; see KTLoadCompiledData(). Read during the call. */
    static catalog embedded(const std::string &name, const void *data, std::size_t size,
                            const catalog_options &options KELTO_OR_THROW, detail::outcome<> failure KELTO_OR_THROW)
    {
        return catalog(options, failure, "embedded(\"" + name + '"', KTOpenCatalogData, name.c_str(), data, size);
    }
    static catalog embedded(const std::string &name, const void *data, std::size_t size, std::error_code &failure)
    {
        return embedded(name, data, size, {}, failure);
    }

    /* In front of the arguments a text in the source may stand: KELTO_DEFAULT("…") or unchecked("…"). */

    /** The text of a message. */
    std::string format(message_id id) const { return make_of<>(id, {}); }
    template <class First, class... Others>
    KELTO_IN_PLACE std::string format(message_id id, const First &first, const Others &...others) const
        KELTO_WARN_OF_FORGOTTEN(first)
    {
        if constexpr (detail::is_source_text<First>)
            return make_of<detail::passed<Others>...>(id, first.chosen(others...), others...);
        else
        {
            const bool isForgotten = detail::is_forgotten(first);
            if (__builtin_constant_p(isForgotten) && isForgotten)
                detail::forgotten_default();
            return make_of<detail::passed<First>, detail::passed<Others>...>(id, {}, first, others...);
        }
    }

    /** The text of a message in UTF-16. */
    template <class... Arguments> std::u16string format_utf16(message_id id, const Arguments &...arguments) const
    {
        return ask([&](auto &request) { return make<char16_t>(request); }, id, arguments...);
    }

    /**
     * Writes the text of a message to a stream, or behind an output iterator; without the heap up to 1,024 bytes. Into
     * an array of chars it writes as much as fits, terminated, and gives a cut_text, which is a std::string_view.
     */
    template <class Output, class... Arguments>
    decltype(auto) format_to(Output &&out, message_id id, const Arguments &...arguments) const
    {
        return ask([&](auto &request) -> decltype(auto) { return put(std::forward<Output>(out), request); }, id,
                   arguments...);
    }

    /** Writes at most so many bytes of the text, in whole characters and not terminated, behind an output iterator. */
    template <class Output, class... Arguments>
    format_to_n_result<Output> format_to_n(Output out, std::size_t most, message_id id,
                                           const Arguments &...arguments) const
    {
        return ask([&](auto &request) { return put_n(out, most, request); }, id, arguments...);
    }

    /** The bytes of the text. */
    template <class... Arguments> std::size_t formatted_size(message_id id, const Arguments &...arguments) const
    {
        return ask([&](auto &request) { return written<char>(request).view().size(); }, id, arguments...);
    }

    /** A message as it stands in the first language that has it, while the catalog lives; empty where none has. */
    std::string_view text(message_id id) const KELTO_POINTED_INTO
    {
        const char *const found = KTCatalogText(catalog_.get(), static_cast<std::int64_t>(id.bits_));
        return found != nullptr ? found : std::string_view();
    }

    /** The first language of which there are messages, as "de" or "de_AT"; empty where there is none. */
    std::string language() const { return KTCatalogLanguage(catalog_.get()); }

    /** For calls of the C interface, as long as this object lives; null of one that was moved from. */
    const KTCatalog *get() const noexcept { return catalog_.get(); }

private:
    /** @param call  what an error calls the opening. */
    template <class... Opening>
    catalog(const catalog_options &options, detail::outcome<> failure, const std::string &call, Opening... opening)
    {
        const int result = open(options, opening...);
        failure.set(result, [&] { return "kelto::catalog::" + call + "): " + explain(result, nullptr); });
    }

    /** Has a call made with the request for a message. */
    template <class Call, class First = unchecked_text, class... Others>
    static decltype(auto) ask(const Call &call, message_id id, const First &first = unchecked({}),
                              const Others &...others)
    {
        if constexpr (detail::is_source_text<First>)
            return ask_with(call, id, first.chosen(others...), others...);
        else
            return ask_with(call, id, {}, first, others...);
    }
    template <class Call, class... Arguments>
    static decltype(auto) ask_with(const Call &call, message_id id, std::string_view source,
                                   const Arguments &...arguments)
    {
        return text_source::ask(
            {0, static_cast<std::int64_t>(id.bits_), !id.isNegative_, source.data(), source.size(), nullptr, 0}, {},
            call, arguments...);
    }

    /** One function for all calls with arguments of the same types, so that each call compiles to little. */
    template <class... Arguments>
    KELTO_OUT_OF_LINE std::string make_of(message_id id, std::string_view source, Arguments... arguments) const
    {
        return ask_with([&](auto &request) { return make<char>(request); }, id, source, arguments...);
    }
};

} // namespace kelto

#endif
