/** @file format.hpp The options of texts, where one goes, and formats that come from no catalog. Include kelto.hpp. */
#ifndef KELTO_FORMAT_HPP
#define KELTO_FORMAT_HPP

#include "form_table.hpp"

#include <cstring>
#include <iterator>

namespace kelto
{

/** How texts are made of formats. */
struct format_options
{
    const form_table *table = nullptr; /**< null for the built-in conversions; it is shared, and may end first */
    bool tag = false;                  /**< wraps dates, names, entry IDs and errors in tags */
    void *pass_through = nullptr;      /**< handed to conversions of the program's own */
    /** The most bytes of a text beside 8 times those of its text arguments. The text in the source always has 1 MiB. */
    std::size_t max_size = 1 << 20;
    bool isolate = false; /**< keeps the direction of texts from what stands beside them: KT_ISOLATE */
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
    /** Told once per message and language what was passed over, in the calling thread; what it throws comes out */
    callback<void(const problem &)> on_problem = {};
    language_conversions conversions = {}; /**< behind those of `table` */
};

/** As much of a text as an array holds, in whole characters and terminated. */
struct cut_text : std::string_view
{
    std::size_t needed; /**< the bytes of the whole text */
    bool is_cut() const noexcept { return size() < needed; }
};

/** What format_to_n() gives. */
template <class Output> struct format_to_n_result
{
    Output out;       /**< behind the last byte that was written */
    std::size_t size; /**< the bytes of the whole text */
};

namespace detail
{

/** A text on its way to the caller: up to so many units of it without the heap. */
constexpr std::size_t few_units = 1024;
template <class Unit> class text_buffer
{
public:
    /** Has a text written in as much room as it needs; a need of 0 ends the search for room. @return the result. */
    template <class Write> int fill(const Write &write)
    {
        int result = write(&size_, few_);
        while (result == KT_ERR_BUFFER_TOO_SMALL && size_ != 0)
        {
            many_.resize(size_ > many_.size() ? size_ : 2 * many_.size());
            size_ = many_.size() + 1;
            result = write(&size_, many_.data());
        }
        size_ = result == 0 ? size_ : 0;
        if (!many_.empty())
            many_.resize(size_);
        return result;
    }

    std::basic_string_view<Unit> view() const noexcept
    {
        return many_.empty() ? std::basic_string_view<Unit>(few_, size_) : many_;
    }
    std::basic_string<Unit> take() { return many_.empty() ? std::basic_string<Unit>(few_, size_) : std::move(many_); }

private:
    Unit few_[few_units + 1];
    std::size_t size_ = few_units + 1;
    std::basic_string<Unit> many_;
};

template <class Output> constexpr bool is_line = false;
template <std::size_t Size> constexpr bool is_line<char (&)[Size]> = true;
template <class Output> constexpr bool is_back_inserter = false;
template <class Container> constexpr bool is_back_inserter<std::back_insert_iterator<Container>> = true;
template <class Output> using stream_of = decltype(std::declval<Output &>().write("", 1).rdbuf());
template <class Output>
using larger_inserted = std::enable_if_t<(sizeof(typename Output::container_type::value_type) > 1)>;
template <class Output>
using larger_pointed = std::enable_if_t<(sizeof(typename std::iterator_traits<Output>::value_type) > 1)>;

template <class Output> auto copy_to(Output out, std::string_view text)
{
    static_assert(!has<larger_inserted, Output> && !has<larger_pointed, Output>,
                  "kelto: a text is UTF-8, of chars, and this output takes larger units; call "
                  "format_utf16() for a std::u16string");
    if constexpr (is_back_inserter<Output>)
    {
        struct access : Output // to the container, whose text then grows once
        {
            using Output::container;
        };
        auto &container = *(out.*&access::container);
        if constexpr (std::is_same_v<Output, std::back_insert_iterator<std::string>>)
            container.append(text.data(), text.size()); // the quickest way
        else
            container.insert(container.end(), text.begin(), text.end());
    }
    else
        for (const char c : text)
            *out++ = c;
    return out;
}

/** What is asked of the library, and where a failure goes. The parameter is there for the linker: see outcome. */
template <bool Throws = KELTO_HAS_EXCEPTIONS> struct text_request
{
    KTCatalogRequest asked;
    outcome<Throws> failure;
};

/** What the library uses and calls back; at one place as long as it may. */
struct used
{
    std::shared_ptr<formTable> table;
    catalog_options options;
};

template <bool Catches> void tell(void *context, const KTCatalogProblem *told) noexcept
{
    if (thrown() != nullptr)
        *thrown() = nullptr; // while the sentence was made, after what had been thrown was asked for
    const auto call = [&] {
        const bool isNumber = told->id >= 0 && told->id < UINT32_MAX;
        static_cast<const used *>(context)->options.on_problem(
            {told->catalog, told->language, told->file, isNumber ? static_cast<std::uint32_t>(told->id) : UINT32_MAX,
             make_error(told->result), told->text});
        return 0;
    };
    guarded<Catches>(call, keep_thrown);
}

/** What the library has opened: a format, or a catalog, whose calls do not fail and so compile to less. */
template <bool MayFail> class text_source
{
protected:
    /** Opens what a function of the C interface opens. What functions of the program throw comes out. */
    template <bool Catches = KELTO_HAS_EXCEPTIONS, class Open, class... What>
    int open(const catalog_options &from, Open function, What... what)
    {
        const std::shared_ptr<formTable> table = from.table != nullptr ? from.table->table_ : nullptr;
        KTCatalogOptions options = {};
        options.structSize = sizeof options;
        options.languages = from.languages.empty() ? nullptr : from.languages.c_str();
        options.sourceLanguage = from.source_language.c_str();
        options.table = table.get();
        options.passThru = from.pass_through;
        options.formatOptions = (from.tag ? unsigned{KT_TAG} : 0U) | (from.isolate ? unsigned{KT_ISOLATE} : 0U);
        options.maxSize = from.max_size != 0 ? from.max_size : 1;
        options.conversions = from.conversions.function;
        options.conversionsContext = from.conversions.context.get();
        options.onProblem = from.on_problem ? tell<Catches> : nullptr;
        if (table != nullptr || from.conversions.context != nullptr || from.on_problem)
        {
            used_.reset(new used{table, from});
            options.context = used_.get();
            options.isStopped = [](void *) noexcept { return thrown() != nullptr && *thrown() != nullptr; };
        }
        return call_throwing([&] {
            KTCatalog *opened = nullptr;
            const int result = function(what..., &options, &opened);
            catalog_.reset(opened);
            return *thrown() != nullptr ? int{KT_ERR_CONVERSION_FAILED} : result;
        });
    }

    /** Has a call made with a request of these arguments. */
    template <class Call, class... Arguments>
    KELTO_IN_PLACE static decltype(auto) ask(KTCatalogRequest of, outcome<> failure, const Call &call,
                                             const Arguments &...arguments)
    {
        KTArgument list[types_of_all<Arguments...>::count + 1];
        of.structSize = sizeof of;
        of.arguments = list;
        of.count = types_of_all<Arguments...>::count;
        const text_request<> request = {of, failure};
        return with_arguments(
            list, [&]() -> decltype(auto) { return call(request); }, arguments...);
    }

    template <class Unit>
    __attribute__((flatten)) KELTO_OUT_OF_LINE std::basic_string<Unit> make(const text_request<> &request) const
    {
        return written<Unit>(request).take();
    }

    /** Writes to an output; a catalog into an array without a buffer in between. */
    template <class Output> decltype(auto) put(Output &&out, const text_request<> &request) const
    {
        using bare = std::decay_t<Output>;
        if constexpr (is_line<Output> && MayFail)
        {
            const auto [end, size] = put_n(static_cast<char *>(out), sizeof out - 1, request);
            *end = '\0';
            return cut_text{{out}, size};
        }
        else if constexpr (is_line<Output>)
        {
            std::size_t size = sizeof out;
            write(request, &size, out);
            return cut_text{{out}, size};
        }
        else if constexpr (has<stream_of, bare>)
        {
            const auto text = written<char>(request);
            return static_cast<bare &>(out.write(text.view().data(), static_cast<std::ptrdiff_t>(text.view().size())));
        }
        else
        {
            static_assert(
                !std::is_pointer_v<bare>,
                "kelto: a pointer does not tell how much room there is; pass an array of chars, a std::back_inserter, "
                "or call format_to_n(pointer, room, ...)");
            return copy_to(bare(std::forward<Output>(out)), written<char>(request).view());
        }
    }

    template <class Output>
    format_to_n_result<Output> put_n(Output out, std::size_t most, const text_request<> &request) const
    {
        const auto text = written<char>(request);
        const std::string_view all = text.view();
        return {copy_to(out, all.substr(0, KTCutUTF8(all.data(), all.size(), most))), all.size()};
    }

    template <class Unit> text_buffer<Unit> written(const text_request<> &request) const
    {
        text_buffer<Unit> text;
        [[maybe_unused]] const int result =
            text.fill([&](std::size_t *size, Unit *out) { return write(request, size, out); });
        if constexpr (MayFail)
            request.failure.set(result, [&] { return explain(result, &request.asked); });
        return text;
    }

    /** Why the opening failed, or a call. */
    KELTO_SELDOM std::string explain(int result, const KTCatalogRequest *asked) const
    {
        text_buffer<char> why;
        const auto write = [&](std::size_t *size, char *out) {
            return KTExplainCatalog(catalog_.get(), asked, result, size, out);
        };
        call_throwing([&] { return why.fill(write), 0; }); // what is thrown meanwhile was thrown before
        return why.take();
    }

    std::unique_ptr<used> used_; // outlives what uses it
    std::unique_ptr<KTCatalog, void (*)(KTCatalog *)> catalog_ = {nullptr, KTCloseCatalog};

private:
    template <class Unit> int write(const text_request<> &request, std::size_t *size, Unit *out) const
    {
        if (MayFail && catalog_ == nullptr) // it was moved from
            return KT_ERR_INVALID_PARAMETER;
        const auto call = [this, &request, size, out] {
            if constexpr (std::is_same_v<Unit, char>)
                return KTCatalogFormatRequestUTF8(catalog_.get(), &request.asked, size, out);
            else
                return KTCatalogFormatRequest(catalog_.get(), &request.asked, size, out);
        };
        return used_ == nullptr ? call() : call_throwing(call);
    }
};

} // namespace detail

/**
 * One format, parsed once, for texts that come from no catalog. Here what does not fit is an error.
 *
 * A call with a std::error_code in front of the arguments throws nothing, and gives nothing where that is set. The
 * others throw where the arguments are not those that the format takes, and where a conversion fails.
 */
class prepared_format : detail::text_source<true>
{
public:
    prepared_format(const std::string &format, std::error_code &failure) : prepared_format(format, {}, failure) {}
    prepared_format(const std::string &format, const format_options &options, detail::outcome<> failure KELTO_OR_THROW)
    {
        const int result = open({options}, KTOpenCatalogFormat, format.c_str());
        failure.set(result, [&] { return explain(result, nullptr); });
    }
    template <bool Throws = KELTO_HAS_EXCEPTIONS, class = std::enable_if_t<Throws>>
    explicit prepared_format(const std::string &format) : prepared_format(format, {}, {})
    {
    }

