/**
 * @file form_table.hpp
 * Conversions and encoders of the program's own. Include kelto.hpp.
 *
 * What only a program with conversions needs are templates, also where nothing varies: so others need not compile it.
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

/** What runs during a call finds of it: the table, since an encoder is told nothing of its own, and what was thrown. */
struct running_call
{
    const table_state *table;
    std::exception_ptr thrown;
};
constexpr std::uint32_t running_kind = 0x6B2B2B03;

inline running_call *innermost_call() noexcept
{
    return static_cast<running_call *>(KTCallValue(running_kind));
}

/** A call in this thread. Calls may lie in each other, where a conversion formats something itself. */
class running
{
public:
    explicit running(const table_state *table) noexcept : call_{table, nullptr} { KTEnterCall(&context_); }
    ~running() { end(); }
    running(const running &) = delete;
    running &operator=(const running &) = delete;

    /** Throws again what a function of the program threw during the call. */
    void rethrow()
    {
        if (call_.thrown == nullptr)
            return;
        const std::exception_ptr own = std::exchange(call_.thrown, nullptr);
        end(); // here, since frames without exceptions call no destructors
        std::rethrow_exception(own);
    }

private:
    void end() noexcept
    {
        if (std::exchange(isEntered_, false))
            KTLeaveCall(&context_);
    }

    running_call call_;
    KTCallContext context_ = {running_kind, &call_, nullptr};
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
        running_call *const call = innermost_call();
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
    char name[20];
    const conversion *owner;
};

struct conversion
{
    named id;
    const int *types; // ended by 0
    int count;
    // runs `render` under the protocol of a KTFormatFunction
    int (*run)(const conversion &own, const conversion_spec &spec, KTEncoder encoder, void **given, unsigned long *size,
               UCS2 *out);
    callback<int(const conversion_spec &, void **given, std::u16string &text)> render;
    std::unique_ptr<conversion> next;
};

/** A form table with all that its records point to. */
struct table_state
{
    use held;
    formTable table = {};
    std::unique_ptr<KTFormatter[]> records;
    std::unique_ptr<conversion> first;
    callback<int(std::u16string_view text, std::u16string &encoded)> encode;
    // runs `encode` under the protocol of a KTEncoder
    int (*run_encoder)(const table_state &table, const void *value, int dataType, unsigned long *size,
                       UCS2 *out) = nullptr;
    bool encodes_everywhere = false;
};

/** The encoder of all tables of this layer; only the calls of this layer can use it. */
KELTO_SHARED inline int encode(const void *value, int dataType, unsigned long *size, UCS2 *out)
{
    const running_call *const call = innermost_call();
    if (call != nullptr && call->table != nullptr && call->table->run_encoder != nullptr)
        return call->table->run_encoder(*call->table, value, dataType, size, out);
    *size = 0;
    return KT_ERR_INVALID_PARAMETER;
}

/** The function in all records of this layer. */
KELTO_SHARED inline int convert(const char *name, int width, int precision, int flags, KTEncoder encoder,
                                void *passThrough, void **given, unsigned long *size, UCS2 *out)
{
    const conversion &own = *reinterpret_cast<const named *>(name)->owner;
    return own.run(own, {name, width, precision, flags, passThrough}, encoder, given, size, out);
}

template <bool Catches>
int run_encoder(const table_state &table, const void *value, int dataType, unsigned long *size, UCS2 *out) noexcept
{
    const unsigned long room = std::exchange(*size, 0);
    return guarded<Catches>([&]() -> int {
        const UCS2 character[2] = {dataType == KT_ENCODE_CHARACTER
                                       ? static_cast<UCS2>(*static_cast<const unsigned char *>(value))
                                       : *static_cast<const UCS2 *>(value)};
        std::u16string text = dataType == KT_ENCODE_UCS2 ? static_cast<const UCS2 *>(value) : character;
        const bool isHalf = dataType == KT_ENCODE_UNIT && *character >= 0xD800 && *character < 0xE000;
        std::u16string encoded;
        const int result = isHalf ? 0 : table.encode(text, encoded);
        if (!isHalf) // what is half of a character has nothing to encode
            text = std::move(encoded);
        text.copy(out, room < text.size() ? room : text.size());
        *size = text.size();
        return result;
    });
}

