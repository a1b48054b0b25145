/**
 * @file format.hpp
 * Where a text goes, and formats that come from no catalog. Include kelto.hpp.
 */
#ifndef KELTO_FORMAT_HPP
#define KELTO_FORMAT_HPP

#include "form_table.hpp"

#include <iterator>

namespace kelto
{

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
    text_buffer() noexcept {} // the units stay as they are
    text_buffer(const text_buffer &) = delete;
    text_buffer &operator=(const text_buffer &) = delete;

    /** Has a text written in as much room as it needs, and returns the result; a need of 0 ends the search for room. */
    template <class Write> int fill(const Write &write)
    {
        size_ = few_units + 1;
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
    std::size_t size_;
    std::basic_string<Unit> many_;
};

/** The beginning of a text, of at most so many bytes and in whole characters. */
inline std::string_view cut(std::string_view text, std::size_t most) noexcept
{
    if (text.size() <= most)
        return text;
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80)
        --most;
    return text.substr(0, most);
}

template <class Output> using stream_of = decltype(std::declval<Output &>().write("", 1).rdbuf());

template <class Output> constexpr bool is_back_inserter = false;
template <class Container> constexpr bool is_back_inserter<std::back_insert_iterator<Container>> = true;

/** Reaches the container of a back inserter, whose text then grows once. */
template <class Container> Container &container_of(std::back_insert_iterator<Container> iterator) noexcept
{
    struct access : std::back_insert_iterator<Container>
    {
        explicit access(std::back_insert_iterator<Container> from) : std::back_insert_iterator<Container>(from) {}
        Container &get() const noexcept { return *this->container; }
    };
    return access(iterator).get();
}

template <class Output> using inserted_of = typename Output::container_type::value_type;
template <class Output> using pointed_of = decltype(sizeof(typename std::iterator_traits<Output>::value_type));

/** Whether an output takes bytes, as far as that is known. */
template <class Output> constexpr bool takes_text() noexcept
{
    if constexpr (has<inserted_of, Output>)
        return sizeof(inserted_of<Output>) == 1;
    else if constexpr (has<pointed_of, Output>)
        return sizeof(typename std::iterator_traits<Output>::value_type) == 1;
    else
        return true;
}

template <class Output> auto copy_to(Output out, std::string_view text)
{
    static_assert(takes_text<Output>(), "kelto: a text is UTF-8, of chars, and this output takes larger units; call "
                                        "format_utf16() for a std::u16string");
    if constexpr (std::is_same_v<Output, std::back_insert_iterator<std::string>>)
        container_of(out).append(text.data(), text.size());
    else if constexpr (is_back_inserter<Output>)
        container_of(out).insert(container_of(out).end(), text.begin(), text.end());
    else if constexpr (takes_text<Output>())
        for (const char c : text)
            *out++ = c;
    return out;
}

/** An array of chars, for a text that is cut. */
template <class Output> constexpr bool is_line = false;
template <std::size_t Size> constexpr bool is_line<char (&)[Size]> = true;

/** Hands a text to an output. @return the stream, the iterator behind the text, or what fits into an array. */
template <class Output> decltype(auto) hand_over(Output &&out, std::string_view text)
{
    using bare = std::remove_cv_t<std::remove_reference_t<Output>>;
    static_assert(
        !std::is_pointer_v<bare>,
        "kelto: a pointer does not tell how much room there is; pass an array of chars, a std::back_inserter, "
        "or call format_to_n(pointer, room, ...)");
    if constexpr (is_line<Output>)
    {
        const std::size_t size = cut(text, sizeof out - 1).copy(out, sizeof out - 1);
        out[size] = '\0';
        return cut_text{{out, size}, text.size()};
    }
    else if constexpr (has<stream_of, bare>)
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
/** Writes an object of the program's for the last rung and for errors. */
inline int write_argument(void *, const KTArgument *argument, std::size_t *size, char *out) noexcept
{
    if (argument->length != identity_kind)
        return KT_ERR_INVALID_PARAMETER;
    const auto *const object = static_cast<const identified *>(argument->value.p);
    return (*object->type)(object->object, size, out);
}

/** The options as the C interface takes them, with the table, which they keep alive. */
struct call_options
{
    explicit call_options(const format_options &from) : table(from.table != nullptr ? from.table->state_ : nullptr)
    {
        given.structSize = sizeof given;
        given.table = table != nullptr ? &table->table : nullptr;
        given.passThru = from.pass_through;
        given.formatOptions = (from.tag ? unsigned{KT_TAG} : 0U) | (from.isolate ? unsigned{KT_ISOLATE} : 0U) |
                              (table != nullptr && table->encodes_everywhere ? unsigned{KT_ENCODE_ALL} : 0U);
        given.maxSize = from.max_size != 0 ? from.max_size : 1;
        given.writeArgument = write_argument;
    }

    std::shared_ptr<table_state> table;
    KTCatalogOptions given = {};
};

} // namespace detail

/**
 * One format, parsed once, for texts that come from no catalog. Here what does not fit is an error.
 *
 * A call with a std::error_code in front of the arguments throws nothing, and gives nothing where that is set. The
 * others throw where the arguments are not those that the format takes, and where a conversion fails.
 */
class prepared_format
{
public:
    prepared_format(const std::string &format, std::error_code &failure) : prepared_format(format, {}, failure) {}
    prepared_format(const std::string &format, const format_options &options, std::error_code &failure)
        : options_(options)
    {
        failure = make_error(open(format));
    }

#if KELTO_HAS_EXCEPTIONS
    explicit prepared_format(const std::string &format, const format_options &options = {}) : options_(options)
    {
        if (const int result = open(format))
            fail(result, {nullptr, 0});
    }
#endif

