#include "catalog/known_messages.h"

#include <new>

namespace kelto
{

KnownMessages::~KnownMessages()
{
    for (uint32_t number = 0; number < m_denseCount; ++number)
        delete m_dense[number].load(std::memory_order_relaxed);
    clear(m_root);
}

void KnownMessages::setDense(uint32_t highestNumber) noexcept
{
    // cppcheck-suppress leakReturnValNotUsed
    m_dense.reset(new (std::nothrow) std::atomic<KnownMessage *>[size_t{highestNumber} + 1] {});
    m_denseCount = m_dense != nullptr ? highestNumber + 1 : 0;
}

KnownMessage *KnownMessages::get(uint32_t number, size_t languages, bool isUnknown) noexcept
{
    if (KnownMessage *const there = find(number))
        return there;
    std::unique_ptr<KnownMessage> message = KnownMessage::make(number, languages);
    if (message == nullptr || (isUnknown && !countUnknown()))
        return nullptr;
    message->isUnknown.store(isUnknown, std::memory_order_relaxed);
    KnownMessage *kept = nullptr;
    if (number >= m_denseCount)
        kept = keepInTree(message);
    else if (m_dense[number].compare_exchange_strong(kept, message.get(), std::memory_order_acq_rel))
        kept = message.release();
    if (isUnknown && message != nullptr) // this record was not kept: another thread's is there, or memory was short
        m_unknownCount.fetch_sub(1, std::memory_order_relaxed);
    return kept;
}

void KnownMessages::setKnown(KnownMessage &message) noexcept
{
    if (message.isUnknown.exchange(false, std::memory_order_relaxed))
        m_unknownCount.fetch_sub(1, std::memory_order_relaxed);
}

bool KnownMessages::countUnknown() noexcept
{
    unsigned count = m_unknownCount.load(std::memory_order_relaxed);
    while (count < mostUnknown)
        if (m_unknownCount.compare_exchange_weak(count, count + 1, std::memory_order_relaxed))
            return true;
    return false;
}

KnownMessage *KnownMessages::findInTree(uint32_t number) const noexcept
{
    Node *node = &m_root;
    for (unsigned depth = 0;; ++depth)
    {
        const uintptr_t content = node->at(number, depth).load(std::memory_order_acquire);
        if ((content & mark) == 0)
        {
            KnownMessage *const message = messageIn(content);
            return message != nullptr && message->number() == number ? message : nullptr;
        }
        node = nodeIn(content);
    }
}

/**
 * Puts a message into the tree. @return the message that is there now: this one, or another thread's, and then the
 * caller still owns this one; null without memory.
 */
KnownMessage *KnownMessages::keepInTree(std::unique_ptr<KnownMessage> &message) noexcept
{
    const uint32_t number = message->number();
    Node *node = &m_root;
    for (unsigned depth = 0;;)
    {
        Place &place = node->at(number, depth);
        uintptr_t content = place.load(std::memory_order_acquire);
        if ((content & mark) != 0)
        {
            node = nodeIn(content);
            ++depth;
            continue;
        }
        KnownMessage *const there = messageIn(content);
        if (there == nullptr)
        {
            if (place.compare_exchange_strong(content, reinterpret_cast<uintptr_t>(message.get()),
                                              std::memory_order_acq_rel))
                return message.release();
            continue;
        }
        if (there->number() == number)
            return there;
        std::unique_ptr<Node> deeper(new (std::nothrow) Node);
        if (deeper == nullptr)
            return nullptr;
        deeper->at(there->number(), depth + 1).store(content, std::memory_order_relaxed);
        if (place.compare_exchange_strong(content, reinterpret_cast<uintptr_t>(deeper.get()) | mark,
                                          std::memory_order_acq_rel))
            static_cast<void>(deeper.release());
    }
}

void KnownMessages::clear(Node &node) noexcept
{
    for (Place &place : node.children)
    {
        const uintptr_t content = place.load(std::memory_order_relaxed);
        if ((content & mark) == 0)
            delete messageIn(content);
        else
        {
            clear(*nodeIn(content));
            delete nodeIn(content);
        }
    }
}

} // namespace kelto
