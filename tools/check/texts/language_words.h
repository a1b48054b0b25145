/**
 * Small words by which a language is known, without a dictionary: articles, conjunctions and the like, and words of
 * English programs that no other language has in the same form.
 */
#ifndef KELTO_TOOLS_CHECK_TEXTS_LANGUAGE_WORDS_H
#define KELTO_TOOLS_CHECK_TEXTS_LANGUAGE_WORDS_H

#include "check/texts/tokens.h"

#include <cstdint>
#include <string_view>

namespace tool::check
{

/** A bit for each language that is known; 0 for others. */
uint32_t languageBit(std::string_view language);

/** "de" for the lowest bit of these. */
std::string_view languageOfBit(uint32_t bits);

/** The languages that have a word, by its hash. */
uint32_t languagesOfWord(uint32_t hash);

/** Whether a word is English, and of no other language. */
bool isEnglishWord(uint32_t hash);

/** Whether a language is written in Latin letters, or not known. */
bool isWrittenInLatin(std::string_view language);

/** Whether a language parts its words by blanks, or is not known. */
bool isWrittenWithBlanks(std::string_view language);

/** How the argument behind or in front of some words is related to the others: what is copied "to" somewhere. */
enum class Relation : uint8_t
{
    none,
    source,
    goal,
    whole // "1 of 5"
};

/** Whether a word in front of an argument marks it so. */
bool marksInFront(std::string_view language, uint32_t word, Relation relation);

/** The relation of an argument by the text behind it, in a language that puts its particles there. */
Relation markedBehind(std::string_view language, std::string_view behind);

/** Whether a text denies something by a word for that, in one of the languages that are known. */
bool denies(std::string_view language, const Tokens &tokens);

/** Whether a text may deny something by any word, as "invalid" and "failed". True for languages that are not known. */
bool hintsAtDenial(std::string_view language, const Tokens &tokens);

bool knowsDenial(std::string_view language);

} // namespace tool::check

#endif
