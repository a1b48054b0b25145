/**
 * @file form_table.hpp
 * Conversions and encoders of the program's own. Include kelto.hpp.
 *
 * What only programs with own conversions need is a template, even where nothing varies: other programs do not compile
 * it.
 */
#ifndef KELTO_FORM_TABLE_HPP
#define KELTO_FORM_TABLE_HPP

#include "argument.hpp"

#include <exception>
#include <tuple>

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

struct call_options;
struct table_state;

constexpr std::uint32_t running_kind = 0x6B2B2B03;

/**
 * A call in this thread. What runs during it finds the table here, since an encoder is told nothing of its own. Calls
 * may lie in each other, where a conversion formats something itself.
 */
class running
{
public:
    explicit running(const table_state *of) noexcept : table(of) { KTEnterCall(&context_); }
    ~running() { end(); }
    running(const running &) = delete;
    running &operator=(const running &) = delete;

    static running *innermost() noexcept { return static_cast<running *>(KTCallValue(running_kind)); }

    /** Throws again what a function of the program threw during the call. */
    void rethrow()
    {
        if (thrown == nullptr)
            return;
        const std::exception_ptr own = std::exchange(thrown, nullptr);
        end(); // here, since frames without exceptions call no destructors
        std::rethrow_exception(own);
    }

    const table_state *const table;
    std::exception_ptr thrown;

private:
    void end() noexcept
    {
        if (std::exchange(isEntered_, false))
            KTLeaveCall(&context_);
    }

    KTCallContext context_ = {running_kind, this, nullptr};
    bool isEntered_ = true;
};

/**
 * Calls a function of the program; what it throws is kept. In a program of sources with and without exceptions, the
 * linker takes an inline function from any of them: by its parameter this one stays that of the source that throws.
 */
template <bool Catches, class Function> int guarded(Function function) noexcept
{
#if KELTO_HAS_EXCEPTIONS
    static_assert(Catches);
    try
    {
        return function();
    }
    catch (...)
    {
        running *const call = running::innermost();
        if (call != nullptr && call->thrown == nullptr)
            call->thrown = std::current_exception();
        return KT_ERR_CONVERSION_FAILED;
    }
#else
    return function();
#endif
}

template <class = void> std::u16string to_ucs2(std::u16string_view text)
{
    return std::u16string(text);
}

template <class = void> KELTO_SELDOM std::u16string to_ucs2(std::string_view text)
{
    const std::string terminated(text.substr(0, text.find('\0')));
    std::u16string units(terminated.size(), u'\0');
    std::size_t size = units.size() + 1;
    units.resize(KTUTF8ToUCS2(terminated.c_str(), &size, units.data()) == 0 ? size : 0);
    return units;
}

template <class = void> KELTO_SELDOM std::string to_utf8(std::u16string_view text)
{
    const std::u16string terminated(text.substr(0, text.find(u'\0')));
    std::string bytes(3 * terminated.size(), '\0');
    std::size_t size = bytes.size() + 1;
    bytes.resize(KTUCS2ToUTF8(terminated.c_str(), &size, bytes.data()) == 0 ? size : 0);
    return bytes;
}

/** A name as a record has it; the first member of what knows the conversion, to be found by the name's address. */
struct conversion;
struct named
{
    char name[21]; // one more than a name can have, so that a longer one is seen
    const conversion *owner;
};

struct conversion
{
    named id = {};
    const int *types = nullptr; // ended by 0
    int count = 0;
    callback<int(const conversion_spec &, KTEncoder, void **given, unsigned long *size, UCS2 *out)> write;
    std::unique_ptr<conversion> next;
};

/** A form table with all that its records point to. */
struct table_state
{
    use held;
    formTable table = {};
    std::unique_ptr<KTFormatter[]> records;
    std::unique_ptr<conversion> first;
    std::size_t count = 0;
    callback<int(const void *value, int dataType, unsigned long *size, UCS2 *out)> encode;
    bool encodes_everywhere = false;
};

/** The encoder of all tables of this layer; only the calls of this layer can use it. */
KELTO_SHARED inline int encode(const void *value, int dataType, unsigned long *size, UCS2 *out)
{
    const running *const call = running::innermost();
    if (call != nullptr && call->table != nullptr && call->table->encode)
        return call->table->encode(value, dataType, size, out);
    *size = 0;
    return KT_ERR_INVALID_PARAMETER;
}

/** The function in all records of this layer. */
KELTO_SHARED inline int convert(const char *name, int width, int precision, int flags, KTEncoder encoder,
                                void *passThrough, void **given, unsigned long *size, UCS2 *out)
{
    const conversion &own = *reinterpret_cast<const named *>(name)->owner;
    return own.write({name, width, precision, flags, passThrough}, encoder, given, size, out);
}

