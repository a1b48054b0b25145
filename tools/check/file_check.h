/**
 * The check of a file: a walk over its messages, each by itself and beside the one of the same number in a reference,
 * that calls the rules.
 */
#ifndef KELTO_TOOLS_CHECK_FILE_CHECK_H
#define KELTO_TOOLS_CHECK_FILE_CHECK_H

#include "check/reading/parsed_file.h"
#include "check/rules/conversions/variants.h"
#include "check/texts/formats.h"

#include <vector>

namespace tool::check
{

/** A file that others are compared with. The formats of its messages are parsed once for all of them. */
class Reference
{
public:
    /** @param table  null where messages are no format strings. */
    Reference(const ParsedFile &parsed, formTable *table);

    const ParsedFile &parsed() const { return m_parsed; }
    const Format &formatOf(const Message &message) const
    {
        return m_formats[static_cast<size_t>(&message - m_parsed.messages().data())];
    }

    const Variants &variants() const { return m_variants; }

private:
    const ParsedFile &m_parsed;
    std::vector<Format> m_formats;
    Variants m_variants;
};

/**
 * What is wrong with the messages of a file.
 * @param table      the conversions; null where messages are no format strings.
 * @param reference  what to compare with, or null.
 */
Findings checkMessages(const ParsedFile &parsed, formTable *table, const Reference *reference);

} // namespace tool::check

#endif
