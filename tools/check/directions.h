/**
 * The characters of a text that turn its direction: embeddings and overrides (U+202A, U+202B, U+202D, U+202E), isolates
 * (U+2066 to U+2068), and what closes them (U+202C, U+2069).
 */
#ifndef KELTO_TOOLS_CHECK_DIRECTIONS_H
#define KELTO_TOOLS_CHECK_DIRECTIONS_H

#include "check/source_text.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

struct DirectionControl
{
    char32_t character;
    Range place; // in the text
};

/** In the order of the text. */
std::vector<DirectionControl> directionControlsIn(std::string_view utf8Text);

/** Those that are not closed, or close nothing. */
std::vector<DirectionControl> unbalancedOf(const std::vector<DirectionControl> &controls);

/** Whether it begins a part whose direction is its own, which ends at U+2069. */
bool isIsolate(char32_t character);

/** Whether it ends what another one began. */
bool closes(const DirectionControl &control);

/** "U+202E RIGHT-TO-LEFT OVERRIDE". */
std::string nameOf(const DirectionControl &control);

} // namespace tool::check

#endif
