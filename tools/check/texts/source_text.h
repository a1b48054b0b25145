/**
 * A message file as it lies on the disk: its bytes, and where in it a byte stands for a reader. Offsets are bytes of
 * the file, whatever its encoding; lines and columns count from 1, columns in code points. A byte order mark takes no
 * column.
 */
#ifndef KELTO_TOOLS_CHECK_TEXTS_SOURCE_TEXT_H
#define KELTO_TOOLS_CHECK_TEXTS_SOURCE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

/** Bytes of a file, or of a message. */
struct Range
{
    size_t begin = 0;
    size_t end = 0;
};

constexpr std::string_view partOf(std::string_view text, Range range)
{
    return text.substr(range.begin, range.end - range.begin);
}

struct Position
{
    size_t line = 1;
    size_t column = 1;
};

/** A line, or what of it surrounds a place, in three parts: the one in the middle is marked. */
struct Excerpt
{
    std::u16string before, marked, behind;
};

class SourceText
{
public:
    enum class Encoding
    {
        utf8, // and its part US-ASCII
        latin1,
        utf16le,
        utf16be
    };

    SourceText(std::string name, std::string bytes);

    /** How people call the file; not escaped. */
    const std::string &name() const { return m_name; }
    std::string_view bytes() const { return m_bytes; }

    Encoding encoding() const { return m_encoding; }
    /** Takes note of the encoding that the XML declaration names, which counts where characters are bytes. */
    void declareEncoding(std::string_view name);

    /** Takes the code point at an offset below `end`, and moves the offset behind it; U+FFFD for malformed bytes. */
    char32_t take(size_t &offset, size_t end) const;

    /** Whether a line begins at an offset. */
    bool beginsLine(size_t offset) const;

    /** The bytes that a part of the file would take in UTF-8; the part is text in any encoding. */
    size_t sizeAsUtf8(Range range) const;

    /**
     * The offset of the code point that would begin `utf8Bytes` bytes behind the beginning of a range, were the file
     * UTF-8.
     */
    size_t behindUtf8(Range range, size_t utf8Bytes) const;

    /** Counts lines and columns. Called once, before position() and excerpt(). */
    void index();
    Position position(size_t offset) const;
    Excerpt excerpt(Range range) const;

private:
    bool isUtf16() const { return m_encoding == Encoding::utf16le || m_encoding == Encoding::utf16be; }
    char32_t unitAt(size_t offset) const;
    size_t countCodePoints(size_t begin, size_t end) const;
    size_t codePointsBefore(size_t offset) const;
    size_t stepBack(size_t offset, size_t floor, size_t count) const;
    size_t lineEnd(size_t line) const;
    std::u16string decode(size_t begin, size_t end) const;

    std::string m_name;
    std::string m_bytes;
    Encoding m_encoding = Encoding::utf8;
    size_t m_begin = 0;               // behind a byte order mark
    std::vector<size_t> m_lines;      // where each begins
    std::vector<size_t> m_codePoints; // in front of each block of the file
};

/** A part of a file as a text quotes it: cut where it is long, since it may have megabytes. */
std::string quotation(std::string_view utf8Text);

} // namespace tool::check

#endif
