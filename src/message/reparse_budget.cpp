#include "message/reparse_budget.h"

#include "message/file_reader.h"

#include <algorithm>

// The last event of the parser tells where its unfinished token begins. The bytes from there on are read again with the
// next step. Their sum may grow with the file. Where it grows faster, the next step is as long as the unfinished token:
// the token doubles with each step, and the sum stays linear.

namespace
{

using kelto::XmlLimits;

constexpr uint64_t unquestionedRereading = uint64_t{1} << 20;
constexpr uint64_t mostRereading = 32; // for each byte read

constexpr uint64_t wholeChunks(uint64_t bytes)
{
    return (bytes + kelto::chunkBytes - 1) / kelto::chunkBytes * kelto::chunkBytes;
}

} // namespace

uint64_t kelto::ReparseBudget::nextStep(uint64_t fed) noexcept
{
    const uint64_t unfinished = unfinishedBytes(fed);
    if (unfinished > XmlLimits::longestToken)
        return 0;
    m_reread += unfinished;
    if (m_reread <= unquestionedRereading + mostRereading * fed)
        return chunkBytes;
    return wholeChunks(std::min(unfinished, XmlLimits::longestToken + 1 - unfinished));
}

// The bytes of a token whose end the parser has not seen.
uint64_t kelto::ReparseBudget::unfinishedBytes(uint64_t fed) const noexcept
{
    const XML_Index event = XML_GetCurrentByteIndex(m_parser); // negative where there is none
    return event >= 0 && static_cast<uint64_t>(event) < fed ? fed - static_cast<uint64_t>(event) : 0;
}
