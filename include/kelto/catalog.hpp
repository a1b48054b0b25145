/**
 * @file catalog.hpp
 * Messages by number, in all the languages that a user may be given. Include kelto.hpp.
 */
#ifndef KELTO_CATALOG_HPP
#define KELTO_CATALOG_HPP

#include "default_text.hpp"
#include "format.hpp"

namespace kelto
{

/**
 * The number of a message: an integer, or an enumerator of the program's. One below 0 or above 4294967295 is that of a
 * message that is not there.
 */
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

/** Why something was passed over on the way to a text. The texts live during the call that is told of it. */
struct problem
{
    std::string_view catalog;  /**< the name of the catalog */
    std::string_view language; /**< the language that was passed over; empty for the text in the source */
    std::string_view file;     /**< its file, or the directory without any; empty for the text in the source */
    std::uint32_t id;          /**< message_id::value(); 0 where the file as a whole is of no use */
    std::error_code error;     /**< in error_category() */
    std::string text;          /**< a sentence for the developer, in English */
};

/** Gives each language of a catalog conversions of its own; kelto-locale.hpp makes one. */
struct language_conversions
{
    KTConversionsFunction function = nullptr;
    std::shared_ptr<void> context = {}; /**< handed to it; catalogs keep it for as long as they are open */
};

/** How a catalog is found, and how its messages are formatted. */
struct catalog_options : format_options
{
    std::string languages = {};         /**< as in KTLanguages(); empty for the user's */
    std::string source_language = "en"; /**< the language that has its turn behind the user's; empty for none */
    /**
     * Told once per message and language what was passed over, in the thread that asked for the message. What it
     * throws comes out of the call.
     */
    callback<void(const problem &)> on_problem = {};
    language_conversions conversions = {}; /**< behind those of `table` */
};

namespace detail
{

template <bool Catches> void tell(void *context, const KTCatalogProblem *told) noexcept
{
    if (thrown() != nullptr)
        *thrown() = nullptr; // while the sentence was made, after what had been thrown was asked for
    guarded<Catches>([&] {
        static_cast<const used *>(context)->on_problem({told->catalog, told->language, told->file,
                                                        message_id(told->id).value(), make_error(told->result),
                                                        told->text});
        return 0;
    });
}

} // namespace detail

/**
 * Messages by number, in all the languages that a user may be given; see "The ladder" in kelto.h. There is a text
 * for each number, at last "[store 3: report.txt, 12]".
 */
class catalog : detail::text_source<false>
{
public:
    /**
     * Finds the catalogs of the user's languages and of the source language: the files that KTFindCatalog() finds. A
     * file that is missing, malformed or unreadable is passed over; a catalog without any file gives the texts in the
     * source.
     * @param name       the name of the catalog, without a '/'.
     * @param directory  the folder that holds a folder per language.
     * @param failure    a std::error_code: set where the library cannot be started, or where name or directory are
     *                   impossible. Without one that is thrown.
     */
    static catalog find(const std::string &name, const std::string &directory,
                        const catalog_options &options KELTO_OR_THROW, detail::outcome<> failure KELTO_OR_THROW)
    {
        return opened(options, failure, {"catalog::find(\"", name, "\", \"", directory, "\")"},
                      [&](auto &given, auto **catalog) {
                          return KTOpenCatalog(directory.c_str(), name.c_str(), &given, catalog);
                      });
    }
    static catalog find(const std::string &name, const std::string &directory, std::error_code &failure)
    {
        return find(name, directory, {}, failure);
    }

    /**
     * One file, "….ktc" or "….xlf", as the only language; failure is set where it cannot be loaded, and the catalog
     * then gives the texts in the source.
     */
    static catalog load(const std::string &path, const catalog_options &options KELTO_OR_THROW,
                        detail::outcome<> failure KELTO_OR_THROW)
    {
        return opened(options, failure, {"catalog::load(\"", path, "\")"},
                      [&](auto &given, auto **catalog) { return KTOpenCatalogFile(path.c_str(), &given, catalog); });
    }
    static catalog load(const std::string &path, std::error_code &failure) { return load(path, {}, failure); }

