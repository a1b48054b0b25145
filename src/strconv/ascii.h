/**
 * Letters and digits of ASCII, in units of any type: the place of a letter in the alphabet, for tables that are
 * searched by the first letters of names, and the value of a digit.
 */
#ifndef KELTO_STRCONV_ASCII_H
#define KELTO_STRCONV_ASCII_H

namespace kelto
{

constexpr unsigned letterCount = 26;

/** The place of a letter in either case, from 0 on; letterCount or more for any other unit. */
template <typename Unit> constexpr unsigned letterOf(Unit unit) noexcept
{
    return (static_cast<unsigned>(unit) | 0x20U) - 'a';
}

/** The value of a digit; 10 or more for any other unit. */
template <typename Unit> constexpr unsigned digitOf(Unit unit) noexcept
{
    return static_cast<unsigned>(unit) - '0';
}

template <typename Unit> constexpr bool isDigit(Unit unit) noexcept
{
    return digitOf(unit) < 10;
}

} // namespace kelto

#endif
