/**
 * The IDs of a table with few messages and high numbers, in their order, so that a walk over its messages need not look
 * at every number in between. The index of such a table is kept beside it from its loading to its release. Other tables
 * have none, nor have those for whose index there was no memory.
 */
#ifndef KELTO_MESSAGE_SPARSE_INDEX_H
#define KELTO_MESSAGE_SPARSE_INDEX_H

#include <cstddef>
#include <cstdint>
#include <memory>

struct MessageTable;

namespace kelto
{

class SparseIndex
{
public:
    /** Whether the numbers are so high that few of a table's pointers lead to messages. */
    static bool isNeeded(uint32_t highestId, size_t messages) noexcept;

    /** An index to be filled, where one is needed and there is memory for it; else null. */
    static std::unique_ptr<SparseIndex> create(uint32_t highestId, size_t messages) noexcept;

    /** Notes an ID, in any order. */
    void add(uint32_t id) noexcept
    {
        if (m_count < m_capacity)
            m_ids[m_count] = id;
        ++m_count;
    }

    /** The lowest ID above this one; 0 when there is none. */
    uint32_t next(uint32_t after) const noexcept;

    /* The indexes of all tables, by handle. To find or detach one, the caller holds `tableListMutex`, or nobody else
     * uses the library; to attach one takes no lock. An index that was given more IDs than it has room for is
     * dropped. */
    static void attach(std::unique_ptr<SparseIndex> index, const MessageTable *table) noexcept;
    static void detach(const MessageTable *table) noexcept;
    static SparseIndex *find(const MessageTable *table) noexcept;

private:
    SparseIndex() = default;

    const MessageTable *m_table = nullptr;
    std::unique_ptr<uint32_t[]> m_ids;
    size_t m_count = 0, m_capacity = 0;
    SparseIndex *m_next = nullptr;

    static SparseIndex *all; // the newest first; changed atomically
};

} // namespace kelto

#endif
