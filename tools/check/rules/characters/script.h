/**
 * The scripts that languages are written in: letters that the language of a file does not have, and words of letters
 * that look alike ("Сopy" with a Cyrillic first letter).
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CHARACTERS_SCRIPT_H
#define KELTO_TOOLS_CHECK_RULES_CHARACTERS_SCRIPT_H

#include "check/rules/subject.h"

#include <set>
#include <string>

namespace tool::check
{

/** The scripts of a language. */
class Scripts
{
public:
    /** @param language  as a file has it; empty for none that is known. */
    explicit Scripts(const std::string &language);

    void check(Subject &subject) const;

private:
    std::set<int> m_scripts; // by their UScriptCode
};

} // namespace tool::check

#endif
