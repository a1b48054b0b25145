/**
 * The handler behind KTGetMsgFileVer(). A file is read no further than its first "file" element, wherever that stands:
 * whether the file can be loaded does not matter.
 */
#ifndef KELTO_MESSAGE_FILE_VERSION_H
#define KELTO_MESSAGE_FILE_VERSION_H

struct VersionQueryState
{
    bool done;     /**< a "file" element was seen */
    char *version; /**< the caller's buffer of 20 bytes */
};

extern "C" {
#pragma GCC visibility push(default)

/**
 * The start-element handler; `state` is a VersionQueryState. Copies the version of the first "file" element where it
 * has at most 19 bytes.
 */
void startElement(void *state, const char *name, const char **attrs);

#pragma GCC visibility pop
}

#endif
