/**
 * Formats in every way that must agree: from a list of arguments, from pointers, and prepared with typed arguments,
 * into UCS-2 and UTF-8; measured without a buffer, and into blocks of every capacity up to one more than the need and
 * with room to spare. Pages, rows and tests all use it.
 */
#ifndef KELTO_TESTS_SUPPORT_FORMATTING_H
#define KELTO_TESTS_SUPPORT_FORMATTING_H

#include "support/arguments.h"

/** What a call is given beyond format and arguments. */
struct FormatOptions
{
    bool tag = false;
    formTable *table = nullptr;
    void *passThru = nullptr;
};

/**
 * The text in UTF-8; or the name of the result, or its number where it has none, followed where it matters by
 * - " with N", the need of a text that is too long for a test, or of what a failing conversion leaves over,
 * - " from N on", the least capacity at which a conversion fails, where a smaller one cuts the text before it.
 */
std::string formatted(const std::string &format, Arguments &arguments, const FormatOptions &options = {});

#endif
