/** Why the library's steps (message/grammar/structure.h) refuse an element, in words for those who write messages. */
#ifndef KELTO_TOOLS_CHECK_READING_REFUSAL_H
#define KELTO_TOOLS_CHECK_READING_REFUSAL_H

#include "check/telling/finding.h"
#include "message/grammar/structure.h"

#include <optional>
#include <vector>

namespace tool::check
{

/**
 * Nothing where the element may start.
 * @param parent  the element that is open, ELM_UNKNOWN for the document itself.
 * @param name    the element's name in the file.
 */
std::optional<Phrase> whyMisplaced(const FirstPassState &pass, ElementID parent, const ElementMapRow &element,
                                   const char *name);

struct AttributeFault
{
    const char *attribute; // its name; null where it is not written
    Rule rule;
    Phrase text;
};

/** At least one, for attributes that kelto::takeAttributes() has refused. */
std::vector<AttributeFault> faultsOf(const ElementMapRow &element, const char **attributes);

} // namespace tool::check

#endif
