/** A loaded message file: a handle that releases itself. Every failure comes out as a Failure that names the file. */
#ifndef KELTO_TOOLS_MESSAGE_FILE_H
#define KELTO_TOOLS_MESSAGE_FILE_H

#include "failure.h"
#include "io/memory_file.h"
#include "kelto.h"
#include "library/placeholder_mode.h"

#include <optional>
#include <string>

namespace tool
{

/**
 * What an operand names, in a place where the library reads it: the file itself, or in memory standard input, "-", and
 * what a shell passes as /dev/fd/63.
 */
class LoadableFile
{
public:
    explicit LoadableFile(const std::string &operand);

    const std::string &path() const { return m_path; }

private:
    std::optional<MemoryFile> m_memory;
    std::string m_path;
};

/** A message file, or a compiled catalog; the placeholders of the latter stay as they were compiled. */
class MessageFile
{
public:
    explicit MessageFile(const std::string &path, Placeholders placeholders = Placeholders::positioned);
    /** Takes over a table that is loaded. */
    explicit MessageFile(MessageTable *table) : m_table(table) {}
    ~MessageFile() { KTFreeMessages(m_table); }
    MessageFile(const MessageFile &) = delete;
    MessageFile &operator=(const MessageFile &) = delete;

    /** The facts that the file states about itself; their texts are the file's. */
    KTTableFacts facts() const;

    /** Whether the file is a compiled catalog. */
    bool isCompiled() const { return m_isCompiled; }

    /** The messages as a compiled catalog. */
    std::string compiled() const;

    /** The message of this number. */
    std::string message(unsigned id) const;

    /** The same; null where there is none. */
    const char *find(unsigned id) const;

    /** The language that the file names, as "de_AT". */
    std::string language() const;

    MessageTable *table() const { return m_table; }

    /** Hands every message to the work, with its number, in the order of the numbers. */
    template <typename Work> void forEachMessage(Work work) const
    {
        unsigned id = 0;
        char *text = nullptr;
        while (KTNextMessage(m_table, id, &id, &text) == 0)
            work(id, std::string(text));
    }

private:
    Failure noSuchMessage(unsigned id) const;

    MessageTable *m_table = nullptr;
    bool m_isCompiled = false;
    std::string m_path;
};

/** The product version of a message file or a compiled catalog. Of a message file only its head is read. */
std::string productVersion(const std::string &path);

/** Why the library did not read a message file, with the command that shows the place of a fault. */
Failure fileFailure(const std::string &path, int result);

} // namespace tool

#endif
