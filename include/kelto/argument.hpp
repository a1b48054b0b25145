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
 * handed over, together with its type, which the conversion compares before it looks at it.
 *
 *     template <> struct kelto::argument_of<money> : kelto::by_identity<money> {};
 *
 * A function that makes a std::pair gives both to a conversion of two arguments, as "%money[1]" of the add-on.
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
    utf8_pointer,
    utf8_view,
    ucs2_pointer,
    ucs2_view,
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
template <class T> constexpr bool is_char8 = std::is_same_v<T, char8_t>;
template <class T>
constexpr bool is_utf8_view =
    std::is_convertible_v<const T &, std::string_view> || std::is_convertible_v<const T &, std::u8string_view>;
#else
template <class T> constexpr bool is_char8 = false;
template <class T> constexpr bool is_utf8_view = std::is_convertible_v<const T &, std::string_view>;
#endif

/** The category of a scalar type or of a pointer. */
template <class T> constexpr category scalar_category() noexcept
{
    using pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (std::is_pointer_v<T>)
        return std::is_same_v<pointee, char> || is_char8<pointee> ? category::utf8_pointer
               : std::is_same_v<pointee, char16_t>                ? category::ucs2_pointer
                                                                  : category::none;
    else if constexpr (std::is_same_v<T, char>)
        return category::character;
    else if constexpr (std::is_same_v<T, char16_t>)
        return category::unit;
    else if constexpr (std::is_same_v<T, char32_t>)
        return category::code_point;
    else if constexpr (std::is_integral_v<T>)
        return std::is_same_v<T, wchar_t> || is_char8<T> || sizeof(T) > 8 ? category::none : category::integer;
    else
        return is_one_of<T, float, double>      ? category::real
               : std::is_same_v<T, long double> ? category::long_real
                                                : category::none;
}

/** The category of a class that nothing was said of. */
template <class T> constexpr category class_category() noexcept
{
    if constexpr (is_utf8_view<T>)
        return category::utf8_view;
    else if constexpr (std::is_convertible_v<const T &, std::u16string_view>)
        return category::ucs2_view;
    else
        return has<time_of, T>       ? category::time
               : has<duration_of, T> ? category::duration
               : has<path_of, T>     ? category::path
                                     : category::none;
}

/** The category of a type that an argument was passed as. */
template <class T> constexpr category category_of() noexcept
{
    using bare = std::remove_cv_t<T>;
    if constexpr (std::is_array_v<bare>)
        return scalar_category<std::remove_extent_t<bare> *>();
    else if constexpr (std::is_class_v<bare> || std::is_union_v<bare> || std::is_enum_v<bare>)
    {
        if constexpr (has<identity_of, bare>)
            return category::identity;
        else if constexpr (!has<missing_of, bare>)
            return category::converted;
        else if constexpr (std::is_enum_v<bare>)
            return category::enumeration;
        else
            return class_category<bare>();
    }
    else
        return scalar_category<bare>();
}

/** Whether a type goes over as several arguments. */
template <class T> constexpr bool is_pair_argument() noexcept
{
    if constexpr (category_of<T>() == category::converted)
    {
        using made = std::decay_t<converted_of<T>>;
        return is_pair<made> || is_pair_argument<made>();
    }
    return false;
}

/** A time as the date conversions take it: "2006-05-17'T08:09:10Z", which reaches from the year 0 to the year 9999. */
class time_stamp
{
public:
    template <class Duration> static time_stamp of(Duration sinceEpoch) noexcept
    {
        using count = typename Duration::rep;
        constexpr std::intmax_t numerator = Duration::period::num, denominator = Duration::period::den;
        // A count of hours may be more than any count of seconds can be, so it is compared roughly first.
        const double roughly = static_cast<double>(sinceEpoch.count()) * numerator / denominator;
        if (!(roughly >= static_cast<double>(first))) // or is no number
            return time_stamp(first);
        if (roughly > static_cast<double>(last))
            return time_stamp(last);
        if constexpr (std::is_integral_v<count>)
        {
            using wide = std::common_type_t<count, std::int64_t>;
            const auto whole = static_cast<std::int64_t>(sinceEpoch.count() / static_cast<wide>(denominator));
            const auto rest =
                static_cast<std::int64_t>(sinceEpoch.count() % static_cast<wide>(denominator)) * numerator;
            return time_stamp(whole * numerator + rest / denominator - (rest % denominator < 0 ? 1 : 0));
        }
        else
        {
            const auto seconds = static_cast<std::int64_t>(roughly);
            return time_stamp(static_cast<double>(seconds) > roughly ? seconds - 1 : seconds);
        }
    }

