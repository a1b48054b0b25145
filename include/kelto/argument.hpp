/**
 * @file argument.hpp
 * What can be formatted, and what becomes of it. Include kelto.hpp.
 */
#ifndef KELTO_ARGUMENT_HPP
#define KELTO_ARGUMENT_HPP

#include "error.hpp"

#include <cstdint>
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
 *         static std::string convert(const version &v) { return v.text(); } // for "%s"
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
    made, // of another value that stands for it; see made_of()
    identity,
    integer,
    character,
    unit,
    code_point,
    real,
    long_real,
    utf8,
    ucs2
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

template <class T> int write_object(const void *object, std::size_t *size, char *out) noexcept;

/** The name of a type, as the compiler spells it behind "T = ". */
template <class T> constexpr std::string_view name_of_type() noexcept
{
    constexpr std::string_view function = __PRETTY_FUNCTION__;
    constexpr std::size_t begin = function.find("T = ") + 4;
    return function.substr(begin, function.find_last_of(";]", function.find(';')) - begin);
}

/** What objects with their identity go over with. With hidden visibility each shared object has one of its own. */
template <class T> const KTObjectType *object_type() noexcept
{
    constexpr std::string_view name = name_of_type<T>();
#if defined(__cpp_rtti) || defined(__GXX_RTTI)
    static const KTObjectType type = {typeid(T).name(), name.data(), name.size(), write_object<T>};
#else
    static const KTObjectType type = {nullptr, name.data(), name.size(), write_object<T>};
#endif
    return &type;
}

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
    else if constexpr (is_one_of<bare, KTObject>)
        return category::identity;
    else if constexpr (!has<missing_of, bare> || std::is_enum_v<bare>)
        return category::made;
    else if constexpr (std::is_convertible_v<const bare &, std::string_view> ||
                       std::is_convertible_v<const bare &, std::basic_string_view<char8>>)
        return category::utf8;
    else if constexpr (std::is_convertible_v<const bare &, std::u16string_view>)
        return category::ucs2;
    else
        return has<time_of, bare> || has<duration_of, bare> || has<path_of, bare> ? category::made : category::none;
}

/* What hold() gives for a value holds an argument, or some, and what they point into; put() writes them into an array
 * while it lives. */

/** For a thing in front of the arguments that is none; the texts in the source derive from it. */
struct no_argument
{
    static constexpr std::size_t count = 0;
    KTArgument *put(KTArgument *at) const noexcept { return at; }
};

struct held_argument
{
    static constexpr std::size_t count = 1;
    KTArgument *put(KTArgument *at) const noexcept { return *at = argument, at + 1; }
    KTArgument argument;
};

template <class First, class Second> struct held_pair
{
    static constexpr std::size_t count = First::count + Second::count;
    KTArgument *put(KTArgument *at) const noexcept { return second.put(first.put(at)); }
    First first;
    Second second;
};

template <class T> auto hold(const T &value);

/** A time as the date conversions take it. */
struct time_stamp
{
    template <class Duration> explicit time_stamp(const Duration &since) noexcept
    {
        KTClockText(hold(since.count()).argument, Duration::period::num, Duration::period::den, text);
    }
    operator std::string_view() const noexcept { return text; }
    char text[22];
};

/** What stands for a value of category::made. */
template <class T> decltype(auto) made_of(const T &value)
{
    if constexpr (has<identity_of, T>)
        return KTObject{object_type<T>(), &value};
    else if constexpr (!has<missing_of, T>)
        return argument_of<T>::convert(value);
    else if constexpr (std::is_enum_v<T>)
        return static_cast<std::underlying_type_t<T>>(value);
    else if constexpr (has<time_of, T>)
        return time_stamp(value.time_since_epoch());
    else if constexpr (has<duration_of, T>)
        return value.count();
    else
        return std::string_view(value.native());
}
template <class T> using made = decltype(made_of(std::declval<const T &>()));

template <class Made> auto hold_made(const Made &value)
{
    if constexpr (is_pair<Made>)
        return held_pair<decltype(hold(value.first)), decltype(hold(value.second))>{hold(value.first),
                                                                                    hold(value.second)};
    else
        return hold(value);
}

