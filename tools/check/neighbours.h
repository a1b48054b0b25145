/**
 * Findings that take many messages of a file together: one text at two messages whose originals have nothing in common,
 * exchanged texts of two neighbours, and texts that are far shorter or longer than others of the file.
 */
#ifndef KELTO_TOOLS_CHECK_NEIGHBOURS_H
#define KELTO_TOOLS_CHECK_NEIGHBOURS_H

#include "check/subject.h"

#include <array>
#include <vector>

namespace tool::check
{

class Neighbours
{
public:
    Neighbours(const Catalog &catalog, const Catalog &reference);

    /** Takes note of a message that has an original. */
    void add(Subject &subject);

    /** Adds the findings on all messages together. */
    void finish(Findings &findings);

private:
    void add(Subject &subject, const Tokens &tokens, const Tokens &original);

    /** The beginnings of a few words of a text, many of which the languages of Europe have in common. */
    using Stems = std::array<uint32_t, 12>;

    struct Said
    {
        const Message *message = nullptr;
        const Message *original = nullptr;
        uint64_t hash = 0; // of the text's tokens, marks at the ends aside
        uint32_t size = 0; // of the text, in characters without placeholders
        uint32_t originalSize = 0;
        uint32_t placeholders = 0; // a sum of the hashes of all
        uint16_t words = 0;
        uint8_t sentences = 1;
        uint8_t originalSentences = 1;
        bool denies = false;
        bool originalDenies = false;
        bool isSame = false;       // as the original
        uint32_t originalWord = 0; // the hash of an original that is one word
        Stems stems{};
        Stems originalStems{};
    };

    void findRepeated(Findings &findings) const;
    void findExchanged(Findings &findings) const;
    void findLengths(Findings &findings) const;
    double usualRatio() const;
    static void find(Findings &findings, Rule rule, const Said &said, Phrase text, const Said *other);

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