    explicit time_stamp(std::int64_t seconds) noexcept
    {
        seconds = seconds < first ? first : seconds > last ? last : seconds;
        // Years that begin in March, in eras of 400 years: every month then begins on the same day of its year.
        const std::int64_t days = (seconds - first) / 86400 + daysPerEra - 60;
        const std::int64_t time = (seconds - first) % 86400;
        const std::int64_t dayOfEra = days % daysPerEra;
        const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
        const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
        const std::int64_t monthOfYear = (5 * dayOfYear + 2) / 153;
        const std::int64_t month = monthOfYear < 10 ? monthOfYear + 3 : monthOfYear - 9;
        char *out = text_;
        out = append(out, (days / daysPerEra - 1) * 400 + yearOfEra + (month <= 2 ? 1 : 0), 4, "-");
        out = append(out, month, 2, "-");
        out = append(out, dayOfYear - (153 * monthOfYear + 2) / 5 + 1, 2, "'T");
        out = append(out, time / 3600, 2, ":");
        out = append(out, time / 60 % 60, 2, ":");
        append(out, time % 60, 2, "Z");
    }

    const char *text() const noexcept { return text_; }

private:
    static constexpr std::int64_t first = -62167219200; // 0000-01-01
    static constexpr std::int64_t last = 253402300799;  // the end of 9999-12-31
    static constexpr std::int64_t daysPerEra = 146097;

    static char *append(char *out, std::int64_t value, int digits, const char *behind) noexcept
    {
        for (int i = digits; i > 0; --i, value /= 10)
            out[i - 1] = static_cast<char>('0' + value % 10);
        for (out += digits; *behind != '\0'; ++behind)
            *out++ = *behind;
        *out = '\0';
        return out;
    }

    char text_[22];
};

/** What a type that goes over with its identity can do: write an object for a person, under the size protocol. */
struct object_type
{
    int (*write)(const void *object, std::size_t *size, char *out);
};

template <class T> int write_object(const void *object, std::size_t *size, char *out) noexcept;

/** Its address is the identity of a type. Not constant, so that no two are folded into one. */
template <class T> inline object_type type_tag = {write_object<T>};

/** The type's name for the linker, null where the compiler keeps none. */
template <class T> const char *linker_name() noexcept
{
#if defined(__cpp_rtti) || defined(__GXX_RTTI)
    return typeid(T).name();
#else
    return nullptr;
#endif
}

/** The kind of all objects that go over with their identity; their types tell them apart. */
constexpr std::uint32_t identity_kind = 0x6B2B2B02;

struct identified
{
    const object_type *type;
    const char *name;
    const void *object;
};

/** Whether a linker's name is that of one type in the whole process: no function's own, nor in an unnamed namespace. */
inline bool is_public_name(const char *name) noexcept
{
    bool isPublic = std::strchr(name, '*') == nullptr && std::strstr(name, "_GLOBAL__N_") == nullptr;
    for (const char *at = name; (at = std::strchr(at, 'Z')) != nullptr; ++at) // but where an identifier begins with it
        isPublic = isPublic && at != name && at[-1] >= '0' && at[-1] <= '9';
    return isPublic;
}

