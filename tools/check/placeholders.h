/** Placeholders ("x" elements) that are no conversion: which they are, and what the checks then do not look at. */
#ifndef KELTO_TOOLS_CHECK_PLACEHOLDERS_H
#define KELTO_TOOLS_CHECK_PLACEHOLDERS_H

#include "check/catalog.h"
#include "check/formats.h"
#include "check/resolved_text.h"

#include <vector>

namespace tool::check
{

/** An "x" whose text and position make no conversion. */
struct BrokenPlaceholder
{
    const Piece *piece;
    int position; // 0 where its "id" is none
    bool isFault; // that alone keeps the message from being formatted
    int typed;    // the position of a whole conversion that its "ts" holds, or 0
};

/** The broken placeholders of a message; what its format has in them is taken out of it. */
std::vector<BrokenPlaceholder> takeBroken(const Catalog &catalog, const Message &message, const ResolvedText &text,
                                          Format &format);

} // namespace tool::check

#endif