    /**
     * A compiled catalog that is a part of the program, as the only language: see KTLoadCompiledData(). The data is
     * read during the call.
     */
    static catalog embedded(const std::string &name, const void *data, std::size_t size,
                            const catalog_options &options KELTO_OR_THROW, detail::outcome<> failure KELTO_OR_THROW)
    {
        return opened(options, failure, {"catalog::embedded(\"", name, "\")"}, [&](auto &given, auto **catalog) {
            return KTOpenCatalogData(name.c_str(), data, size, &given, catalog);
        });
    }
    static catalog embedded(const std::string &name, const void *data, std::size_t size, std::error_code &failure)
    {
        return embedded(name, data, size, {}, failure);
    }

    /* In front of the arguments a text in the source may stand: KELTO_DEFAULT("…") or unchecked("…"). */

    /** The text of a message. */
    std::string format(message_id id) const { return make<char>(ask(id, {}, detail::argument_list())); }
    template <class First, class... Others>
    __attribute__((always_inline)) std::string format(message_id id, const First &first, const Others &...others) const
        KELTO_WARN_OF_FORGOTTEN(first)
    {
        detail::look_at_first(first);
        if constexpr (detail::is_source_text<First>)
            return make_of<detail::passed<Others>...>(id, first.chosen(others...), others...);
        else
            return make_of<detail::passed<First>, detail::passed<Others>...>(id, {}, first, others...);
    }

    /** The text of a message in UTF-16. */
    template <class... Arguments> std::u16string format_utf16(message_id id, const Arguments &...arguments) const
    {
        return make<char16_t>(
            ask(id, detail::source_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /**
     * Writes the text of a message to a stream, or behind an output iterator; without the heap up to 1,024 bytes. Into
     * an array of chars it writes as much as fits, terminated, and gives a cut_text, which is a std::string_view.
     */
    template <class Output, class... Arguments>
    decltype(auto) format_to(Output &&out, message_id id, const Arguments &...arguments) const
    {
        return put(std::forward<Output>(out),
                   ask(id, detail::source_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /** Writes at most so many bytes of the text, in whole characters and not terminated, behind an output iterator. */
    template <class Output, class... Arguments>
    format_to_n_result<Output> format_to_n(Output out, std::size_t most, message_id id,
                                           const Arguments &...arguments) const
    {
        return put_n(out, most,
                     ask(id, detail::source_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /** The bytes of the text. */
    template <class... Arguments> std::size_t formatted_size(message_id id, const Arguments &...arguments) const
    {
        return measure(ask(id, detail::source_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /** A message as it stands in the first language that has it; empty where none has. It lives as long as the catalog.
     */
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
    catalog() = default;

    template <class Open, bool Catches = KELTO_HAS_EXCEPTIONS>
    static catalog opened(const catalog_options &options, detail::outcome<> failure,
                          std::initializer_list<std::string_view> what, const Open &call)
    {
        KTCatalogOptions given = {};
        given.languages = options.languages.empty() ? nullptr : options.languages.c_str();
        given.sourceLanguage = options.source_language.c_str();
        given.conversions = options.conversions.function;
        given.conversionsContext = options.conversions.context.get();
        given.onProblem = options.on_problem ? detail::tell<Catches> : nullptr;
        catalog made;
        const int result = made.open(options, given, {nullptr, options.conversions.context, options.on_problem}, call);
        failure.set(result, what, result != 0 ? made.explain(result, nullptr).c_str() : "");
        return made;
    }

    template <class List>
    static detail::text_request ask(message_id id, std::string_view source, const List &list) noexcept
    {
        return {{sizeof(KTCatalogRequest), static_cast<std::int64_t>(id.bits_), !id.isNegative_, source.data(),
                 source.size(), list.arguments, list.count},
                nullptr};
    }

    /** One function for all calls with arguments of the same types, so that each call compiles to little. */
    template <class... Arguments>
    KELTO_OUT_OF_LINE std::string make_of(message_id id, std::string_view source, Arguments... arguments) const
    {
        return make<char>(ask(id, source, detail::argument_list(detail::hold(arguments)...)));
    }
};

} // namespace kelto

#endif
