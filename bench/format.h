/** What the formatting works are made of, the same for everybody who takes part. */
#ifndef KELTO_BENCH_FORMAT_H
#define KELTO_BENCH_FORMAT_H

#include "workload.h"

namespace bench
{

constexpr size_t formatRoom = 4000; // units or bytes: enough for every work
constexpr size_t shortRoom = 5;     // too little for W1

/** The arguments of W2. Read through a volatile pointer, so that no compiler formats ahead of time. */
struct TenArguments
{
    const char *user = "Grace Hopper";
    int files = 42;
    double done = 97.25;
    unsigned int mask = 0xBEEF;
    const char *volume = "SYS:";
    double size = 12345.678;
    unsigned int id = 4000000000;
    double load = 0.5;
    int delta = -17;
    const char *state = "mounted";
};

/** 2,000 letters with a conversion behind the first thousand. */
inline std::string longText(std::string_view conversion)
{
    std::string text;
    for (size_t i = 0; i < 1000; ++i)
        text += static_cast<char>("The quick brown fox jumps over the lazy dog. "[i % 45]);
    return text.substr(0, 1000).append(conversion).append(text);
}

} // namespace bench

#endif