/** Calls the program's encoder under the protocol of a KTEncoder. */
template <bool Catches, class Function> struct own_encoder
{
    Function function;

    int operator()(const void *value, int dataType, unsigned long *size, UCS2 *out)
    {
        const unsigned long room = std::exchange(*size, 0);
        return guarded<Catches>([&] {
            const UCS2 character[2] = {dataType == KT_ENCODE_CHARACTER
                                           ? static_cast<UCS2>(*static_cast<const unsigned char *>(value))
                                           : *static_cast<const UCS2 *>(value)};
            std::u16string text = dataType == KT_ENCODE_UCS2 ? static_cast<const UCS2 *>(value) : character;
            const bool isHalf = dataType == KT_ENCODE_UNIT && (*character & 0xF800) == 0xD800;
            // Half of a character has nothing to encode.
            if constexpr (std::is_invocable_v<Function &, std::string_view>)
                text = isHalf ? text : to_ucs2(function(std::string_view(to_utf8(text))));
            else
                text = isHalf ? text : to_ucs2(function(std::u16string_view(text)));
            text.copy(out, room < text.size() ? room : text.size());
            *size = text.size();
            return 0;
        });
    }
};

/** Cuts and pads a text as "%s" does. */
template <class Text> void lay_out(const conversion_spec &spec, Text &text)
{
    if (spec.precision >= 0 && text.size() > static_cast<std::size_t>(spec.precision))
        text.resize(static_cast<std::size_t>(spec.precision));
    if (spec.width <= 0 || text.size() >= static_cast<std::size_t>(spec.width))
        return;
    const std::size_t padding = static_cast<std::size_t>(spec.width) - text.size();
    text.insert((spec.flags & FLAG_MINUS) != 0 ? text.size() : 0, padding, (spec.flags & FLAG_ZERO) != 0 ? u'0' : u' ');
}

/** How a type stands in a record, and how its value is read from a slot, whatever size the conversion names. */
template <class Value> struct own_value
{
    static constexpr category kind = category_of<Value>();
    static constexpr bool is_view = std::is_class_v<Value> && (kind == category::utf8 || kind == category::ucs2);
    static_assert(kind == category::identity || kind == category::integer || kind == category::real ||
                      kind == category::unit || is_view,
                  "kelto: a conversion of your own takes an integer, a double, a char16_t, a std::string_view, a "
                  "std::u16string_view, or a type whose kelto::argument_of derives from kelto::by_identity");

    static constexpr int type = kind == category::identity                             ? KT_ARG_POINTER
                                : kind == category::integer && std::is_signed_v<Value> ? KT_ARG_SIGNED
                                : kind == category::integer                            ? KT_ARG_UNSIGNED
                                : kind == category::real                               ? KT_ARG_DOUBLE
                                : kind == category::unit                               ? KT_ARG_CHARACTER
                                : kind == category::utf8                               ? KT_ARG_UTF8
                                                                                       : KT_ARG_UCS2;

    /** The value, or null where the slot has none of this type. */
    const Value *read(void **slot, int flags)
    {
        const KTValue value = KTSlotArgument(slot, type, flags).value;
        if constexpr (kind == category::identity)
        {
            const auto *const object = static_cast<const identified *>(KTPointerOfKind(slot, identity_kind));
            const bool isRight = object != nullptr && is_of_type<Value>(*object);
            return isRight ? static_cast<const Value *>(object->object) : nullptr;
        }
        else if constexpr (is_view)
            return &(copy_ = static_cast<const typename Value::value_type *>(value.p));
        else if constexpr (kind == category::real)
            return &(copy_ = static_cast<Value>(value.d));
        else
        {
            copy_ = static_cast<Value>(value.u);
            return static_cast<std::uint64_t>(copy_) == value.u ? &copy_ : nullptr;
        }
    }

private:
    std::conditional_t<kind == category::identity, no_argument, Value> copy_ = {};
};

/** Reads the values of a conversion and calls the program's function with them, and with a conversion_spec if it wants
 * one; under the protocol of a KTFormatFunction. */
template <bool Catches, class Function, class... Values> struct own_conversion
{
    static constexpr int types[] = {own_value<Values>::type..., KT_ARG_END};
    Function function;

    int operator()(const conversion_spec &spec, KTEncoder encoder, void **given, unsigned long *size, UCS2 *out)
    {
        const unsigned long room = std::exchange(*size, 0);
        return guarded<Catches>([&]() -> int {
            std::u16string text;
            if (!make(text, spec, given, std::index_sequence_for<Values...>()))
                return KT_ERR_INVALID_PARAMETER;
            *size = room;
            void *units = text.data();
            return formatUCS2Str(nullptr, KT_ABSENT, KT_ABSENT, spec.flags, encoder, nullptr, &units, size, out);
        });
    }

    /** Makes the text; false where a value has another type. */
    template <std::size_t... Index>
    bool make(std::u16string &text, const conversion_spec &spec, void **given, std::index_sequence<Index...>)
    {
        std::tuple<own_value<Values>...> values;
        const std::tuple<const Values *...> found = {std::get<Index>(values).read(given + Index, spec.flags)...};
        if (!(... && (std::get<Index>(found) != nullptr)))
            return false;
        if constexpr (std::is_invocable_v<Function &, const Values &..., const conversion_spec &>)
            text = to_ucs2(function(*std::get<Index>(found)..., spec));
        else
        {
            static_assert(
                std::is_invocable_v<Function &, const Values &...>,
                "kelto: the function of a conversion takes its values, and a conversion_spec if it wants one");
            text = to_ucs2(function(*std::get<Index>(found)...));
            lay_out(spec, text);
        }
        return true;
    }
};

} // namespace detail