    /** The text. */
    template <class... Arguments> std::string format(Arguments &&...arguments) const
    {
        return make<char>(detail::failure_of(arguments...), detail::list(detail::hold(arguments)...));
    }

    /** The text in UTF-16. */
    template <class... Arguments> std::u16string format_utf16(Arguments &&...arguments) const
    {
        return make<char16_t>(detail::failure_of(arguments...), detail::list(detail::hold(arguments)...));
    }

    /**
     * Writes the text to a stream, or behind an output iterator; without the heap up to 1,024 bytes. Into an array of
     * chars it writes as much as fits, terminated, and gives a cut_text.
     */
    template <class Output, class... Arguments> decltype(auto) format_to(Output &&out, Arguments &&...arguments) const
    {
        detail::text_buffer<char> text;
        fill(text, detail::failure_of(arguments...), detail::list(detail::hold(arguments)...));
        return detail::hand_over(std::forward<Output>(out), text.view());
    }

    /** Writes at most so many bytes of the text, in whole characters and not terminated, behind an output iterator. */
    template <class Output, class... Arguments>
    format_to_n_result<Output> format_to_n(Output out, std::size_t most, Arguments &&...arguments) const
    {
        detail::text_buffer<char> text;
        fill(text, detail::failure_of(arguments...), detail::list(detail::hold(arguments)...));
        return {detail::copy_to(out, detail::cut(text.view(), most)), text.view().size()};
    }

    /** The bytes of the text. */
    template <class... Arguments> std::size_t formatted_size(Arguments &&...arguments) const
    {
        detail::text_buffer<char> text;
        fill(text, detail::failure_of(arguments...), detail::list(detail::hold(arguments)...));
        return text.view().size();
    }

    /** For calls of the C interface, as long as this object lives; null where the format was refused. */
    const KTPreparedFormat *get() const noexcept
    {
        return format_.get();
    }

    prepared_format(prepared_format &&) noexcept = default;
    prepared_format &operator=(prepared_format &&other) noexcept
    {
        std::swap(use_, other.use_);
        std::swap(options_, other.options_);
        std::swap(text_, other.text_);
        std::swap(format_, other.format_);
        return *this;
    }

private:
    int open(const std::string &format)
    {
        text_ = format;
        if (const int result = detail::begin(use_))
            return result;
        KTPreparedFormat *prepared = nullptr;
        const int result = KTPrepareFormat(text_.c_str(), options_.given.table, &prepared);
        format_.reset(prepared);
        return result;
    }

    template <class Unit>
    int call_library(const detail::argument_view &view, std::size_t *size, Unit *out) const noexcept
    {
        if constexpr (std::is_same_v<Unit, char>)
            return KTFormatPreparedUTF8(format_.get(), options_.given.formatOptions, options_.given.passThru, size, out,
                                        view.arguments, view.count);
        else
            return KTFormatPrepared(format_.get(), options_.given.formatOptions, options_.given.passThru, size, out,
                                    view.arguments, view.count);
    }

    template <class Unit> int write_running(const detail::argument_view &view, std::size_t *size, Unit *out) const
    {
        detail::running around(options_.table.get());
        const int result = call_library(view, size, out);
        around.rethrow();
        return result;
    }

    /**
     * Calls the library, and throws only what functions of the program throw. A text that is longer than it may be is
     * KT_ERR_BUFFER_TOO_SMALL, and its size 0.
     */
    template <class Unit>
    KELTO_OUT_OF_LINE int write(const detail::argument_view &view, std::size_t *size, Unit *out) const
    {
        const int result = options_.table != nullptr ? write_running(view, size, out) : call_library(view, size, out);
        const bool isText = result == 0 || result == KT_ERR_BUFFER_TOO_SMALL;
        const std::size_t most = options_.given.maxSize;
        if (!isText || *size <= most || *size <= KTTextLimit(most, view.arguments, view.count))
            return result;
        *size = 0;
        return KT_ERR_BUFFER_TOO_SMALL;
    }

    /** Fills a buffer where it can; what cannot be is told in `failure`, or thrown where that is null. */
    template <class Unit>
    KELTO_OUT_OF_LINE void fill(detail::text_buffer<Unit> &text, std::error_code *failure,
                                const detail::argument_view &view) const
    {
        const int result = text.fill([&](std::size_t *size, Unit *out) { return write(view, size, out); });
        if (failure != nullptr)
            *failure = make_error(result);
#if KELTO_HAS_EXCEPTIONS
        else if (result != 0)
            fail(result, view);
#endif
    }

    template <class Unit>
    KELTO_OUT_OF_LINE std::basic_string<Unit> make(std::error_code *failure, const detail::argument_view &view) const
    {
        detail::text_buffer<Unit> text;
        fill(text, failure, view);
        return text.take();
    }

#if KELTO_HAS_EXCEPTIONS
    [[noreturn]] KELTO_SELDOM void fail(int result, const detail::argument_view &view) const
    {
        if (format_ == nullptr && result == KT_ERR_INVALID_PARAMETER)
            detail::throw_told(result, {"kelto::prepared_format: it holds no format"});
        const detail::running call(options_.table.get()); // what is thrown here was thrown before
        detail::text_buffer<char> why;
        why.fill([&](std::size_t *size, char *out) {
            return KTExplainFailure(text_.c_str(), result, &options_.given, view.arguments, view.count, size, out);
        });
        detail::throw_told(result, {why.view()});
    }
#endif

    detail::use use_;
    detail::call_options options_;
    std::string text_;
    std::unique_ptr<KTPreparedFormat, detail::freed_by<KTFreePrepared>> format_;
};

} // namespace kelto

#endif
