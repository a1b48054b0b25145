/**
 * The platform of the fuzz targets. They define the ZEL_ operations for memory and files themselves, so the library calls
 * these: blocks are counted, handed out dirty and limited in size, and files are served from memory, with another content
 * for the second pass if a target wishes so.
 */
#ifndef KELTO_FUZZ_PLATFORM_H
#define KELTO_FUZZ_PLATFORM_H

#include <cstddef>
#include <string>

class Platform
{
public:
    Platform() = delete;

    /** A larger block is refused, as where memory has run out. */
    static constexpr size_t maxBlockBytes = size_t{16} << 20;

    /** What every file holds from now on: when read from its beginning for the first time, and after that. */
    static void serve(std::string first, std::string later);

    /** Blocks and files that were taken and not given back. */
    static long outstanding();

    /** The bytes from this place to the end of the block it lies in; 0 where it lies in none. */
    static size_t bytesLeftInBlock(const void *place);

    /** Whether a block was refused since the last question. */
    static bool hasRefused();
};

#endif
