/**
 * The languages that a user wants, as the environment or a program names them. A walk gives them in the order in which
 * catalogs are looked for: "de_AT.UTF-8@euro:fr" is de_AT@euro, de_AT, de@euro, de, fr. It passes over a name that
 * could be more than the name of a folder, as one with a '/'. So a list from anywhere can become part of a path.
 */
#ifndef KELTO_MESSAGE_LANGUAGES_H
#define KELTO_MESSAGE_LANGUAGES_H

#include <cstddef>

namespace kelto
{

/** The bytes of the longest name that is taken for a language. */
constexpr size_t maxLanguageLength = 63;

/** Walks through the languages of a list. */
class LanguageWalk
{
public:
    /** @param list  names separated by ':'; null for the user's, from the environment. */
    explicit LanguageWalk(const char *list) noexcept;

    /** The next language, valid until the next call; null behind the last. */
    const char *next() noexcept;

private:
    bool takeElement() noexcept;

    const char *m_rest; // of the list
    // Of the current element: what is left of "de_AT", empty when it is used up.
    char m_base[maxLanguageLength + 1] = {};
    char m_modifier[maxLanguageLength + 1] = {}; // "@euro", or empty
    char m_name[maxLanguageLength + 1] = {};
    bool m_withModifier = false; // the next name carries it
};

} // namespace kelto

#endif
