#include "message/first_pass.h"

#include "kelto.h"
#include "message/attributes.h"
#include "message/stored_message.h"

// A row for each element says what must hold at its start and at its end.

namespace
{

struct ElementRule
{
    ElementID mustFollow;      // what `last` has to be at the start; ELM_UNKNOWN: anything
    int FirstPassState::*once; // the flag that the start must not find set, and sets; null: none
    bool (*onStart)(FirstPassState &, const char **attrs);
    ElementID lastAtEnd; // what `last` becomes at the end; ELM_UNKNOWN: it stays
    bool (*onEnd)(FirstPassState &);
};

bool startFile(FirstPassState &, const char **attrs)
{
    return kelto::readFileAttributes(attrs).areAccepted();
}

bool startMessage(FirstPassState &pass, const char **attrs)
{
    const int id = kelto::readMessageId(attrs);
    if (id == 0)
        return false;
    if (id > pass.highestId)
        pass.highestId = id;
    pass.sourceSeen = false;
    return true;
}

bool countPlaceholder(FirstPassState &pass, const char **attrs)
{
    constexpr size_t brackets = 2;
    const kelto::Placeholder placeholder = kelto::readPlaceholder(attrs);
    if (placeholder.text != nullptr)
        pass.textSize += std::strlen(placeholder.text);
    if (placeholder.isAccepted() && !pass.raw)
        pass.textSize += std::strlen(placeholder.position) + brackets;
    return placeholder.isAccepted();
}

bool endXliff(FirstPassState &pass)
{
    return pass.fileSeen;
}

bool endFile(FirstPassState &pass)
{
    return pass.headerSeen && pass.bodySeen;
}

bool endMessage(FirstPassState &pass)
{
    return pass.sourceSeen;
}

bool endText(FirstPassState &pass)
{
    pass.textSize += kelto::terminatorBytes;
    return true;
}

/** By ElementID. */
constexpr ElementRule elementRules[] = {
    /* unknown       */ {},
    /* xliff         */ {ELM_UNKNOWN, &FirstPassState::xliffSeen, nullptr, ELM_UNKNOWN, endXliff},
    /* file          */ {ELM_XLIFF, &FirstPassState::fileSeen, startFile, ELM_XLIFF, endFile},
    /* header        */ {ELM_FILE, &FirstPassState::headerSeen, nullptr, ELM_FILE, nullptr},
    /* body          */ {ELM_FILE, &FirstPassState::bodySeen, nullptr, ELM_FILE, nullptr},
    /* trans-unit    */ {ELM_BODY, nullptr, startMessage, ELM_BODY, endMessage},
    /* source        */ {ELM_TRANS_UNIT, &FirstPassState::sourceSeen, nullptr, ELM_TRANS_UNIT, endText},
    /* x             */ {ELM_SOURCE, nullptr, countPlaceholder, ELM_SOURCE, nullptr},
    // A message ends at these: what follows them inside it is no part of its text, and no "x" or "source" may follow.
    /* context-group */ {},
    /* context       */ {},
    /* note          */ {},
};
static_assert(sizeof elementRules == (ELM_NOTE + 1) * sizeof(ElementRule));

/** Whether an element may start here, by its rule. */
bool isAcceptedAtStart(FirstPassState &pass, const ElementRule &rule, const char **attrs)
{
    if (rule.mustFollow != ELM_UNKNOWN && pass.last != rule.mustFollow)
        return false;
    if (rule.once != nullptr)
    {
        if (pass.*rule.once)
            return false;
        pass.*rule.once = true;
    }
    return rule.onStart == nullptr || rule.onStart(pass, attrs);
}

} // namespace

void kelto::startInFirstPass(FirstPassState &pass, const ElementMapRow &element, const char **attrs) noexcept
{
    if (element.id == ELM_UNKNOWN || element.level != pass.depth ||
        !isAcceptedAtStart(pass, elementRules[element.id], attrs))
    {
        pass.error = KT_ERR_BAD_MSG_FILE;
        return;
    }
    ++pass.depth;
    pass.last = element.id;
}

void kelto::endInFirstPass(FirstPassState &pass, const ElementMapRow &element) noexcept
{
    const ElementRule &rule = elementRules[element.id];
    if (rule.lastAtEnd != ELM_UNKNOWN)
        pass.last = rule.lastAtEnd;
    if (element.id == ELM_UNKNOWN || (rule.onEnd != nullptr && !rule.onEnd(pass)))
        pass.error = KT_ERR_BAD_MSG_FILE;
    else
        --pass.depth;
}

void startElement1(void *state, const char *name, const char **attrs)
{
    auto &pass = *static_cast<FirstPassState *>(state);
    if (pass.error == 0)
        kelto::startInFirstPass(pass, kelto::findElement(name), attrs);
}

void endElement1(void *state, const char *name)
{
    auto &pass = *static_cast<FirstPassState *>(state);
    if (pass.error == 0)
        kelto::endInFirstPass(pass, kelto::findElement(name));
}

void characterData1(void *state, const char *, int length)
{
    auto &pass = *static_cast<FirstPassState *>(state);
    if (pass.error == 0 && pass.last == ELM_SOURCE)
        pass.textSize += static_cast<unsigned>(length);
}
