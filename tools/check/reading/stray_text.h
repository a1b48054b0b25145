/** Text of a file that is no part of a message and not meant for people either, and marks that a merge has left. */
#ifndef KELTO_TOOLS_CHECK_READING_STRAY_TEXT_H
#define KELTO_TOOLS_CHECK_READING_STRAY_TEXT_H

#include "check/texts/source_text.h"

#include <optional>
#include <string>
#include <string_view>

namespace tool::check
{

/** The text between two tags, from its first character that is no blank to its last. */
class StrayText
{
public:
    /** Adds what the parser made of the bytes at a place. */
    void add(std::string_view text, const SourceText &source, Range place);

    bool isThere() const { return !m_beginning.empty(); }

    /** How it begins, quoted. */
    const std::string &beginning() const { return m_beginning; }
    Range place() const { return m_place; }

    void clear() { m_beginning.clear(); }

private:
    std::string m_beginning;
    Range m_place;
};

/** Whether the parser's text stands in the file as it is, so that its bytes can be told apart. */
bool isVerbatim(std::string_view text, const SourceText &source, Range place);

/** How many '<', '|', '=' or '>' a merge writes in front of a version. */
constexpr size_t mergeMarkLength = 7;

/** What parts two versions of a file, at the beginning of a line; nothing where no such mark stands at the offset. */
std::optional<Range> mergeMarkAt(const SourceText &source, size_t offset);

} // namespace tool::check

#endif
