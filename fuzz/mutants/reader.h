/**
 * Catalogs of one and the same 200 messages for several message libraries, and how each of them is loaded and read whole.
 * Only Kelto has to be installed; of the others those are there that the machine has.
 */
#ifndef KELTO_FUZZ_MUTANTS_READER_H
#define KELTO_FUZZ_MUTANTS_READER_H

#include <string>

constexpr unsigned messageCount = 200;

/** The number is that of a message, from 1. */
std::string messageText(unsigned number);
/** Its key, for the libraries that have no numbers. */
std::string messageKey(unsigned number);

enum class Outcome : char
{
    unknown, // the process ended before it could tell
    loaded,
    refused,
    noMemory,
    timeOut,
    signal
};

/** One library. All paths are those of a directory of its own. */
struct Reader
{
    const char *name;
    const char *format;
    const char *file; // of the catalog
    /** Writes a valid catalog; false where the library or its compiler is not installed. */
    bool (*make)(const std::string &directory);
    /** Loads the catalog and reads every message, in the process that calls. */
    Outcome (*read)(const std::string &directory);
};

extern const Reader keltoReader;
/** Ended by one without a name. */
extern const Reader peerReaders[];

/** Touches every byte of a text. */
void consume(const void *text, size_t bytes);

void writeFile(const std::string &path, const std::string &bytes);

#endif
