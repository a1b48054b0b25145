/**
 * How much of a file is read before each call of the parser. A parser reads what it holds of an unfinished token (a
 * tag, a comment) anew with every call, which chunk by chunk is quadratic in the length of the token: so it may come to
 * a budget that every plausible file keeps, beyond which steps grow with the token.
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