/** Whether an object is of a type. Shared objects with hidden visibility have a tag of each type for themselves. */
template <class T> bool is_of_type(const identified &object) noexcept
{
    const char *const name = linker_name<T>();
    return object.type == &type_tag<T> ||
           (name != nullptr && object.name != nullptr && std::strcmp(name, object.name) == 0 && is_public_name(name));
}

/* An argument, or what holds the memory that one points into; it is given to argument_from() while the value lives. The
 * types that are passed most have functions of their own: each argument of another type takes time to compile. */

template <class T> auto hold(const T &value);

inline KTArgument hold(int value) noexcept
{
    return KT_INT(value);
}
inline KTArgument hold(unsigned value) noexcept
{
    return KT_UINT(value);
}
inline KTArgument hold(double value) noexcept
{
    return KT_DOUBLE(value);
}
inline KTArgument hold(const char *text) noexcept // and literals of any length
{
    return KT_UTF8(text);
}
inline KTArgument hold(const std::string &text) noexcept
{
    return KT_UTF8N(text.data(), text.size());
}

inline const char *as_chars(const void *text) noexcept // a char8_t is one as well
{
    return static_cast<const char *>(text);
}
inline const char16_t *as_chars(const char16_t *text) noexcept
{
    return text;
}

/** A view of a text as an argument; one without data is the empty text. */
template <class View, class Make> KTArgument of_view(Make make, View text) noexcept
{
    return make(as_chars(text.data()), text.data() != nullptr ? text.size() : 0);
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
    constexpr category kind = category_of<T>();
    static_assert(
        kind != category::none,
        "kelto: a value of this type cannot be formatted; pass an integer, an enum, a bool, a char, a char16_t, "
        "a char32_t, a floating-point number, a UTF-8 or UTF-16 text, a path, a duration or a time of the system "
        "clock, or specialise kelto::argument_of for it");
    if constexpr (kind == category::converted)
        return converted<T>(value);
    else if constexpr (kind == category::identity)
        return identified{&type_tag<T>, linker_name<T>(), &value};
    else if constexpr (kind == category::enumeration)
        return hold(static_cast<std::underlying_type_t<T>>(value));
    else if constexpr (kind == category::integer && std::is_signed_v<T>)
        return sizeof(T) > 4 ? KT_INT64(value) : KT_INT(static_cast<std::int32_t>(value));
    else if constexpr (std::is_same_v<T, bool>)
        return KT_INT(value);
    else if constexpr (kind == category::integer)
        return sizeof(T) > 4 ? KT_UINT64(value) : KT_UINT(static_cast<std::uint32_t>(value));
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
    else if constexpr (kind == category::utf8_pointer)
        return KT_UTF8(as_chars(value));
    else if constexpr (kind == category::ucs2_pointer)
        return KT_UCS2(value);
    else if constexpr (kind == category::utf8_view && std::is_convertible_v<const T &, std::string_view>)
        return of_view<std::string_view>(KT_UTF8N, value);
#if defined(__cpp_char8_t)
    else if constexpr (kind == category::utf8_view)
        return of_view<std::u8string_view>(KT_UTF8N, value);
#endif
    else if constexpr (kind == category::ucs2_view)
        return of_view<std::u16string_view>(KT_UCS2N, value);
    else if constexpr (kind == category::path)
        return of_view<std::string_view>(KT_UTF8N, value.native());
    else if constexpr (kind == category::duration)
        return hold(value.count());
    else if constexpr (kind == category::time)
        return time_stamp::of(value.time_since_epoch());
    else
        return KTArgument{};
}

inline const KTArgument &argument_from(const KTArgument &argument) noexcept
{
    return argument;
}
inline KTArgument argument_from(const time_stamp &stamp) noexcept
{
    return KT_UTF8(stamp.text());
}
inline KTArgument argument_from(const identified &object) noexcept
{
    return KT_POINTER(identity_kind, &object);
}
template <class T> KTArgument argument_from(const converted<T> &value) noexcept
{
    return argument_from(value.inner);
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
    KTArgument arguments[Count + 1];
};

