/**
 * The numbers of the messages: those that the reference or the translation alone has, and numbers that lie so far apart
 * that a program pays for them.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_NUMBERS_H
#define KELTO_TOOLS_CHECK_RULES_FILES_NUMBERS_H

#include "check/reading/parsed_file.h"

namespace tool::check
{

/** Tells that a file lacks a message of the reference. */
void tellMissing(const ParsedFile &parsed, const Message &original, Findings &findings);

/** Tells that the reference lacks a message. */
void tellExtra(const Message &message, Findings &findings);

/** @param reserved  numbers that rows of selectors take, whether a message has them or not. */
void checkNumbers(const ParsedFile &parsed, size_t reserved, Findings &findings);

} // namespace tool::check

#endif
