/** The text of a message as a program gets it, and the way back to what stands in the file. */
#ifndef KELTO_TOOLS_CHECK_TEXTS_RESOLVED_TEXT_H
#define KELTO_TOOLS_CHECK_TEXTS_RESOLVED_TEXT_H

#include "check/texts/source_text.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

/** A message with its escapes resolved, as a program gets it. */
class ResolvedText
{
public:
    /** @param raw  followed by a zero byte; it must outlive this. */
    explicit ResolvedText(std::string_view raw);
    ResolvedText(const ResolvedText &) = delete;
    ResolvedText &operator=(const ResolvedText &) = delete;

    /** Followed by a zero byte. */
    std::string_view text() const { return m_text; }

    /** Whether a backslash stands in the text, or did before the escapes were resolved. */
    bool hasBackslash() const { return m_hasBackslash; }

    /** The same part of the text before the escapes were resolved. */
    Range beforeEscapes(Range range) const { return {beforeEscapes(range.begin), beforeEscapes(range.end)}; }

private:
    size_t beforeEscapes(size_t offset) const;

    std::string_view m_text;
    bool m_hasBackslash;
    std::string m_resolved;
    std::vector<size_t> m_escapes; // offsets of the bytes that stand for two
};

/** How many bytes an escape at the beginning of a text takes: 2, or 0 where there is none. */
size_t escapeLength(std::string_view text);

} // namespace tool::check

#endif