template <bool Catches>
int run_conversion(const conversion &own, const conversion_spec &spec, KTEncoder encoder, void **given,
                   unsigned long *size, UCS2 *out) noexcept
{
    const unsigned long room = std::exchange(*size, 0);
    return guarded<Catches>([&]() -> int {
        std::u16string text;
        const int result = own.render(spec, given, text);
        if (result != 0)
            return result;
        text.resize(std::char_traits<char16_t>::length(text.c_str()));
        *size = room;
        if ((spec.flags & FLAG_ENCODE) != 0 && encoder != nullptr)
        {
            const int encoded = encoder(text.c_str(), KT_ENCODE_UCS2, size, out);
            return encoded == 0 && *size >= room ? KT_ERR_BUFFER_TOO_SMALL : encoded;
        }
        *size = text.size();
        if (text.size() >= room)
            return KT_ERR_BUFFER_TOO_SMALL;
        text.copy(out, text.size());
        return 0;
    });
}

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
    static_assert(kind == category::identity || kind == category::integer || kind == category::real ||
                      kind == category::unit || kind == category::utf8_view || kind == category::ucs2_view,
                  "kelto: a conversion of your own takes an integer, a double, a char16_t, a std::string_view, a "
                  "std::u16string_view, or a type whose kelto::argument_of derives from kelto::by_identity");

    static constexpr int type = kind == category::identity                             ? KT_ARG_POINTER
                                : kind == category::integer && std::is_signed_v<Value> ? KT_ARG_SIGNED
                                : kind == category::integer                            ? KT_ARG_UNSIGNED
                                : kind == category::real                               ? KT_ARG_DOUBLE
                                : kind == category::unit                               ? KT_ARG_CHARACTER
                                : kind == category::utf8_view                          ? KT_ARG_UTF8
                                                                                       : KT_ARG_UCS2;

    /** The value, or null where the slot has none of this type. */
    const Value *read(void **slot, int flags)
    {
        if constexpr (kind == category::identity)
        {
            const auto *const object = static_cast<const identified *>(KTPointerOfKind(slot, identity_kind));
            return object != nullptr && is_of_type<Value>(*object) ? static_cast<const Value *>(object->object)
                                                                   : nullptr;
        }
        else if constexpr (kind == category::integer)
        {
            if ((flags & FLAG_h) != 0)
                return number<std::int16_t, std::uint16_t>(*slot);
            if ((flags & FLAG_BANG) != 0)
                return number<std::int64_t, std::uint64_t>(*slot);
            return number<std::int32_t, std::uint32_t>(*slot);
        }
        else if constexpr (kind == category::real)
            return copy((flags & FLAG_L) != 0 ? static_cast<Value>(*static_cast<const long double *>(*slot))
                                              : static_cast<Value>(*static_cast<const double *>(*slot)));
        else if constexpr (kind == category::unit)
            return copy((flags & FLAG_l) != 0 ? *static_cast<const char16_t *>(*slot)
                                              : static_cast<char16_t>(*static_cast<const unsigned char *>(*slot)));
        else if constexpr (kind == category::utf8_view)
            return copy(Value(static_cast<const char *>(*slot)));
        else
            return copy(Value(static_cast<const char16_t *>(*slot)));
    }

private:
    struct nothing
    {
    };

    template <class T> const Value *copy(T value)
    {
        copy_ = std::move(value);
        return &copy_;
    }

    template <class Signed, class Unsigned> const Value *number(const void *slot)
    {
        using slotted = std::conditional_t<std::is_signed_v<Value>, Signed, Unsigned>;
        const slotted value = *static_cast<const slotted *>(slot);
        const auto own = static_cast<Value>(value);
        return static_cast<slotted>(own) == value ? copy(own) : nullptr;
    }

    std::conditional_t<kind == category::identity, nothing, Value> copy_ = {};
};

/** Reads the values of a conversion and calls the program's function with them, and with the specification if it wants.
 */
