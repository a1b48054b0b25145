/** What the formatting works are made of, the same for everybody who takes part. */
#ifndef KELTO_BENCH_FORMAT_H
#define KELTO_BENCH_FORMAT_H

#include "workload.h"

namespace bench
{

constexpr size_t formatRoom = 4000; // units or bytes: enough for every work
constexpr size_t shortRoom = 5;     // too little for W1

/** The text arguments of W9c: what is made of them fits into a string without the heap, or does not. */
constexpr const char *shortArgument = "files";
constexpr const char *longArgument = "files of the last backup of this server that were not complete";

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

/** The format of W2. */
constexpr const char *tenConversions =
    "%-14s[1]|%5d[2]|%7.2f[3]|%08x[4]|%s[5]|%12.3f[6]|%u[7]|%.1f[8]|%-6d[9]|%10s[10]";

/** 2,000 units of literal text with a conversion in the middle: letters of the English alphabet, or several scripts. */
inline std::string longText(std::string_view conversion)
{
    std::string half;
    for (size_t i = 0; i < 1000; ++i)
        half += "The quick brown fox jumps over the lazy dog. "[i % 45];
    return half + std::string(conversion) + half;
}

inline std::string longMixedText(std::string_view conversion)
{
    std::string half;
    for (size_t i = 0; i < 40; ++i)
        half += u8"Größe, мир, ファイル、文書 数. "; // 25 units
    return half + std::string(conversion) + half;
}

} // namespace bench

#endif
