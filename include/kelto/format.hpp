/**
 * @file format.hpp
 * Where a text goes, and formats that come from no catalog. Include kelto.hpp.
 */
#ifndef KELTO_FORMAT_HPP
#define KELTO_FORMAT_HPP

#include "form_table.hpp"

#include <cstring>
#include <iterator>

namespace kelto
{

struct problem;

/** How texts are made of formats. */
struct format_options
{
    const form_table *table =
        nullptr;                  /**< the conversions; null for the built-in ones. It is shared, and may end first. */
    bool tag = false;             /**< wraps dates, names, entry IDs and errors in tags */
    void *pass_through = nullptr; /**< handed to conversions of the program's own */
    /**
     * The bytes that a text may have, beside 8 times those of the text arguments. The text in the source is not
     * passed over for being longer, unless it needs more than 1 MiB as well.
     */
    std::size_t max_size = 1 << 20;
    bool isolate = false; /**< keeps the direction of texts from what stands beside them: KT_ISOLATE */
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

constexpr std::size_t few_units = 1024;

/** A text on its way to the caller: up to few_units of it without the heap. */
template <class Unit> class text_buffer
{
public:
    /** Has a text written in as much room as it needs, and tells the result; a need of 0 ends the search for room. */
    template <class Write, class Tell> text_buffer(const Write &write, const Tell &tell)
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
        tell(result);
    }
    text_buffer(const text_buffer &) = delete;
    text_buffer &operator=(const text_buffer &) = delete;

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

template <class Output> using stream_of = decltype(std::declval<Output &>().write("", 1).rdbuf());

template <class Output> constexpr bool is_back_inserter = false;
template <class Container> constexpr bool is_back_inserter<std::back_insert_iterator<Container>> = true;

/** Reaches the container of a back inserter, whose text then grows once. */
template <class Container> Container &container_of(std::back_insert_iterator<Container> iterator) noexcept
{
    struct access : std::back_insert_iterator<Container>
    {
        using std::back_insert_iterator<Container>::container;
    };
    return *(iterator.*&access::container);
}

template <class Output>
using larger_inserted = std::enable_if_t<(sizeof(typename Output::container_type::value_type) > 1)>;
template <class Output>
using larger_pointed = std::enable_if_t<(sizeof(typename std::iterator_traits<Output>::value_type) > 1)>;

template <class Output> auto copy_to(Output out, std::string_view text)
{
    constexpr bool takesText = !has<larger_inserted, Output> && !has<larger_pointed, Output>;
    static_assert(takesText, "kelto: a text is UTF-8, of chars, and this output takes larger units; call "
                             "format_utf16() for a std::u16string");
    if constexpr (std::is_same_v<Output, std::back_insert_iterator<std::string>>)
        container_of(out).append(text.data(), text.size());
    else if constexpr (is_back_inserter<Output>)
        container_of(out).insert(container_of(out).end(), text.begin(), text.end());
    else if constexpr (takesText)
        for (const char c : text)
            *out++ = c;
    return out;
}

/** An array of chars, for a text that is cut. */
template <class Output> constexpr bool is_line = false;
template <std::size_t Size> constexpr bool is_line<char (&)[Size]> = true;

/** Hands a text to an output. @return the stream, or the iterator behind the text. */
template <class Output> decltype(auto) hand_over(Output &&out, std::string_view text)
{
    using bare = std::remove_cv_t<std::remove_reference_t<Output>>;
    static_assert(
        !std::is_pointer_v<bare>,
        "kelto: a pointer does not tell how much room there is; pass an array of chars, a std::back_inserter, "
        "or call format_to_n(pointer, room, ...)");
    if constexpr (has<stream_of, bare>)
        return static_cast<bare &>(out.write(text.data(), static_cast<std::ptrdiff_t>(text.size())));
    else if constexpr (!std::is_pointer_v<bare>)
        return copy_to(bare(std::forward<Output>(out)), text);
}

/** The error code that stands in front of the arguments of a call, or null. */
template <class... Arguments> std::error_code *failure_of(const Arguments &...) noexcept
{
    static_assert(KELTO_HAS_EXCEPTIONS || sizeof...(Arguments) == SIZE_MAX,
                  "kelto: without exceptions a std::error_code stands in front of the arguments");
    return nullptr;
}
template <class... Arguments> std::error_code *failure_of(std::error_code &failure, const Arguments &...) noexcept
{
    return &failure;
}

inline bool has_thrown(void *) noexcept
{
    return thrown() != nullptr && *thrown() != nullptr;
}

/** What is asked of the library, and where a failure goes; where that is null, it is thrown. See outcome. */
template <bool Throws> struct request_of
{
    KTCatalogRequest asked;
    std::error_code *failure;
};
using text_request = request_of<KELTO_HAS_EXCEPTIONS>;

/** What the library uses and calls back; at one place as long as it may. */
struct used
{
    std::shared_ptr<formTable> table;
    std::shared_ptr<void> conversions;
    callback<void(const problem &)> on_problem;
};

/**
 * A catalog, or a format in the place of one, as the library has opened it.
 * @tparam MayFail  whether its calls can fail: those of catalogs do not, and compile to less.
 */
template <bool MayFail> class text_source
{
protected:
    /** Opens by the options, to which those of `from` are added. What functions of the program throw comes out. */
    template <class Open> int open(const format_options &from, KTCatalogOptions options, used own, const Open &call)
    {
        if (from.table != nullptr)
            own.table = from.table->table_;
        options.structSize = sizeof options;
        options.table = own.table.get();
        options.passThru = from.pass_through;
        options.formatOptions = (from.tag ? unsigned{KT_TAG} : 0U) | (from.isolate ? unsigned{KT_ISOLATE} : 0U);
        options.maxSize = from.max_size != 0 ? from.max_size : 1;
        if (own.table != nullptr || own.conversions != nullptr || own.on_problem)
        {
            used_ = std::make_unique<used>(std::move(own));
            options.context = used_.get();
            options.isStopped = has_thrown;
        }
        return call_throwing([&] {
            KTCatalog *opened = nullptr;
            const int result = call(options, &opened);
            catalog_.reset(opened);
            return has_thrown(nullptr) ? int{KT_ERR_CONVERSION_FAILED} : result;
        });
    }

    /** Writes a new text. */
    template <class Unit>
    __attribute__((flatten)) KELTO_OUT_OF_LINE std::basic_string<Unit> make(const text_request &request) const
    {
        return written<Unit>(request).take();
    }

    /** Writes to an output; a catalog into an array without a buffer in between. */
    template <class Output> decltype(auto) put(Output &&out, const text_request &request) const
    {
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
        else
            return hand_over(std::forward<Output>(out), written<char>(request).view());
    }

    template <class Output>
    format_to_n_result<Output> put_n(Output out, std::size_t most, const text_request &request) const
    {
        const auto text = written<char>(request);
        const std::string_view all = text.view();
        return {copy_to(out, all.substr(0, KTCutUTF8(all.data(), all.size(), most))), all.size()};
    }

    std::size_t measure(const text_request &request) const { return written<char>(request).view().size(); }

    /** Why the opening failed, or a call. */
    KELTO_SELDOM std::string explain(int result, const KTCatalogRequest *asked) const
    {
        std::string why;
        const auto write = [&](std::size_t *size, char *out) {
            return KTExplainCatalog(catalog_.get(), asked, result, size, out);
        };
        // What is thrown meanwhile was thrown before.
        call_throwing([&] { return why = text_buffer<char>(write, [](int) {}).take(), 0; });
        return why;
    }

    /** Tells a failure, or throws it. */
    void tell(int result, const text_request &request) const
    {
        if constexpr (MayFail)
        {
            if (request.failure != nullptr)
                *request.failure = make_error(result);
#if KELTO_HAS_EXCEPTIONS
            else if (result != 0)
                fail(result, request.asked);
#endif
        }
    }

    std::unique_ptr<used> used_; // outlives what uses it
    std::unique_ptr<KTCatalog, freed_by<KTCloseCatalog>> catalog_;

private:
    /** Has the library write a text. */
    template <class Unit> int write(const text_request &request, std::size_t *size, Unit *out) const
    {
        const auto call = [this, &request, size, out] {
            if constexpr (std::is_same_v<Unit, char>)
                return KTCatalogFormatRequestUTF8(catalog_.get(), &request.asked, size, out);
            else
                return KTCatalogFormatRequest(catalog_.get(), &request.asked, size, out);
        };
        return used_ == nullptr ? call() : call_throwing(call);
    }

    template <class Unit> text_buffer<Unit> written(const text_request &request) const
    {
        return text_buffer<Unit>([&](std::size_t *size, Unit *out) { return write(request, size, out); },
                                 [&](int result) { tell(result, request); });
    }

#if KELTO_HAS_EXCEPTIONS
    [[noreturn]] KELTO_SELDOM void fail(int result, const KTCatalogRequest &asked) const
    {
        const bool isFormat = KTCatalogPrepared(catalog_.get()) != nullptr || result != KT_ERR_INVALID_PARAMETER;
        throw told_error{make_error(result), isFormat ? explain(result, asked.structSize != 0 ? &asked : nullptr)
                                                      : "kelto::prepared_format: it holds no format"};
    }
#endif
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
    prepared_format(const std::string &format, const format_options &options, std::error_code &failure)
    {
        failure = make_error(prepare(format, options));
    }
#if KELTO_HAS_EXCEPTIONS
    explicit prepared_format(const std::string &format, const format_options &options = {})
    {
        tell(prepare(format, options), ask(nullptr, detail::argument_list()));
    }
#endif

    /** The text. */
    template <class... Arguments> std::string format(Arguments &&...arguments) const
    {
        return make<char>(ask(detail::failure_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /** The text in UTF-16. */
    template <class... Arguments> std::u16string format_utf16(Arguments &&...arguments) const
    {
        return make<char16_t>(ask(detail::failure_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /**
     * Writes the text to a stream, or behind an output iterator; without the heap up to 1,024 bytes. Into an array of
     * chars it writes as much as fits, terminated, and gives a cut_text.
     */
    template <class Output, class... Arguments> decltype(auto) format_to(Output &&out, Arguments &&...arguments) const
    {
        return put(std::forward<Output>(out),
                   ask(detail::failure_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /** Writes at most so many bytes of the text, in whole characters and not terminated, behind an output iterator. */
    template <class Output, class... Arguments>
    format_to_n_result<Output> format_to_n(Output out, std::size_t most, Arguments &&...arguments) const
    {
        return put_n(out, most,
                     ask(detail::failure_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /** The bytes of the text. */
    template <class... Arguments> std::size_t formatted_size(Arguments &&...arguments) const
    {
        return measure(ask(detail::failure_of(arguments...), detail::argument_list(detail::hold(arguments)...)));
    }

    /** For calls of the C interface, as long as this object lives; null where the format was refused. */
    const KTPreparedFormat *get() const noexcept
    {
        return KTCatalogPrepared(catalog_.get());
    }

private:
    int prepare(const std::string &format, const format_options &options)
    {
        return open(options, {}, {}, [&](const KTCatalogOptions &given, KTCatalog **opened) {
            return KTOpenCatalogFormat(format.c_str(), &given, opened);
        });
    }

    /** Asks nothing, which is refused, where the object was moved from. */
    template <class List> detail::text_request ask(std::error_code *failure, const List &list) const noexcept
    {
        const std::size_t size = catalog_ != nullptr ? sizeof(KTCatalogRequest) : 0;
        return {{size, 0, false, nullptr, 0, list.arguments, list.count}, failure};
    }
};

} // namespace kelto

#endif
