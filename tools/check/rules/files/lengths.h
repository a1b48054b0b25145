/**
 * Texts that are far shorter or longer than their originals let expect. The ratio that most messages of the file have
 * counts as usual, so that nothing is told where a file has few of them.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_LENGTHS_H
#define KELTO_TOOLS_CHECK_RULES_FILES_LENGTHS_H

#include "check/rules/subject.h"

#include <vector>

namespace tool::check
{

/** Characters without placeholders. */
struct Lengths
{
    uint32_t text, original;
};

class LengthCheck
{
public:
    explicit LengthCheck(std::string_view language);

    /** Takes note of a message, which has words as its original has. */
    Lengths add(Subject &subject);

    /** How many characters stand for one of the original; 0 where too few messages tell. */
    double usualRatio() const;

    void finish(Findings &findings) const;

private:
    struct Measured
    {
        const Message *message;
        const Message *original;
        Lengths lengths;
        uint8_t sentences;
        uint8_t originalSentences;
    };

    bool m_hasBlanks; // else a word is a few signs
    std::vector<Measured> m_measured;
};

} // namespace tool::check

#endif
