/**
 * Kelto's conversions with strings that grow in place of buffers. A name that no charset has, and a text that is too
 * long, come out as a Failure.
 */
#ifndef KELTO_TOOLS_CHARSET_H
#define KELTO_TOOLS_CHARSET_H

#include <string>
#include <string_view>

namespace tool
{

/** The longest text, in bytes or units, that the conversions take, which count in 31 bits. */
constexpr size_t longestText = 0x7FFFFFFE;

/** Throws unless the name is one of a charset. */
void requireCharset(const std::string &name);

/** Appends the text from its beginning to its first zero byte, or unit: source ends with one at the latest. */
void appendUcs2(std::u16string &target, const std::string &charset, const char *source, size_t length);
void appendMultiByte(std::string &target, const std::string &charset, const char16_t *source, size_t length);

std::u16string ucs2(const std::string &charset, const std::string &text);
std::string multiByte(const std::string &charset, const std::u16string &text);
std::u16string ucs2FromUtf8(const std::string &text);
std::string utf8(const std::u16string &text);

} // namespace tool

#endif
