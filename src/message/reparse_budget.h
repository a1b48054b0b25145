/**
 * How much of a file is read before each call of the parser. With every call a parser reads its part of an unfinished
 * token (a tag, a comment) again. Chunk by chunk the time for that is quadratic in the length of the token. So there is
 * a budget for it, which every plausible file keeps. Once it is spent, steps grow with the token.
 */
#ifndef KELTO_MESSAGE_REPARSE_BUDGET_H
#define KELTO_MESSAGE_REPARSE_BUDGET_H

#include <cstdint>
#include <expat.h>

namespace kelto
{

class ReparseBudget
{
public:
    explicit ReparseBudget(XML_Parser parser) noexcept : m_parser(parser) {}

    /** The bytes of the next step, when the parser has been given `fed`; 0 where a token is too long. */
    uint64_t nextStep(uint64_t fed) noexcept;

private:
    uint64_t unfinishedBytes(uint64_t fed) const noexcept;

    XML_Parser m_parser;
    uint64_t m_reread = 0;
};

} // namespace kelto

#endif
