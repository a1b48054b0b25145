/**
 * The place of a letter in the alphabet, for tables that are searched by the first letters of names.
 */
#ifndef KELTO_STRCONV_LETTERS_H
#define KELTO_STRCONV_LETTERS_H

namespace kelto
{

constexpr unsigned letterCount = 26;

/** The place of an ASCII letter in either case, from 0 on; letterCount or more for any other unit. */
template <typename Unit> constexpr unsigned letterOf(Unit unit) noexcept
{
    return (static_cast<unsigned>(unit) | 0x20U) - 'a';
}

} // namespace kelto

#endif