template <class T> struct held_made
{
    explicit held_made(const T &from) : value(made_of(from)), inner(hold_made(value)) {}
    held_made(const held_made &) = delete;
    held_made &operator=(const held_made &) = delete;
    static constexpr std::size_t count = decltype(hold_made(std::declval<made<T>>()))::count;
    KTArgument *put(KTArgument *at) const noexcept { return inner.put(at); }
    made<T> value;
    decltype(hold_made(value)) inner;
};

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

inline held_argument hold(const char *text) noexcept // and literals of any length
{
    return {KT_UTF8(text)};
}

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
    else if constexpr (kind == category::made)
        return held_made<T>(value);
    else if constexpr (kind == category::identity)
        return held_argument{KT_POINTER(KT_KIND_OBJECT, &value)};
    else if constexpr (kind == category::integer && sizeof(T) <= 4 && (std::is_signed_v<T> || sizeof(T) < 4))
        return held_argument{KT_INT(value)};
    else if constexpr (kind == category::integer && sizeof(T) <= 4)
        return held_argument{KT_UINT(value)};
    else if constexpr (kind == category::integer && std::is_signed_v<T>)
        return held_argument{KT_INT64(value)};
    else if constexpr (kind == category::integer)
        return held_argument{KT_UINT64(value)};
    else if constexpr (kind == category::character)
        return held_argument{KT_CHAR(value)};
    else if constexpr (kind == category::unit)
        return held_argument{KT_UNIT(value)};
    else if constexpr (kind == category::code_point)
        return held_argument{KT_CODE_POINT(value)};
    else if constexpr (kind == category::real)
        return held_argument{KT_DOUBLE(value)};
    else if constexpr (kind == category::long_real)
        return held_argument{KT_LONG_DOUBLE(&value)};
    else if constexpr (kind == category::utf8 && std::is_pointer_v<std::decay_t<T>>)
        return held_argument{KT_UTF8(as_chars(value))};
    else if constexpr (kind == category::ucs2 && std::is_pointer_v<std::decay_t<T>>)
        return held_argument{KT_UCS2(value)};
    else if constexpr (kind == category::utf8 && std::is_convertible_v<const T &, std::string_view>)
        return held_argument{of_view<char>(value)};
    else if constexpr (kind == category::utf8)
        return held_argument{of_view<char8>(value)};
    else if constexpr (kind == category::ucs2)
        return held_argument{of_view<char16_t>(value)};
    else
        return held_argument{};
}

/** The arguments that lie in what hold() gave, which live as long as the call. */
template <class... Held> struct argument_list
{
    explicit argument_list(const Held &...held) noexcept
    {
        [[maybe_unused]] KTArgument *at = arguments;
        ((at = held.put(at)), ...);
    }
    static constexpr std::size_t count = (Held::count + ... + 0);
    KTArgument arguments[count + 1];
};

/** How an argument is passed on: a small one by its value, a literal of any length as a pointer. */
template <class T>
using passed = std::conditional_t<std::is_array_v<T>, std::decay_t<const T>,
                                  std::conditional_t<std::is_scalar_v<T>, T, const T &>>;

/** Writes an object as what argument_of makes of it, for the last rung and for errors; or else the name of its type. */
template <class T> KELTO_SELDOM int write_object(const void *object, std::size_t *size, char *out) noexcept
{
    if constexpr (has<converted_of, T>)
    {
#if KELTO_HAS_EXCEPTIONS
        try
#endif
        {
            const auto made = argument_of<T>::convert(*static_cast<const T *>(object));
            return KTArgumentText(argument_list(hold(made)).arguments, size, out);
        }
#if KELTO_HAS_EXCEPTIONS
        catch (...) // there is something to be said of the object all the same
        {
        }
#endif
    }
    return KT_ERR_CONVERSION_FAILED;
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
    if constexpr (category_of<bare>() == category::made)
        return shape_of<made<bare>>();
    else
        return {category_of<bare>(), sizeof(bare), std::is_signed_v<bare>};
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
    constexpr category kinds[] = {category::character, category::unit, category::real,    category::long_real,
                                  category::utf8,      category::ucs2, category::identity};
    return type.kind == kinds[slot - KT_SLOT_CHAR] ||
           (type.kind == category::code_point && (slot == KT_SLOT_UNIT || slot == KT_SLOT_UCS2));
}

} // namespace detail

} // namespace kelto

#endif