    /** The text. */
    template <class... Arguments> std::string format(Arguments &&...arguments) const
    {
        return ask([&](auto &request) { return make<char>(request); }, arguments...);
    }

    /** The text in UTF-16. */
    template <class... Arguments> std::u16string format_utf16(Arguments &&...arguments) const
    {
        return ask([&](auto &request) { return make<char16_t>(request); }, arguments...);
    }

    /** Writes the text to a stream, behind an output iterator, or into an array of chars: see catalog::format_to(). */
    template <class Output, class... Arguments> decltype(auto) format_to(Output &&out, Arguments &&...arguments) const
    {
        return ask([&](auto &request) -> decltype(auto) { return put(std::forward<Output>(out), request); },
                   arguments...);
    }

    /** Writes at most so many bytes of the text, in whole characters and not terminated, behind an output iterator. */
    template <class Output, class... Arguments>
    format_to_n_result<Output> format_to_n(Output out, std::size_t most, Arguments &&...arguments) const
    {
        return ask([&](auto &request) { return put_n(out, most, request); }, arguments...);
    }

    /** The bytes of the text. */
    template <class... Arguments> std::size_t formatted_size(Arguments &&...arguments) const
    {
        return ask([&](auto &request) { return written<char>(request).view().size(); }, arguments...);
    }

    /** For calls of the C interface, as long as this object lives; null where the format was refused. */
    const KTPreparedFormat *get() const noexcept { return KTCatalogPrepared(catalog_.get()); }

private:
    template <class Call, class... Arguments>
    static decltype(auto) ask(const Call &call, std::error_code &failure, const Arguments &...arguments)
    {
        return text_source::ask({}, failure, call, arguments...);
    }
    template <class Call, class... Arguments> static decltype(auto) ask(const Call &call, const Arguments &...arguments)
    {
        static_assert(KELTO_HAS_EXCEPTIONS || sizeof...(Arguments) == SIZE_MAX,
                      "kelto: without exceptions a std::error_code stands in front of the arguments");
        return text_source::ask({}, {}, call, arguments...);
    }
};

} // namespace kelto

#endif
