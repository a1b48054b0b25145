/** The escapes of message texts, which the second pass resolves at the end of each message. */
#ifndef KELTO_MESSAGE_ESCAPES_H
#define KELTO_MESSAGE_ESCAPES_H

extern "C" {
#pragma GCC visibility push(default)

/**
 * Resolves the escapes \\ \t \r \n \" of a message in place, up to its first zero byte; any other backslash stays. What
 * the message shrinks by becomes zero bytes.
 */
void handleEscape(const char *text);

#pragma GCC visibility pop
}

#endif