/**
 * A table of conversions, with those of the program's own in front, and with an encoder for encoded regions. It is
 * built once and then does not change; what uses it shares it.
 */
class form_table
{
public:
    class builder;

    form_table(form_table &&) noexcept = default;
    form_table &operator=(form_table &&) noexcept = default;

    /** The table for calls of the C interface, as long as this object lives. Its encoder fails there. */
    formTable *get() const noexcept { return state_ != nullptr ? &state_->table : nullptr; }

private:
    friend struct detail::call_options;
    explicit form_table(std::shared_ptr<detail::table_state> state) noexcept : state_(std::move(state)) {}
    std::shared_ptr<detail::table_state> state_;
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
        using own_conversion = detail::own_conversion<Catches, Function, Values...>;
        auto own = std::make_unique<detail::conversion>();
        name.copy(own->id.name, sizeof own->id.name - 1);
        own->id.owner = own.get();
        own->types = own_conversion::types;
        own->count = static_cast<int>(sizeof...(Values));
        own->write = own_conversion{std::move(function)};
        auto *place = &state<>().first;
        while (*place != nullptr)
            place = &(*place)->next;
        *place = std::move(own);
        ++state<>().count;
        return *this;
    }

    /**
     * Sets the function that every text goes through that lies in an encoded region ("%N[1]%s[2]%O[3]"), conversions of
     * the program's own included: UTF-8 to UTF-8, or UTF-16 to UTF-16. It gets whole texts, or single characters from
     * "%c".
     */
    template <class Function, bool Catches = KELTO_HAS_EXCEPTIONS> builder &with_encoder(Function function)
    {
        constexpr bool isEncoder =
            std::is_invocable_v<Function &, std::string_view> || std::is_invocable_v<Function &, std::u16string_view>;
        static_assert(isEncoder,
                      "kelto: an encoder takes a std::string_view or a std::u16string_view and gives a text");
        if constexpr (isEncoder)
            state<>().encode = detail::own_encoder<Catches, Function>{std::move(function)};
        return *this;
    }

    /**
     * Every argument goes through the encoder, in an encoded region or not: a translation that leaves the region out
     * then changes nothing. What HTML, shells and SQL need.
     */
    template <class = void> builder &encode_everywhere()
    {
        state<>().encodes_everywhere = true;
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
     * no encoder for encode_everywhere().
     */
    template <class = void> form_table build(std::error_code &failure)
    {
        char why[1];
        return build(failure, why, sizeof why);
    }

#if KELTO_HAS_EXCEPTIONS
    template <class = void> form_table build()
    {
        std::error_code failure;
        char why[1024];
        form_table table = build(failure, why, sizeof why);
        if (failure)
            detail::throw_told(failure.value(), {"kelto::form_table: ", why});
        return table;
    }
#endif

private:
    /** What is being built. */
    template <class State = detail::table_state> State &state()
    {
        if (state_ == nullptr)
            state_ = std::make_shared<State>();
        return *state_;
    }

    template <class = void> form_table build(std::error_code &failure, char *why, std::size_t room)
    {
        state<>();
        const std::shared_ptr<detail::table_state> own = std::exchange(state_, nullptr);
        int result = detail::begin(own->held);
        own->table.nextTable = next_;
        if (result == 0 && next_ == nullptr)
            result = KTGetBuiltInFormTable(0, &own->table.nextTable);
        *why = '\0';
        if (result != 0)
            why[std::string_view(KTResultText(result)).copy(why, room - 1)] = '\0';
        own->records = std::make_unique<KTFormatter[]>(own->count + 1);
        KTFormatter *record = own->table.formList = own->records.get();
        for (const detail::conversion *each = own->first.get(); each != nullptr; each = each->next.get())
            *record++ = {each->id.name, nullptr, each->count, each->types, detail::convert};
        own->table.encoder = own->encode ? detail::encode : nullptr;
        const unsigned options = own->encodes_everywhere ? static_cast<unsigned>(KT_ENCODE_ALL) : 0U;
        if (result == 0)
            result = KTExplainFormTable(&own->table, detail::convert, options, &room, why);
        failure = make_error(result);
        return form_table(result == 0 ? own : nullptr);
    }

    std::shared_ptr<detail::table_state> state_;
    formTable *next_ = nullptr;
};

} // namespace kelto

#endif
