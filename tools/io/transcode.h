/**
 * A whole text from one charset into another through Kelto's conversions, zero bytes included: they end a text for the
 * library, so the texts between them are converted one by one and the zero bytes put back, as the target writes U+0000.
 */
#ifndef KELTO_TOOLS_TRANSCODE_H
#define KELTO_TOOLS_TRANSCODE_H

#include <cstddef>
#include <string>

namespace tool
{

struct Transcoded
{
    std::string bytes;
    size_t malformed = 0;  // characters of the input that were replaced
    size_t unshowable = 0; // characters that the target cannot show, replaced
};

/**
 * Throws a Failure for a charset that is unknown, and for one whose characters have zero bytes in them, which cannot be
 * read.
 */
void requireReadable(const std::string &charset);

/** Both charsets are known, and the first can be read. */
Transcoded transcode(const std::string &from, const std::string &to, const std::string &input);

} // namespace tool

#endif
