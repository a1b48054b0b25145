/**
 * Where conversion specifications stand in a format string, and what is wrong with one that the library refuses: the
 * library says only that it is.
 */
#ifndef KELTO_TOOLS_SYNTAX_FAULT_H
#define KELTO_TOOLS_SYNTAX_FAULT_H

#include "kelto.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/** A part of a text, in units. */
struct Span
{
    size_t begin;
    size_t end;

    std::u16string_view of(std::u16string_view text) const { return text.substr(begin, end - begin); }
};

struct Specification
{
    Span place;
    int position; // 0 for a malformed one, whose end is then a guess
    Flag_t type;
};

/** The specifications in the order of their places, up to the first that is malformed. */
std::vector<Specification> specificationsOf(const std::u16string &format);

/** The first fault of a refused format string in three lines: what and where, the text, and carets under the place. */
std::string describeSyntaxFault(const std::u16string &format);

} // namespace tool

#endif
