#include "io/transcode.h"

#include "failure.h"
#include "io/charset.h"
#include "io/icu.h"
#include "io/output.h"
#include "io/terminal.h"
#include "text.h"

#include <algorithm>
#include <cstring>

namespace tool
{
namespace
{

/** Charsets in which a shift changes what a byte means. BOCU-1 is none of them, since a zero byte resets it. */
constexpr UConverterType withShiftStates[] = {
    UCNV_ISO_2022, UCNV_HZ, UCNV_EBCDIC_STATEFUL, UCNV_UTF7, UCNV_IMAP_MAILBOX, UCNV_COMPOUND_TEXT, UCNV_ISCII,
};

/** Charsets whose texts end in another state than the one in which they begin, so that one cannot follow another. */
constexpr UConverterType withStateAtTheEnd[] = {UCNV_SCSU, UCNV_COMPOUND_TEXT};

template <size_t Count> bool isOneOf(const std::string &charset, const UConverterType (&types)[Count])
{
    const UConverterType type = ucnv_getType(openConverter(charset).get());
    return std::find(types, types + Count, type) != types + Count;
}

std::u16string decode(const std::string &charset, const std::string &bytes)
{
    std::u16string text;
    text.reserve(bytes.size());
    for (size_t begin = 0;; ++begin)
    {
        const size_t length = std::strlen(bytes.c_str() + begin);
        if (length != 0)
            appendUcs2(text, charset, bytes.c_str() + begin, length);
        begin += length;
        if (begin == bytes.size())
            return text;
        text += u'\0';
    }
}

/** Puts a text together from pieces that were encoded one by one: of their signatures (BOM) only the first stays. */
class EncodedText
{
public:
    explicit EncodedText(const std::string &charset) : m_signature(signatureOf(charset)) {}

    void append(std::string piece)
    {
        if (!m_bytes.empty())
            piece.erase(0, piece.compare(0, m_signature, m_bytes, 0, m_signature) == 0 ? m_signature : 0);
        m_bytes += piece;
    }

    std::string take() { return std::move(m_bytes); }

private:
    static size_t signatureOf(const std::string &charset)
    {
        const std::string letter = multiByte(charset, u"A");
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        ucnv_detectUnicodeSignature(letter.data(), static_cast<int32_t>(letter.size()), &length, &status);
        return static_cast<size_t>(length);
    }

    size_t m_signature; // its length in bytes
    std::string m_bytes;
};

/** U+0000, which ends a text for the library, as the charset writes it. */
std::string encodedZero(const std::string &charset)
{
    char room[16];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(openConverter(charset).get(), room, sizeof room, u"", 1, &status);
    return std::string(room, static_cast<size_t>(length));
}

std::string encode(const std::string &charset, const std::u16string &text)
{
    const std::string zero = encodedZero(charset);
    EncodedText encoded(charset);
    for (size_t begin = 0;; ++begin)
    {
        const size_t length = std::char_traits<char16_t>::length(text.c_str() + begin);
        std::string piece;
        if (length != 0)
            appendMultiByte(piece, charset, text.c_str() + begin, length);
        encoded.append(std::move(piece));
        begin += length;
        if (begin == text.size())
            return encoded.take();
        encoded.append(zero);
    }
}

} // namespace

void requireReadable(const std::string &charset)
{
    requireCharset(charset);
    if (!zeroByteEndsText(charset))
        throw Failure(say(Text::onlyWritten, {terminal().quote(charset)}));
}

Transcoded transcode(const std::string &from, const std::string &to, const std::string &input)
{
    const std::u16string text = decode(from, input);
    const DecodingLoss decoding = lossOfDecoding(from, input, text);
    if (!decoding.asDecoded && isOneOf(from, withShiftStates))
        throw Failure(say(Text::shiftStateOverZero, {terminal().quote(from)}));
    if (text.find(u'\0') != std::u16string::npos && isOneOf(to, withStateAtTheEnd))
        throw Failure(say(Text::notBehindZero, {terminal().quote(to)}));
    const EncodingLoss encoding = lossOfEncoding(to, text);
    const size_t ofMalformed = std::min(encoding.replacements, decoding.characters);
    return {encode(to, forOutput(to, text)), decoding.characters, encoding.characters - ofMalformed};
}

} // namespace tool
