/**
 * The attributes of a file and of its messages. The language is that of the path and not that of the reference. The
 * product is that of the reference. Other names of messages tell that their numbers were mixed up.
 */
#ifndef KELTO_TOOLS_CHECK_ATTRIBUTES_H
#define KELTO_TOOLS_CHECK_ATTRIBUTES_H

#include "check/subject.h"

namespace tool::check
{

/** @param reference  null where there is none. */
void checkLanguage(const Catalog &catalog, const Catalog *reference, Findings &findings);

void compareProduct(const Catalog &catalog, const Catalog &reference, Findings &findings);

/** The names of a message and its original. */
void compareName(Subject &subject);

/** Whether a message was made from the text that its original has now, where it says of which. */
void compareAge(Subject &subject);

} // namespace tool::check

#endif
