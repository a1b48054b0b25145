/**
 * Messages of a file that have the texts of others: one text at two messages whose originals have nothing in common,
 * and exchanged texts of two neighbours.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_NEIGHBOURS_H
#define KELTO_TOOLS_CHECK_RULES_FILES_NEIGHBOURS_H

#include "check/rules/files/lengths.h"
#include "check/rules/subject.h"

#include <array>
#include <vector>

namespace tool::check
{

class Neighbours
{
public:
    Neighbours(const ParsedFile &parsed, const ParsedFile &reference);

    /** Takes note of a message, which has words as its original has. */
    void add(Subject &subject, Lengths lengths);

    /** Adds the findings on all messages together. @param usualRatio  of the lengths. */
    void finish(double usualRatio, Findings &findings);

private:
    /** The beginnings of a few words of a text, many of which the languages of Europe have in common. */
    using Stems = std::array<uint32_t, 12>;

    struct Said
    {
        const Message *message = nullptr;
        const Message *original = nullptr;
        uint64_t hash = 0; // of the text's tokens, marks at the ends aside
        Lengths lengths{};
        uint32_t placeholders = 0; // a sum of the hashes of all
        uint16_t words = 0;
        bool denies = false;
        bool originalDenies = false;
        bool isSame = false;       // as the original
        uint32_t originalWord = 0; // the hash of an original that is one word
        Stems stems{};
        Stems originalStems{};
    };

    void findRepeated(Findings &findings) const;
    void findExchanged(double usual, Findings &findings) const;
    static void find(Findings &findings, const Said &said, Phrase text, const Said &other);

    /** @param language  the bit of the language of the text, whose small words are left out. */
    static Stems stemsIn(const Tokens &tokens, uint32_t language);
    static unsigned common(const Stems &a, const Stems &b);
    static bool isDistinct(const Said &a, const Said &b);
    static bool areOpposites(const Said &a, const Said &b);

    std::string_view m_language;
    std::string_view m_originalLanguage;
    bool m_countsWords;
    std::vector<Said> m_said;
};

} // namespace tool::check

#endif
