/**
 * Message files as the fuzz targets see them. An input is a file; where it holds two form feeds, which no XML document
 * can, the file changes while it is loaded, from what stands before them to what stands behind.
 */
#ifndef KELTO_FUZZ_XLIFF_H
#define KELTO_FUZZ_XLIFF_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

struct MessageFileInput
{
    std::string first, later;
    bool changes;

    MessageFileInput(const uint8_t *data, size_t size);
};

/**
 * The messages of a document by ID, read in one piece and one pass, with growing strings in place of measuring; nothing
 * where the document is not well-formed. Only for documents that the loader accepts.
 */
std::optional<std::map<int, std::string>> readMessages(const std::string &document, bool raw);

/**
 * A mutation that knows what a message file is made of: it writes whole new files; duplicates, removes, moves and renames
 * elements; sets attributes to values at the edge; puts in escapes, entities and document types; and lets a file change
 * between the passes. The arguments are LLVMFuzzerCustomMutator()'s.
 */
size_t mutateMessageFile(uint8_t *data, size_t size, size_t maxSize, unsigned seed);

#endif
