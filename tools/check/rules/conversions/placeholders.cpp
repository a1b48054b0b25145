#include "check/rules/conversions/placeholders.h"

#include <algorithm>
#include <string_view>

namespace tool::check
{
namespace
{

/** The position that these digits name; 0 where they name none. */
int positionIn(std::string_view digits)
{
    constexpr size_t most = 9;
    int number = 0;
    if (digits.size() > most)
        return 0;
    for (const char digit : digits)
    {
        if (digit < '0' || digit > '9')
            return 0;
        number = number * 10 + (digit - '0');
    }
    return number;
}

/** Of the conversions or faults of a message, the first that ends behind an offset of its text before the escapes. */
template <typename Part>
const Part *firstBehind(const std::vector<Part> &parts, const ResolvedText &text, size_t offset)
{
    const auto found = std::partition_point(
        parts.begin(), parts.end(), [&](const Part &part) { return text.beforeEscapes(part.place).end <= offset; });
    return parts.data() + (found - parts.begin());
}

enum class Verdict
{
    isConversion,
    isFault, // another finding tells it
    isBroken,
    isBrokenFault
};

Verdict verdictOn(const Piece &piece, const ResolvedText &text, const Format &format)
{
    const Conversion *const last = firstBehind(format.conversions, text, piece.end - 1);
    if (last != format.conversions.data() + format.conversions.size() &&
        text.beforeEscapes(last->place).end == piece.end)
        return Verdict::isConversion;
    Verdict verdict = Verdict::isBroken;
    const FormatFault *const end = format.faults.data() + format.faults.size();
    for (const FormatFault *fault = firstBehind(format.faults, text, piece.begin); fault != end; ++fault)
    {
        const size_t begin = text.beforeEscapes(fault->place).begin;
        if (begin >= piece.end)
            break;
        if (fault->problem.rule != KT_RULE_POSITION_MISSING)
            return Verdict::isFault;
        if (begin >= piece.begin)
            verdict = Verdict::isBrokenFault; // the conversion ended in front of the position, the "id"
    }
    return verdict;
}

} // namespace

std::vector<BrokenPlaceholder> takeBroken(const ParsedFile &parsed, const Message &message, const ResolvedText &text,
                                          Format &format)
{
    std::vector<BrokenPlaceholder> broken;
    const std::string_view raw = parsed.rawText(message);
    if (message.hasPlaceholder)
        for (const Piece &piece : parsed.piecesOf(message))
        {
            if (piece.kind != Piece::Kind::placeholder)
                continue;
            const Verdict verdict = verdictOn(piece, text, format);
            if (verdict == Verdict::isConversion || verdict == Verdict::isFault)
                continue;
            const int position = // other files have placeholders without one
                piece.positionBegin < piece.end
                    ? positionIn(raw.substr(piece.positionBegin + 1, piece.end - piece.positionBegin - 2))
                    : 0;
            broken.push_back({&piece, position, verdict == Verdict::isBrokenFault, 0});
        }
    if (broken.empty())
        return broken;
    const auto holder = [&](const auto &part) -> BrokenPlaceholder * {
        const size_t begin = text.beforeEscapes(part.place).begin;
        const auto behind = std::partition_point(
            broken.begin(), broken.end(), [begin](const BrokenPlaceholder &row) { return row.piece->end <= begin; });
        return behind != broken.end() && begin >= behind->piece->begin ? &*behind : nullptr;
    };
    const auto isInBroken = [&](const auto &part) { return holder(part) != nullptr; };
    for (const Conversion &conversion : format.conversions)
        if (BrokenPlaceholder *const row = holder(conversion))
            row->typed = conversion.position;
    const auto removeFrom = [&](auto &parts) {
        parts.erase(std::remove_if(parts.begin(), parts.end(), isInBroken), parts.end());
    };
    removeFrom(format.conversions);
    removeFrom(format.faults);
    format.sortPositions();
    return broken;
}

} // namespace tool::check
