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
    pass.sourceSeen = false;
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

} // namespace

constexpr kelto::ElementRule kelto::elementRules[] = {
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