/** How an argument goes through a function: what is small by its value, a literal of any length as a pointer. */
template <class T>
using passed = std::conditional_t<std::is_array_v<T>, std::decay_t<const T>,
                                  std::conditional_t<std::is_scalar_v<T>, T, const T &>>;

/** What hold() gives for what stands in front of the arguments and is none. */
struct no_argument
{
};

template <class Held> constexpr std::size_t arguments_in = 1;
template <class First, class Second>
constexpr std::size_t arguments_in<held_pair<First, Second>> = arguments_in<First> + arguments_in<Second>;
template <class T> constexpr std::size_t arguments_in<converted<T>> = arguments_in<decltype(converted<T>::inner)>;

template <class Held> KTArgument *append_argument(KTArgument *at, const Held &held) noexcept
{
    *at = argument_from(held);
    return at + 1;
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
    constexpr std::size_t count = (arguments_in<Held> + ... + 0);
    if constexpr (count == sizeof...(Held))
        return {{argument_from(held)...}};
    else
    {
        argument_list<count> made = {};
        KTArgument *at = made.arguments;
        ((at = append_argument(at, held)), ...);
        return made;
    }
}
template <class... Held> auto list(no_argument, const Held &...held) noexcept
{
    return list(held...);
}

/** The name of a type, as the compiler spells it behind "T = ". */
template <class T> constexpr std::string_view name_of_type() noexcept
{
    constexpr std::string_view function = __PRETTY_FUNCTION__;
    constexpr std::size_t begin = function.find("T = ") + 4;
    return function.substr(begin, function.find_last_of(";]", function.find(';')) - begin);
}

/** Writes a text under the size protocol of the C interface. */
inline int write_text(std::string_view text, std::size_t *size, char *out) noexcept
{
    const std::size_t room = std::exchange(*size, text.size());
    if (text.size() >= room)
        return KT_ERR_BUFFER_TOO_SMALL;
    text.copy(out, text.size());
    out[text.size()] = '\0';
    return 0;
}

/** Writes a value as the last rung does. */
template <class T> int write_plainly(const T &value, std::size_t *size, char *out)
{
    if constexpr (std::is_same_v<T, identified>)
        return value.type->write(value.object, size, out);
    else
    {
        // "[0: value]" is the last rung of no catalog.
        const KTArgument argument = argument_from(value);
        constexpr std::size_t before = 4, behind = 1;
        std::string text(256, '\0');
        std::size_t needed = text.size() + 1;
        while (KTCatalogFormatUTF8(nullptr, 0, nullptr, &needed, text.data(), &argument, 1) == KT_ERR_BUFFER_TOO_SMALL)
        {
            text.resize(needed);
            needed = text.size() + 1;
        }
        return write_text(std::string_view(text).substr(before, needed - before - behind), size, out);
    }
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
            const auto value = argument_of<T>::convert(*static_cast<const T *>(object));
            return write_plainly(hold(value), size, out);
        }
#if KELTO_HAS_EXCEPTIONS
        catch (...) // there is something to be said of the object all the same
        {
        }
#endif
    }
    constexpr std::string_view name = name_of_type<T>();
    char text[name.size() + 2] = {'('};
    name.copy(text + 1, name.size());
    text[name.size() + 1] = ')';
    return write_text({text, sizeof text}, size, out);
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
    else if constexpr (kind == category::integer)
        return {kind, sizeof(bare), std::is_signed_v<bare>};
    else
        return {kind, 0, false};
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
    constexpr category kinds[][4] = {{category::character},
                                     {category::unit, category::code_point},
                                     {category::real},
                                     {category::long_real},
                                     {category::utf8_pointer, category::utf8_view, category::path, category::time},
                                     {category::ucs2_pointer, category::ucs2_view, category::code_point},
                                     {category::identity}};
    bool isOne = false;
    for (const category kind : kinds[slot - KT_SLOT_CHAR])
        isOne = isOne || (kind == type.kind && kind != category::none);
    return isOne;
}

} // namespace detail

} // namespace kelto

#endif
