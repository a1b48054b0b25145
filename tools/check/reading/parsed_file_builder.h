/**
 * Makes a ParsedFile of messages that stand in a file which is no message file, so that they are checked like any
 * others, and told at their place in it.
 */
#ifndef KELTO_TOOLS_CHECK_READING_PARSED_FILE_BUILDER_H
#define KELTO_TOOLS_CHECK_READING_PARSED_FILE_BUILDER_H

#include "check/reading/parsed_file.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

class ParsedFileBuilder
{
public:
    /** @param body  the place of findings on the file as a whole. */
    ParsedFileBuilder(SourceText source, Range body);

    void setLanguage(const std::string &language, Range place);
    void addFinding(Finding finding);

    /**
     * Adds a message; its place among the texts is set here.
     * @param rawText  before the escapes are resolved.
     * @param pieces   of that text, from its beginning to its end, without gaps.
     */
    void add(Message message, std::string_view rawText, const std::vector<Piece> &pieces);

    /** Adds a message of another ParsedFile, whose file is the same, under a number. */
    void addCopy(const ParsedFile &parsed, const Message &message, int id);

    /** What was made, its messages in the order of their numbers. None counts as missing. */
    ParsedFile take();

    SourceText &source() { return m_parsed.source(); }

private:
    ParsedFile m_parsed;
};

} // namespace tool::check

#endif
