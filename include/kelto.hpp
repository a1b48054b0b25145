/**
 * @file kelto.hpp
 * Kelto for C++17: one line, a std::string, and a translation that cannot hurt.
 *
 *     #include <kelto.hpp>
 *     #include <iostream>
 *
 *     int main()
 *     {
 *         kelto::library library;
 *         kelto::catalog store = kelto::catalog::find("store", "/usr/share/store/messages");
 *         std::cout << store.format(3, KELTO_DEFAULT("%s[1] has %d[2] pages"), "report.txt", 12) << '\n';
 *     }
 *
 * The header needs the C interface, kelto.h, and the standard library, nothing else. docs/cpp.md is its guide.
 *
 * **The ladder.** A message comes from the catalog of the user's first language. Where that lacks it, or where its text
 * is malformed, asks for other arguments than the call passes, fails while it is formatted or becomes too long, the
 * next language has its turn, then the text in the source, and at last "[store 3: report.txt, 12]". catalog::format()
 * thus always returns a text; on_problem is told what was passed over.
 *
 * **Errors.** What can fail has an overload that takes a std::error_code and throws nothing; with -fno-exceptions these
 * are the only ones. The others throw kelto::error, and what() is a line for a log: what was asked for, and of a format
 * the conversion and the argument that do not fit. Memory that runs out is a std::bad_alloc, as everywhere.
 *
 * **Threads.** Any number of threads may call the const members of one object at once. No lock of the layer is taken by
 * a call that formats a message that was formatted before.
 *
 * **Lifetime.** Every object holds a use of the library for as long as it needs one, and these uses begin and end under
 * one lock. The first of them sets the LC_CTYPE locale of the process, as KTInit() does. A program that calls KTInit()
 * and KTClean() itself as well does so while a kelto::library exists; one whose plug-ins use this header too, and are
 * opened with RTLD_LOCAL, has one meanwhile, since these may have a lock each.
 */
#ifndef KELTO_HPP
#define KELTO_HPP

#if __cplusplus < 201703L
#error "kelto.hpp needs C++17: compile with -std=c++17 or later"
#endif

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast" // C has no other
#include <kelto.h>
#pragma GCC diagnostic pop

#include <atomic>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#if defined(__cpp_exceptions)
#define KELTO_HAS_EXCEPTIONS true
#else
#define KELTO_HAS_EXCEPTIONS false
#endif

/** Kept out of the calls, so that each of them compiles to little code, and fast. */
#define KELTO_OUT_OF_LINE __attribute__((noinline))

/** What runs once per message or never; small rather than fast, which also saves its users time to compile. */
#define KELTO_SELDOM __attribute__((noinline, cold))

/** One in a process, whatever the visibility that the program is compiled with. */
#define KELTO_SHARED __attribute__((visibility("default")))

namespace kelto
{

/* ## 1. Errors, and the use of the library */

/**
 * A function of the program's, with its state: what std::function is, without the large header that it comes with.
 * Copies share the function; one that is empty is false, and must not be called.
 */
template <class Signature> class callback;
template <class Result, class... Arguments> class callback<Result(Arguments...)>
{
public:
    callback() = default;
    callback(std::nullptr_t) noexcept {}
    template <class Function, class = std::enable_if_t<!std::is_same_v<Function, callback>>> callback(Function function)
    {
        // A pointer or a std::function may be empty; a lambda, which may convert to a bool unasked, is not.
        if constexpr (std::is_pointer_v<Function> ||
                      (std::is_constructible_v<bool, Function &> && !std::is_convertible_v<Function &, bool>))
            if (!static_cast<bool>(function))
                return;
        function_ = std::make_shared<Function>(std::move(function));
        call_ = [](void *of, Arguments... arguments) -> Result {
            return (*static_cast<Function *>(of))(std::forward<Arguments>(arguments)...);
        };
    }
    explicit operator bool() const noexcept { return call_ != nullptr; }
    Result operator()(Arguments... arguments) const
    {
        return call_(function_.get(), std::forward<Arguments>(arguments)...);
    }

private:
    std::shared_ptr<void> function_;
    Result (*call_)(void *, Arguments...) = nullptr;
};

namespace detail
{

class KELTO_SHARED result_category final : public std::error_category
{
public:
    const char *name() const noexcept override { return "kelto"; }
    std::string message(int result) const override { return KTResultText(result); }
    std::error_condition default_error_condition(int result) const noexcept override
    {
        switch (result)
        {
        case KT_ERR_NO_MEMORY:
            return std::errc::not_enough_memory;
        case KT_ERR_FILE_UNAVAILABLE:
            return std::errc::no_such_file_or_directory;
        case KT_ERR_INVALID_PARAMETER:
            return std::errc::invalid_argument;
        default:
            return {result, *this};
        }
    }
};

} // namespace detail

/** The category of the library's results, which are its values: kelto::make_error(KT_ERR_BAD_MSG_FILE). */
KELTO_SHARED inline const std::error_category &error_category() noexcept
{
    static const detail::result_category category;
    return category;
}

/** The error code of a result of the C interface; no error for 0. */
inline std::error_code make_error(int result) noexcept
{
    return {result, error_category()};
}

/** What the overloads without a std::error_code throw; code() is in error_category(). */
class KELTO_SHARED error : public std::system_error
{
public:
    using std::system_error::system_error;
};

namespace detail
{

#if KELTO_HAS_EXCEPTIONS
/** An error that says all that there is to say, where the text of its code would only say less. */
class KELTO_SHARED told_error final : public error
{
public:
    told_error(const std::error_code &failure, const std::string &what) : error{failure}, what_(what) {}
    const char *what() const noexcept override { return what_.what(); }

private:
    std::runtime_error what_; // a text whose copies cannot fail
};

/** Throws where there is a failure; the sentence is put together only then. */
template <class What> void throw_if(const std::error_code &failure, const What &what)
{
    if (failure)
        throw told_error{failure, what()};
}
#endif

/** Under it begin and end all uses: the C interface forbids a KTInit() beside the KTClean() that ends the last one. */
KELTO_SHARED inline std::mutex lifecycle;

/** One use of the library, KTInit() to KTClean(), or none. */
class use
{
public:
    use() = default;
    explicit use(std::error_code &failure) noexcept
    {
        const std::lock_guard<std::mutex> lock(lifecycle);
        failure = make_error(KTInit());
        held_ = !failure;
    }
    use(use &&other) noexcept : held_(std::exchange(other.held_, false)) {}
    use &operator=(use &&other) noexcept
    {
        std::swap(held_, other.held_);
        return *this;
    }
    ~use()
    {
        if (!held_)
            return;
        const std::lock_guard<std::mutex> lock(lifecycle);
        KTClean();
    }

private:
    bool held_ = false;
};

} // namespace detail

/**
 * Starts the library, and ends this use of it with the object. The other objects hold uses of their own, so a program
 * needs this one only to keep the library started while it has none of them, or while it calls the C interface itself.
 */
class library
{
public:
    explicit library(std::error_code &failure) noexcept : use_(failure) {}
#if KELTO_HAS_EXCEPTIONS
    library()
    {
        std::error_code failure;
        use_ = detail::use(failure);
        detail::throw_if(failure, [&] { return "kelto::library: " + failure.message(); });
    }
#endif

private:
    detail::use use_;
};

/* ## 2. Arguments */

/* What can be formatted, and by which conversions, is in the table of docs/cpp.md. The date conversions write the years
 * 0 to 9999: a time outside of them, as time_point::max(), is written as their first or last second. */

/**
 * How a type of the program's own becomes an argument. Specialise it with a function that makes one of the types that
 * are arguments already:
 *
 *     template <> struct kelto::argument_of<version>
 *     {
 *         static std::string convert(const version &v) { return v.major + '.' + v.minor; } // for "%s"
 *     };
 *
 * or, for a conversion of the program's own (chapter 4), derive it from by_identity: the object itself is then handed
 * over, together with its type, which the conversion compares before it looks at it.
 *
 *     template <> struct kelto::argument_of<money> : kelto::by_identity<money> {};
 *
 * Where no text can be formatted, such an object is written by the first conversion that takes it alone, by a function
 * `convert` as above if there is one too, or as the name of its type.
 */
template <class T> struct argument_of
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
    time
};

template <class T, class = void> struct has_argument_of : std::true_type
{
};
template <class T> struct has_argument_of<T, std::void_t<decltype(argument_of<T>::is_missing)>> : std::false_type
{
};
template <class T, class = void> struct has_identity : std::false_type
{
};
template <class T> struct has_identity<T, std::void_t<typename argument_of<T>::identity>> : std::true_type
{
};
template <class T> struct is_system_time : std::false_type
{
};
template <class Duration>
struct is_system_time<std::chrono::time_point<std::chrono::system_clock, Duration>> : std::true_type
{
};

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
               : std::is_enum_v<T>              ? category::enumeration
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
        if constexpr (has_identity<bare>::value)
            return category::identity;
        else if constexpr (has_argument_of<bare>::value)
            return category::converted;
        else if constexpr (is_system_time<bare>::value)
            return category::time;
        else if constexpr (std::is_enum_v<bare>)
            return category::enumeration;
        else if constexpr (is_utf8_view<bare>)
            return category::utf8_view;
        else
            return std::is_convertible_v<const bare &, std::u16string_view> ? category::ucs2_view : category::none;
    }
    else
        return scalar_category<bare>();
}

inline KTArgument signed_argument(KTArgumentType type, std::int64_t value) noexcept
{
    KTArgument argument = {};
    argument.type = type;
    argument.value.i = value;
    return argument;
}

inline KTArgument unsigned_argument(KTArgumentType type, std::uint64_t value) noexcept
{
    KTArgument argument = {};
    argument.type = type;
    argument.value.u = value;
    return argument;
}

inline KTArgument pointer_argument(KTArgumentType type, const void *value, std::uint32_t length) noexcept
{
    KTArgument argument = {};
    argument.type = type;
    argument.length = length;
    argument.value.p = value;
    return argument;
}

constexpr std::uint32_t zero_terminated = UINT32_MAX;

/** A length as an argument carries it; what is beyond it would be cut by any limit of a program. */
constexpr std::uint32_t length_of(std::size_t length) noexcept
{
    return length < zero_terminated ? static_cast<std::uint32_t>(length) : zero_terminated - 1;
}

/** A view of a text as an argument; one without data is the empty text. */
template <class Character>
KTArgument view_argument(KTArgumentType type, std::basic_string_view<Character> text) noexcept
{
    return pointer_argument(type, text.data(), text.data() != nullptr ? length_of(text.size()) : 0);
}

/** A time as the date conversions take it: "2006-05-17'T08:09:10Z", which reaches from the year 0 to the year 9999. */
class time_stamp
{
public:
    template <class Duration> static time_stamp of(Duration sinceEpoch) noexcept
    {
        // A count of hours may be more than any count of seconds can be, so it is compared roughly first.
        const double roughly = std::chrono::duration<double>(sinceEpoch).count();
        return time_stamp(roughly < static_cast<double>(first) ? first
                          : roughly > static_cast<double>(last)
                              ? last
                              : std::chrono::floor<std::chrono::seconds>(sinceEpoch).count());
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

/** A character as one or two units. */
struct code_point_units
{
    explicit code_point_units(char32_t character) noexcept
    {
        constexpr char32_t replacement = 0xFFFD;
        if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000))
            character = replacement;
        if (character > 0xFFFF)
        {
            units[0] = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            units[1] = static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
            length = 2;
        }
        else
            units[0] = static_cast<char16_t>(character);
    }
    char16_t units[2] = {};
    std::uint32_t length = 1;
};

