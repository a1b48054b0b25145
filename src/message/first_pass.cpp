#include "message/first_pass.h"

#include "kelto.h"

void kelto::startInFirstPass(FirstPassState &pass, const ElementMapRow &element, const char **attrs) noexcept
{
    if (judgeStart(pass, element) != Start::accepted || !takeAttributes(pass, element, attrs))
        pass.error = KT_ERR_BAD_MSG_FILE;
    else
        openElement(pass, element);
}

// A program that drives the handlers may end what no start accepted; `depth` then stays, as where something is missing.
void kelto::endInFirstPass(FirstPassState &pass, const ElementMapRow &element) noexcept
{
    closeElement(pass, element);
    if (element.id != ELM_UNKNOWN && hasWhatItNeeds(pass, element))
        return;
    ++pass.depth;
    pass.error = KT_ERR_BAD_MSG_FILE;
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
    if (pass.error == 0 && kelto::takesText(pass))
        pass.textSize += static_cast<unsigned>(length);
}
