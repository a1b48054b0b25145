/** Placeholders ("x" elements) that are no conversion. Other checks do not look at their parts of the text. */
#ifndef KELTO_TOOLS_CHECK_RULES_CONVERSIONS_PLACEHOLDERS_H
#define KELTO_TOOLS_CHECK_RULES_CONVERSIONS_PLACEHOLDERS_H

#include "check/reading/parsed_file.h"
#include "check/texts/formats.h"
#include "check/texts/resolved_text.h"

#include <vector>

namespace tool::check
{

/** An "x" whose text and position make no conversion. */
struct BrokenPlaceholder
{
    const Piece *piece;
    int position; // 0 where its "id" is none
    bool isFault; // it alone keeps the message from being formatted
    int typed;    // the position of a whole conversion that its "ts" holds, or 0
};

/** The broken placeholders of a message; conversions and faults within them are taken out of its format. */
std::vector<BrokenPlaceholder> takeBroken(const ParsedFile &parsed, const Message &message, const ResolvedText &text,
                                          Format &format);

} // namespace tool::check

#endif