template <bool Catches, class Function, class... Values> struct renderer
{
    static constexpr int types[] = {own_value<Values>::type..., KT_ARG_END};
    Function function;

    int operator()(const conversion_spec &spec, void **given, std::u16string &text)
    {
        return guarded<Catches>([&] { return render(spec, given, text, std::index_sequence_for<Values...>()); });
    }

    template <std::size_t... Index>
    int render(const conversion_spec &spec, void **given, std::u16string &text, std::index_sequence<Index...>)
    {
        std::tuple<own_value<Values>...> values;
        const std::tuple<const Values *...> found = {std::get<Index>(values).read(given + Index, spec.flags)...};
        if (!(... && (std::get<Index>(found) != nullptr)))
            return KT_ERR_INVALID_PARAMETER;
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
        return 0;
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
        using renderer = detail::renderer<Catches, Function, Values...>;
        if (!is_name(name))
        {
            problem_ += ": no conversion can have the name \"" + std::string(name) + '"';
            return *this;
        }
        auto own = std::make_unique<detail::conversion>();
        own->id.name[name.copy(own->id.name, name.size())] = '\0';
        own->id.owner = own.get();
        own->types = renderer::types;
        own->count = static_cast<int>(sizeof...(Values));
        own->run = detail::run_conversion<Catches>;
        own->render = renderer{std::move(function)};
        auto *place = &state<>().first;
        while (*place != nullptr)
            place = &(*place)->next;
        *place = std::move(own);
        return *this;
    }

    /**
     * Sets the function that every text goes through that lies in an encoded region ("%N[1]%s[2]%O[3]"), conversions of
     * the program's own included: UTF-8 to UTF-8, or UTF-16 to UTF-16. It gets whole texts, or single characters from
     * "%c".
     */
    template <class Function, bool Catches = KELTO_HAS_EXCEPTIONS> builder &with_encoder(Function function)
    {
        constexpr bool isUtf8 = std::is_invocable_v<Function &, std::string_view>;
        static_assert(isUtf8 || std::is_invocable_v<Function &, std::u16string_view>,
                      "kelto: an encoder takes a std::string_view or a std::u16string_view and gives a text");
        if constexpr (isUtf8 || std::is_invocable_v<Function &, std::u16string_view>)
        {
            state<>().encode = [function = std::move(function)](std::u16string_view text, std::u16string &out) mutable {
                return detail::guarded<Catches>([&] {
                    if constexpr (isUtf8)
                        out = detail::to_ucs2(function(std::string_view(detail::to_utf8(text))));
                    else
                        out = detail::to_ucs2(function(text));
                    return 0;
                });
            };
            state<>().run_encoder = detail::run_encoder<Catches>;
        }
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
        std::string problem;
        int result = 0;
        form_table table = build(result, problem);
        failure = make_error(result);
        return table;
    }

#if KELTO_HAS_EXCEPTIONS
    template <class = void> form_table build()
    {
        std::string problem;
        int result = 0;
        form_table table = build(result, problem);
        if (result != 0)
            detail::throw_told(result, {"kelto::form_table", problem.empty() ? ": " : "",
                                        problem.empty() ? KTResultText(result) : problem.c_str()});
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

    template <class = void> form_table build(int &result, std::string &problem)
    {
        detail::table_state &own = state<>();
        result = detail::begin(own.held);
        formTable *next = next_;
        if (result == 0 && next == nullptr)
            result = KTGetBuiltInFormTable(0, &next);
        if (result == 0)
        {
            if (const char *const unsafe = conversion_with_pointer(next))
                problem_.append(": the conversion \"")
                    .append(unsafe)
                    .append("\" of the table behind it takes a pointer of no type");
            if (own.encodes_everywhere && own.run_encoder == nullptr && !has_encoder(next))
                problem_.append(": there is no encoder that could be applied everywhere");
            result = problem_.empty() ? 0 : KT_ERR_INVALID_PARAMETER;
        }
        const std::shared_ptr<detail::table_state> built = std::exchange(state_, nullptr);
        problem = std::exchange(problem_, {});
        if (result != 0)
            return form_table(nullptr);
        std::size_t count = 0;
        for (const detail::conversion *each = own.first.get(); each != nullptr; each = each->next.get())
            ++count;
        own.records = std::make_unique<KTFormatter[]>(count + 1);
        KTFormatter *record = own.records.get();
        for (const detail::conversion *each = own.first.get(); each != nullptr; each = each->next.get())
            *record++ = {each->id.name, nullptr, each->count, each->types, detail::convert};
        own.table.formList = own.records.get();
        own.table.encoder = own.run_encoder != nullptr ? detail::encode : nullptr;
        own.table.nextTable = next;
        return form_table(built);
    }

    static bool is_name(std::string_view name) noexcept
    {
        const char first = name.empty() ? '\0' : name[0];
        const bool isLetter = (first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z');
        if (!isLetter || first == 'h' || first == 'l' || first == 'L' || name == "N" || name == "O" || name.size() > 19)
            return false;
        for (const char c : name)
            if (c == '[' || c <= 0)
                return false;
        return true;
    }

    /** The name of a C function's conversion that trusts the format for the type of what it is given, or null. */
    static const char *conversion_with_pointer(const formTable *table) noexcept
    {
        for (; table != nullptr; table = table->nextTable)
            for (const KTFormatter *record = table->formList; record != nullptr && record->name != nullptr; ++record)
                if (record->format != detail::convert && record->argTypes != nullptr)
                    for (const int *type = record->argTypes; *type != KT_ARG_END; ++type)
                        if (*type == KT_ARG_POINTER)
                            return record->name;
        return nullptr;
    }

    static bool has_encoder(const formTable *table) noexcept
    {
        while (table != nullptr && table->encoder == nullptr)
            table = table->nextTable;
        return table != nullptr;
    }

    std::shared_ptr<detail::table_state> state_;
    formTable *next_ = nullptr;
    std::string problem_; // of the names
};

} // namespace kelto

#endif
