/**
 * One language of a catalog: its name, its conversions, and its file, which is loaded when it is first needed. Many
 * threads may need it at once; one of them loads, and the others wait for it.
 */
#ifndef KELTO_CATALOG_LANGUAGE_H
#define KELTO_CATALOG_LANGUAGE_H

#include "catalog/rung_conversions.h"
#include "kelto.h"
#include "strconv/heap_block.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace kelto
{

class Language
{
public:
    /**
     * A language with a folder of its own, or one file as the only language (with an empty name); null without memory.
     */
    static std::unique_ptr<Language> ofFile(const char *name, const char *path) noexcept;
    /** A compiled catalog in memory as the only language. load() reads the data, which must still be there. */
    static std::unique_ptr<Language> ofData(const void *data, size_t size) noexcept;
    ~Language();
    Language(const Language &) = delete;
    Language &operator=(const Language &) = delete;

    /** The name of its folder; empty for a single file. */
    const char *name() const noexcept { return m_texts.get(); }
    /** The name of the language, as "de_AT": name(), or what a single file says of itself, once it is loaded. */
    const char *locale() const noexcept { return *name() != '\0' ? name() : m_ownName; }
    /** The path of its file; after load() that of the file which was loaded. */
    const char *path() const noexcept { return m_path; }
    /** Its conversions, once it is loaded; null for the built-in ones. */
    formTable *conversions() const noexcept { return m_conversions.table(); }

    /** Whether the file was loaded, or was found to be of no use. */
    bool isTried() const noexcept { return m_isTried.load(std::memory_order_acquire); }
    /** The messages; null where there are none. */
    MessageTable *table() const noexcept { return m_table.load(std::memory_order_acquire); }
    /** A message as it stands; null where there is none. */
    const char *text(uint32_t number) const noexcept;

    /** The files that could not be loaded, and why. */
    struct Refusals
    {
        struct
        {
            const char *path;
            int result;
        } files[2];
        size_t count = 0;

        void add(const char *path, int result) noexcept { files[count++] = {path, result}; }
    };

    /**
     * Loads the file unless that was tried before. @param options  of the catalog. @return 0, or why it has no
     * messages.
     */
    int load(const KTCatalogOptions &options, Refusals &refusals) noexcept;

    std::unique_ptr<Language> next;

private:
    Language() = default;
    bool setTexts(const char *name, const char *path) noexcept;
    int loadFrom(const char *path) noexcept;
    int loadSource(Refusals &refusals) noexcept;

    HeapBlock<char> m_texts; // the name, the path, and the path of what a compiled catalog may have been made from
    const char *m_path = nullptr;
    char *m_sourcePath = nullptr; // null where there is no such path
    char m_ownName[6] = {};
    RungConversions m_conversions;
    const void *m_data = nullptr; // in place of a file
    size_t m_size = 0;
    std::mutex m_loading;
    std::atomic<bool> m_isTried{false};
    std::atomic<MessageTable *> m_table{nullptr};
};

} // namespace kelto

#endif
