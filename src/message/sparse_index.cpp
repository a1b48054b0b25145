#include "message/sparse_index.h"

#include <algorithm>
#include <new>

// IDs are noted as they come and sorted once, when their table enters the list. A binary search finds the next one.
// The indexes of all tables form a list: a new one is pushed to its front without a lock, and the holder of the lock on
// the tables takes one out.

namespace
{

// Looking at some tens of null pointers between two messages takes less time than a search in the index.
constexpr uint32_t highId = 1U << 16;
constexpr size_t wideGap = 64;

} // namespace

kelto::SparseIndex *kelto::SparseIndex::all = nullptr;

bool kelto::SparseIndex::isNeeded(uint32_t highestId, size_t messages) noexcept
{
    return highestId >= highId && highestId / wideGap >= messages;
}

std::unique_ptr<kelto::SparseIndex> kelto::SparseIndex::create(uint32_t highestId, size_t messages) noexcept
{
    if (!isNeeded(highestId, messages))
        return nullptr;
    std::unique_ptr<SparseIndex> index(new (std::nothrow) SparseIndex);
    if (index == nullptr)
        return nullptr;
    index->m_ids.reset(new (std::nothrow) uint32_t[messages]);
    index->m_capacity = messages;
    return index->m_ids != nullptr ? std::move(index) : nullptr;
}

uint32_t kelto::SparseIndex::next(uint32_t after) const noexcept
{
    const uint32_t *const end = m_ids.get() + m_count;
    const uint32_t *const found = std::upper_bound<const uint32_t *>(m_ids.get(), end, after);
    return found != end ? *found : 0;
}

void kelto::SparseIndex::attach(std::unique_ptr<SparseIndex> index, const MessageTable *table) noexcept
{
    if (index == nullptr || index->m_count > index->m_capacity)
        return;
    std::sort(index->m_ids.get(), index->m_ids.get() + index->m_count);
    index->m_table = table;
    index->m_next = __atomic_load_n(&all, __ATOMIC_RELAXED);
    SparseIndex *const attached = index.release();
    while (!__atomic_compare_exchange_n(&all, &attached->m_next, attached, true, __ATOMIC_ACQ_REL, __ATOMIC_RELAXED))
    {
    }
}

// Other threads may attach indexes meanwhile, in front of the list: only its first link can change.
void kelto::SparseIndex::detach(const MessageTable *table) noexcept
{
    const std::unique_ptr<SparseIndex> detached(find(table));
    if (detached == nullptr)
        return;
    SparseIndex *before = detached.get();
    if (__atomic_compare_exchange_n(&all, &before, detached->m_next, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE))
        return;
    while (before->m_next != detached.get())
        before = before->m_next;
    before->m_next = detached->m_next;
}

kelto::SparseIndex *kelto::SparseIndex::find(const MessageTable *table) noexcept
{
    SparseIndex *index = __atomic_load_n(&all, __ATOMIC_ACQUIRE);
    while (index != nullptr && index->m_table != table)
        index = index->m_next;
    return index;
}
