/**
 * The layout of a compiled catalog, as docs/compiled-catalogs.md describes it: a header, the name and the version of
 * the product, an entry for each message in the order of the IDs, and the texts in the order of the entries. All
 * numbers are in the byte order of the machine that wrote them. A catalog may lie at any address.
 */
#ifndef KELTO_MESSAGE_COMPILED_LAYOUT_H
#define KELTO_MESSAGE_COMPILED_LAYOUT_H

#include <climits>
#include <cstdint>
#include <cstring>

namespace kelto
{

constexpr char compiledMagic[8] = {'\x89', 'K', 'T', 'C', '\r', '\n', '\x1A', '\n'};
constexpr uint32_t nativeOrder = 0x01020304;
constexpr uint32_t compiledLayout = 1; // its number

struct CompiledHeader
{
    char magic[8];
    uint32_t byteOrder, layout;
    uint32_t highestId, messages;
    uint64_t textBytes;               /**< with the two zero bytes behind each text */
    uint32_t nameBytes, versionBytes; /**< with their zero byte */
    char language[3], country[3], unused[2];
};
static_assert(sizeof(CompiledHeader) == 48);

struct CompiledEntry
{
    uint32_t id, length; /**< the text's bytes, without the zero bytes */
};
static_assert(sizeof(CompiledEntry) == 8);

/** Where the parts of a catalog begin, from its first byte on. */
struct CompiledParts
{
    uint64_t name, version, entries, texts, end;

    explicit CompiledParts(const CompiledHeader &header) noexcept
        : name(sizeof header), version(name + header.nameBytes), entries(version + header.versionBytes),
          texts(entries + uint64_t{header.messages} * sizeof(CompiledEntry)), end(texts + header.textBytes)
    {
    }
};

} // namespace kelto

#endif
