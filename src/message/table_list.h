/**
 * The loaded message tables and the list that owns them. The loader inserts each table it completed; every call looks a
 * handle up here before it uses it, so that a wrong handle is never dereferenced; KTFreeMessages() takes a table out.
 * Start-up and the final clean-up create and destroy the one list, `msgTableList`. All memory comes from the library's
 * memory tag.
 */
#ifndef KELTO_MESSAGE_TABLE_LIST_H
#define KELTO_MESSAGE_TABLE_LIST_H

#include <cstdint>

/**
 * One loaded message file. It owns three blocks: both product texts and the message block, which holds `msgCount` + 1
 * message pointers and behind them the texts that these point to, each ended by two zero bytes.
 */
struct MessageTable
{
    char *productName;
    char *productVersion;
    char language[3];  /**< two letters and a zero byte */
    char country[3];   /**< likewise; all zero when the file names none */
    uint32_t msgCount; /**< the highest message ID; 0 for a file without messages */
    char **messages;   /**< by ID; null at 0 and for every ID that the file does not define */
};

/** One node of the list; it owns its table. */
struct tableItem
{
    MessageTable *table; /**< null only in the sentinel */
    tableItem *prev;     /**< the first node's is the sentinel */
    tableItem *next;     /**< null in the last node */
};

/** The list of loaded tables, the newest first. `tableListMutex` guards it. */
class __attribute__((visibility("default"))) MsgTableList
{
    tableItem *head; // a sentinel: its next is the first node, its prev the last, or itself while the list is empty
    unsigned count;

public:
    /** Allocates the sentinel; where that fails, the list stays empty for ever, and hasSentinel() is false. */
    MsgTableList();
    /** Frees every node with its table. Takes no lock: no other call may be in progress. */
    ~MsgTableList();
    MsgTableList(const MsgTableList &) = delete;
    MsgTableList &operator=(const MsgTableList &) = delete;

    /** The first node, or null. */
    tableItem *Head();
    /** The number of tables. */
    unsigned TableCount();
    /** The node of a table, or null; the pointer is not dereferenced. The caller holds `tableListMutex`. */
    tableItem *IsInList(MessageTable *table);
    /**
     * Puts a table first; the list owns it from then on. Takes `tableListMutex`.
     * @return 0, or KT_ERR_NO_MEMORY: the table still belongs to the caller.
     */
    int Insert(MessageTable *table);
    /** Takes a table out and frees it; takes `tableListMutex`. @return 0, or KT_ERR_TABLE_NOT_FOUND. */
    int Remove(MessageTable *table);
    /** Frees a node with the table that it owns, if any; the node is not unlinked. */
    void freeTableItem(tableItem *item);

    /** Whether the constructor found memory; a list without its sentinel is of no use. */
    [[gnu::visibility("hidden")]] bool hasSentinel() const { return head != nullptr; }
    /** IsInList() in a list that has its sentinel, as `msgTableList` has. */
    [[gnu::visibility("hidden")]] tableItem *find(const MessageTable *table) const
    {
        tableItem *item = head->next;
        while (item != nullptr && item->table != table)
            item = item->next;
        return item;
    }
};

namespace kelto
{

/** Frees a table with all that it owns; members that are null own nothing yet. */
void freeTable(MessageTable *table) noexcept;

} // namespace kelto

#endif
