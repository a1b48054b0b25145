/** @file default_text.hpp Texts in the source, parsed and checked while they are compiled. Include kelto.hpp. */
#ifndef KELTO_DEFAULT_TEXT_HPP
#define KELTO_DEFAULT_TEXT_HPP

#include "argument.hpp"

#include <tuple>

namespace kelto
{

struct unchecked_text;

namespace detail
{

/**
 * Conversions of the built-in table and of the add-on, the KTSlotCode that they take without a modifier, and a second
 * one. All programs know those of the add-on: if a header brought them, one text would have two meanings.
 */
struct built_in
{
    std::string_view names; // each between blanks
    unsigned code, then = 0;
};
constexpr built_in built_ins[] = {
    {" d number ago nil ", KT_SLOT_INT32}, // "nil" of variants
    {" u o x X EID unumber ", KT_SLOT_UINT32},
    {" l ", KT_SLOT_INT64}, // the empty name behind 'l'
    {" ul ", KT_SLOT_UINT64},
    {" f decimal percent ", KT_SLOT_DOUBLE},
    {" c ", KT_SLOT_CHAR},
    {" s D T DT E IP date time datetime and or ", KT_SLOT_UTF8},
    {" U DND DNS ", KT_SLOT_UCS2},
    {" money ", KT_SLOT_UTF8, KT_SLOT_UTF8},
    {" unit ", KT_SLOT_DOUBLE, KT_SLOT_UTF8},
    {" N O ", 0}, // the markers take nothing
};

constexpr bool is_among(std::string_view names, std::string_view name) noexcept
{
    for (std::size_t at = names.find(name); at < names.size(); at = names.find(name, at + 1))
        if (at > 0 && names[at - 1] == ' ' && name.find(' ') > name.size() && names[at + name.size()] == ' ')
            return true;
    return false;
}

/** The slot of a conversion behind a modifier, which changes the size of what it takes. */
constexpr unsigned slot_behind(char modifier, unsigned code) noexcept
{
    const bool isInteger = code >= KT_SLOT_INT16 && code <= KT_SLOT_UINT64;
    if (isInteger && (modifier == 'h' || modifier == '!'))
        return (modifier == 'h' ? KT_SLOT_INT16 : KT_SLOT_INT64) + (code - KT_SLOT_INT16) % 2;
    if (code == KT_SLOT_DOUBLE && modifier == 'L')
        return KT_SLOT_LONG_DOUBLE;
    return code == KT_SLOT_CHAR && modifier == 'l' ? unsigned{KT_SLOT_UNIT} : code;
}

/** A conversion of a text in the source, or the rule that it breaks. */
struct source_conversion
{
    int rule = KT_RULE_NONE;
    unsigned position = 0;
    unsigned stars = 0;          // a width and a precision that stand in the arguments, before the value
    unsigned code = 0, then = 0; // of the slot of the value, and of a second one; 0 for none
};

/* The texts are read as the library reads them, up to their zero. */

constexpr const char *skip(const char *at, std::string_view characters) noexcept
{
    while (*at != '\0' && characters.find(*at) < characters.size())
        ++at;
    return at;
}

constexpr std::uint64_t too_large = std::uint64_t{INT32_MAX} + 1;

/** Takes a number, 0 where there is none, and at most too_large, which no int holds. */
constexpr std::uint64_t take_number(const char *&at) noexcept
{
    std::uint64_t value = 0;
    for (; *at >= '0' && *at <= '9'; ++at)
        value = value < too_large ? value * 10 + static_cast<unsigned>(*at - '0') : too_large;
    return value < too_large ? value : too_large;
}

/** Takes a width or precision: '*', a number, or nothing. */
constexpr std::uint64_t take_size(const char *&at, unsigned &stars) noexcept
{
    if (*at != '*')
        return take_number(at);
    ++stars;
    return ++at, 0;
}

/** Takes the conversion that begins with a percent sign, up to what is wrong. @param size  of the whole text. */
constexpr source_conversion take_conversion(const char *&at, std::size_t size) noexcept
{
    at = skip(at + 1, "-+ #0");
    const char *end = at; // where its author will have meant it to end
    while (*end != '\0' && end == skip(end, "% \t\r\n[]"))
        ++end;
    unsigned stars = 0;
    if (take_size(at, stars) == too_large || (*at == '.' && take_size(++at, stars) == too_large))
        return {KT_RULE_NUMBER_TOO_LARGE};
    const char modifier = at != skip(at, "hlL!") ? *at++ : '\0';
    const char *const begin = at;
    while (static_cast<signed char>(*at) > 0 && *at != '[' && at - begin != 19)
        ++at;
    const std::string_view name(begin, static_cast<std::size_t>(at - begin));
    int rule = KT_RULE_UNKNOWN_CONVERSION;
    if (*at == '[')
    {
        const std::uint64_t position = take_number(++at);
        if (position == too_large)
            return {KT_RULE_NUMBER_TOO_LARGE};
        if (position == 0 || *at++ != ']')
            rule = KT_RULE_POSITION_MALFORMED;
        else
            for (const built_in &row : built_ins)
                if (name != "l" && is_among(row.names, name.empty() && modifier == 'l' ? "l" : name))
                    return {position > 1000 && position > size ? KT_RULE_NUMBER_TOO_LARGE : KT_RULE_NONE,
                            static_cast<unsigned>(position), row.code != 0 ? stars : 0U,
                            slot_behind(modifier, row.code), row.then};
    }
    return {*end == '[' ? rule : int{KT_RULE_POSITION_MISSING}};
}

/** The slots of a text in the order of the arguments, or the first rule that it breaks. */
template <std::size_t Capacity> struct parsed_text
{
    constexpr explicit parsed_text(const char *text) noexcept
    {
        source_conversion all[Capacity + 1] = {};
        std::size_t count = 0;
        const char *at = text;
        while (*at != '\0' && rule == KT_RULE_NONE)
            if (*at != '%' || at[1] == '%')
                at += *at == '%' ? 2 : 1;
            else
            {
                const source_conversion found = take_conversion(at, std::string_view(text).size());
                std::size_t i = count++;
                for (; i > 0 && all[i - 1].position > found.position; --i)
                    all[i] = all[i - 1];
                all[i] = found;
                rule = found.rule;
            }
        for (std::size_t i = 1; i < count && rule == KT_RULE_NONE; ++i)
            if (all[i].position == all[i - 1].position)
                rule = KT_RULE_POSITION_REPEATED;
        if (rule == KT_RULE_NONE && count != 0 && all[count - 1].position != count)
            rule = KT_RULE_POSITION_GAP;
        for (std::size_t i = 0; i < count && rule == KT_RULE_NONE; ++i)
        {
            for (unsigned star = 0; star < all[i].stars; ++star)
                slot_at[slot_count++] = {KT_SLOT_INT32, all[i].position, 0};
            for (const unsigned code : {all[i].code, all[i].then})
                if (code != 0)
                    slot_at[slot_count++] = {code, all[i].position, 0};
        }
    }

    int rule = KT_RULE_NONE;
    std::size_t slot_count = 0;
    KTSlot slot_at[4 * Capacity + 1] = {};
};

/** Fails to compile where an argument does not fit; what the compiler prints names position, slot and type. */
template <unsigned Position, KTSlotCode Slot, class Argument, class Text> struct argument_at_position
{
    static constexpr unsigned passed = slot_of<Argument>();
    static constexpr bool is_signed = passed % 2 != 0;
    static constexpr bool is_right = fits(Slot, passed);
    static constexpr bool is_right_but_for_the_sign =
        !is_right && passed <= KT_SLOT_UINT64 && fits(Slot, is_signed ? passed + 1 : passed - 1);
    static_assert(
        !is_right_but_for_the_sign || is_signed,
        "kelto: the conversion at this position takes another type than the argument that is passed for it: it "
        "is for signed integers, and this one is unsigned");
    static_assert(
        !is_right_but_for_the_sign || !is_signed,
        "kelto: the conversion at this position takes another type than the argument that is passed for it: it "
        "is for unsigned integers, and this one is signed");
    static_assert(is_right || is_right_but_for_the_sign,
                  "kelto: the conversion at this position takes another type than the argument that is passed for it; "
                  "\"%!d\" and \"%!u\" take 64 bits, \"%hd\" and \"%hu\" 16");
};

/** Compares a text with the types of a call's arguments; all faults stop the compilation. */
template <class Text, class... Arguments, std::size_t... Index>
constexpr void check_default(types<Arguments...>, std::index_sequence<Index...>) noexcept
{
    constexpr auto &parsed = Text::parsed;
    constexpr int rule = parsed.rule;
    static_assert(rule != KT_RULE_POSITION_MISSING,
                  "kelto: a conversion of this text lacks its position, as in \"%s[1]\"; a percent sign is \"%%\"");
    static_assert(rule != KT_RULE_POSITION_MALFORMED,
                  "kelto: a position of this text is malformed; it is a number from 1 on in brackets, as in \"%s[1]\"");
    static_assert(rule != KT_RULE_NUMBER_TOO_LARGE, "kelto: a width, precision or position of this text is too large");
    static_assert(rule != KT_RULE_UNKNOWN_CONVERSION,
                  "kelto: this text has a conversion that the built-in table does not know; for one of your own pass "
                  "kelto::unchecked(\"...\") in place of KELTO_DEFAULT");
    static_assert(rule != KT_RULE_POSITION_REPEATED, "kelto: a position is used twice in this text");
    static_assert(rule != KT_RULE_POSITION_GAP,
                  "kelto: the positions of this text are not 1, 2, 3 and so on; one is left out");
    constexpr std::size_t wanted = rule == KT_RULE_NONE ? parsed.slot_count : sizeof...(Arguments);
    static_assert(wanted <= sizeof...(Arguments), "kelto: this text takes more arguments than the call passes");
    static_assert(wanted >= sizeof...(Arguments), "kelto: the call passes more arguments than this text takes");
    if constexpr (rule == KT_RULE_NONE && wanted == sizeof...(Arguments))
        if constexpr (constexpr auto &at = parsed.slot_at; !(fits(at[Index].code, slot_of<Arguments>()) && ...))
            static_cast<void>(
                (sizeof(argument_at_position<at[Index].position, KTSlotCode(at[Index].code), Arguments, Text>) + ...));
}

/** The text of a literal. KELTO_DEFAULT makes its expansion depend on a type: on this one. */
struct spelt_text
{
    /** Whether a text is one, by how it is spelt. */
    static constexpr bool is_literal(const char *text) noexcept
    {
        if (std::is_same_v<char8, char> && text[0] == 'u' && text[1] == '8')
            text += 2;
        return text[0] == '"' || (text[0] == 'R' && text[1] == '"');
    }

