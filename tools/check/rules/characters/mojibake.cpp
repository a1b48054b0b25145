#include "check/rules/characters/mojibake.h"

#include "check/texts/characters.h"
#include "io/icu.h"

#include <algorithm>
#include <array>
#include <map>
#include <unicode/uchar.h>

// Each character beyond ASCII is turned back into the byte that a charset reads as it. Where such bytes, from a lead
// byte on, are UTF-8, the text was perhaps read in that charset by mistake. One character alone proves it where its
// lead byte stands for a letter that hardly occurs in front of such signs; else it takes two in a row.

namespace tool::check
{
namespace
{

/** A charset as which UTF-8 is read by mistake. */
struct MojibakeRow
{
    const char *name;         // for people
    const char *charset;      // for the converter
    std::string_view alone;   // bytes that begin a character of which one is enough to be sure
    bool needsSymbol;         // of those: only where no letter follows
    std::string_view inPairs; // those of which two in a row are
};

constexpr std::string_view allLeads = "\xC2\xC3\xC4\xC5\xC6\xC7\xCE\xCF\xD0\xD1\xD2\xD7\xD8\xD9\xDA\xDB\xE0\xE1\xE2"
                                      "\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEF\xF0";
constexpr MojibakeRow mojibakeRows[] = {
    {"Windows-1252", "windows-1252", "\xC2\xC3\xC4\xC5", false, allLeads},
    {"Windows-1250", "windows-1250", "\xC2\xC3\xC4\xC5", true, allLeads},
    {"Windows-1251", "windows-1251", "", false, allLeads},
    {"Mac OS Roman", "macintosh", "\xC3", false, "\xC3"},
    {"IBM850", "ibm-850", "\xC3", false, "\xC3"},
};

/** The byte beyond ASCII that a charset reads as a character. */
using ByteOf = std::map<char32_t, unsigned char>;

ByteOf bytesIn(const char *charset)
{
    ByteOf bytes;
    UErrorCode status = U_ZERO_ERROR;
    const Converter converter(ucnv_open(charset, &status));
    if (converter == nullptr)
        return bytes;
    for (unsigned byte = 0x80; byte <= 0xFF; ++byte)
    {
        const char source = static_cast<char>(byte);
        std::array<char16_t, 4> units{};
        status = U_ZERO_ERROR;
        const int32_t length = ucnv_toUChars(converter.get(), units.data(), 4, &source, 1, &status);
        if (U_SUCCESS(status) && length == 1 && units[0] != 0xFFFD)
            bytes.emplace(units[0], static_cast<unsigned char>(byte));
    }
    for (unsigned byte = 0x80; byte <= 0x9F; ++byte) // as ISO-8859-1 reads them
        bytes.emplace(byte, static_cast<unsigned char>(byte));
    return bytes;
}

const std::array<ByteOf, std::size(mojibakeRows)> &tables()
{
    static const std::array<ByteOf, std::size(mojibakeRows)> made = [] {
        std::array<ByteOf, std::size(mojibakeRows)> all;
        for (size_t i = 0; i < all.size(); ++i)
            all[i] = bytesIn(mojibakeRows[i].charset);
        return all;
    }();
    return made;
}

bool isPunctuation(char32_t character)
{
    constexpr std::string_view others = "\xA0\xA9\xAA\xAE\xB0\xBA";
    return u_ispunct(static_cast<UChar32>(character)) != 0 || character == 0x2122 || character == 0x20AC ||
           (character < 0x100 && others.find(static_cast<char>(character)) != std::string_view::npos);
}

/** A character whose bytes stand in the text as characters. */
struct MisreadPart
{
    char32_t lead = 0;
    unsigned char leadByte = 0;
    size_t end = 0; // in the text
    std::string meant;
    bool hasLetter = false;      // among those behind the lead
    bool hasPunctuation = false; // only such behind it
};

/** The misread character that begins at an offset of a text, or nothing. */
std::optional<MisreadPart> takePart(std::string_view text, size_t at, const ByteOf &bytes)
{
    MisreadPart part;
    part.lead = takeUtf8(text, at);
    const auto lead = bytes.find(part.lead);
    if (lead == bytes.end())
        return std::nullopt;
    part.leadByte = lead->second;
    part.meant = static_cast<char>(part.leadByte);
    part.hasPunctuation = true;
    const size_t size = part.leadByte >= 0xF0 ? 4 : part.leadByte >= 0xE0 ? 3 : 2;
    while (part.meant.size() < size && at < text.size())
    {
        const char32_t character = takeUtf8(text, at);
        const auto found = bytes.find(character);
        if (found == bytes.end() || found->second >= 0xC0)
            return std::nullopt;
        part.meant += static_cast<char>(found->second);
        part.hasLetter = part.hasLetter || isLetter(character);
        part.hasPunctuation = part.hasPunctuation && isPunctuation(character);
    }
    size_t begin = 0;
    const char32_t meant = part.meant.size() == size ? takeUtf8(part.meant, begin) : 0xFFFD;
    if ((meant == 0xFFFD && part.meant != "\uFFFD") || u_isdefined(static_cast<UChar32>(meant)) == 0)
        return std::nullopt;
    part.end = at;
    return part;
}

bool contains(std::string_view bytes, unsigned char byte)
{
    return bytes.find(static_cast<char>(byte)) != std::string_view::npos;
}

/** Whether one such character is enough to be sure. */
bool isSure(const MojibakeRow &row, const MisreadPart &part, char32_t before, std::string_view behind)
{
    constexpr std::string_view sureInThree[] = {"\xE2\x80", "\xE2\x82", "\xE2\x84", "\xEF\xBB\xBF", "\xEF\xBF\xBD"};
    const bool isThree = part.leadByte >= 0xE0 && row.alone.size() > 1 &&
                         std::any_of(std::begin(sureInThree), std::end(sureInThree), [&part](std::string_view begin) {
                             return std::string_view(part.meant).substr(0, begin.size()) == begin;
                         });
    if (isThree)
        return true;
    if (!contains(row.alone, part.leadByte) || (row.needsSymbol && part.hasLetter))
        return false;
    size_t at = 0;
    const bool isBeforeLetter = !behind.empty() && isLetter(takeUtf8(behind, at));
    const bool isEndOfCapitals = part.hasPunctuation && u_isupper(static_cast<UChar32>(before)) != 0 && !isBeforeLetter;
    const bool isWord = part.hasPunctuation && !isLetter(before) && !isBeforeLetter && part.leadByte != 0xC2;
    return !isEndOfCapitals && !isWord;
}

} // namespace

std::optional<Misreading> findMisreading(std::string_view utf8Text)
{
    char32_t before = 0;
    for (size_t at = 0; at < utf8Text.size();)
    {
        if (static_cast<unsigned char>(utf8Text[at]) < 0x80)
        {
            before = static_cast<unsigned char>(utf8Text[at++]);
            continue;
        }
        for (size_t i = 0; i < std::size(mojibakeRows); ++i)
        {
            const std::optional<MisreadPart> part = takePart(utf8Text, at, tables()[i]);
            if (!part ||
                !(contains(mojibakeRows[i].alone, part->leadByte) || contains(mojibakeRows[i].inPairs, part->leadByte)))
                continue;
            Misreading misreading{{at, part->end}, part->meant, mojibakeRows[i].name};
            size_t count = 1;
            while (misreading.place.end < utf8Text.size())
            {
                const std::optional<MisreadPart> next = takePart(utf8Text, misreading.place.end, tables()[i]);
                if (!next || !contains(mojibakeRows[i].inPairs, next->leadByte))
                    break;
                misreading.place.end = next->end;
                misreading.meant += next->meant;
                ++count;
            }
            if (count > 1 || isSure(mojibakeRows[i], *part, before, utf8Text.substr(part->end)))
                return misreading;
        }
        before = takeUtf8(utf8Text, at);
    }
    return std::nullopt;
}

std::optional<size_t> beyondAscii(std::string_view bytes)
{
    std::optional<size_t> first;
    for (size_t at = 0; at < bytes.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(bytes, at);
        if (character == 0xFFFD && bytes.substr(begin, at - begin) != "\uFFFD")
            return std::nullopt;
        if (character >= 0x80 && !first)
            first = begin;
    }
    return first;
}

} // namespace tool::check
