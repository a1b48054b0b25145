/**
 * A message as a format: prepared, and with the text of each of its conversion specifications.
 */
#ifndef KELTO_TOOLS_PARSED_MESSAGE_H
#define KELTO_TOOLS_PARSED_MESSAGE_H

#include "library/prepared_format.h"

#include <string>
#include <vector>

namespace tool
{

class ParsedMessage
{
public:
    /**
     * Throws a Failure that shows the fault where the text, UTF-8, is no format string.
     * @param table  its conversions.
     */
    ParsedMessage(const std::string &text, formTable *table);

    const PreparedFormat &format() const { return m_format; }

    /** The conversion specification of a position, as "%-5d[2]". */
    const std::string &specification(unsigned position) const { return m_specifications[position - 1]; }

private:
    PreparedFormat m_format;
    std::vector<std::string> m_specifications;
};

} // namespace tool

#endif
