/**
 * The conversions of the add-on, which the program knows by their names and arguments whether the add-on is there or
 * not: checks, generated headers and translators' files so need no --form for them. Where it was built, messages are
 * formatted with it.
 */
#ifndef KELTO_TOOLS_LANGUAGE_CONVERSIONS_H
#define KELTO_TOOLS_LANGUAGE_CONVERSIONS_H

#include <string>
#include <string_view>

struct formTable; // kelto.h

namespace tool
{

/** Their names and arguments, in front of "nil" and the built-in conversions. They write nothing. Read only. */
formTable *namedConversions();

/** Whether the add-on is there, so that messages are formatted with it. */
bool hasLanguageConversions();

/** The conversions of a language, as "de_AT", for formatting; namedConversions() where it has none. */
formTable *conversionsOf(const std::string &language);

/**
 * Whether two conversions write the same value, one as it always is and the other as a language does: "d" and "number".
 */
bool differInLanguageAlone(std::string_view one, std::string_view other);

} // namespace tool

#endif
