#include "message/grammar/structure.h"

#include "message/grammar/attributes.h"
#include "message/stored_message.h"

// A row for each element says what must hold at its start and at its end.

namespace
{

bool takeFile(FirstPassState &, const char **attrs)
{
    return kelto::readFileAttributes(attrs).areAccepted();
}

bool takeMessage(FirstPassState &pass, const char **attrs)
{
    const int id = kelto::readMessageId(attrs);
    if (id == 0)
        return false;
    if (id > pass.highestId)
        pass.highestId = id;
    return true;
}

bool takePlaceholder(FirstPassState &pass, const char **attrs)
{
    constexpr size_t brackets = 2;
    const kelto::Placeholder placeholder = kelto::readPlaceholder(attrs);
    if (placeholder.text != nullptr)
        pass.textSize += std::strlen(placeholder.text);
    if (placeholder.isAccepted() && !pass.raw)
        pass.textSize += std::strlen(placeholder.position) + brackets;
    return placeholder.isAccepted();
}

using Pass = FirstPassState;

/** By ElementID. */
constexpr kelto::ElementRule elementRules[] = {
    /* unknown       */ {},
    /* xliff         */ {ELM_UNKNOWN, &Pass::xliffSeen, nullptr, ELM_UNKNOWN, {ELM_FILE}, 0},
    /* file          */ {ELM_XLIFF, &Pass::fileSeen, takeFile, ELM_XLIFF, {ELM_HEADER, ELM_BODY}, 0},
    /* header        */ {ELM_FILE, &Pass::headerSeen, nullptr, ELM_FILE, {}, 0},
    /* body          */ {ELM_FILE, &Pass::bodySeen, nullptr, ELM_FILE, {}, 0},
    /* trans-unit    */ {ELM_BODY, nullptr, takeMessage, ELM_BODY, {ELM_SOURCE}, 0},
    /* source        */ {ELM_TRANS_UNIT, &Pass::sourceSeen, nullptr, ELM_TRANS_UNIT, {}, kelto::terminatorBytes},
    /* x             */ {ELM_SOURCE, nullptr, takePlaceholder, ELM_SOURCE, {}, 0},
    // A message ends at these: what follows them inside it is no part of its text, and no "x" or "source" may follow.
    /* context-group */ {},
    /* context       */ {},
    /* note          */ {},
};
static_assert(sizeof elementRules == (ELM_NOTE + 1) * sizeof(kelto::ElementRule));

} // namespace

const kelto::ElementRule &kelto::ruleOf(ElementID id) noexcept
{
    return elementRules[id];
}

kelto::Start kelto::judgeStart(const FirstPassState &pass, const ElementMapRow &element) noexcept
{
    const ElementRule &rule = elementRules[element.id];
    if (element.id == ELM_UNKNOWN)
        return Start::unknownElement;
    if (element.level != pass.depth)
        return Start::wrongLevel;
    if (rule.mustFollow != ELM_UNKNOWN && pass.last != rule.mustFollow)
        return Start::wrongOrder;
    if (rule.once != nullptr && hasStarted(pass, rule))
        return Start::repetition;
    return Start::accepted;
}

bool kelto::takeAttributes(FirstPassState &pass, const ElementMapRow &element, const char **attrs) noexcept
{
    const ElementRule &rule = elementRules[element.id];
    if (rule.once != nullptr)
        pass.*rule.once = true;
    return rule.onStart == nullptr || rule.onStart(pass, attrs);
}

void kelto::openElement(FirstPassState &pass, const ElementMapRow &element) noexcept
{
    if (element.id == ELM_TRANS_UNIT)
        pass.sourceSeen = false;
    ++pass.depth;
    pass.last = element.id;
}

void kelto::closeElement(FirstPassState &pass, const ElementMapRow &element) noexcept
{
    const ElementRule &rule = elementRules[element.id];
    if (rule.lastAtEnd != ELM_UNKNOWN)
        pass.last = rule.lastAtEnd;
    pass.textSize += rule.bytesAtEnd;
    --pass.depth;
}

bool kelto::hasWhatItNeeds(const FirstPassState &pass, const ElementMapRow &element) noexcept
{
    for (const ElementID needed : elementRules[element.id].needed)
        if (needed != ELM_UNKNOWN && !hasStarted(pass, elementRules[needed]))
            return false;
    return true;
}
