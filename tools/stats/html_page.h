/**
 * How far translations are, as a page: one file that needs nothing else, neither a network nor scripts. Whatever texts
 * hold, they are shown as texts.
 */
#ifndef KELTO_TOOLS_STATS_HTML_PAGE_H
#define KELTO_TOOLS_STATS_HTML_PAGE_H

#include "bilingual/import.h"

#include "kelto.h"

#include <string>
#include <vector>

namespace tool::stats
{

/** One language. */
struct Progress
{
    std::string file;
    std::string language; // as the file names it; "de"
    bilingual::Counts counts;
    std::vector<bilingual::Unfinished> unfinished;
};

/**
 * @param reference  what was translated, and its language.
 * @param table      the conversions that are known.
 */
std::string pageOf(const std::string &reference, const std::string &language, const std::vector<Progress> &all,
                   formTable *table);

} // namespace tool::stats

#endif
