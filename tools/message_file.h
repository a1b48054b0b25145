/**
 * The library in use and a loaded message file: handles that release themselves. Every failure comes out as a Failure
 * that names the file.
 */
#ifndef KELTO_TOOLS_MESSAGE_FILE_H
#define KELTO_TOOLS_MESSAGE_FILE_H

#include "failure.h"
#include "kelto.h"

#include <optional>
#include <string>

namespace tool
{

/** The library, started. */
class Library
{
public:
    Library();
    ~Library() { KTClean(); }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
};

class MessageFile
{
public:
    enum class Placeholders
    {
        positioned, // for formatting: %s[1]
        raw         // as the file has them: %s
    };

    explicit MessageFile(const std::string &path, Placeholders placeholders = Placeholders::positioned);
    ~MessageFile() { KTFreeMessages(m_table); }
    MessageFile(const MessageFile &) = delete;
    MessageFile &operator=(const MessageFile &) = delete;

    /** The message of this number; empty where the file has none. Fails for a number above the highest. */
    std::optional<std::string> message(unsigned id) const;

    /** 0 where the file has no message at all. */
    unsigned highestId() const;

private:
    MessageTable *m_table = nullptr;
    std::string m_path;
};

/** A failure of the library to read a message file, with the reason that it does not tell. */
Failure fileFailure(const std::string &path, int result);

} // namespace tool

#endif
