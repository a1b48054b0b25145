#include "io/terminal.h"

#include "io/charset.h"
#include "io/invisible.h"
#include "kelto.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fmt/core.h>
#include <unicode/uchar.h>
#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>
#include <unistd.h>

namespace tool
{
namespace
{

/** Names of charsets and locales have no fixed limit, but the C library refuses longer ones than this. */
constexpr size_t longestName = 256;

constexpr size_t longestQuotation = 60;

/** Of a locale that is named but not installed, the charset that its name ends with, as "de_DE.UTF-8"; or nothing. */
std::string charsetOfMissingLocale()
{
    if (std::setlocale(LC_CTYPE, "") != nullptr)
        return "";
    for (const char *const variable : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char *const value = std::getenv(variable); value != nullptr && *value != '\0')
        {
            const std::string name = std::string(value).substr(0, std::strcspn(value, "@"));
            const size_t dot = name.find('.');
            return dot != std::string::npos && name.size() < longestName ? name.substr(dot + 1) : "";
        }
    return "";
}

std::string systemCharset()
{
    if (std::string named = charsetOfMissingLocale(); !named.empty())
        return named;
    char locale[longestName];
    char charset[longestName];
    KTGetSystemFullLocale(locale);
    KTGetSystemCharSet(charset);
    return charset;
}

/** Whether a character could change or hide others; joiners are kept. */
bool needsEscape(UChar32 character)
{
    const auto code = static_cast<char32_t>(character);
    return isInvisible(code) && !isJoiner(code);
}

std::u16string escapeOf(UChar32 character)
{
    switch (character)
    {
    case '\n':
        return u"\\n";
    case '\r':
        return u"\\r";
    case '\t':
        return u"\\t";
    default:
        const auto code = static_cast<uint32_t>(character);
        const std::string escape = code <= 0xFFFF ? fmt::format("\\u{:04X}", code) : fmt::format("\\U{:08X}", code);
        return {escape.begin(), escape.end()};
    }
}

} // namespace

Terminal::Terminal() : m_charsetName(systemCharset()), m_charset(m_charsetName)
{
    Converter converter = openConverter(m_charset);
    if (converter == nullptr)
    {
        m_charset = "US-ASCII";
        converter = openConverter(m_charset);
    }
    m_showable = charactersOf(converter.get());
}

bool Terminal::showsColors(int descriptor)
{
    const char *const unwanted = std::getenv("NO_COLOR");
    const char *const kind = std::getenv("TERM");
    const bool isDumb = kind != nullptr && std::strcmp(kind, "dumb") == 0;
    return (unwanted == nullptr || *unwanted == '\0') && !isDumb && isatty(descriptor) != 0;
}

std::u16string Terminal::escaped(std::u16string_view text) const
{
    std::u16string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size();)
    {
        const size_t start = i;
        UChar32 character = 0;
        U16_NEXT(text, i, text.size(), character);
        if (needsEscape(character) || !uset_contains(m_showable.get(), character))
            result += escapeOf(character);
        else
            result += text.substr(start, i - start);
    }
    return result;
}

std::string Terminal::show(std::u16string_view text) const
{
    return multiByte(m_charset, escaped(text));
}

std::string Terminal::encodedLines(const std::string &text) const
{
    std::string encoded;
    for (size_t begin = 0;;)
    {
        const size_t end = std::min(text.find('\n', begin), text.size());
        encoded += show(ucs2FromUtf8(text.substr(begin, end - begin)));
        if (end == text.size())
            return encoded;
        encoded += '\n';
        begin = end + 1;
    }
}

std::u16string Terminal::decoded(std::string_view bytes) const
{
    const Converter converter = openConverter(m_charset);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_ESCAPE, UCNV_ESCAPE_C, nullptr, nullptr, &status);
    std::u16string text(4 * bytes.size() + 1, u'\0'); // four units for a byte that is no character
    const int32_t length = ucnv_toUChars(converter.get(), text.data(), static_cast<int32_t>(text.size()), bytes.data(),
                                         static_cast<int32_t>(bytes.size()), &status);
    text.resize(static_cast<size_t>(length));
    return text;
}

std::string Terminal::showBytes(std::string_view bytes) const
{
    return utf8(escaped(decoded(bytes)));
}

std::string Terminal::quote(std::string_view bytes) const
{
    return quote(decoded(bytes));
}

std::string Terminal::quote(std::u16string_view text) const
{
    if (text.size() <= longestQuotation)
        return "\"" + utf8(escaped(text)) + "\"";
    size_t end = longestQuotation;
    U16_SET_CP_START(text, 0, end);
    return "\"" + utf8(escaped(text.substr(0, end))) + "\"...";
}

size_t columns(std::u16string_view text)
{
    size_t count = 0;
    for (size_t i = 0; i < text.size();)
    {
        UChar32 character = 0;
        U16_NEXT(text, i, text.size(), character);
        const auto type = u_charType(character);
        const auto width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
        if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR)
            continue;
        count += width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
    }
    return count;
}

const Terminal &terminal()
{
    static const Terminal theTerminal;
    return theTerminal;
}

std::string wrapped(const std::string &text, size_t width)
{
    std::string lines;
    size_t used = 0;
    for (size_t begin = 0; begin < text.size();)
    {
        const size_t end = std::min(text.find(' ', begin), text.size());
        const std::string word = text.substr(begin, end - begin);
        const size_t wide = columns(ucs2FromUtf8(word));
        if (begin > 0)
            lines += used + 1 + wide > width ? '\n' : ' ';
        used = begin > 0 && used + 1 + wide <= width ? used + 1 + wide : wide;
        lines += word;
        begin = end + 1;
    }
    return lines;
}

} // namespace tool
