/** @file argument.hpp Which types are arguments, of which conversions, and how they go over. Include kelto.hpp. */
#ifndef KELTO_ARGUMENT_HPP
#define KELTO_ARGUMENT_HPP

#include "error.hpp"

#include <cstdint>
#include <typeinfo>

namespace kelto
{

/**
 * How a type of the program's own becomes an argument. Specialise it with a function that makes one of the types that
 * are arguments already, or a std::pair of two, as "%money[1]" of the add-on takes them:
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
 * Where no text can be formatted, such an object is written by the first conversion that takes it alone, by a function
 * `convert` as above if there is one too, or as the name of its type. `Enable` is for families of types:
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

template <class T, class... Others> constexpr bool is_one_of = (std::is_same_v<T, Others> || ...);
template <class T> constexpr bool is_pair = false;
template <class First, class Second> constexpr bool is_pair<std::pair<First, Second>> = true;

template <template <class> class Of, class T, class = void> constexpr bool has = false;
template <template <class> class Of, class T> constexpr bool has<Of, T, std::void_t<Of<T>>> = true;

template <class T> using missing_of = decltype(argument_of<T>::is_missing);
template <class T> using identity_of = typename argument_of<T>::identity;
template <class T> using converted_of = decltype(argument_of<T>::convert(std::declval<const T &>()));

// Paths, durations and times are known by their shape, so that a program without them does not read their headers. Of
// all clocks the system's alone knows the times of C.
template <class T>
using path_of = decltype(T::preferred_separator, std::string_view(std::declval<const T &>().native()));
template <class T> using duration_of = decltype(T::period::num, typename T::rep(std::declval<const T &>().count()));
template <class T> using time_of = decltype(T::clock::from_time_t, std::declval<const T &>().time_since_epoch());

#if defined(__cpp_char8_t)
using char8 = char8_t;
#else
using char8 = char;
#endif
template <class T, class Unit>
constexpr bool is_text =
    std::conjunction_v<std::is_class<T>, std::is_convertible<const T &, std::basic_string_view<Unit>>>;

/** What is an argument by itself; what promotes to one of these goes over as that. */
struct plain_argument
{
    static KTArgument of(int value) noexcept { return KT_INT(value); }
    static KTArgument of(unsigned value) noexcept { return KT_UINT(value); }
    static KTArgument of(long value) noexcept { return KT_INT64(value); }
    static KTArgument of(unsigned long value) noexcept { return KT_UINT64(value); }
    static KTArgument of(long long value) noexcept { return KT_INT64(value); }
    static KTArgument of(unsigned long long value) noexcept { return KT_UINT64(value); }
    static KTArgument of(char value) noexcept { return KT_CHAR(value); }
    static KTArgument of(char16_t value) noexcept { return KT_UNIT(value); }
    static KTArgument of(char32_t value) noexcept { return KT_CODE_POINT(value); }
    static KTArgument of(double value) noexcept { return KT_DOUBLE(value); }
    static KTArgument of(const long double &value) noexcept { return KT_LONG_DOUBLE(&value); }
    static KTArgument of(const KTObject &object) noexcept { return KT_POINTER(KT_KIND_OBJECT, &object); }
    static KTArgument of(const char16_t *text) noexcept { return KT_UCS2(text); }
    static KTArgument of(const void *text) noexcept { return KT_UTF8(static_cast<const char *>(text)); }
    static KTArgument of(std::u16string_view text) noexcept { return KT_UCS2N(text.data(), text.size()); }
    template <class Unit> static KTArgument of(std::basic_string_view<Unit> text) noexcept
    {
        return KT_UTF8N(static_cast<const char *>(static_cast<const void *>(text.data())), text.size());
    }
};

/** A time as the date conversions take it. */
struct time_stamp
{
    template <class Duration> explicit time_stamp(const Duration &since) noexcept
    {
        KTClockText(plain_argument::of(since.count()), Duration::period::num, Duration::period::den, text);
    }
    operator std::string_view() const noexcept { return text; }
    char text[22];
};

template <class T, bool Catches = KELTO_HAS_EXCEPTIONS>
int write_object(const void *object, std::size_t *size, char *out) noexcept;

/** What objects with their identity go over with. With hidden visibility each shared object has one of its own. */
template <class T> const KTObjectType *object_type() noexcept
{
    constexpr std::string_view function = __PRETTY_FUNCTION__; // "... [with T = name]", or "name; ...]"
    constexpr std::size_t begin = function.find("T = ") + 4;
    constexpr std::string_view name = function.substr(begin, function.find_last_of(";]", function.find(';')) - begin);
#if defined(__cpp_rtti) || defined(__GXX_RTTI)
    static const KTObjectType type = {typeid(T).name(), name.data(), name.size(), write_object<T>};
#else
    static const KTObjectType type = {nullptr, name.data(), name.size(), write_object<T>};
#endif
    return &type;
}

/** What a value goes over as: another one that is made of it, or itself. */
template <class T> decltype(auto) made_of(const T &value)
{
    if constexpr (has<identity_of, T>)
        return KTObject{object_type<T>(), &value};
    else if constexpr (!has<missing_of, T>)
        return argument_of<T>::convert(value);
    else if constexpr (std::is_enum_v<T>)
        return static_cast<std::underlying_type_t<T>>(value);
    else if constexpr (is_text<T, char>)
        return std::string_view(value);
    else if constexpr (is_text<T, char16_t>)
        return std::u16string_view(value);
    else if constexpr (is_text<T, char8>)
        return std::basic_string_view<char8>(value);
    else if constexpr (std::is_array_v<T> || std::is_volatile_v<T>)
        return std::decay_t<const T>(value);
    else if constexpr (has<time_of, T>)
        return time_stamp(value.time_since_epoch());
    else if constexpr (has<duration_of, T>)
        return value.count();
    else if constexpr (has<path_of, T>)
        return std::string_view(value.native());
    else
        return value;
}
template <class T> using made = decltype(made_of(std::declval<const T &>()));

/**
 * The KTSlotCode that takes a type, known before there is a value, or one of these. The codes of signed integers are
 * odd; those of 8 bits count as of 16, but that unsigned ones fit everywhere.
 */
constexpr unsigned slot_of_uint8 = 0, slot_of_code_point = KT_SLOT_POINTER + 1, no_slot = KT_SLOT_POINTER + 2;
template <class T> constexpr unsigned slot_of() noexcept
{
    using as = std::decay_t<made<T>>;
    if constexpr (!std::is_same_v<as, T>)
        return slot_of<as>();
    constexpr unsigned int_slot = sizeof(T) <= 2 ? KT_SLOT_INT16 : sizeof(T) == 4 ? KT_SLOT_INT32 : KT_SLOT_INT64;
    constexpr unsigned uint_slot = sizeof(T) == 1 ? slot_of_uint8 : int_slot + 1;
    constexpr std::pair<bool, unsigned> rows[] = {
        {is_one_of<T, char>, KT_SLOT_CHAR},
        {is_one_of<T, char16_t>, KT_SLOT_UNIT},
        {is_one_of<T, char32_t>, slot_of_code_point},
        {is_one_of<T, wchar_t, char8>, no_slot},
        {std::is_integral_v<T> && sizeof(T) <= 8, std::is_signed_v<T> ? int_slot : uint_slot},
        {is_one_of<T, float, double>, KT_SLOT_DOUBLE},
        {is_one_of<T, long double>, KT_SLOT_LONG_DOUBLE},
        {is_one_of<T, char *, const char *, char8 *, const char8 *>, KT_SLOT_UTF8},
        {is_one_of<T, std::string_view, std::basic_string_view<char8>>, KT_SLOT_UTF8},
        {is_one_of<T, char16_t *, const char16_t *, std::u16string_view>, KT_SLOT_UCS2},
        {is_one_of<T, KTObject>, KT_SLOT_POINTER},
    };
    for (const auto &[is, slot] : rows)
        if (is)
            return slot;
    return no_slot;
}

/** Whether every value of a type can be passed for a slot. */
constexpr bool fits(unsigned slot, unsigned type) noexcept
{
    if (type > KT_SLOT_UINT64 || slot > KT_SLOT_UINT64)
        return slot == type || (type == slot_of_code_point && (slot == KT_SLOT_UNIT || slot == KT_SLOT_UCS2));
    if (type % 2 == 0 || slot % 2 != 0)
        return type <= slot;
    // A negative number goes over bit for bit, to an unsigned one of its size, or of 32 bits.
    return slot - 1 == (type < KT_SLOT_INT32 ? unsigned{KT_SLOT_INT32} : type);
}

/** The types that a value goes over as, by the names of the program's. */
template <class... As> struct types
{
    static constexpr std::size_t count = sizeof...(As);
};
template <class... First, class... Second>
constexpr types<First..., Second...> operator+(types<First...>, types<Second...>) noexcept
{
    return {};
}
template <class T, class As = T> constexpr auto types_of() noexcept
{
    using made = std::decay_t<made<As>>;
    if constexpr (is_pair<As>)
        return types_of<typename As::first_type>() + types_of<typename As::second_type>();
    else if constexpr (!std::is_same_v<made, As>)
        return types_of<T, made>();
    else
        return types<std::decay_t<const T>>();
}
template <class... Values> using types_of_all = decltype((types<>() + ... + types_of<Values>()));

/** Writes the arguments that values go over as, from `at` on, and makes a call while what they point into lives. */
template <class Call> KELTO_IN_PLACE decltype(auto) with_arguments(KTArgument *, const Call &call)
{
    return call();
}
template <class Call, class First, class... Others>
KELTO_IN_PLACE decltype(auto) with_arguments(KTArgument *at, const Call &call, const First &first,
                                             const Others &...others)
{
    if constexpr (is_pair<First>)
        return with_arguments(at, call, first.first, first.second, others...);
    else if constexpr (!std::is_same_v<std::decay_t<made<First>>, First>)
    {
        const made<First> &as = made_of(first);
        return with_arguments(at, call, as, others...);
    }
    else
    {
        constexpr bool isArgument = slot_of<First>() != no_slot;
        static_assert(
            isArgument,
            "kelto: a value of this type cannot be formatted; pass an integer, an enum, a bool, a char, a char16_t, "
            "a char32_t, a floating-point number, a UTF-8 or UTF-16 text, a path, a duration or a time of the system "
            "clock, or specialise kelto::argument_of for it");
        if constexpr (isArgument)
            *at = plain_argument::of(first);
        return with_arguments(at + 1, call, others...);
    }
}

/** How an argument is passed on: a small one by its value, a literal of any length as a pointer. */
template <class T>
using passed = std::conditional_t<std::is_array_v<T> || std::is_scalar_v<T>, std::decay_t<const T>, const T &>;

/** Writes an object as what argument_of makes of it, for the last rung and for errors; or else the name of its type. */
template <class T, bool Catches>
KELTO_SELDOM int write_object(const void *object, std::size_t *size, char *out) noexcept
{
    if constexpr (has<converted_of, T>)
        return guarded<Catches>(
            [&] {
                const auto made = argument_of<T>::convert(*static_cast<const T *>(object));
                KTArgument list[types_of_all<std::decay_t<decltype(made)>>::count];
                return with_arguments(
                    list, [&] { return KTArgumentText(list, size, out); }, made);
            },
            [] {}); // there is something to be said of the object all the same
    return KT_ERR_CONVERSION_FAILED;
}

} // namespace detail

} // namespace kelto

#endif
