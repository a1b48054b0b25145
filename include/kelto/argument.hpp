/**
 * @file argument.hpp
 * What can be formatted, and what becomes of it. Include kelto.hpp.
 */
#ifndef KELTO_ARGUMENT_HPP
#define KELTO_ARGUMENT_HPP

#include "error.hpp"

#include <cstdint>
#include <cstring>
#include <typeinfo>

namespace kelto
{

/* What can be formatted, and by which conversions, is in the table of docs/cpp.md. The date conversions write the years
 * 0 to 9999: a time outside of them, as time_point::max(), is written as their first or last second. Paths, durations
 * and times are known by their shape, so that a program which has none of them does not read the headers that they come
 * from. */

/**
 * How a type of the program's own becomes an argument. Specialise it with a function that makes one of the types that
 * are arguments already:
 *
 *     template <> struct kelto::argument_of<version>
 *     {
 *         static std::string convert(const version &v) { return v.major + '.' + v.minor; } // for "%s"
 *     };
 *
 * or, for a conversion of the program's own (form_table.hpp), derive it from by_identity: the object itself is then
 * handed over, with its type. The conversion compares the type before it looks at the object.
 *
 *     template <> struct kelto::argument_of<money> : kelto::by_identity<money> {};
 *
 * A `convert` that returns a std::pair gives two arguments, as "%money[1]" of the add-on takes them.
 *
 * Where no text can be formatted, such an object is written by the first conversion that takes it alone, by a function
 * `convert` as above if there is one too, or as the name of its type.
 *
 * `Enable` is for families of types:
 *
 *     template <class T> struct kelto::argument_of<T, std::enable_if_t<std::is_base_of_v<shape, T>>> ...
 */
template <class T, class Enable = void> struct argument_of
{
    static constexpr bool is_missing = true;
};

/** See argument_of. */
template <class T> struct by_identity
{
    using identity = T;
};

namespace detail
{

enum class category
{
    none,
    converted, // by argument_of
    identity,
    enumeration,
    integer,
    character,
    unit,
    code_point,
    real,
    long_real,
    utf8,
    ucs2,
    path,
    duration,
    time
};

template <template <class> class Of, class T, class = void> constexpr bool has = false;
template <template <class> class Of, class T> constexpr bool has<Of, T, std::void_t<Of<T>>> = true;

template <class T> using missing_of = decltype(argument_of<T>::is_missing);
template <class T> using identity_of = typename argument_of<T>::identity;
template <class T> using converted_of = decltype(argument_of<T>::convert(std::declval<const T &>()));
template <class T> constexpr bool is_pair = false;
template <class First, class Second> constexpr bool is_pair<std::pair<First, Second>> = true;

template <class T>
using path_of = decltype(T::preferred_separator, std::string_view(std::declval<const T &>().native()));
template <class T> using duration_of = decltype(T::period::num, typename T::rep(std::declval<const T &>().count()));
// Of all clocks the system's alone knows the times of C.
template <class T> using time_of = decltype(T::clock::from_time_t, std::declval<const T &>().time_since_epoch());

template <class T, class... Others> constexpr bool is_one_of = (std::is_same_v<T, Others> || ...);

#if defined(__cpp_char8_t)
using char8 = char8_t;
#else
using char8 = char;
#endif

/** The category of a type that an argument was passed as. */
template <class T> constexpr category category_of() noexcept
{
    using bare = std::remove_cv_t<T>;
    using pointee = std::remove_cv_t<std::remove_pointer_t<std::decay_t<bare>>>;
    if constexpr (std::is_pointer_v<std::decay_t<bare>>)
        return is_one_of<pointee, char, char8> ? category::utf8
               : is_one_of<pointee, char16_t>  ? category::ucs2
                                               : category::none;
    else if constexpr (!std::is_class_v<bare> && !std::is_union_v<bare> && !std::is_enum_v<bare>)
        return is_one_of<bare, char>                                                              ? category::character
               : is_one_of<bare, char16_t>                                                        ? category::unit
               : is_one_of<bare, char32_t>                                                        ? category::code_point
               : is_one_of<bare, float, double>                                                   ? category::real
               : is_one_of<bare, long double>                                                     ? category::long_real
               : !std::is_integral_v<bare> || is_one_of<bare, wchar_t, char8> || sizeof(bare) > 8 ? category::none
                                                                                                  : category::integer;
    else if constexpr (has<identity_of, bare>)
        return category::identity;
    else if constexpr (!has<missing_of, bare>)
        return category::converted;
    else if constexpr (std::is_enum_v<bare>)
        return category::enumeration;
    else if constexpr (std::is_convertible_v<const bare &, std::string_view> ||
                       std::is_convertible_v<const bare &, std::basic_string_view<char8>>)
        return category::utf8;
    else if constexpr (std::is_convertible_v<const bare &, std::u16string_view>)
        return category::ucs2;
    else
        return has<time_of, bare>       ? category::time
               : has<duration_of, bare> ? category::duration
               : has<path_of, bare>     ? category::path
                                        : category::none;
}

/** The second in which a time lies, since the epoch; beyond all dates for one that is too far away or no number. */
template <class Duration> std::int64_t seconds_of(Duration sinceEpoch) noexcept
{
    constexpr std::intmax_t numerator = Duration::period::num, denominator = Duration::period::den;
    // A count of hours may be more than any count of seconds can be, so it is compared roughly first.
    const double roughly = static_cast<double>(sinceEpoch.count()) * numerator / denominator;
    if (!(roughly > -1e12 && roughly < 1e12))
        return roughly > 0 ? INT64_MAX : INT64_MIN;
    if constexpr (std::is_integral_v<typename Duration::rep>)
    {
        const auto whole = static_cast<std::int64_t>(sinceEpoch.count() / denominator);
        const auto rest = static_cast<std::int64_t>(sinceEpoch.count() % denominator) * numerator;
        return whole * numerator + rest / denominator - (rest % denominator < 0 ? 1 : 0);
    }
    else
    {
        const auto seconds = static_cast<std::int64_t>(roughly);
        return seconds - (static_cast<double>(seconds) > roughly ? 1 : 0);
    }
}

/** A time as the date conversions take it; see KTTimeText(). */
struct time_stamp
{
    explicit time_stamp(std::int64_t seconds) noexcept { KTTimeText(seconds, text); }
    char text[22];
};

/** Writes an object that goes over with its identity for a person, under the size protocol. */
using object_writer = int (*)(const void *object, std::size_t *size, char *out);

template <class T> int write_object(const void *object, std::size_t *size, char *out) noexcept;

/** The identity of a type is the address of this. It is not constant, so that no two are folded into one. */
template <class T> inline object_writer type_mark = write_object<T>;

/** The kind of all objects that go over with their identity; their types tell them apart. */
constexpr std::uint32_t identity_kind = 0x6B2B2B02;

struct identified
{
    const object_writer *type;
    const char *name; // of the type, for the linker; null where the compiler keeps none
    const void *object;
};

template <class T> identified identified_as(const void *object) noexcept
{
#if defined(__cpp_rtti) || defined(__GXX_RTTI)
    return {&type_mark<T>, typeid(T).name(), object};
#else
    return {&type_mark<T>, nullptr, object};
#endif
}

/** Whether a linker's name is that of one type in the whole process: no function's own, nor in an unnamed namespace. */
inline bool is_public_name(const char *name) noexcept
{
    bool isPublic = std::strchr(name, '*') == nullptr && std::strstr(name, "_GLOBAL__N_") == nullptr;
    for (const char *at = name; (at = std::strchr(at, 'Z')) != nullptr; ++at) // but where an identifier begins with it
        isPublic = isPublic && at != name && at[-1] >= '0' && at[-1] <= '9';
    return isPublic;
}

/** Whether an object is of a type. With hidden visibility each shared object has a mark of its own for a type. */
template <class T> bool is_of_type(const identified &object) noexcept
{
    const char *const name = identified_as<T>(nullptr).name;
    return object.type == &type_mark<T> ||
           (name != nullptr && object.name != nullptr && std::strcmp(name, object.name) == 0 && is_public_name(name));
}

/** What hold() gives for a thing in front of the arguments that is none; the texts in the source derive from it. */
struct no_argument
{
};

/* An argument, or what holds the memory that one points into; append_argument() makes arguments of it while the value
 * lives. */

template <class T> auto hold(const T &value);

inline KTArgument hold(const char *text) noexcept // and literals of any length
{
    return KT_UTF8(text);
}
inline const char *as_chars(const void *text) noexcept // a char8_t is one as well
{
    return static_cast<const char *>(text);
}

/** A view of a text as an argument; one without data is the empty text. */
template <class Unit> KTArgument of_view(std::basic_string_view<Unit> text) noexcept
{
    const std::size_t size = text.data() != nullptr ? text.size() : 0;
    if constexpr (std::is_same_v<Unit, char16_t>)
        return KT_UCS2N(text.data(), size);
    else
        return KT_UTF8N(as_chars(text.data()), size);
}

template <class First, class Second> struct held_pair
{
    First first;
    Second second;
};

template <class Made> auto hold_made(const Made &made)
{
    if constexpr (is_pair<Made>)
        return held_pair<decltype(hold(made.first)), decltype(hold(made.second))>{hold(made.first), hold(made.second)};
    else
        return hold(made);
}

/** What argument_of made of a value, and the arguments that point into it. */
template <class T> struct converted
{
    explicit converted(const T &from) : value(argument_of<T>::convert(from)), inner(hold_made(value)) {}
    converted(const converted &) = delete;
    converted &operator=(const converted &) = delete;
    converted_of<T> value;
    decltype(hold_made(value)) inner;
};

template <class T> auto hold(const T &value)
{
    constexpr bool isNone = std::is_base_of_v<no_argument, T> || std::is_same_v<T, std::error_code>;
    constexpr category kind = category_of<T>();
    static_assert(
        isNone || kind != category::none,
        "kelto: a value of this type cannot be formatted; pass an integer, an enum, a bool, a char, a char16_t, "
        "a char32_t, a floating-point number, a UTF-8 or UTF-16 text, a path, a duration or a time of the system "
        "clock, or specialise kelto::argument_of for it");
    if constexpr (isNone)
        return no_argument();
    else if constexpr (kind == category::converted)
        return converted<T>(value);
    else if constexpr (kind == category::identity)
        return identified_as<T>(&value);
    else if constexpr (kind == category::enumeration)
        return hold(static_cast<std::underlying_type_t<T>>(value));
    else if constexpr (kind == category::integer && sizeof(T) <= 4 && (std::is_signed_v<T> || sizeof(T) < 4))
        return KT_INT(value);
    else if constexpr (kind == category::integer && sizeof(T) <= 4)
        return KT_UINT(value);
    else if constexpr (kind == category::integer && std::is_signed_v<T>)
        return KT_INT64(value);
    else if constexpr (kind == category::integer)
        return KT_UINT64(value);
    else if constexpr (kind == category::character)
        return KT_CHAR(value);
    else if constexpr (kind == category::unit)
        return KT_UNIT(value);
    else if constexpr (kind == category::code_point)
        return KT_CODE_POINT(value);
    else if constexpr (kind == category::real)
        return KT_DOUBLE(value);
    else if constexpr (kind == category::long_real)
        return KT_LONG_DOUBLE(&value);
    else if constexpr (kind == category::utf8 && std::is_pointer_v<std::decay_t<T>>)
        return KT_UTF8(as_chars(value));
    else if constexpr (kind == category::ucs2 && std::is_pointer_v<std::decay_t<T>>)
        return KT_UCS2(value);
    else if constexpr (kind == category::utf8 && std::is_convertible_v<const T &, std::string_view>)
        return of_view<char>(value);
    else if constexpr (kind == category::utf8)
        return of_view<char8>(value);
    else if constexpr (kind == category::ucs2)
        return of_view<char16_t>(value);
    else if constexpr (kind == category::path)
        return of_view<char>(value.native());
    else if constexpr (kind == category::duration)
        return hold(value.count());
    else if constexpr (kind == category::time)
        return time_stamp(seconds_of(value.time_since_epoch()));
    else
        return KTArgument{};
}

/** The arguments of a call, which live as long as it. */
struct argument_view
{
    const KTArgument *arguments;
    std::size_t count;
};

template <std::size_t Count> struct argument_list
{
    operator argument_view() const noexcept { return {arguments, Count}; }
    KTArgument arguments[Count != 0 ? Count : 1];
};

/** How an argument is passed on: a small one by its value, a literal of any length as a pointer. */
template <class T>
using passed = std::conditional_t<std::is_array_v<T>, std::decay_t<const T>,
                                  std::conditional_t<std::is_scalar_v<T>, T, const T &>>;

template <class Held> constexpr std::size_t arguments_in = std::is_same_v<Held, no_argument> ? 0 : 1;
template <class First, class Second>
constexpr std::size_t arguments_in<held_pair<First, Second>> = arguments_in<First> + arguments_in<Second>;
template <class T> constexpr std::size_t arguments_in<converted<T>> = arguments_in<decltype(converted<T>::inner)>;

/** Puts the arguments that lie in what hold() gave into an array, and returns the place behind them. */
template <class Held> KTArgument *append_argument(KTArgument *at, const Held &held) noexcept
{
    if constexpr (std::is_same_v<Held, KTArgument>)
        *at = held;
    else if constexpr (std::is_same_v<Held, time_stamp>)
        *at = KT_UTF8(held.text);
    else if constexpr (std::is_same_v<Held, identified>)
        *at = KT_POINTER(identity_kind, &held);
    return at + arguments_in<Held>;
}
template <class First, class Second>
KTArgument *append_argument(KTArgument *at, const held_pair<First, Second> &held) noexcept
{
    return append_argument(append_argument(at, held.first), held.second);
}
template <class T> KTArgument *append_argument(KTArgument *at, const converted<T> &held) noexcept
{
    return append_argument(at, held.inner);
}

/** The arguments that lie in what hold() gave. */
template <class... Held> argument_list<(arguments_in<Held> + ... + 0)> list(const Held &...held) noexcept
{
    if constexpr ((arguments_in<Held> + ... + 0) == 0)
        return {};
    else
    {
        argument_list<(arguments_in<Held> + ... + 0)> made;
        KTArgument *at = made.arguments;
        ((at = append_argument(at, held)), ...);
        return made;
    }
}

/** The name of a type, as the compiler spells it behind "T = ". */
template <class T> constexpr std::string_view name_of_type() noexcept
{
    constexpr std::string_view function = __PRETTY_FUNCTION__;
    constexpr std::size_t begin = function.find("T = ") + 4;
    return function.substr(begin, function.find_last_of(";]", function.find(';')) - begin);
}

/** Writes an object as what argument_of makes of it, or else the name of its type. */
template <class T> KELTO_SELDOM int write_object(const void *object, std::size_t *size, char *out) noexcept
{
    if constexpr (has<converted_of, T>)
    {
#if KELTO_HAS_EXCEPTIONS
        try
#endif
        {
            const auto made = argument_of<T>::convert(*static_cast<const T *>(object));
            const auto held = hold(made);
            if constexpr (std::is_same_v<decltype(held), const identified>)
                return (*held.type)(&made, size, out);
            else
                return KTArgumentText(list(held).arguments, size, out);
        }
#if KELTO_HAS_EXCEPTIONS
        catch (...) // there is something to be said of the object all the same
        {
        }
#endif
    }
    const std::string_view name = name_of_type<T>();
    const std::size_t room = std::exchange(*size, name.size() + 2);
    if (*size >= room)
        return KT_ERR_BUFFER_TOO_SMALL;
    *out = '(';
    name.copy(out + 1, name.size());
    out[name.size() + 1] = ')';
    out[*size] = '\0';
    return 0;
}

/** What a type is to the conversions, known before there is a value. */
struct shape
{
    category kind;
    std::size_t bytes;
    bool is_signed;
};

template <class T> constexpr shape shape_of() noexcept
{
    using bare = std::remove_cv_t<std::remove_reference_t<T>>;
    constexpr category kind = category_of<bare>();
    if constexpr (kind == category::converted)
        return shape_of<converted_of<bare>>();
    else if constexpr (kind == category::enumeration)
        return shape_of<std::underlying_type_t<bare>>();
    else if constexpr (kind == category::duration)
        return shape_of<typename bare::rep>();
    else
        return {kind, sizeof(bare), std::is_signed_v<bare>};
}

/** Whether every value of a type can be passed for a slot. */
constexpr bool fits(unsigned slot, shape type) noexcept
{
    if (slot < KT_SLOT_CHAR)
    {
        const std::size_t bytes = std::size_t{2} << (slot - 1) / 2;
        if (type.kind != category::integer || type.is_signed == (slot % 2 == 1))
            return type.kind == category::integer && type.bytes <= bytes;
        if (type.is_signed) // a negative number goes over bit for bit
            return slot == KT_SLOT_UINT32 ? type.bytes <= 4 : slot == KT_SLOT_UINT64 && type.bytes == 8;
        return type.bytes < bytes;
    }
    constexpr category kinds[][3] = {
        {category::character}, {category::unit, category::code_point},           {category::real},
        {category::long_real}, {category::utf8, category::path, category::time}, {category::ucs2, category::code_point},
        {category::identity}};
    bool isOne = false;
    for (const category kind : kinds[slot - KT_SLOT_CHAR])
        isOne = isOne || (kind == type.kind && kind != category::none);
    return isOne;
}

} // namespace detail

} // namespace kelto

#endif
