#include "message/pass_guards.h"

#include "kelto.h"

#include <climits>

namespace
{

using kelto::FirstPassGuard;
using kelto::SecondPassGuard;

constexpr uint64_t maxMessageBytes = INT_MAX; // KTMsgLen() returns an int

// The first pass measures: how many bytes and messages there are.

bool isOutOfProportion(const FirstPassGuard &guard)
{
    return !guard.limits.allowsText(guard.pass.textSize);
}

void guardStart1(void *state, const char *name, const char **attrs)
{
    auto &guard = *static_cast<FirstPassGuard *>(state);
    if (guard.pass.error != 0)
        return;
    const ElementMapRow &element = kelto::findElement(name);
    if (!guard.limits.addElement(element, attrs))
    {
        guard.pass.error = KT_ERR_BAD_MSG_FILE; // the parser, which has stopped, may still tell of the end of "<x/>"
        return;
    }
    kelto::startInFirstPass(guard.pass, element, attrs);
    if (guard.pass.error != 0)
        return;
    guard.open[element.level] = &element;
    if (element.id == ELM_SOURCE)
    {
        guard.messageOffset = guard.pass.textSize;
        ++guard.messages;
    }
    else if (element.id == ELM_X && isOutOfProportion(guard))
        guard.pass.error = KT_ERR_BAD_MSG_FILE;
}

void guardEnd1(void *state, const char *)
{
    auto &guard = *static_cast<FirstPassGuard *>(state);
    if (guard.pass.error != 0)
        return;
    const ElementMapRow &element = *guard.open[guard.pass.depth - 1];
    kelto::endInFirstPass(guard.pass, element);
    if (element.id != ELM_SOURCE)
        return;
    if (guard.pass.textSize - guard.messageOffset > maxMessageBytes + kelto::terminatorBytes)
        guard.pass.error = KT_ERR_NO_MEMORY;
    else if (isOutOfProportion(guard))
        guard.pass.error = KT_ERR_BAD_MSG_FILE;
}

bool isDone1(const void *state)
{
    return static_cast<const FirstPassGuard *>(state)->pass.error != 0;
}

// The second pass compares: whether the block has a place for each text.

/** Takes the place of an element that starts, above all that of a message; false where there is none. */
class TakePlace
{
public:
    explicit TakePlace(SecondPassGuard &guard) : m_guard(guard) {}

    bool operator()(const kelto::FileAttributes &file) const
    {
        return m_guard.pass.table->productName == nullptr && file.areAccepted();
    }

    bool operator()(int id) const
    {
        if (m_guard.isMessageOpen || id == 0 || static_cast<unsigned>(id) > m_guard.pass.table->msgCount)
            return false;
        m_guard.isMessageOpen = true;
        if (m_guard.index != nullptr)
            m_guard.index->add(static_cast<uint32_t>(id));
        return true;
    }

    bool operator()(const kelto::WrittenPlaceholder &placeholder) const
    {
        return m_guard.isMessageOpen && placeholder.text != nullptr && placeholder.size() <= m_guard.room();
    }

private:
    SecondPassGuard &m_guard;
};

void guardStart2(void *state, const char *name, const char **attrs)
{
    auto &guard = *static_cast<SecondPassGuard *>(state);
    if (guard.pass.error != 0)
        return;
    const ElementMapRow &element = kelto::findElement(name);
    if (guard.limits.addElement(element, attrs))
        kelto::startInSecondPass(guard.pass, element, attrs, TakePlace(guard));
}

bool mayEndMessage(const SecondPassGuard &guard)
{
    const SecondPassState &pass = guard.pass;
    return guard.isMessageOpen && guard.room() >= kelto::terminatorBytes &&
           static_cast<uint64_t>(pass.cursor - pass.messages[pass.currentId]) <= maxMessageBytes;
}

void guardEnd2(void *state, const char *name)
{
    auto &guard = *static_cast<SecondPassGuard *>(state);
    if (guard.pass.error != 0)
        return;
    const ElementMapRow &element = kelto::findElement(name);
    if (element.id == ELM_SOURCE && !mayEndMessage(guard))
    {
        guard.pass.error = KT_ERR_BAD_MSG_FILE;
        return;
    }
    kelto::endInSecondPass(guard.pass, element);
    if (element.id == ELM_SOURCE)
        guard.isMessageOpen = false;
}

void guardText2(void *state, const char *text, int length)
{
    auto &guard = *static_cast<SecondPassGuard *>(state);
    if (guard.pass.error != 0 || !guard.pass.inSource)
        return;
    if (guard.isMessageOpen && static_cast<size_t>(length) <= guard.room())
        characterData2(state, text, length);
    else
        guard.pass.error = KT_ERR_BAD_MSG_FILE;
}

bool isDone2(const void *state)
{
    return static_cast<const SecondPassGuard *>(state)->pass.error != 0;
}

} // namespace

const kelto::Handlers kelto::firstPassHandlers = {guardStart1, guardEnd1, characterData1, isDone1};
const kelto::Handlers kelto::secondPassHandlers = {guardStart2, guardEnd2, guardText2, isDone2};

bool kelto::SecondPassGuard::isComplete() const noexcept
{
    const MessageTable &table = *pass.table;
    return table.productVersion != nullptr && !isMessageOpen && room() == 0 &&
           (table.msgCount == 0 || pass.messages[table.msgCount] != nullptr);
}