/** Writes an argument for a person to read, as UTF-8. */
void write_plainly(std::string &out, const KTArgument &argument);

template <class T> void write_object(std::string &out, const void *object);

/** What a type that goes over with its identity can do. */
struct object_type
{
    void (*write)(std::string &out, const void *object);
};

/** Its address is the identity of a type. Not constant, so that no two are folded into one. */
template <class T> inline object_type type_tag = {write_object<T>};

/** The kind of all objects that go over with their identity; their types tell them apart. */
constexpr std::uint32_t identity_kind = 0x6B2B2B01;

struct identified
{
    const object_type *type;
    const void *object;
};

template <class T> auto hold(const T &value);

/** What argument_of made of a value, and the argument that points into it. */
template <class T> struct converted
{
    explicit converted(const T &from) : value(argument_of<T>::convert(from)), inner(hold(value)) {}
    converted(const converted &) = delete;
    converted &operator=(const converted &) = delete;
    decltype(argument_of<T>::convert(std::declval<const T &>())) value;
    decltype(hold(value)) inner;
};

template <class T> constexpr bool is_argument = category_of<T>() != category::none;

/** An argument, or what holds the memory that one points into; it is given to argument_from() while `value` lives. */
template <class T> auto hold(const T &value)
{
    constexpr category kind = category_of<T>();
    static_assert(
        kind != category::none,
        "kelto: a value of this type cannot be formatted; pass an integer, an enum, a bool, a char, a char16_t, "
        "a char32_t, a floating-point number, a UTF-8 or UTF-16 text or a time of the system clock, or "
        "specialise kelto::argument_of for it");
    if constexpr (kind == category::converted)
        return converted<T>(value);
    else if constexpr (kind == category::identity)
        return identified{&type_tag<T>, &value};
    else if constexpr (kind == category::enumeration)
        return hold(static_cast<std::underlying_type_t<T>>(value));
    else if constexpr (kind == category::integer && std::is_signed_v<T>)
        return signed_argument(sizeof(T) > 4 ? KT_ARGUMENT_INT64 : KT_ARGUMENT_INT, value);
    else if constexpr (std::is_same_v<T, bool>)
        return signed_argument(KT_ARGUMENT_INT, value);
    else if constexpr (kind == category::integer)
        return unsigned_argument(sizeof(T) > 4 ? KT_ARGUMENT_UINT64 : KT_ARGUMENT_UINT, value);
    else if constexpr (kind == category::character)
        return unsigned_argument(KT_ARGUMENT_CHAR, static_cast<unsigned char>(value));
    else if constexpr (kind == category::unit)
        return unsigned_argument(KT_ARGUMENT_UNIT, value);
    else if constexpr (kind == category::code_point)
        return code_point_units(value);
    else if constexpr (kind == category::real)
    {
        KTArgument argument = {};
        argument.type = KT_ARGUMENT_DOUBLE;
        argument.value.d = value;
        return argument;
    }
    else if constexpr (kind == category::long_real)
        return pointer_argument(KT_ARGUMENT_LONG_DOUBLE, &value, 0);
    else if constexpr (kind == category::utf8_pointer)
        return pointer_argument(KT_ARGUMENT_UTF8, value, zero_terminated);
    else if constexpr (kind == category::ucs2_pointer)
        return pointer_argument(KT_ARGUMENT_UCS2, value, zero_terminated);
    else if constexpr (kind == category::utf8_view)
    {
        if constexpr (std::is_convertible_v<const T &, std::string_view>)
            return view_argument<char>(KT_ARGUMENT_UTF8, value);
#if defined(__cpp_char8_t)
        else
            return view_argument<char8_t>(KT_ARGUMENT_UTF8, value);
#endif
    }
    else if constexpr (kind == category::ucs2_view)
        return view_argument<char16_t>(KT_ARGUMENT_UCS2, value);
    else if constexpr (kind == category::time)
        return time_stamp::of(value.time_since_epoch());
    else
        return KTArgument{};
}

inline KTArgument argument_from(const KTArgument &argument) noexcept
{
    return argument;
}
inline KTArgument argument_from(const time_stamp &stamp) noexcept
{
    return pointer_argument(KT_ARGUMENT_UTF8, stamp.text(), zero_terminated);
}
inline KTArgument argument_from(const code_point_units &character) noexcept
{
    return pointer_argument(KT_ARGUMENT_UCS2, character.units, character.length);
}
inline KTArgument argument_from(const identified &object) noexcept
{
    return pointer_argument(KT_ARGUMENT_POINTER, &object, identity_kind);
}
template <class T> KTArgument argument_from(const converted<T> &value) noexcept
{
    return argument_from(value.inner);
}

/** The name of a type, as the compiler spells it behind "T = ". */
template <class T> constexpr std::string_view name_of_type() noexcept
{
    constexpr std::string_view function = __PRETTY_FUNCTION__;
    constexpr std::size_t begin = function.find("T = ") + 4;
    return function.substr(begin, function.find_last_of(";]", function.find(';')) - begin);
}

template <class T, class = void> struct has_convert : std::false_type
{
};
template <class T>
struct has_convert<T, std::void_t<decltype(argument_of<T>::convert(std::declval<const T &>()))>> : std::true_type
{
};

/** Writes an object as what argument_of makes of it, or else the name of its type. */
template <class T> KELTO_SELDOM void write_object(std::string &out, const void *object)
{
    if constexpr (has_convert<T>::value)
    {
        const auto value = argument_of<T>::convert(*static_cast<const T *>(object));
        const auto held = hold(value);
        write_plainly(out, argument_from(held));
    }
    else
        out.append(1, '(').append(name_of_type<T>()).append(1, ')');
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
        return shape_of<decltype(argument_of<bare>::convert(std::declval<const bare &>()))>();
    else if constexpr (kind == category::enumeration)
        return shape_of<std::underlying_type_t<bare>>();
    else if constexpr (kind == category::integer)
        return {kind, sizeof(bare), std::is_signed_v<bare>};
    else
        return {kind, 0, false};
}

/** Whether every value of a type can be passed for a slot. */
constexpr bool fits(unsigned slot, shape type) noexcept
{
    const bool isInteger = type.kind == category::integer;
    switch (slot)
    {
    case KT_SLOT_INT16:
        return isInteger && type.bytes <= (type.is_signed ? 2U : 1U);
    case KT_SLOT_UINT16:
        return isInteger && !type.is_signed && type.bytes <= 2;
    case KT_SLOT_INT32:
        return isInteger && type.bytes <= (type.is_signed ? 4U : 2U);
    case KT_SLOT_UINT32: // a negative number goes over bit for bit
        return isInteger && type.bytes <= 4;
    case KT_SLOT_INT64:
        return isInteger && type.bytes <= (type.is_signed ? 8U : 4U);
    case KT_SLOT_UINT64:
        return isInteger && (!type.is_signed || type.bytes == 8);
    case KT_SLOT_CHAR:
        return type.kind == category::character;
    case KT_SLOT_UNIT:
        return type.kind == category::unit || type.kind == category::code_point;
    case KT_SLOT_DOUBLE:
        return type.kind == category::real;
    case KT_SLOT_LONG_DOUBLE:
        return type.kind == category::long_real;
    case KT_SLOT_UTF8:
        return type.kind == category::utf8_pointer || type.kind == category::utf8_view || type.kind == category::time;
    case KT_SLOT_UCS2:
        return type.kind == category::ucs2_pointer || type.kind == category::ucs2_view ||
               type.kind == category::code_point;
    default:
        return type.kind == category::identity;
    }
}

} // namespace detail

/* ## 3. Texts in the source, checked while they are compiled */

