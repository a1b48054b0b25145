/**
 * The messages that a catalog knows, by number, found without a lock; of numbers that no file has, which may come from
 * a network, only so many are kept. Where the first file has few gaps between its numbers, which is usual, these are
 * the indices of an array. All other numbers are in a tree, which is as deep as telling them apart requires.
 */
#ifndef KELTO_CATALOG_KNOWN_MESSAGES_H
#define KELTO_CATALOG_KNOWN_MESSAGES_H

#include "catalog/known_message.h"

#include <climits>

namespace kelto
{

class KnownMessages
{
public:
    KnownMessages() = default;
    ~KnownMessages();
    KnownMessages(const KnownMessages &) = delete;
    KnownMessages &operator=(const KnownMessages &) = delete;

    /** Makes the array, if there is memory for it. Called once, before any other function. */
    void setDense(uint32_t highestNumber) noexcept;

    KnownMessage *find(uint32_t number) const noexcept
    {
        return number < m_denseCount ? m_dense[number].load(std::memory_order_acquire) : findInTree(number);
    }

    /**
     * The record of a number, a new one where there is none.
     * @param isUnknown  whether, as far as is known, no file has the number.
     * @return null where nothing may or can be kept.
     */
    KnownMessage *get(uint32_t number, size_t languages, bool isUnknown) noexcept;

    /** Notes that the number of this message is in a file after all, and no longer counts towards the limit. */
    void setKnown(KnownMessage &message) noexcept;

private:
    static constexpr unsigned mostUnknown = 4096;

    /** A place in the tree: nothing, a message, or a further node (marked by the lowest bit). */
    using Place = std::atomic<uintptr_t>;
    static constexpr unsigned bits = 4;
    static constexpr uintptr_t mark = 1;
    struct Node
    {
        Place children[1U << bits] = {};
        Place &at(uint32_t number, unsigned depth) noexcept { return children[number >> (depth * bits) & 15]; }
    };
    static Node *nodeIn(uintptr_t content) noexcept { return reinterpret_cast<Node *>(content & ~mark); }
    static KnownMessage *messageIn(uintptr_t content) noexcept { return reinterpret_cast<KnownMessage *>(content); }

    KnownMessage *findInTree(uint32_t number) const noexcept;
    KnownMessage *keepInTree(std::unique_ptr<KnownMessage> &message) noexcept;
    bool countUnknown() noexcept;
    static void clear(Node &node) noexcept;

    uint32_t m_denseCount = 0;
    std::unique_ptr<std::atomic<KnownMessage *>[]> m_dense;
    mutable Node m_root;
    std::atomic<unsigned> m_unknownCount{0};
};

} // namespace kelto

#endif
