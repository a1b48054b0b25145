#include "check/rules/files/numbers.h"

#include <algorithm>

namespace tool::check
{
namespace
{

/** Most numbers up to the highest unused, and many of them. */
bool isSparse(size_t messages, int highest)
{
    constexpr size_t many = 4096;
    const size_t unused = static_cast<size_t>(highest) - std::min(messages, static_cast<size_t>(highest));
    return unused >= many && unused >= 7 * messages;
}

} // namespace

void tellMissing(const ParsedFile &parsed, const Message &original, Findings &findings)
{
    findings.push_back({Rule::messageMissing, original.id, parsed.body().begin, parsed.body(),
                        Phrase{Text::messageMissing}, Note{true, original.unit, {Text::referenceHasItHere}}});
}

void tellExtra(const Message &message, Findings &findings)
{
    findings.push_back(
        {Rule::messageExtra, message.id, message.unit.begin, message.unit, Phrase{Text::messageExtra}, std::nullopt});
}

void checkNumbers(const ParsedFile &parsed, size_t reserved, Findings &findings)
{
    const std::vector<Message> &messages = parsed.messages();
    if (messages.empty())
        return;
    const Message &last = messages.back();
    if (isSparse(messages.size() + reserved, last.id))
        findings.push_back({Rule::sparseIds, last.id, last.unit.begin, last.unit,
                            counted(Text::sparseMessages, messages.size(), {static_cast<unsigned>(last.id)}),
                            std::nullopt});
}

} // namespace tool::check
