/**
 * The messages of a file that select others, as the checker sees them: which message leads to which, what a translation
 * has to be compared with where its rows are others than those of the reference, and what is wrong with rows.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CONVERSIONS_VARIANTS_H
#define KELTO_TOOLS_CHECK_RULES_CONVERSIONS_VARIANTS_H

#include "check/reading/parsed_file.h"
#include "check/texts/formats.h"
#include "library/selector.h"

#include <map>
#include <string>
#include <vector>

namespace tool::check
{

/** How a message is reached: the one that a program asks for, and the places of the rows on the way. */
struct Path
{
    int root = 0;
    std::vector<unsigned> places;
};

class Variants
{
public:
    explicit Variants(const ParsedFile &parsed);

    const ParsedFile &parsed() const { return m_parsed; }

    /** The selector that a message is, or null. */
    const Selector *selector(int id) const;

    /** How a message is reached, by the first way that leads to it; null of one that no row holds. */
    const Path *pathTo(int id) const;

    /** The first message of a number that was read as a whole, or null. */
    const Message *find(int id) const;

    /**
     * What a message of another file has to be compared with here: the sentence to which the same places lead, as far
     * as rows have them, and else the one for any other.
     */
    const Message *counterpart(const Path &path) const;

    /** The numbers that rows take, whether a message has them or not. */
    size_t reservedNumbers() const;

    /** What is wrong with the selectors and their rows. */
    void check(formTable *table, Findings &findings) const;

private:
    struct Checking;
    struct Reached;

    std::string languageOf() const;
    void follow(int root);
    bool has(const Selector &selector, unsigned place) const;

    const ParsedFile &m_parsed;
    std::map<int, const Message *> m_messages;
    std::map<int, Selector> m_selectors;
    std::map<int, Path> m_paths; // of the messages of rows
};

} // namespace tool::check

#endif