    static constexpr bool is_variable = false;
    constexpr std::string_view operator()(spelt_text) const noexcept { return text; }
    std::string_view text;
};
constexpr spelt_text operator""_kelto_text(const char *text, std::size_t size) noexcept
{
    return {{text, size}};
}

/** Whether the argument of a position is exactly 1. */
template <unsigned Position, class... Arguments> constexpr bool is_one(const Arguments &...arguments) noexcept
{
    constexpr bool isThere = Position >= 1 && Position <= sizeof...(Arguments);
    static_assert(isThere, "kelto: KELTO_PLURAL chooses by an argument that the call does not pass");
    if constexpr (isThere)
    {
        const auto &chooser = std::get<Position - 1>(std::tie(arguments...));
        using type = std::decay_t<decltype(chooser)>;
        constexpr bool isInteger = std::is_integral_v<type> || std::is_enum_v<type>;
        static_assert(isInteger, "kelto: KELTO_PLURAL chooses by an argument that is no integer");
        if constexpr (isInteger)
            return chooser == static_cast<type>(1);
    }
    return false;
}

struct any_source_text
{
};
template <class T> constexpr bool is_source_text = std::is_base_of_v<any_source_text, T>;

/** Any of the texts below, for a call with such arguments. */
template <class... Arguments> struct source_text : any_source_text
{
    template <class Source, class = std::enable_if_t<is_source_text<Source>>>
    constexpr source_text([[maybe_unused]] const Source &source) noexcept
    {
        if constexpr (std::is_same_v<Source, unchecked_text>)
            text = source.text;
        else
            choose = Source::template chosen<Arguments...>;
    }
    constexpr std::string_view chosen(const Arguments &...arguments) const noexcept
    {
        return choose != nullptr ? choose(arguments...) : text;
    }
    std::string_view (*choose)(const Arguments &...) noexcept = nullptr;
    std::string_view text = {};
};

/** Whether a first argument is a literal with conversions, whose author forgot KELTO_DEFAULT. */
template <class First> constexpr bool is_forgotten(const First &) noexcept
{
    return false;
}
KELTO_IN_PLACE constexpr bool is_forgotten(const char *first) noexcept
{
    const char *const sign = first != nullptr ? __builtin_strchr(first, '%') : nullptr;
    const char *const position = sign != nullptr ? __builtin_strchr(sign, '[') : nullptr;
    return position != nullptr && position[1] >= '1' && position[1] <= '9' && position[2] == ']';
}

#define KELTO_FORGOTTEN                                                                                                \
    "kelto: the first argument looks like a text in the source, which stands in KELTO_DEFAULT(\"...\") or "            \
    "kelto::unchecked(\"...\")"
#if defined(__clang__)
#define KELTO_WARN_OF_FORGOTTEN(first)                                                                                 \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wgcc-compat\"")                              \
        __attribute__((diagnose_if(kelto::detail::is_forgotten(first), KELTO_FORGOTTEN, "warning")))                   \
        _Pragma("clang diagnostic pop")
#define KELTO_WARNING_OF_CALLS
#else
#define KELTO_WARN_OF_FORGOTTEN(first)
#define KELTO_WARNING_OF_CALLS __attribute__((noinline, cold, warning(KELTO_FORGOTTEN)))
#endif

/** Called where that is so, since gcc says it of calls, in programs that it optimises. */
KELTO_WARNING_OF_CALLS inline void forgotten_default() noexcept
{
    asm volatile(""); // so that the call is one
}

} // namespace detail

/* Each kind of a text in the source has a function `chosen`, which compares it with the arguments, and gives it. */

/** The text of a message in the source; made by KELTO_DEFAULT. */
template <class Text> struct default_text : detail::any_source_text
{
    static constexpr std::string_view text = Text::get();
    static constexpr auto parsed = detail::parsed_text<text.size() / 5>(text.data()); // "%d[1]"
    template <class... Arguments> static constexpr std::string_view chosen(const Arguments &...) noexcept
    {
        using all = detail::types_of_all<Arguments...>;
        detail::check_default<default_text>(all(), std::make_index_sequence<all::count>());
        return text;
    }
};

/** The two texts of a message in the source, for exactly 1 and for any other number; made by KELTO_PLURAL. */
template <unsigned Position, class One, class Other> struct plural_text : detail::any_source_text
{
    constexpr plural_text(std::integral_constant<unsigned, Position>, One, Other) noexcept {}
    template <class... Arguments> static constexpr std::string_view chosen(const Arguments &...arguments) noexcept
    {
        return detail::is_one<Position>(arguments...) ? One::chosen(arguments...) : Other::chosen(arguments...);
    }
};

/** A text of the source that is compared with its arguments when it is used; see unchecked(). */
struct unchecked_text : detail::any_source_text
{
    constexpr explicit unchecked_text(std::string_view from) noexcept : text(from) {}
    template <class... Arguments> constexpr std::string_view chosen(const Arguments &...) const noexcept
    {
        return text;
    }
    std::string_view text;
};

/**
 * The text of a message in the source, for messages with conversions of the program's own, which are not known while it
 * is compiled. A text that does not fit is passed over like a translation. The text itself is not copied.
 */
[[nodiscard]] constexpr unchecked_text unchecked(std::string_view text KELTO_POINTED_INTO) noexcept
{
    return unchecked_text(text);
}

/** What KELTO_DEFAULT, KELTO_PLURAL and unchecked() give, for functions around format() with these arguments. */
template <class... Arguments> using source_text_for = std::enable_if_t<true, detail::source_text<Arguments...>>;

/**
 * The text of a message in the source, which is used where no catalog has a usable one. It is parsed while it is
 * compiled, and its conversions are compared with the types of the arguments.
 *
 *     store.format(3, KELTO_DEFAULT("%s[1] has %d[2] pages"), title, pages)
 */
#define KELTO_DEFAULT(literal) KELTO_DEFAULT_OF(literal)

// The name that a variable becomes here is looked up only where the branch is taken, which it is for literals alone; so
// the compiler has one sentence to say of a variable.
#define KELTO_DEFAULT_OF(literal)                                                                                      \
    ([](auto kelto_parameter) {                                                                                        \
        using kelto_spelt = decltype(kelto_parameter);                                                                 \
        using kelto::detail::operator""_kelto_text;                                                                    \
        if constexpr (kelto_spelt::is_literal(#literal))                                                               \
        {                                                                                                              \
            struct kelto_text                                                                                          \
            {                                                                                                          \
                static constexpr std::string_view get() noexcept { return literal##_kelto_text(kelto_spelt()); }       \
            };                                                                                                         \
            return kelto::default_text<kelto_text>();                                                                  \
        }                                                                                                              \
        else                                                                                                           \
        {                                                                                                              \
            static_assert(kelto_spelt::is_variable,                                                                    \
                          "kelto: KELTO_DEFAULT takes a literal, as \"%s[1]\"; for a variable pass "                   \
                          "kelto::unchecked(variable)");                                                               \
            return kelto::unchecked({});                                                                               \
        }                                                                                                              \
    }(kelto::detail::spelt_text()))

/**
 * Two texts in the source in place of one, for programs without a file: the first where the argument of this number, an
 * integer, is exactly 1, the second for any other. Both are looked at while they are compiled. What a message file says
 * of a number follows the rules of its language; these two follow the program's.
 *
 *     store.format(12, KELTO_PLURAL(1, "%d[1] file", "%d[1] files"), count)
 */
#define KELTO_PLURAL(position, one, other)                                                                             \
    kelto::plural_text(std::integral_constant<unsigned, position>(), KELTO_DEFAULT(one), KELTO_DEFAULT(other))

} // namespace kelto

#endif