namespace detail
{

/** The bytes of the UTF-8 sequence that begins a text that is not empty, and whether it is well-formed. */
struct sequence
{
    std::size_t bytes;
    bool is_valid;
};

constexpr bool is_trail(unsigned char byte) noexcept
{
    return (byte & 0xC0) == 0x80;
}

/** A malformed one ends where no well-formed sequence could go on. */
constexpr sequence sequence_at(std::string_view text, std::size_t at) noexcept
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(i < text.size() ? text[i] : '\0'); };
    const unsigned char lead = byte(at);
    const unsigned char second = byte(at + 1);
    if (lead < 0x80)
        return {1, true};
    if (lead < 0xC2 || lead > 0xF4 || !is_trail(second) || (lead == 0xE0 && second < 0xA0) ||
        (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
        return {1, false};
    if (lead < 0xE0)
        return {2, true};
    if (!is_trail(byte(at + 2)))
        return {2, false};
    if (lead < 0xF0)
        return {3, true};
    return is_trail(byte(at + 3)) ? sequence{4, true} : sequence{3, false};
}

/** The units that a text has as UCS-2. */
constexpr std::size_t units_of(std::string_view text) noexcept
{
    std::size_t units = 0;
    for (std::size_t at = 0; at < text.size();)
    {
        const sequence next = sequence_at(text, at);
        units += next.is_valid && next.bytes == 4 ? 2 : 1;
        at += next.bytes;
    }
    return units;
}

struct slot
{
    unsigned code; // KTSlotCode
    unsigned position;
};

/** A conversion of the built-in table and what it takes: the code for 16, 32 and 64 bits, or with 'l' or 'L' as the
 * last. */
struct built_in
{
    std::string_view name;
    unsigned with_h, plain, with_bang, with_l, with_capital_l;
};

constexpr built_in same(std::string_view name, unsigned code) noexcept
{
    return {name, code, code, code, code, code};
}

constexpr built_in unsigned_integer(std::string_view name) noexcept
{
    return {name, KT_SLOT_UINT16, KT_SLOT_UINT32, KT_SLOT_UINT64, KT_SLOT_UINT32, KT_SLOT_UINT32};
}

constexpr built_in built_ins[] = {
    {"d", KT_SLOT_INT16, KT_SLOT_INT32, KT_SLOT_INT64, KT_SLOT_INT32, KT_SLOT_INT32},
    unsigned_integer("u"),
    unsigned_integer("o"),
    unsigned_integer("x"),
    unsigned_integer("X"),
    unsigned_integer("EID"),
    {"f", KT_SLOT_DOUBLE, KT_SLOT_DOUBLE, KT_SLOT_DOUBLE, KT_SLOT_DOUBLE, KT_SLOT_LONG_DOUBLE},
    {"c", KT_SLOT_CHAR, KT_SLOT_CHAR, KT_SLOT_CHAR, KT_SLOT_UNIT, KT_SLOT_CHAR},
    same("s", KT_SLOT_UTF8),
    same("U", KT_SLOT_UCS2),
    same("D", KT_SLOT_UTF8),
    same("T", KT_SLOT_UTF8),
    same("DT", KT_SLOT_UTF8),
    same("DND", KT_SLOT_UCS2),
    same("DNS", KT_SLOT_UCS2),
    same("E", KT_SLOT_UTF8),
    same("IP", KT_SLOT_UTF8),
    {"l", KT_SLOT_INT16, KT_SLOT_INT64, KT_SLOT_INT64, KT_SLOT_INT64, KT_SLOT_INT64}, // the empty name behind 'l'
    {"ul", KT_SLOT_UINT16, KT_SLOT_UINT64, KT_SLOT_UINT64, KT_SLOT_UINT64, KT_SLOT_UINT64},
    same("N", 0), // the markers take nothing
    same("O", 0),
};

/** One conversion specification of a text, or why there is none. */
struct specification
{
    int rule = KT_RULE_NONE;
    unsigned position = 0;
    unsigned code = 0; // of the value's slot; 0 for a marker
    bool width_from_arguments = false, precision_from_arguments = false;
    std::size_t begin = 0, end = 0;
};

/** Reads specifications as the library does; every text is safe to read, up to its first zero. */
class specification_reader
{
public:
    constexpr explicit specification_reader(std::string_view text) noexcept : text_(text.substr(0, text.find('\0'))) {}

    /** Goes on to the next specification; false where there is none. */
    constexpr bool next() noexcept
    {
        for (; at_ < text_.size(); ++at_)
        {
            if (text_[at_] != '%')
                continue;
            if (peek(1) != '%')
                return true;
            ++at_;
        }
        return false;
    }

    /** Reads the specification that next() found. */
    constexpr specification read() noexcept
    {
        specification spec;
        spec.begin = at_++;
        spec.rule = read_parts(spec);
        spec.end = at_;
        if (spec.rule != KT_RULE_NONE && spec.rule != KT_RULE_NUMBER_TOO_LARGE && !has_bracket(spec.begin))
            spec.rule = KT_RULE_POSITION_MISSING;
        return spec;
    }

    constexpr std::string_view text() const noexcept { return text_; }

private:
    static constexpr std::uint64_t too_large = std::uint64_t(INT_MAX) + 1;

    constexpr char peek(std::size_t ahead = 0) const noexcept
    {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }

    constexpr bool take(char c) noexcept
    {
        if (peek() != c || c == '\0')
            return false;
        ++at_;
        return true;
    }

    /** Whether a refused specification has a '[' before the place where its author will have meant it to end. */
    constexpr bool has_bracket(std::size_t percent) const noexcept
    {
        std::size_t at = percent + 1;
        while (at < text_.size() && std::string_view("-+ #0").find(text_[at]) != std::string_view::npos)
            ++at;
        while (at < text_.size() && std::string_view("% \t\r\n[]").find(text_[at]) == std::string_view::npos)
            ++at;
        return at < text_.size() && text_[at] == '[';
    }

    constexpr bool is_digit() const noexcept { return peek() >= '0' && peek() <= '9'; }

    constexpr std::uint64_t number() noexcept
    {
        std::uint64_t value = 0;
        for (; is_digit(); ++at_)
            if (value < too_large)
                value = value * 10 + static_cast<unsigned>(peek() - '0');
        return value;
    }

    /** Takes '*', a number, or nothing; false for a number that no int holds. */
    constexpr bool option(bool &fromArguments) noexcept
    {
        fromArguments = take('*');
        return fromArguments || number() < too_large;
    }

    constexpr int read_parts(specification &spec) noexcept
    {
        while (peek() == '-' || peek() == '+' || peek() == ' ' || peek() == '#' || peek() == '0')
            ++at_;
        if (!option(spec.width_from_arguments) || (take('.') && !option(spec.precision_from_arguments)))
            return KT_RULE_NUMBER_TOO_LARGE;
        const char modifier = take('h') ? 'h' : take('l') ? 'l' : take('L') ? 'L' : take('!') ? '!' : '\0';
        const std::size_t name = at_;
        while (peek() != '\0' && peek() != '[' && static_cast<unsigned char>(peek()) < 0x80 && at_ - name < 19)
            ++at_;
        const std::size_t length = at_ - name;
        if (peek() != '[')
            return peek() == '\0'                               ? KT_RULE_POSITION_MISSING
                   : static_cast<unsigned char>(peek()) >= 0x80 ? KT_RULE_NAME_NOT_ASCII
                                                                : KT_RULE_NAME_TOO_LONG;
        ++at_;
        const std::uint64_t position = number();
        if (position >= too_large)
            return KT_RULE_NUMBER_TOO_LARGE;
        if (position == 0 || !take(']'))
            return KT_RULE_POSITION_MALFORMED;
        spec.position = static_cast<unsigned>(position);
        return find(text_.substr(name, length), modifier, spec.code) ? KT_RULE_NONE : KT_RULE_UNKNOWN_CONVERSION;
    }

    static constexpr bool find(std::string_view name, char modifier, unsigned &code) noexcept
    {
        if (name == "l") // behind another modifier it is no name
            return false;
        if (name.empty() && modifier == 'l')
            name = "l";
        for (const built_in &row : built_ins)
            if (row.name == name)
            {
                code = modifier == 'h'   ? row.with_h
                       : modifier == 'l' ? row.with_l
                       : modifier == 'L' ? row.with_capital_l
                       : modifier == '!' ? row.with_bang
                                         : row.plain;
                return true;
            }
        return false;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

/** A text's slots in the order of the arguments, or the first rule that it breaks. */
template <std::size_t Capacity> struct parsed_text
{
    int rule = KT_RULE_NONE;
    specification broken = {}; // the specification that breaks it
    std::size_t slot_count = 0;
    slot slot_at[3 * Capacity + 1] = {};
};

constexpr std::size_t percent_signs(std::string_view text) noexcept
{
    std::size_t count = 0;
    for (const char c : text)
        count += c == '%' ? 1 : 0;
    return count;
}

/** Parses a text of at most `Capacity` percent signs with the conversions of the built-in table. */
template <std::size_t Capacity> constexpr parsed_text<Capacity> parse_text(std::string_view text) noexcept
{
    parsed_text<Capacity> parsed;
    specification specs[Capacity + 1] = {};
    std::size_t count = 0;
    specification_reader reader(text);
    while (reader.next())
    {
        specification spec = reader.read();
        if (spec.rule == KT_RULE_NONE && spec.position > 1000 && spec.position > units_of(reader.text()))
            spec.rule = KT_RULE_NUMBER_TOO_LARGE;
        if (spec.rule != KT_RULE_NONE)
        {
            parsed.rule = spec.rule;
            parsed.broken = spec;
            return parsed;
        }
        specs[count++] = spec;
    }
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (specs[i].position == specs[j].position)
            {
                parsed.rule = KT_RULE_POSITION_REPEATED;
                parsed.broken = specs[i];
                return parsed;
            }
    for (unsigned position = 1; position <= count; ++position)
    {
        std::size_t i = 0;
        while (i < count && specs[i].position != position)
            ++i;
        if (i == count)
        {
            parsed.rule = KT_RULE_POSITION_GAP;
            for (std::size_t j = count; j > 0; --j)
                if (specs[j - 1].position > count)
                    parsed.broken = specs[j - 1];
            parsed.slot_count = 0;
            return parsed;
        }
        if (specs[i].width_from_arguments && specs[i].code != 0)
            parsed.slot_at[parsed.slot_count++] = {KT_SLOT_INT32, position};
        if (specs[i].precision_from_arguments && specs[i].code != 0)
            parsed.slot_at[parsed.slot_count++] = {KT_SLOT_INT32, position};
        if (specs[i].code != 0)
            parsed.slot_at[parsed.slot_count++] = {specs[i].code, position};
    }
    return parsed;
}

/** Fails to compile where an argument does not fit; what the compiler prints names position, slot and type. */
template <unsigned Position, KTSlotCode Slot, class Argument> struct argument_at_position
{
    static_assert(fits(Slot, shape_of<Argument>()),
                  "kelto: the conversion at this position takes another type than the argument that is passed for it; "
                  "\"%!d\" and \"%!u\" take 64 bits, \"%hd\" and \"%hu\" 16");
    static constexpr bool is_right = true;
};

template <class Text> struct parsed_default
{
    static constexpr std::string_view text = Text::get();
    static constexpr auto value = parse_text<percent_signs(Text::get())>(Text::get());
    static constexpr int rule = value.rule;
    static_assert(rule != KT_RULE_POSITION_MISSING,
                  "kelto: a conversion of this text lacks its position, as in \"%s[1]\"; a percent sign is \"%%\"");
    static_assert(rule != KT_RULE_POSITION_MALFORMED,
                  "kelto: a position of this text is malformed; it is a number from 1 on in brackets, as in \"%s[1]\"");
    static_assert(rule != KT_RULE_NUMBER_TOO_LARGE, "kelto: a width, precision or position of this text is too large");
    static_assert(rule != KT_RULE_NAME_TOO_LONG && rule != KT_RULE_NAME_NOT_ASCII && rule != KT_RULE_UNKNOWN_CONVERSION,
                  "kelto: this text has a conversion that the built-in table does not know; for one of your own pass "
                  "kelto::unchecked(\"...\") in place of KELTO_DEFAULT");
    static_assert(rule != KT_RULE_POSITION_REPEATED, "kelto: a position is used twice in this text");
    static_assert(rule != KT_RULE_POSITION_GAP,
                  "kelto: the positions of this text are not 1, 2, 3 and so on; one is left out");
};

template <class Text, class... Arguments, std::size_t... Index>
constexpr bool arguments_fit(std::index_sequence<Index...>) noexcept
{
    using parsed = parsed_default<Text>;
    return (argument_at_position<parsed::value.slot_at[Index].position,
                                 static_cast<KTSlotCode>(parsed::value.slot_at[Index].code), Arguments>::is_right &&
            ... && true);
}

/** Compares a text with the types of a call's arguments; all faults stop the compilation. */
template <class Text, class... Arguments> constexpr bool check_default() noexcept
{
    using parsed = parsed_default<Text>;
    constexpr bool isFormat = parsed::rule == KT_RULE_NONE;
    constexpr bool isComplete = !isFormat || parsed::value.slot_count <= sizeof...(Arguments);
    constexpr bool isExhausted = !isFormat || parsed::value.slot_count >= sizeof...(Arguments);
    static_assert(isComplete, "kelto: this text takes more arguments than the call passes");
    static_assert(isExhausted, "kelto: the call passes more arguments than this text takes");
    if constexpr (isFormat && isComplete && isExhausted)
        return arguments_fit<Text, Arguments...>(std::index_sequence_for<Arguments...>());
    else
        return false;
}

} // namespace detail

/** The text of a message in the source; made by KELTO_DEFAULT. */
template <class Text> struct default_text
{
};

/** A text of the source that is compared with its arguments when it is used; see unchecked(). */
struct unchecked_text
{
    std::string_view text;
};

/**
 * The text of a message in the source, for messages with conversions of the program's own, which are not known while it
 * is compiled. A text that does not fit is passed over like a translation.
 */
constexpr unchecked_text unchecked(std::string_view text) noexcept
{
    return {text};
}

namespace detail
{

/** The text of a literal, for KELTO_DEFAULT, which makes what it expands to depend on a type: on this one. */
struct spelt_text
{
    /** Whether a text is one, by how it is spelt. */
    static constexpr bool is_literal(const char *text) noexcept
    {
#if !defined(__cpp_char8_t)
        if (text[0] == 'u' && text[1] == '8') // still of chars
            text += 2;
#endif
        return text[0] == '"' || (text[0] == 'R' && text[1] == '"');
    }

    static constexpr bool is_variable = false;
    constexpr std::string_view operator()(spelt_text) const noexcept
    {
        return text;
    }
    std::string_view text;
};
constexpr spelt_text operator""_kelto_text(const char *text, std::size_t size) noexcept
{
    return {{text, size}};
}

/** The text in the source of a call with these arguments; the way to it from default_text compares the two. */
template <class... Arguments> struct source_text
{
    template <class Text>
    __attribute__((always_inline)) constexpr source_text(default_text<Text>) noexcept : text{parsed_default<Text>::text}
    {
        static_assert(check_default<Text, Arguments...>(), "kelto: see the lines above");
    }
    constexpr source_text(unchecked_text source) noexcept : text(source) {}

    unchecked_text text;
};

template <class T> struct as_it_is // and not deduced
{
    using type = T;
};

template <class T> struct is_source_text : std::is_same<T, unchecked_text>
{
};
template <class Text> struct is_source_text<default_text<Text>> : std::true_type
{
};

template <class... Arguments> constexpr bool begin_with_source = false;
template <class First, class... Others>
constexpr bool begin_with_source<First, Others...> = is_source_text<First>::value;

template <class... Arguments> using if_no_source = std::enable_if_t<!begin_with_source<Arguments...>, int>;

} // namespace detail

/** What KELTO_DEFAULT and unchecked() give, for a call with these arguments. */
template <class... Arguments>
using source_text_for = typename detail::as_it_is<detail::source_text<Arguments...>>::type;

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
    ([](auto kelto_tag) {                                                                                              \
        using kelto_spelt = decltype(kelto_tag);                                                                       \
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

/* ## 4. Conversions and encoders of the program's own */

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

/** What a function of the program threw behind the C interface, on its way to the call that runs on this thread. */
inline thread_local std::exception_ptr thrown;

/**
 * Calls a function of the program; what it throws is kept. In a program of sources with and without exceptions, the
 * linker takes an inline function from any of them: by its parameter this one stays that of the source that throws.
 */
template <bool Catches, class Function> int guarded(Function function)
{
#if KELTO_HAS_EXCEPTIONS
    static_assert(Catches);
    try
    {
        return function();
    }
    catch (...)
    {
        if (thrown == nullptr)
            thrown = std::current_exception();
        return KT_ERR_CONVERSION_FAILED;
    }
#else
    return function();
#endif
}

inline std::u16string to_ucs2(std::u16string_view text)
{
    return std::u16string(text);
}

KELTO_SELDOM inline std::u16string to_ucs2(std::string_view text)
{
    const std::string terminated(text.substr(0, text.find('\0')));
    std::u16string units(terminated.size(), u'\0');
    std::size_t size = units.size() + 1;
    units.resize(KTUTF8ToUCS2(terminated.c_str(), &size, units.data()) == 0 ? size : 0);
    return units;
}

KELTO_SELDOM inline std::string to_utf8(std::u16string_view text)
{
    const std::u16string terminated(text.substr(0, text.find(u'\0')));
    std::string bytes(3 * terminated.size(), '\0');
    std::size_t size = bytes.size() + 1;
    bytes.resize(KTUCS2ToUTF8(terminated.c_str(), &size, bytes.data()) == 0 ? size : 0);
    return bytes;
}

/** Writes a text under the size protocol of conversions and encoders. */
inline int write_units(std::u16string_view text, unsigned long *size, UCS2 *out) noexcept
{
    const unsigned long room = std::exchange(*size, text.size());
    if (text.size() >= room)
        return KT_ERR_BUFFER_TOO_SMALL;
    text.copy(out, text.size());
    return 0;
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
    std::vector<int> types; // ended by 0
    callback<int(const conversion_spec &, void **given, std::u16string &text)> render;
};

struct call_options;
void write_with_table(std::string &out, const call_options &options, const KTArgument &argument);

/** A form table with all that its records point to. */
struct table_state
{
    use held;
    formTable table = {};
    std::vector<KTFormatter> records;
    std::vector<std::unique_ptr<conversion>> conversions;
    callback<int(std::u16string_view text, std::u16string &encoded)> encode;
    // write_with_table(), which so is compiled only where tables are built
    void (*write)(std::string &out, const call_options &options, const KTArgument &argument) = nullptr;
};

/** The table of the running call on this thread: an encoder is told nothing of its own. */
inline thread_local const table_state *running_table = nullptr;

/** A call with a table, on this thread. Calls may lie in each other, where a conversion formats something itself. */
class running
{
public:
    explicit running(const table_state *table) noexcept
        : before_(std::exchange(running_table, table)), thrownBefore_(std::exchange(thrown, nullptr))
    {
    }
    ~running() { end(); }
    running(const running &) = delete;
    running &operator=(const running &) = delete;

    /** Throws again what a function of the program threw during the call. */
    void rethrow() const
    {
        if (thrown == nullptr)
            return;
        const std::exception_ptr own = thrown;
        end(); // here, since frames without exceptions call no destructors
        std::rethrow_exception(own);
    }

private:
    void end() const noexcept
    {
        running_table = before_;
        thrown = thrownBefore_;
    }

    const table_state *before_;
    std::exception_ptr thrownBefore_;
};

/** The encoder of all tables of this layer; only the calls of this layer can use it. */
KELTO_SHARED inline int encode(const void *value, int dataType, unsigned long *size, UCS2 *out)
{
    const table_state *const table = running_table;
    const unsigned long room = std::exchange(*size, 0);
    if (table == nullptr || !table->encode)
        return KT_ERR_INVALID_PARAMETER;
    return guarded<KELTO_HAS_EXCEPTIONS>([&] {
        const UCS2 character[2] = {dataType == KT_ENCODE_CHARACTER
                                       ? static_cast<UCS2>(*static_cast<const unsigned char *>(value))
                                       : *static_cast<const UCS2 *>(value)};
        std::u16string text = dataType == KT_ENCODE_UCS2 ? static_cast<const UCS2 *>(value) : character;
        const bool isHalf = dataType == KT_ENCODE_UNIT && *character >= 0xD800 && *character < 0xE000;
        std::u16string encoded;
        const int result = isHalf ? 0 : table->encode(text, encoded);
        if (!isHalf) // what is half of a character has nothing to encode
            text = std::move(encoded);
        text.copy(out, room < text.size() ? room : text.size());
        *size = text.size();
        return result;
    });
}

/** The function in all records of this layer. */
KELTO_SHARED inline int convert(const char *name, int width, int precision, int flags, KTEncoder encoder,
                                void *passThrough, void **given, unsigned long *size, UCS2 *out)
{
    const conversion &own = *reinterpret_cast<const named *>(name)->owner;
    const unsigned long room = std::exchange(*size, 0);
    return guarded<KELTO_HAS_EXCEPTIONS>([&] {
        std::u16string text;
        const int result = own.render({own.id.name, width, precision, flags, passThrough}, given, text);
        if (result != 0)
            return result;
        text.resize(std::char_traits<char16_t>::length(text.c_str()));
        *size = room;
        if ((flags & FLAG_ENCODE) == 0 || encoder == nullptr)
            return write_units(text, size, out);
        const int encoded = encoder(text.c_str(), KT_ENCODE_UCS2, size, out);
        return encoded == 0 && *size >= room ? KT_ERR_BUFFER_TOO_SMALL : encoded;
    });
}

/** Cuts and pads a text as "%s" does. */
inline void lay_out(const conversion_spec &spec, std::u16string &text)
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
            return object != nullptr && object->type == &type_tag<Value> ? static_cast<const Value *>(object->object)
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
    friend class prepared_format;
    friend class catalog;
    explicit form_table(std::shared_ptr<detail::table_state> state) noexcept : state_(std::move(state)) {}
    std::shared_ptr<detail::table_state> state_;
};

/**
 * Builds a form table:
 *
 *     kelto::form_table table = kelto::form_table::builder()
 *                                   .add<money>("money", [](const money &m) { return m.text(); }) // "%money[1]"
 *                                   .with_encoder(html_escape)
 *                                   .build();
 */
class form_table::builder
{
public:
    builder() = default;

    /**
     * Adds a conversion.
     * @param name      its name in format strings: up to 19 ASCII characters, a letter first but not 'h', 'l' or 'L',
     * no
     *                  '[', and neither "N" nor "O". A name of the built-in table is replaced.
     * @param function  takes the values, and if it wants a conversion_spec behind them; gives UTF-8 or UTF-16 text.
     * Without a conversion_spec its text is cut and padded as that of "%s". It is called twice where the first buffer
     * was too small, in any thread; what it throws is thrown again by the call that formats. It may hold state.
     * @tparam Values   what it takes: integers (of the size that a format names; a value that its type does not hold is
     *                  refused), a double, a char16_t, a std::string_view, a std::u16string_view, or types of the
     * program's own with their identity, see argument_of.
     */
    template <class... Values, class Function, bool Catches = KELTO_HAS_EXCEPTIONS>
    builder &add(std::string_view name, Function function)
    {
        if (!is_name(name))
        {
            problem_ += ": no conversion can have the name \"" + std::string(name) + '"';
            return *this;
        }
        auto own = std::make_unique<detail::conversion>();
        own->id.name[name.copy(own->id.name, name.size())] = '\0';
        own->id.owner = own.get();
        own->types = {detail::own_value<Values>::type..., KT_ARG_END};
        own->render = detail::renderer<Catches, Function, Values...>{std::move(function)};
        state_->conversions.push_back(std::move(own));
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
            state_->encode = [function = std::move(function)](std::u16string_view text, std::u16string &out) mutable {
                return detail::guarded<Catches>([&] {
                    if constexpr (isUtf8)
                        out = detail::to_ucs2(function(std::string_view(detail::to_utf8(text))));
                    else
                        out = detail::to_ucs2(function(text));
                    return 0;
                });
            };
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

    /** The table; null inside, and failure set, where a name is impossible or the chained table is refused. */
    form_table build(std::error_code &failure)
    {
        std::string problem;
        return build(failure, problem);
    }

#if KELTO_HAS_EXCEPTIONS
    form_table build()
    {
        std::error_code failure;
        std::string problem;
        form_table table = build(failure, problem);
        detail::throw_if(failure,
                         [&] { return "kelto::form_table" + (problem.empty() ? ": " + failure.message() : problem); });
        return table;
    }
#endif

private:
    form_table build(std::error_code &failure, std::string &problem)
    {
        std::shared_ptr<detail::table_state> state = std::exchange(state_, std::make_shared<detail::table_state>());
        state->held = detail::use(failure);
        formTable *builtIn = nullptr;
        if (!failure)
            failure = make_error(KTGetBuiltInFormTable(0, &builtIn));
        formTable *const next = next_ != nullptr ? next_ : builtIn;
        if (!failure)
        {
            if (const char *const unsafe = conversion_with_pointer(next))
                problem_ += std::string(": the conversion \"") + unsafe +
                            "\" of the table behind it takes a pointer of no type";
            failure = make_error(problem_.empty() ? 0 : KT_ERR_INVALID_PARAMETER);
        }
        problem = std::exchange(problem_, {});
        if (failure)
            return form_table(nullptr);
        for (const auto &own : state->conversions)
            state->records.push_back(
                {own->id.name, nullptr, static_cast<int>(own->types.size()) - 1, own->types.data(), detail::convert});
        state->records.push_back({});
        state->table.formList = state->records.data();
        state->table.encoder = state->encode ? detail::encode : nullptr;
        state->table.nextTable = next;
        state->write = detail::write_with_table;
        return form_table(std::move(state));
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

    std::shared_ptr<detail::table_state> state_ = std::make_shared<detail::table_state>();
    formTable *next_ = nullptr;
    std::string problem_; // of the names
};

/* ## 5. Formats */

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
};

namespace detail
{

constexpr std::size_t few_bytes = 1024;

/** A text on its way to the caller: up to few_bytes of it without the heap. */
class text_buffer
{
public:
    text_buffer() noexcept {} // the bytes stay as they are
    text_buffer(const text_buffer &) = delete;
    text_buffer &operator=(const text_buffer &) = delete;

    char *few() noexcept { return few_; }
    void set_few(std::size_t size) noexcept
    {
        size_ = size;
        isFew_ = true;
    }
    std::string &many() noexcept
    {
        isFew_ = false;
        return many_;
    }

    std::string_view view() const noexcept { return isFew_ ? std::string_view(few_, size_) : many_; }
    std::string take() { return isFew_ ? std::string(few_, size_) : std::move(many_); }

private:
    char few_[few_bytes + 1];
    bool isFew_ = true;
    std::size_t size_ = 0;
    std::string many_;
};

/** The arguments of a call, and room to fit them to a format where a type can go over as one thing or another. */
struct argument_view
{
    const KTArgument *arguments;
    KTArgument *adapted; // null where no type needs it
    std::size_t count;
};

template <class T> constexpr bool is_adaptable = shape_of<T>().kind == category::code_point;

template <class... Arguments> struct argument_list
{
    KTArgument arguments[sizeof...(Arguments) + 1];
    KTArgument adapted[(is_adaptable<Arguments> || ...) ? sizeof...(Arguments) : 1];

    argument_view view() noexcept
    {
        return {arguments, (is_adaptable<Arguments> || ...) ? adapted : nullptr, sizeof...(Arguments)};
    }
};

/** The options of a format call, with the table as what keeps it alive. */
struct call_options
{
    explicit call_options(const format_options &options, std::shared_ptr<table_state> shared)
        : table(std::move(shared)), flags(options.tag ? static_cast<unsigned>(KT_TAG) : 0U),
          pass_through(options.pass_through), max_size(options.max_size)
    {
    }
    formTable *c_table() const noexcept { return table != nullptr ? &table->table : nullptr; }

    std::shared_ptr<table_state> table;
    unsigned flags;
    void *pass_through;
    std::size_t max_size;
};

/** The bytes that a text with these arguments may have. */
inline std::size_t limit_of(const call_options &options, const argument_view &view) noexcept
{
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < view.count; ++i)
    {
        const KTArgument &argument = view.arguments[i];
        const bool isOpen = argument.length == zero_terminated;
        if (argument.value.p == nullptr)
            continue;
        if (argument.type == KT_ARGUMENT_UTF8)
            bytes += isOpen ? std::strlen(static_cast<const char *>(argument.value.p)) : argument.length;
        else if (argument.type == KT_ARGUMENT_UCS2)
            bytes += 3 * (isOpen ? std::char_traits<char16_t>::length(static_cast<const char16_t *>(argument.value.p))
                                 : std::size_t(argument.length));
    }
    constexpr std::size_t most = (std::numeric_limits<std::size_t>::max)() / 2;
    return bytes < most / 8 && options.max_size < most ? options.max_size + 8 * bytes : most;
}

/** A character of one unit goes over as a unit where the format wants one, else as a text. */
inline const KTArgument *adapt(const KTPreparedFormat *format, const argument_view &view) noexcept
{
    const KTSlot *wanted = nullptr;
    const std::size_t count = KTPreparedSlots(format, &wanted);
    for (std::size_t i = 0; i < view.count; ++i)
    {
        KTArgument &argument = view.adapted[i] = view.arguments[i];
        if (i < count && wanted[i].code == KT_SLOT_UNIT && argument.type == KT_ARGUMENT_UCS2 && argument.length == 1)
            argument = unsigned_argument(KT_ARGUMENT_UNIT, *static_cast<const char16_t *>(argument.value.p));
    }
    return view.adapted;
}

/** The further calls, for a text that does not fit into few bytes: one, or more where the need was told too low. */
KELTO_SELDOM inline int format_many(text_buffer &out, const KTPreparedFormat *format, const call_options &options,
                                    const argument_view &view, const KTArgument *arguments, std::size_t need)
{
    std::string &text = out.many();
    for (const std::size_t limit = limit_of(options, view); need <= limit;)
    {
        text.resize(need);
        std::size_t size = need + 1;
        const int result = KTFormatPreparedUTF8(format, options.flags, options.pass_through, &size, text.data(),
                                                arguments, view.count);
        text.resize(result == 0 ? size : 0);
        if (result != KT_ERR_BUFFER_TOO_SMALL || size <= need)
            return result;
        need = size;
    }
    return KT_ERR_BUFFER_TOO_SMALL;
}

inline int format_bare(text_buffer &out, const KTPreparedFormat *format, const call_options &options,
                       const argument_view &view)
{
    const KTArgument *const arguments = view.adapted != nullptr ? adapt(format, view) : view.arguments;
    std::size_t size = few_bytes + 1;
    const int result =
        KTFormatPreparedUTF8(format, options.flags, options.pass_through, &size, out.few(), arguments, view.count);
    out.set_few(size);
    if (result == KT_ERR_BUFFER_TOO_SMALL)
        return format_many(out, format, options, view, arguments, size);
    return result == 0 && size > options.max_size && size > limit_of(options, view) ? KT_ERR_BUFFER_TOO_SMALL : result;
}

/** Formats into a buffer; throws only what functions of the program throw, and what a lack of memory does. */
inline int format_into(text_buffer &out, const KTPreparedFormat *format, const call_options &options,
                       const argument_view &view)
{
    if (options.table == nullptr)
        return format_bare(out, format, options, view);
    const running call(options.table.get());
    const int result = format_bare(out, format, options, view);
    call.rethrow();
    return result;
}

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

template <class Output> Output copy_to(Output out, std::string_view text)
{
    for (const char c : text)
        *out++ = c;
    return out;
}

template <class Container>
std::back_insert_iterator<Container> copy_to(std::back_insert_iterator<Container> out, std::string_view text)
{
    Container &container = container_of(out);
    container.insert(container.end(), text.begin(), text.end());
    return out;
}

inline std::back_insert_iterator<std::string> copy_to(std::back_insert_iterator<std::string> out, std::string_view text)
{
    container_of(out).append(text.data(), text.size());
    return out;
}

struct free_prepared
{
    void operator()(KTPreparedFormat *format) const noexcept { KTFreePrepared(format); }
};
using prepared_pointer = std::unique_ptr<KTPreparedFormat, free_prepared>;

inline prepared_pointer prepare(const char *text, formTable *table, int &result) noexcept
{
    KTPreparedFormat *format = nullptr;
    result = KTPrepareFormat(text, table, &format);
    return prepared_pointer(format);
}

/** A number in decimal. */
KELTO_SELDOM inline std::string decimal(std::uint64_t number, bool isNegative = false)
{
    char text[24];
    std::snprintf(text, sizeof text, isNegative ? "-%llu" : "%llu",
                  static_cast<unsigned long long>(isNegative ? 0 - number : number));
    return text;
}

/** Writes arguments for a person to read. */
class plain_writer
{
public:
    explicit plain_writer(std::string &out) noexcept : out_(out) {}

    KELTO_SELDOM void write(const KTArgument &argument)
    {
        char number[64];
        switch (argument.type)
        {
        case KT_ARGUMENT_INT:
        case KT_ARGUMENT_INT64:
            out_ += decimal(argument.value.u, argument.value.i < 0);
            break;
        case KT_ARGUMENT_UINT:
        case KT_ARGUMENT_UINT64:
            out_ += decimal(argument.value.u);
            break;
        case KT_ARGUMENT_CHAR:
        case KT_ARGUMENT_UNIT:
        {
            const char16_t units[2] = {static_cast<char16_t>(argument.value.u)};
            out_ += to_utf8(units);
            break;
        }
        case KT_ARGUMENT_DOUBLE:
            std::snprintf(number, sizeof number, "%g", argument.value.d);
            out_ += number;
            break;
        case KT_ARGUMENT_LONG_DOUBLE:
            std::snprintf(number, sizeof number, "%Lg", *static_cast<const long double *>(argument.value.p));
            out_ += number;
            break;
        case KT_ARGUMENT_UTF8:
            if (const std::string_view text = view<char>(argument); is_time_stamp(text))
                out_.append(text.substr(0, 10)).append(1, ' ').append(text.substr(12, 8));
            else
                write(text);
            break;
        case KT_ARGUMENT_UCS2:
            out_ += to_utf8(view<char16_t>(argument));
            break;
        default: // this layer has no other pointers
            const auto &object = *static_cast<const identified *>(argument.value.p);
            object.type->write(out_, object.object);
        }
    }

    /** Writes UTF-8, whatever the text is. */
    KELTO_SELDOM void write(std::string_view text)
    {
        for (std::size_t at = 0; at < text.size();)
        {
            const sequence next = sequence_at(text, at);
            out_ += next.is_valid ? text.substr(at, next.bytes) : "\xEF\xBF\xBD";
            at += next.bytes;
        }
    }

private:
    template <class Character> static std::basic_string_view<Character> view(const KTArgument &argument) noexcept
    {
        const auto *const text = static_cast<const Character *>(argument.value.p);
        if (text == nullptr)
            return {};
        if (argument.length == zero_terminated)
            return text;
        const std::basic_string_view<Character> whole(text, argument.length);
        return whole.substr(0, whole.find(Character()));
    }

    /** Whether a text is a time as "%DT" takes it. */
    static bool is_time_stamp(std::string_view text) noexcept
    {
        constexpr std::string_view pattern = "0000-00-00'T00:00:00Z";
        bool isOne = text.size() == pattern.size();
        for (std::size_t i = 0; isOne && i < pattern.size(); ++i)
            isOne = (text[i] >= '0' && text[i] <= '9' ? '0' : text[i]) == pattern[i];
        return isOne;
    }

    std::string &out_;
};

KELTO_SELDOM inline void write_plainly(std::string &out, const KTArgument &argument)
{
    plain_writer(out).write(argument);
}

/** A text as a part of one line of a log: UTF-8 without control characters, to which terminals would listen. */
KELTO_SELDOM inline std::string on_one_line(std::string_view text)
{
    std::string line;
    plain_writer(line).write(text);
    for (std::size_t at = 0; at < line.size(); ++at)
    {
        const auto c = static_cast<unsigned char>(line[at]);
        const bool isTwoBytes = c == 0xC2 && static_cast<unsigned char>(line[at + 1]) < 0xA0;
        if (c == '\n')
            line.replace(at, 1, "\\n");
        else if (c < ' ' || c == 0x7F || isTwoBytes)
            line.replace(at, isTwoBytes ? 2 : 1, 1, ' ');
    }
    return line;
}

/** The value of an argument as a part of one line of a log: the beginning of a long one. */
KELTO_SELDOM inline std::string quoted(const KTArgument &argument)
{
    constexpr std::size_t most = 60;
    std::string value;
    write_plainly(value, argument);
    if (value.size() > most)
    {
        std::size_t end = most;
        while (is_trail(static_cast<unsigned char>(value[end])))
            --end;
        value.resize(end);
        value += "...";
    }
    const bool isText = argument.type == KT_ARGUMENT_UTF8 || argument.type == KT_ARGUMENT_UCS2;
    return isText ? '"' + on_one_line(value) + '"' : on_one_line(value);
}

/** What a slot takes, by KTSlotCode. */
constexpr const char *slot_names[] = {"",
                                      "a 16-bit integer",
                                      "a 16-bit integer",
                                      "a 32-bit integer",
                                      "a 32-bit integer",
                                      "a 64-bit integer",
                                      "a 64-bit integer",
                                      "an 8-bit character",
                                      "a UCS-2 unit",
                                      "a double",
                                      "a long double",
                                      "a UTF-8 string",
                                      "a UCS-2 string",
                                      "an object"};

/** The slot that an argument is made for: a KTSlotCode. */
inline unsigned slot_of(const KTArgument &argument) noexcept
{
    // By KTArgumentType.
    constexpr unsigned codes[] = {0,
                                  KT_SLOT_INT32,
                                  KT_SLOT_UINT32,
                                  KT_SLOT_INT64,
                                  KT_SLOT_UINT64,
                                  KT_SLOT_CHAR,
                                  KT_SLOT_UNIT,
                                  KT_SLOT_DOUBLE,
                                  KT_SLOT_LONG_DOUBLE,
                                  KT_SLOT_UTF8,
                                  KT_SLOT_UCS2,
                                  KT_SLOT_POINTER};
    return codes[argument.type];
}

/** The first argument of a call of which a format wants another kind, or none, or which it lacks. */
KELTO_SELDOM inline KTProblem find_mismatch(const KTSlot *wanted, std::size_t count, const KTArgument *arguments,
                                            std::size_t given) noexcept
{
    KTProblem problem = {};
    const std::size_t most = count < given ? given : count;
    for (std::size_t i = 0; i < most && problem.rule == KT_RULE_NONE; ++i)
    {
        const unsigned here = i < count ? wanted[i].code : 0;
        const unsigned there = i < given ? slot_of(arguments[i]) : 0;
        const bool areIntegers = here <= KT_SLOT_UINT64 && there <= KT_SLOT_UINT64;
        if (here == 0 || there == 0)
            problem.rule = here == 0 ? KT_RULE_ARGUMENT_MISSING : KT_RULE_ARGUMENT_EXTRA;
        else if (here != there && !areIntegers)
            problem.rule = KT_RULE_ARGUMENT_TYPE;
        problem.slot = static_cast<unsigned>(i + 1);
        problem.found = slot_names[here];
        problem.expected = slot_names[there];
    }
    return problem;
}

/** The conversion of a position in a format that is right, as "%-5s[". */
KELTO_SELDOM inline std::string_view conversion_at(std::string_view format, std::uint32_t position) noexcept
{
    for (std::size_t at = format.find('%'), open = 0; at != std::string_view::npos; at = format.find('%', open))
    {
        const bool isPercentSign = format[at + 1] == '%';
        open = isPercentSign ? at + 2 : format.find('[', at);
        if (!isPercentSign && std::strtoul(format.data() + open + 1, nullptr, 10) == position)
            return format.substr(at, open - at + 1);
    }
    return {};
}

/** Tells which conversion of a prepared format cannot write its arguments, though they are of the right kind. */
KELTO_SELDOM inline std::string find_unwritable(std::string_view text, const call_options &options,
                                                const KTSlot *wanted, std::size_t count, const KTArgument *arguments)
{
    const running call(options.table.get()); // what is thrown here was thrown before
    for (std::size_t first = 0, end = 0; first < count; first = end)
    {
        while (end < count && wanted[end].position == wanted[first].position)
            ++end;
        std::string story(conversion_at(text, wanted[first].position));
        story += "1]";
        int result = 0;
        const prepared_pointer alone = prepare(story.c_str(), options.c_table(), result);
        text_buffer out;
        if (alone == nullptr)
            continue;
        result = format_bare(out, alone.get(), options, {arguments + first, nullptr, end - first});
        if (result == 0 || result == KT_ERR_BUFFER_TOO_SMALL)
            continue;
        story.replace(story.size() - 2, 2, decimal(wanted[first].position)).append("] cannot write argument ");
        for (std::size_t i = first; i < end; ++i)
            story.append(i == first ? "" : ", argument ")
                .append(decimal(i + 1))
                .append(": ")
                .append(quoted(arguments[i]));
        return story;
    }
    return {};
}

/** What is wrong with a text, as exactly as it can be told. */
KELTO_SELDOM inline std::string why(const char *text, const call_options &options, const argument_view &view,
                                    int result)
{
    if (text == nullptr)
        return "the catalog has no such message";
    if (*text == '\0' && result == KT_ERR_INVALID_MSG_ID)
        return "the text is empty";
    std::string story(1, '"');
    story.append(on_one_line(text)).append("\": ");
    if (result == KT_ERR_BUFFER_TOO_SMALL)
        return story.append("the text is longer than max_size, ").append(decimal(options.max_size));
    KTProblem problem = {};
    problem.structSize = sizeof problem;
    const prepared_pointer format = prepare(text, options.c_table(), result);
    const KTSlot *wanted = nullptr;
    const KTArgument *arguments = view.arguments;
    std::string unwritable;
    if (format != nullptr)
    {
        const std::size_t count = KTPreparedSlots(format.get(), &wanted);
        if (view.adapted != nullptr)
            arguments = adapt(format.get(), view);
        problem = find_mismatch(wanted, count, arguments, view.count);
        if (problem.rule == KT_RULE_NONE)
            unwritable = find_unwritable(text, options, wanted, count, arguments);
    }
    else
        KTExplainFormat(text, options.c_table(), &problem);
    char sentence[512];
    std::size_t size = sizeof sentence;
    if (problem.rule == KT_RULE_NONE || KTProblemText(&problem, &size, sentence) != 0)
        return story.append(unwritable.empty() ? KTResultText(result) : unwritable.c_str());
    constexpr std::string_view other = "the reference";
    const std::size_t begin = story.size();
    const std::size_t at = story.append(sentence).rfind(other);
    return format != nullptr && at != std::string::npos && at >= begin ? story.replace(at, other.size(), "the call")
                                                                       : story;
}

} // namespace detail

/** One format, parsed once, for texts that come from no catalog. Here what does not fit is an error. */
class prepared_format
{
public:
    prepared_format(const std::string &format, std::error_code &failure) : prepared_format(format, {}, failure) {}
    prepared_format(const std::string &format, const format_options &options, std::error_code &failure)
        : options_(options, options.table != nullptr ? options.table->state_ : nullptr)
    {
        failure = open(format);
    }

#if KELTO_HAS_EXCEPTIONS
    explicit prepared_format(const std::string &format, const format_options &options = {})
        : options_(options, options.table != nullptr ? options.table->state_ : nullptr)
    {
        const std::error_code failure = open(format);
        detail::throw_if(failure, [&] {
            return detail::why(text_.c_str(), options_, {nullptr, nullptr, 0}, failure.value());
        });
    }

    /** The text. Throws where the arguments are not those that the format takes, and where a conversion fails. */
    template <class... Arguments> std::string format(const Arguments &...arguments) const
    {
        return make_or_throw(
            detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view());
    }

    /** Writes the text behind an output iterator; without the heap up to 1,024 bytes. Throws as format() does. */
    template <class Output, class... Arguments> Output format_to(Output out, const Arguments &...arguments) const
    {
        detail::text_buffer text;
        fill_or_throw(
            text, detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view());
        return detail::copy_to(out, text.view());
    }
#endif

    /** The text; empty where failure is set. */
    template <class... Arguments> std::string format(std::error_code &failure, const Arguments &...arguments) const
    {
        return make(
            failure,
            detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view());
    }

    /** Writes the text behind an output iterator, nothing where failure is set; without the heap up to 1,024 bytes. */
    template <class Output, class... Arguments>
    Output format_to(Output out, std::error_code &failure, const Arguments &...arguments) const
    {
        detail::text_buffer text;
        failure = make_error(fill(
            text, detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view()));
        return failure ? out : detail::copy_to(out, text.view());
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

    /** For calls of the C interface, as long as this object lives; null where the format was refused. */
    const KTPreparedFormat *get() const noexcept
    {
        return format_.get();
    }

private:
    std::error_code open(const std::string &format)
    {
        text_ = format;
        std::error_code failure;
        use_ = detail::use(failure);
        if (failure)
            return failure;
        int result = 0;
        format_ = detail::prepare(text_.c_str(), options_.c_table(), result);
        return make_error(result);
    }

    KELTO_OUT_OF_LINE std::string make(std::error_code &failure, const detail::argument_view &view) const
    {
        detail::text_buffer text;
        failure = make_error(fill(text, view));
        return failure ? std::string() : text.take();
    }

#if KELTO_HAS_EXCEPTIONS
    KELTO_OUT_OF_LINE std::string make_or_throw(const detail::argument_view &view) const
    {
        detail::text_buffer text;
        fill_or_throw(text, view);
        return text.take();
    }

    KELTO_OUT_OF_LINE void fill_or_throw(detail::text_buffer &text, const detail::argument_view &view) const
    {
        const int result = fill(text, view);
        detail::throw_if(make_error(result), [&] {
            return format_ != nullptr ? detail::why(text_.c_str(), options_, view, result)
                                      : "kelto::prepared_format: it holds no format";
        });
    }
#endif

    KELTO_OUT_OF_LINE int fill(detail::text_buffer &text, const detail::argument_view &view) const
    {
        return format_ != nullptr ? detail::format_into(text, format_.get(), options_, view) : KT_ERR_INVALID_PARAMETER;
    }

    detail::use use_;
    detail::call_options options_;
    std::string text_;
    detail::prepared_pointer format_;
};

/* ## 6. Catalogs */

/**
 * The number of a message: an integer, or an enumerator of the program's. One below 0 or above 4294967295 is that of a
 * message that is not there.
 */
class message_id
{
public:
    template <class Number, class = std::enable_if_t<std::is_integral_v<Number> || std::is_enum_v<Number>>>
    constexpr message_id(Number number) noexcept
        : bits_(static_cast<std::uint64_t>(number)), isNegative_(number < Number())
    {
        static_assert(!std::is_same_v<Number, bool>, "kelto: a bool is no message number");
        static_assert(sizeof(Number) <= sizeof bits_, "kelto: a message number has at most 64 bits");
    }

    /** The number; 4294967295, which no message has, for one that does not fit. */
    constexpr std::uint32_t value() const noexcept { return fits() ? static_cast<std::uint32_t>(bits_) : UINT32_MAX; }

    /** Whether the number is one of 32 bits. */
    constexpr bool fits() const noexcept { return !isNegative_ && bits_ <= UINT32_MAX; }

    /** The number as it was given, in decimal. */
    std::string to_string() const { return detail::decimal(bits_, isNegative_); }

private:
    std::uint64_t bits_;
    bool isNegative_;
};

/** Why something was passed over on the way to a text. The texts live during the call that is told of it. */
struct problem
{
    std::string_view catalog;  /**< the name of the catalog */
    std::string_view language; /**< the language that was passed over; empty for the text in the source */
    std::string_view file;     /**< its file, or the directory without any; empty for the text in the source */
    std::uint32_t id;          /**< message_id::value(); 0 where the file as a whole is of no use */
    std::error_code error;     /**< in error_category() */
    std::string text;          /**< a sentence for the developer, in English */
};

/** How a catalog is found, and how its messages are formatted. */
struct catalog_options : format_options
{
    const char *languages = nullptr;    /**< as in KTLanguages(): null for the user's */
    const char *source_language = "en"; /**< the language that has its turn behind the user's; "" for none */
    /** Told once per message and language what was passed over, in the thread that asked for the message. */
    callback<void(const problem &)> on_problem = {};
};

namespace detail
{

/** One value per number, made when it is first asked for. Numbers far apart cost a few pages, and finding takes no
 * lock. */
template <class Value> class number_map
{
public:
    number_map() = default;
    number_map(const number_map &) = delete;
    number_map &operator=(const number_map &) = delete;
    ~number_map() { clear(root_, levels - 1); }

    /** The value of a number, or null. */
    Value *find(std::uint32_t number) const noexcept
    {
        const page *from = &root_;
        for (unsigned level = levels - 1; level > 0; --level)
        {
            from = static_cast<const page *>(from->at(number, level).load(std::memory_order_acquire));
            if (from == nullptr)
                return nullptr;
        }
        return static_cast<Value *>(from->at(number, 0).load(std::memory_order_acquire));
    }

    /** The value of a number, made of the arguments where there is none. */
    template <class... Arguments> Value &get(std::uint32_t number, const Arguments &...arguments)
    {
        page *from = &root_;
        for (unsigned level = levels - 1; level > 0; --level)
            from = made<page>(from->at(number, level));
        return *made<Value>(from->at(number, 0), arguments...);
    }

private:
    static constexpr unsigned levels = 4;
    static constexpr unsigned bits = 8;
    using child = std::atomic<void *>;

    struct page
    {
        child children[1U << bits] = {};

        child &at(std::uint32_t number, unsigned level) noexcept { return children[number >> (level * bits) & 0xFF]; }
        const child &at(std::uint32_t number, unsigned level) const noexcept
        {
            return children[number >> (level * bits) & 0xFF];
        }
    };

    /** What is there, or else a new object; of two threads that make one, one wins. */
    template <class Made, class... Arguments> static Made *made(child &place, const Arguments &...arguments)
    {
        void *there = place.load(std::memory_order_acquire);
        if (there != nullptr)
            return static_cast<Made *>(there);
        auto fresh = std::make_unique<Made>(arguments...);
        if (place.compare_exchange_strong(there, fresh.get(), std::memory_order_acq_rel))
            return fresh.release();
        return static_cast<Made *>(there);
    }

    static void clear(page &from, unsigned level) noexcept
    {
        for (child &place : from.children)
        {
            void *const there = place.load(std::memory_order_relaxed);
            if (there == nullptr)
                continue;
            if (level == 0)
                delete static_cast<Value *>(there);
            else
            {
                clear(*static_cast<page *>(there), level - 1);
                delete static_cast<page *>(there);
            }
        }
    }

    page root_;
};

/** A prepared format that many threads may ask for and one of them makes. */
class shared_format
{
public:
    shared_format() = default;
    shared_format(const shared_format &) = delete;
    shared_format &operator=(const shared_format &) = delete;
    ~shared_format() { KTFreePrepared(format_.load(std::memory_order_relaxed)); }

    const KTPreparedFormat *get() const noexcept { return format_.load(std::memory_order_acquire); }

    /** Keeps a format, or the one that another thread has kept in the meantime. */
    const KTPreparedFormat *keep(prepared_pointer format) noexcept
    {
        KTPreparedFormat *there = nullptr;
        if (format_.compare_exchange_strong(there, format.get(), std::memory_order_acq_rel))
            return format.release();
        return there;
    }

private:
    std::atomic<KTPreparedFormat *> format_{nullptr};
};

/** What is known of a message in one language. */
struct message_in_language
{
    shared_format format;
    std::atomic<int> refused{0}; // why there is no format, once that is known
    std::atomic<bool> is_told{false};
};

/** The text in the source that the first call had, prepared. */
struct source_format
{
    std::string text;
    prepared_pointer format;
    int result = 0;
};

/** What is known of a message. */
struct message
{
    explicit message(std::size_t languages) : in_language(new message_in_language[languages]) {}
    ~message() { delete in_source.load(std::memory_order_relaxed); }
    message(const message &) = delete;
    message &operator=(const message &) = delete;

    std::atomic<const KTPreparedFormat *> first{nullptr}; // of the first language that has a usable text
    std::unique_ptr<message_in_language[]> in_language;
    std::atomic<source_format *> in_source{nullptr};
    std::atomic<bool> is_source_told{false};
};

/** One language of a catalog: a file, which is loaded when it is first needed. */
class language_file
{
public:
    language_file(std::string language, std::string path) : language_(std::move(language)), path_(std::move(path)) {}
    language_file(const void *data, std::size_t size) noexcept : data_(data), size_(size) {}
    language_file(const language_file &) = delete;
    language_file &operator=(const language_file &) = delete;
    ~language_file()
    {
        if (MessageTable *const table = table_.load(std::memory_order_relaxed))
            KTFreeMessages(table);
    }

    const std::string &language() const noexcept { return language_; }
    const std::string &path() const noexcept { return path_; }

    /** Whether the file has been loaded, or was found to be of no use. */
    bool is_tried() const noexcept { return isTried_.load(std::memory_order_acquire); }
    MessageTable *table() const noexcept { return table_.load(std::memory_order_acquire); }

    /** A file that is of no use, and why. */
    struct refusal
    {
        std::string path;
        int result;
    };

    /** Loads the file where that was not tried yet; what was of no use on the way is appended to `refused`. */
    KELTO_SELDOM int load(std::vector<refusal> &refused)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (is_tried())
            return 0;
        int result = load_file(path_);
        if (result != 0)
            refused.push_back({path_, result});
        if (result != 0 && is_compiled() && !language_.empty())
        {
            // What it was compiled from may lie beside it.
            const std::string source = path_.substr(0, path_.size() - 3) + "xlf";
            const int loaded = load_file(source);
            if (loaded != 0 && loaded != KT_ERR_FILE_UNAVAILABLE)
                refused.push_back({source, loaded});
            if (loaded == 0)
            {
                path_ = source;
                result = 0;
            }
        }
        isTried_.store(true, std::memory_order_release);
        return result;
    }

private:
    bool is_compiled() const noexcept { return path_.size() > 4 && path_.compare(path_.size() - 4, 4, ".ktc") == 0; }

    int load_file(std::string path) noexcept
    {
        MessageTable *table = nullptr;
        const int result = data_ != nullptr                 ? KTLoadCompiledData(data_, size_, &table)
                           : is_compiled() && path == path_ ? KTLoadCompiledMessages(path.c_str(), &table)
                                                            : KTLoadMessages(path.data(), &table);
        table_.store(result == 0 ? table : nullptr, std::memory_order_release);
        return result;
    }

    std::string language_, path_;
    const void *data_ = nullptr; // a catalog in memory, in place of a file
    std::size_t size_ = 0;
    std::mutex mutex_;
    std::atomic<bool> isTried_{false};
    std::atomic<MessageTable *> table_{nullptr};
};

/** Writes an object with the first conversion of the program's own that takes it alone; false where there is none. */
KELTO_SELDOM inline bool write_with_conversion(std::string &out, const call_options &options, const KTArgument &object)
{
    for (const auto &own : options.table->conversions)
    {
        int result = 0;
        const std::string format = std::string(1, '%') + own->id.name + "[1]";
        const prepared_pointer prepared = prepare(format.c_str(), options.c_table(), result);
        text_buffer text;
        if (prepared == nullptr || format_bare(text, prepared.get(), options, {&object, nullptr, 1}) != 0)
            continue;
        out += text.view();
        return true;
    }
    return false;
}

/**
 * Writes an argument where no text could be formatted, and where there is a table. Its encoder has its say, since the
 * place that the argument would have had in the text may be an encoded one; what it throws for is not written.
 */
KELTO_SELDOM inline void write_with_table(std::string &out, const call_options &options, const KTArgument &argument)
{
    const running call(options.table.get());
    std::string value;
    if (argument.type != KT_ARGUMENT_POINTER || !write_with_conversion(value, options, argument))
        write_plainly(value, argument);
    std::u16string encoded;
    if (options.table->encode)
        value = options.table->encode(to_ucs2(value), encoded) == 0 ? to_utf8(encoded) : "?";
    out += value;
}

/** "[store 3: report.txt, 12]" */
KELTO_SELDOM inline void fill_without_text(std::string &out, const std::string &name, message_id id,
                                           const call_options &options, const argument_view &view)
{
    out = '[' + name + (name.empty() ? "" : " ") + id.to_string();
    for (std::size_t i = 0; i < view.count; ++i)
    {
        out += i == 0 ? ": " : ", ";
        if (options.table != nullptr)
            options.table->write(out, options, view.arguments[i]);
        else
            write_plainly(out, view.arguments[i]);
    }
    out += ']';
}

/** All that a catalog holds. Its messages end before their files do, and these before the use of the library. */
class catalog_state
{
public:
    catalog_state(std::string name, const catalog_options &options, std::shared_ptr<table_state> table)
        : name_(std::move(name)), options_(options, std::move(table)), sourceOptions_(options_),
          onProblem_(options.on_problem)
    {
        constexpr std::size_t usual = format_options().max_size;
        sourceOptions_.max_size = usual < options.max_size ? options.max_size : usual;
    }

    std::error_code begin()
    {
        std::error_code failure;
        use_ = use(failure);
        return failure;
    }

    template <class... Arguments> void add(Arguments &&...arguments)
    {
        files_.push_back(std::make_unique<language_file>(std::forward<Arguments>(arguments)...));
    }

    /** Loads the first file that is of use; the result of the last one that is not. */
    int open()
    {
        int result = 0;
        for (const auto &file : files_)
        {
            result = load(*file);
            if (result == 0)
                break;
        }
        return result;
    }

    bool is_without_files() const noexcept { return files_.empty(); }

    /** The first language of which there are messages: the name of its folder, or what the file says of itself. */
    std::string language() const
    {
        for (const auto &file : files_)
        {
            KTTableFacts facts = {};
            facts.structSize = sizeof facts;
            if (file->table() == nullptr || (file->language().empty() && KTTableInfo(file->table(), &facts) != 0))
                continue;
            if (!file->language().empty())
                return file->language();
            return std::string(facts.language) + (*facts.country != '\0' ? "_" : "") + facts.country;
        }
        return {};
    }

    std::string_view text(std::uint32_t id)
    {
        for (const auto &file : files_)
        {
            char *found = nullptr;
            if (table_of(*file) != nullptr && KTGetMessage(file->table(), id, &found) == 0 && found != nullptr)
                return found;
        }
        return {};
    }

    /** Puts together the text of a message; there is always one. */
    void fill(text_buffer &out, message_id id, const unchecked_text *source, const argument_view &view)
    {
        if (const message *const known = messages_.find(id.value()))
            if (const KTPreparedFormat *const format = known->first.load(std::memory_order_acquire))
                if (format_into(out, format, options_, view) == 0)
                    return;
        climb_down(out, id, source, view);
    }

    KELTO_SELDOM void report(const language_file *file, std::string_view path, std::uint32_t id, int result,
                             std::string text) const
    {
        if (onProblem_)
            onProblem_({name_, file != nullptr ? std::string_view(file->language()) : std::string_view(), path, id,
                        make_error(result), std::move(text)});
    }

private:
    int load(language_file &file) const
    {
        std::vector<language_file::refusal> refused;
        const int result = file.load(refused);
        for (const language_file::refusal &one : refused) // without the lock: who is told may format something
            report(&file, one.path, 0, one.result, one.path + ": " + KTResultText(one.result));
        return result;
    }

    KELTO_SELDOM MessageTable *table_of(language_file &file) const
    {
        if (!file.is_tried())
            load(file);
        return file.table();
    }

    /** Tries one language after the other, then the text in the source. */
    KELTO_SELDOM void climb_down(text_buffer &out, message_id given, const unchecked_text *source,
                                 const argument_view &view)
    {
        const std::uint32_t id = given.value();
        message &known = messages_.get(id, files_.size());
        for (std::size_t i = 0; i < files_.size(); ++i)
        {
            language_file &file = *files_[i];
            if (table_of(file) == nullptr)
                continue;
            message_in_language &here = known.in_language[i];
            int result = 0;
            const KTPreparedFormat *const format = prepared(here, file, id, result);
            if (format != nullptr)
            {
                const KTPreparedFormat *none = nullptr;
                known.first.compare_exchange_strong(none, format, std::memory_order_acq_rel);
                result = format_into(out, format, options_, view);
            }
            else if (view.count == 0 && text_in(file, id) != nullptr && is_empty_below(i, id, source))
            {
                out.set_few(0);
                return;
            }
            if (result == 0)
                return;
            if (onProblem_ && !here.is_told.exchange(true, std::memory_order_relaxed))
                report(&file, file.path(), id, result,
                       given.fits() ? why(text_in(file, id), options_, view, result)
                                    : "no message has the number " + given.to_string());
        }
        if (source == nullptr || !fill_from_source(out, known, id, *source, view))
            fill_without_text(out.many(), name_, given, options_, view);
    }

    /** Whether a message is empty in this language and has no text in those that follow or in the source. */
    KELTO_SELDOM bool is_empty_below(std::size_t language, std::uint32_t id, const unchecked_text *source) const
    {
        for (std::size_t i = language; i < files_.size(); ++i)
        {
            const char *const text = table_of(*files_[i]) != nullptr ? text_in(*files_[i], id) : nullptr;
            if (text != nullptr && *text != '\0')
                return false;
        }
        return source == nullptr || source->text.empty();
    }

    static const char *text_in(const language_file &file, std::uint32_t id) noexcept
    {
        char *text = nullptr;
        return KTGetMessage(file.table(), id, &text) == 0 ? text : nullptr;
    }

    /** The format of a message in a language; null, and a result, where it has none. */
    KELTO_SELDOM const KTPreparedFormat *prepared(message_in_language &here, const language_file &file,
                                                  std::uint32_t id, int &result) const noexcept
    {
        if (const KTPreparedFormat *const there = here.format.get())
            return there;
        result = here.refused.load(std::memory_order_relaxed);
        if (result != 0)
            return nullptr;
        const char *const text = text_in(file, id);
        prepared_pointer format;
        if (text != nullptr && *text != '\0')
            format = prepare(text, options_.c_table(), result);
        else
            result = KT_ERR_INVALID_MSG_ID;
        if (format != nullptr)
            return here.format.keep(std::move(format));
        if (result != KT_ERR_NO_MEMORY) // which may pass
            here.refused.store(result, std::memory_order_relaxed);
        return nullptr;
    }

    /** The text in the source, kept for the first text that comes with a number; another one is prepared in each call.
     */
    KELTO_SELDOM bool fill_from_source(text_buffer &out, message &known, std::uint32_t id, const unchecked_text &source,
                                       const argument_view &view) const
    {
        const source_format *kept = known.in_source.load(std::memory_order_acquire);
        std::unique_ptr<source_format> own;
        if (kept == nullptr || kept->text != source.text)
        {
            own = std::make_unique<source_format>();
            own->text = source.text;
            own->format = prepare(own->text.c_str(), options_.c_table(), own->result);
            source_format *none = nullptr;
            if (kept == nullptr && own->result != KT_ERR_NO_MEMORY &&
                known.in_source.compare_exchange_strong(none, own.get(), std::memory_order_acq_rel))
                kept = own.release();
            else
                kept = own.get();
        }
        const int result =
            kept->format != nullptr ? format_into(out, kept->format.get(), sourceOptions_, view) : kept->result;
        if (result != 0 && onProblem_ && !known.is_source_told.exchange(true, std::memory_order_relaxed))
            report(nullptr, {}, id, result, why(kept->text.c_str(), sourceOptions_, view, result));
        return result == 0;
    }

    use use_;
    std::string name_;
    call_options options_;
    call_options sourceOptions_; // the program's own text may be longer than those of translators
    callback<void(const problem &)> onProblem_;
    std::vector<std::unique_ptr<language_file>> files_;
    number_map<message> messages_;
};

/** A list of KTLanguages() as its elements. */
inline std::vector<std::string> languages_of(const char *list)
{
    std::size_t size = 0;
    KTLanguages(list, &size, nullptr);
    std::string names(size, '\0');
    ++size;
    KTLanguages(list, &size, names.data());
    std::vector<std::string> languages;
    for (std::size_t at = 0; at < names.size();)
    {
        const std::size_t end = names.find(':', at);
        languages.push_back(names.substr(at, end - at));
        at = end == std::string::npos ? names.size() : end + 1;
    }
    return languages;
}

} // namespace detail

/** Messages by number, in all the languages that a user may be given; chapter "The ladder" above. */
class catalog
{
public:
    /**
     * Finds the catalogs of the user's languages and of the source language: the files that KTFindCatalog() finds. A
     * file that is missing, malformed or unreadable is passed over; a catalog without any file gives the texts in the
     * source.
     * @param name       the name of the catalog, without a '/'.
     * @param directory  the folder that holds a folder per language.
     * @param failure    set where the library cannot be started, or where name or directory are impossible.
     */
    static catalog find(const std::string &name, const std::string &directory, const catalog_options &options,
                        std::error_code &failure)
    {
        catalog found(name, options, failure);
        std::vector<std::string> languages = detail::languages_of(options.languages);
        for (std::string &language : detail::languages_of(options.source_language))
            languages.push_back(std::move(language));
        std::vector<std::string> seen;
        for (const std::string &language : languages)
        {
            bool isNew = !failure;
            for (const std::string &other : seen)
                isNew = isNew && other != language;
            if (isNew)
                failure = found.add(name, directory, language);
            seen.push_back(language);
        }
        if (!failure)
            found.state_->open();
        if (!failure && found.state_->is_without_files())
        {
            std::string told = "there is no catalog \"" + name + "\" in \"" + directory + "\" for";
            for (const std::string &language : seen)
                told.append(1, ' ').append(language);
            found.state_->report(nullptr, directory, 0, KT_ERR_FILE_UNAVAILABLE, std::move(told));
        }
        return found;
    }
    static catalog find(const std::string &name, const std::string &directory, std::error_code &failure)
    {
        return find(name, directory, {}, failure);
    }

    /**
     * One file, "….ktc" or "….xlf", as the only language; failure is set where it cannot be loaded, and the catalog
     * then gives the texts in the source.
     */
    static catalog load(const std::string &path, const catalog_options &options, std::error_code &failure)
    {
        const std::size_t begin = path.rfind('/') + 1; // 0 where there is no '/'
        catalog loaded(path.substr(begin, path.rfind('.') - begin), options, failure);
        if (failure)
            return loaded;
        loaded.state_->add(std::string(), path);
        failure = make_error(loaded.state_->open());
        return loaded;
    }
    static catalog load(const std::string &path, std::error_code &failure) { return load(path, {}, failure); }

    /**
     * A compiled catalog that is a part of the program, as the only language: see KTLoadCompiledData(). The data is
     * read during the call.
     */
    static catalog embedded(const std::string &name, const void *data, std::size_t size, const catalog_options &options,
                            std::error_code &failure)
    {
        catalog loaded(name, options, failure);
        if (failure)
            return loaded;
        loaded.state_->add(data, size);
        failure = make_error(loaded.state_->open());
        return loaded;
    }

#if KELTO_HAS_EXCEPTIONS
    static catalog find(const std::string &name, const std::string &directory, const catalog_options &options = {})
    {
        std::error_code failure;
        catalog found = find(name, directory, options, failure);
        detail::throw_if(failure, [&] {
            const bool isName = !name.empty() && name.find('/') == std::string::npos;
            return "kelto::catalog::find(\"" + name + "\", \"" + directory + "\")" +
                   (!isName             ? ": the name of a catalog has no '/' and is not empty"
                    : directory.empty() ? ": the directory is not empty"
                                        : ": " + failure.message());
        });
        return found;
    }
    static catalog load(const std::string &path, const catalog_options &options = {})
    {
        std::error_code failure;
        catalog loaded = load(path, options, failure);
        detail::throw_if(failure, [&] { return "kelto::catalog::load(\"" + path + "\"): " + failure.message(); });
        return loaded;
    }
    static catalog embedded(const std::string &name, const void *data, std::size_t size,
                            const catalog_options &options = {})
    {
        std::error_code failure;
        catalog loaded = embedded(name, data, size, options, failure);
        detail::throw_if(failure, [&] { return "kelto::catalog::embedded(\"" + name + "\"): " + failure.message(); });
        return loaded;
    }
#endif

    /** The text of a message. There always is one, at last "[store 3: report.txt, 12]". */
    template <class... Arguments, detail::if_no_source<Arguments...> = 0>
    KELTO_OUT_OF_LINE std::string format(message_id id, const Arguments &...arguments) const
    {
        return make(
            id, nullptr,
            detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view());
    }

    /** The text of a message, with a text in the source: KELTO_DEFAULT("…") or unchecked("…"). */
    template <class... Arguments>
    KELTO_OUT_OF_LINE std::string format(message_id id, source_text_for<Arguments...> source,
                                         const Arguments &...arguments) const
    {
        return make(
            id, &source.text,
            detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view());
    }

    /** Writes the text of a message behind an output iterator; without the heap up to 1,024 bytes. */
    template <class Output, class... Arguments, detail::if_no_source<Arguments...> = 0>
    Output format_to(Output out, message_id id, const Arguments &...arguments) const
    {
        detail::text_buffer text;
        fill(text, id, nullptr,
             detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view());
        return detail::copy_to(out, text.view());
    }
    template <class Output, class... Arguments>
    Output format_to(Output out, message_id id, source_text_for<Arguments...> source,
                     const Arguments &...arguments) const
    {
        detail::text_buffer text;
        fill(text, id, &source.text,
             detail::argument_list<Arguments...>{{detail::argument_from(detail::hold(arguments))...}, {}}.view());
        return detail::copy_to(out, text.view());
    }

    /** A message as it stands in the first language that has it; empty where none has. It lives as long as the catalog.
     */
    std::string_view text(message_id id) const
    {
        return state_ != nullptr ? state_->text(id.value()) : std::string_view();
    }

    /** The first language of which there are messages, as "de" or "de_AT"; empty where there is none. */
    std::string language() const
    {
        return state_ != nullptr ? state_->language() : std::string();
    }

private:
    catalog(std::string name, const catalog_options &options, std::error_code &failure)
        : state_(std::make_unique<detail::catalog_state>(std::move(name), options,
                                                         options.table != nullptr ? options.table->state_ : nullptr))
    {
        failure = state_->begin();
    }

    /** Adds the file of exactly this language where there is one. */
    std::error_code add(const std::string &name, const std::string &directory, const std::string &language)
    {
        std::string path(directory.size() + language.size() + name.size() + 8, '\0');
        std::size_t size = path.size();
        const int result = KTFindCatalog(directory.c_str(), name.c_str(), language.c_str(), &size, path.data());
        path.resize(result == 0 ? size : 0);
        const std::string folder = directory + '/' + language + '/';
        if (result == 0 && path.compare(0, folder.size(), folder) == 0)
            state_->add(language, path);
        if (result == KT_ERR_FILE_NOT_OPENED)
            state_->report(nullptr, folder, 0, result, folder + name + ": " + KTResultText(result));
        return make_error(result == KT_ERR_FILE_UNAVAILABLE || result == KT_ERR_FILE_NOT_OPENED ? 0 : result);
    }

    KELTO_OUT_OF_LINE std::string make(message_id id, const unchecked_text *source,
                                       const detail::argument_view &view) const
    {
        detail::text_buffer text;
        fill(text, id, source, view);
        return text.take();
    }

    KELTO_OUT_OF_LINE void fill(detail::text_buffer &out, message_id id, const unchecked_text *source,
                                const detail::argument_view &view) const
    {
        if (state_ != nullptr)
            return state_->fill(out, id, source, view);
        detail::catalog_state moved({}, {}, nullptr); // what is left after a move: the text in the source
        moved.begin();
        moved.fill(out, id, source, view);
    }

    std::unique_ptr<detail::catalog_state> state_;
};

} // namespace kelto

#endif
