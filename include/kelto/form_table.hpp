/** @file form_table.hpp Conversions and encoders of the program's own. Include kelto.hpp. */
#ifndef KELTO_FORM_TABLE_HPP
#define KELTO_FORM_TABLE_HPP

#include "argument.hpp"

#include <exception>
#include <optional>

namespace kelto
{

/** What a conversion of the program's own is told beside its values. */
struct conversion_spec
{
    std::string_view name;
    int width;     /**< -1 when there is none */
    int precision; /**< -1 when there is none */
    int flags;     /**< bits of KTFlag */
    void *pass_through;
};

namespace detail
{

// What only programs with own conversions need is a template, even where nothing varies: others do not compile it.

template <bool> class text_source;

constexpr std::uint32_t running_kind = 0x6B2B2B03;

/** What a function of the program threw during the innermost call of this layer in this thread; null outside of one. */
inline std::exception_ptr *thrown() noexcept
{
    return static_cast<std::exception_ptr *>(KTCallValue(running_kind));
}

/** Makes a call of the library. Where it has no text for an answer, what was thrown during it is thrown again. */
template <class Call> KELTO_OUT_OF_LINE int call_throwing(const Call &call)
{
    std::exception_ptr own;
    KTCallContext context = {running_kind, &own, nullptr};
    KTEnterCall(&context);
    const int result = call();
    KTLeaveCall(&context);
    if (own != nullptr && result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
        std::rethrow_exception(own);
    return result;
}

/** Keeps what is being thrown. */
inline void keep_thrown() noexcept
{
    if (thrown() != nullptr && *thrown() == nullptr)
        *thrown() = std::current_exception();
}

/** How a type stands in a record, and how its value is read, whatever size the conversion names. */
template <class Value> struct own_value
{
    static constexpr bool is_object = has<identity_of, Value>;
    static constexpr bool is_view = is_text<Value, char> || is_text<Value, char8> || is_text<Value, char16_t>;
    static constexpr bool is_integer = std::is_integral_v<Value> && slot_of<Value>() <= KT_SLOT_UINT64;
    static constexpr int type = is_object                         ? KT_ARG_POINTER
                                : is_text<Value, char16_t>        ? KT_ARG_UCS2
                                : is_view                         ? KT_ARG_UTF8
                                : is_one_of<Value, float, double> ? KT_ARG_DOUBLE
                                : is_one_of<Value, char16_t>      ? KT_ARG_CHARACTER
                                : !is_integer                     ? KT_ARG_END
                                : std::is_signed_v<Value>         ? KT_ARG_SIGNED
                                                                  : KT_ARG_UNSIGNED;
    static_assert(type != KT_ARG_END,
                  "kelto: a conversion of your own takes an integer, a double, a char16_t, a "
                  "std::string_view, a std::u16string_view, or a type whose kelto::argument_of derives from "
                  "kelto::by_identity");

    /** The value, or null where its type does not hold it. */
    static auto read(const KTArgument &given)
    {
        if constexpr (is_object)
            return static_cast<const Value *>(KTObjectOfType(&given, object_type<Value>()));
        else if constexpr (is_view)
            return std::optional<Value>(static_cast<const typename Value::value_type *>(given.value.p));
        else if constexpr (std::is_floating_point_v<Value>)
            return std::optional<Value>(static_cast<Value>(given.value.d));
        else
        {
            const auto value = static_cast<Value>(given.value.u);
            return static_cast<std::uint64_t>(value) == given.value.u ? std::optional<Value>(value) : std::nullopt;
        }
    }
};

/** A conversion, or an encoder, which has one text for its values: a function with its state, as a KTOwnFunction. */
template <bool Catches, class Function, class... Values> struct own_function
{
    static constexpr int types[] = {own_value<Values>::type..., KT_ARG_END};
    Function function;

    static void destroy(void *own) noexcept { delete static_cast<own_function *>(own); }
    static int run(void *own, KTOwnCall *call) noexcept
    {
        const auto write = [&] {
            return static_cast<own_function *>(own)->read(*call, std::index_sequence_for<Values...>());
        };
        return guarded<Catches>(write, keep_thrown);
    }

private:
    template <std::size_t... Index> int read(KTOwnCall &call, std::index_sequence<Index...>)
    {
        return write(call, own_value<Values>::read(call.arguments[Index])...);
    }

    template <class... Given> int write(KTOwnCall &call, const Given &...given)
    {
        constexpr bool wantsSpec = std::is_invocable_v<Function &, const Values &..., const conversion_spec &>;
        static_assert(wantsSpec || std::is_invocable_v<Function &, const Values &...>,
                      "kelto: the function of a conversion takes its values, and a conversion_spec if it wants one");
        if (!(given && ...))
            return KT_ERR_INVALID_PARAMETER;
        if constexpr (wantsSpec)
        {
            const conversion_spec spec = {call.name, std::exchange(call.width, KT_ABSENT),
                                          std::exchange(call.precision, KT_ABSENT), call.flags, call.passThru};
            return give(call, function(*given..., spec));
        }
        else
            return give(call, function(*given...));
    }

    static int give(KTOwnCall &call, std::string_view text) { return KTGiveText(&call, plain_argument::of(text)); }
    static int give(KTOwnCall &call, std::u16string_view text) { return KTGiveText(&call, plain_argument::of(text)); }
};

} // namespace detail

/** Conversions of the program's own, and an encoder. Once built, it does not change; what uses it shares it. */
class form_table
{
public:
    class builder;

