// What the works are made of and cannot do without: a block, a lock, a conversion, the digits of a double.

#include "format.h"

#include <unicode/ustring.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pthread.h>

namespace bench
{
namespace
{

const Register block("P/block", "malloc, free", [] {
    return job([] {
        void *taken = malloc(32);
        keep(taken);
        free(taken);
        return std::string_view();
    });
});

const Register lock("P/lock", "pthread_mutex", [] {
    return job([mutex = pthread_mutex_t(PTHREAD_MUTEX_INITIALIZER)]() mutable {
        pthread_mutex_lock(&mutex);
        keep(&mutex);
        pthread_mutex_unlock(&mutex);
        return std::string_view();
    });
});

const Register widening("P/text", "ICU u_strFromUTF8WithSub", [] {
    return job([text = std::string("%s[2]: %d[1]"), out = std::array<UChar, 100>()]() mutable {
        int32_t units = 0;
        UErrorCode status = U_ZERO_ERROR;
        keep(text.data());
        u_strFromUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &units, text.c_str(),
                             static_cast<int32_t>(strlen(text.c_str())), 0xFFFD, nullptr, &status);
        return std::u16string_view(out.data(), static_cast<size_t>(units));
    });
});

const Register doublePrintf("P/double", "snprintf", [] {
    return job([value = TenArguments().size, out = std::array<char, 100>()]() mutable {
        keep(&value);
        const int length = snprintf(out.data(), out.size(), "%.3f", value);
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

const Register doubleToChars("P/double", "std::to_chars", [] {
    return job([value = TenArguments().size, out = std::array<char, 100>()]() mutable {
        keep(&value);
        const auto [end, error] = std::to_chars(out.begin(), out.end(), value, std::chars_format::fixed, 3);
        return std::string_view(out.data(), static_cast<size_t>(end - out.data()));
    });
});

} // namespace
} // namespace bench
