/**
 * What a translation keeps of its original, whatever the language: white space, line breaks, the punctuation that it
 * ends with, brackets in pairs, and what is no word, as addresses, options and numbers.
 */
#ifndef KELTO_TOOLS_CHECK_WORDING_H
#define KELTO_TOOLS_CHECK_WORDING_H

#include "check/subject.h"

namespace tool::check
{

/** The text between the white space that it begins and ends with. */
Range coreOf(std::string_view text);

/** Compares a message with its original, which it has. */
void compareWording(Subject &subject);

/** "/n" in place of "\n", where there is no original to tell it by. */
void checkSlashes(Subject &subject);

} // namespace tool::check

#endif