    form_table(form_table &&) noexcept = default;
    form_table &operator=(form_table &&) noexcept = default;

    /** The table for calls of the C interface, as long as this object lives. Its encoder needs typed arguments. */
    formTable *get() const noexcept { return table_.get(); }

private:
    template <bool> friend class detail::text_source;
    explicit form_table(std::shared_ptr<formTable> table) noexcept : table_(std::move(table)) {}
    std::shared_ptr<formTable> table_;
};

/**
 * Builds a form table:
 *
 *     kelto::form_table table = kelto::form_table::builder()
 *                                   .add<money>("money", [](const money &m) { return m.text(); }) // "%money[1]"
 *                                   .with_encoder(html_escape)
 *                                   .encode_everywhere()
 *                                   .build();
 */
class form_table::builder
{
public:
    /**
     * Adds a conversion.
     * @param name      its name in format strings: up to 19 ASCII characters, a letter first but not 'h', 'l' or 'L',
     *                  no '[', and neither "N" nor "O". A name of the built-in table is replaced.
     * @param function  takes the values, and if it wants a conversion_spec behind them; gives UTF-8 or UTF-16 text.
     *                  Without a conversion_spec its text is cut and padded as that of "%s". It is called twice where
     *                  the first buffer was too small, in any thread; what it throws is thrown again by the call that
     *                  formats. It may hold state.
     * @tparam Values   what it takes: integers (of the size that a format names; a value that its type does not hold is
     *                  refused), a double, a char16_t, a std::string_view, a std::u16string_view, or types of the
     *                  program's own with their identity, see argument_of.
     */
    template <class... Values, class Function, bool Catches = KELTO_HAS_EXCEPTIONS>
    builder &add(std::string_view name, Function function)
    {
        using own = detail::own_function<Catches, Function, Values...>;
        KTAddConversion(table_.get(), std::string(name).c_str(), own::types, KT_KIND_OBJECT, own::run,
                        new own{std::move(function)}, own::destroy);
        return *this;
    }

    /**
     * Sets the function that every text goes through that lies in an encoded region ("%N[1]%s[2]%O[3]"), conversions of
     * the program's own included: UTF-8 to UTF-8, or UTF-16 to UTF-16. It gets whole texts, or single characters from
     * "%c".
     */
    template <class Function, bool Catches = KELTO_HAS_EXCEPTIONS> builder &with_encoder(Function function)
    {
        constexpr bool takesUTF8 = std::is_invocable_v<Function &, std::string_view>;
        constexpr bool isEncoder = takesUTF8 || std::is_invocable_v<Function &, std::u16string_view>;
        static_assert(isEncoder,
                      "kelto: an encoder takes a std::string_view or a std::u16string_view and gives a text");
        if constexpr (isEncoder)
        {
            using text = std::conditional_t<takesUTF8, std::string_view, std::u16string_view>;
            using own = detail::own_function<Catches, Function, text>;
            KTSetEncoder(table_.get(), *own::types, own::run, new own{std::move(function)}, own::destroy);
        }
        return *this;
    }

    /** Every argument goes through the encoder, whatever a translation encodes: what HTML, shells and SQL need. */
    builder &encode_everywhere() noexcept
    {
        options_ = KT_ENCODE_ALL;
        return *this;
    }

    /**
     * Sets the table in which names are looked for that were not added here, a table of the C interface that must live
     * as long as the table built; else it is the built-in one. A table is refused that takes pointers without a type: a
     * translation could have it read an object as what it is not.
     */
    builder &in_front_of(formTable *table) noexcept
    {
        next_ = table;
        return *this;
    }

    /**
     * The table; null inside, and failure set, where a name is impossible, the chained table is refused, or there is
     * no encoder for encode_everywhere(). Without a failure to be set it throws.
     */
    template <class = void> form_table build(detail::outcome<> failure KELTO_OR_THROW)
    {
        const std::shared_ptr<KTOwnTable> own = std::exchange(table_, {KTNewOwnTable(), KTFreeOwnTable});
        formTable *made = nullptr;
        char why[1024];
        std::size_t size = sizeof why;
        const int result = KTFinishOwnTable(own.get(), next_, std::exchange(options_, 0U), &made, &size, why);
        failure.set(result, [&] { return std::string("kelto::form_table: ") + why; });
        return form_table(std::shared_ptr<formTable>(own, made));
    }

private:
    std::shared_ptr<KTOwnTable> table_ = {KTNewOwnTable(), KTFreeOwnTable};
    formTable *next_ = nullptr;
    unsigned options_ = 0;
};

} // namespace kelto

#endif
