/** Sixteen digits that tell one text from another, so that a later change of a text is noticed. */
#ifndef KELTO_TOOLS_CHECK_TEXTS_DIGEST_H
#define KELTO_TOOLS_CHECK_TEXTS_DIGEST_H

#include <cstdint>
#include <fmt/core.h>
#include <string>
#include <string_view>

namespace tool::check
{

/** The attribute of a unit that holds the digest of the text that it was translated from. */
constexpr const char *sourceDigest = "source-digest";

// Fowler, Noll and Vo's hash: what it tells apart is an edit, not an attack.
inline std::string digestOf(std::string_view text)
{
    constexpr uint64_t prime = 0x100000001B3;
    uint64_t hash = 0xCBF29CE484222325;
    for (const char byte : text)
        hash = (hash ^ static_cast<unsigned char>(byte)) * prime;
    return fmt::format("{:016x}", hash);
}

} // namespace tool::check

#endif
