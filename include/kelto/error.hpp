/** @file error.hpp Errors, functions of the program's, and the use of the library. Include kelto.hpp. */
#ifndef KELTO_ERROR_HPP
#define KELTO_ERROR_HPP

#if __cplusplus < 201703L
#error "kelto.hpp needs C++17: compile with -std=c++17 or later"
#endif

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast" // C has no other
#include <kelto.h>
#pragma GCC diagnostic pop

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

/** KELTO_OR_THROW is the default of a parameter without which a failure is thrown. */
#if defined(__cpp_exceptions)
#define KELTO_HAS_EXCEPTIONS true
#define KELTO_OR_THROW = {}
#else
#define KELTO_HAS_EXCEPTIONS false
#define KELTO_OR_THROW
#endif

#define KELTO_OUT_OF_LINE __attribute__((noinline))          // so that each call compiles fast and to little code
#define KELTO_IN_PLACE inline __attribute__((always_inline)) // for what makes no code of its own
#define KELTO_SELDOM __attribute__((noinline, cold))         // for what runs once per message or never
#define KELTO_SHARED __attribute__((visibility("default")))  // one in a process, whatever its visibility is
#if defined(__clang__)
#define KELTO_POINTED_INTO [[clang::lifetimebound]] // for a parameter into which the returned value points
#else
#define KELTO_POINTED_INTO
#endif

namespace kelto
{

/**
 * A function of the program with its state: like std::function, without the large header of that one. Copies share the
 * function. An empty one is false, and must not be called.
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

/** The category of the library's results, which are its values: kelto::make_error(KT_ERR_BAD_MSG_FILE). */
KELTO_SHARED inline const std::error_category &error_category() noexcept
{
    static const class result_category final : public std::error_category
    {
        const char *name() const noexcept override { return "kelto"; }
        std::string message(int result) const override { return KTResultText(result); }
        std::error_condition default_error_condition(int result) const noexcept override
        {
            const int same = KTResultErrno(result);
            return same != 0 ? std::error_condition(same, std::generic_category())
                             : std::error_condition(result, *this);
        }
    } category;
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
/** An error that is described by its own text alone; the text of its code would say less. */
class KELTO_SHARED told_error final : public error
{
public:
    told_error(const std::error_code &failure, const std::string &what) : error{failure}, what_(what) {}
    const char *what() const noexcept override { return what_.what(); }

private:
    std::runtime_error what_; // a text whose copies cannot fail
};
#endif

/**
 * Where a failure goes: into the error code of a caller who brings one, else it is thrown. In a program of sources with
 * and without exceptions, the linker takes an inline function from any of them: by a parameter of this type it stays
 * that of the sources that throw.
 */
template <bool Throws = KELTO_HAS_EXCEPTIONS> class outcome
{
public:
    outcome(std::error_code &failure) noexcept : failure_(&failure) {}
    outcome() noexcept = default;

    /** Tells a result. @param what  makes the text of an error that is thrown. */
    template <class What> void set(int result, [[maybe_unused]] const What &what) const
    {
        if (failure_ != nullptr)
            *failure_ = make_error(result);
#if KELTO_HAS_EXCEPTIONS
        else if (result != 0)
            throw told_error{make_error(result), what()};
#endif
    }

private:
    std::error_code *failure_ = nullptr;
};

/** Calls a function of the program, and `caught` while it handles what that throws. The parameter: see outcome. */
template <bool Catches, class Function, class Caught>
int guarded(const Function &function, [[maybe_unused]] const Caught &caught) noexcept
{
#if KELTO_HAS_EXCEPTIONS
    try
    {
        return function();
    }
    catch (...)
    {
        caught();
        return KT_ERR_CONVERSION_FAILED;
    }
#else
    return function();
#endif
}

} // namespace detail

/** A use of the library as long as it lives, for the C interface or between other objects, which hold their own. */
class library
{
public:
    library(detail::outcome<> failure KELTO_OR_THROW)
    {
        const int result = KTBeginUse();
        use_.reset(result == 0 ? this : nullptr);
        failure.set(result, [&] { return std::string("kelto::library: ") + KTResultText(result); });
    }

private:
    std::unique_ptr<library, void (*)(library *)> use_ = {nullptr, [](library *) { KTEndUse(); }};
};

} // namespace kelto

#endif
