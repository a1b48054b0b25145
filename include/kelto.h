/**
 * @file kelto.h
 * Kelto: message catalogs, formatting with positions, and character sets.
 *
 * ## 1. Using the library
 *
 * A program loads a message file (XLIFF of a small fixed shape), fetches messages by number, formats them with
 * arguments that each conversion names by position ("%s[2]: %d[1]"), and converts the text to the character set of the
 * user's terminal. This is a complete program in C; in C++ the same calls work, and u"…" literals are UCS-2 texts:
 *
 *     #include <kelto.h>
 *     #include <stdio.h>
 *
 *     int main(void)
 *     {
 *         MessageTable *table = NULL;
 *         char *message = NULL, text[400], path[] = "messages.xlf";
 *         UCS2 wide[100];
 *         unsigned long units = 100; // the capacity; afterwards the length
 *         size_t bytes = sizeof text;
 *
 *         if (KTInit() != 0)
 *             return 1;
 *         if (KTLoadMessages(path, &table) == 0 && KTGetMessage(table, 1, &message) == 0 && message != NULL &&
 *             KTFormatString(NULL, false, &units, wide, message, 7, "files") == 0 &&
 *             KTUCS2ToUTF8(wide, &bytes, text) == 0)
 *             puts(text);
 *         KTClean(); // releases the table too
 *         return 0;
 *     }
 *
 * **Texts.** A UCS-2 string is a zero-terminated array of 16-bit units in host byte order; a character outside the
 * Basic Multilingual Plane is a surrogate pair and counts as two units everywhere. "Units" below are these; "bytes" are
 * bytes of a UTF-8 or multi-byte string. U+0000 inside a text ends it; only the one-step conversions of chapter 5 write
 * it.
 *
 * **Sizes.** A size is passed by pointer: in, the capacity of the buffer, counting the unit (byte) of the terminator;
 * out, what was written, not counting the terminator. A format call that does not fit returns KT_ERR_BUFFER_TOO_SMALL
 * and stores the units that it needs, so the caller supplies that number plus one and calls again. A conversion that
 * does not fit leaves the size as it was.
 *
 * **Ownership.** Every buffer belongs to the caller. A loaded table belongs to the library and is named by its handle;
 * a handle is looked up before it is used, so one that was released is answered with KT_ERR_TABLE_NOT_FOUND. A message
 * is a pointer into its table and lives as long as the table does.
 *
 * **Threads.** Any number of threads may call at once. Nobody may release a table, or change values given by pointer,
 * while another thread still uses them, and no KTInit may run beside the KTClean that ends the last use. The two locale
 * queries change the locale of the whole process.
 *
 * **Results.** Functions return 0 or a negative result code (the enumeration KTResult); nothing is thrown, logged or
 * printed. Pointers must be valid unless their description says that null is allowed.
 *
 * **Untrusted input.** A message file, a format string, an argument's text and the name of a character set may hold
 * anything: the answer is a result code. One thing remains with the program, as with printf. The conversions of a
 * message say of what types the arguments are, and a translation that says "%s" where a number is passed reads a number
 * as an address. The KTvp… calls compare the number of arguments, not their types. A program that loads files from
 * strangers compares a translation's conversions with those of its own message by checkSyntax(); docs/format-strings.md
 * shows how.
 */
#ifndef KELTO_H
#define KELTO_H

#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <uchar.h>

/** The version of this header, as numbers; the build reads it from here. */
#define KELTO_VERSION_MAJOR 1
#define KELTO_VERSION_MINOR 0
#define KELTO_VERSION_PATCH 0
#define KELTO_JOIN_VERSION_(major, minor, patch) #major "." #minor "." #patch
#define KELTO_JOIN_VERSION(major, minor, patch) KELTO_JOIN_VERSION_(major, minor, patch)
/** The same as a text, "1.0.0". */
#define KELTO_VERSION KELTO_JOIN_VERSION(KELTO_VERSION_MAJOR, KELTO_VERSION_MINOR, KELTO_VERSION_PATCH)

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** One 16-bit unit of text in host byte order. ICU's UChar and C++'s char16_t fit without a cast. */
typedef char16_t UCS2;

/** The results of the library: 0 is success, every failure is negative. */
enum KTResult
{
    KT_ERR_NOT_INITIALIZED = -7983,             /**< the library is not started, or could not be */
    KT_ERR_CONVERSION_FAILED = -7986,           /**< a conversion or case mapping failed for another reason */
    KT_ERR_CONVERSION_INVALID_ARGUMENT = -7987, /**< the arguments of a conversion are impossible, as a size of 2^31 */
    KT_ERR_CONVERTER_OPEN_FAILED = -7989,       /**< no character set is known by the name given */
    KT_ERR_BUFFER_TOO_SMALL = -7991,            /**< the output does not fit; a format call stores the units needed */
    KT_ERR_INVALID_PARAMETER = -7992,           /**< an argument is missing or surplus, or is no date and time */
    KT_ERR_FORMAT_SYNTAX = -7993,               /**< a malformed or unknown conversion, or positions not 1 to n */
    KT_ERR_INVALID_MSG_ID = -7994,              /**< a message ID of 0 or above the table's highest */
    KT_ERR_TABLE_NOT_FOUND = -7995,             /**< a table handle that is not, or no longer, loaded */
    KT_ERR_BAD_MSG_FILE = -7996,     /**< a message file that is malformed or breaks the accepted structure */
    KT_ERR_FILE_UNAVAILABLE = -7997, /**< there is no such file */
    KT_ERR_FILE_NOT_OPENED = -7998,  /**< the file exists but cannot be read as a regular file */
    KT_ERR_NO_MEMORY = -7999         /**< memory ran out */
};

/**
 * The name of a result code, as "KT_ERR_FORMAT_SYNTAX"; needs no started library. docs/result-codes.md tells for each
 * code what causes it and what a program does about it.
 * @return a constant text, or null for a number that is no code of this library (0 and -1 are none).
 */
const char *KTResultName(int code);

/**
 * A sentence that tells a person what a result means, in English, without a full stop; needs no started library.
 * @return a constant text, never null: for 0, for -1 (no XML parser could be created) and for numbers that the platform
 *         passed through as well.
 *
 *     fprintf(stderr, "%s: %s\n", path, KTResultText(result));
 */
const char *KTResultText(int code);

/**
 * The error number of the C library that says the same.
 * @return ENOMEM, ENOENT or EINVAL; 0 for a code that none of them names.
 */
int KTResultErrno(int code);

/* ## 2. Start and stop */

/**
 * Starts one user's use of the library; the first call starts the library itself and sets the process's LC_CTYPE locale
 * from the environment (also where the start fails). Each successful call must be matched by one KTClean().
 * @return 0, or KT_ERR_NOT_INITIALIZED when the start failed; everything is then as before, and a later call tries
 *         again.
 */
int KTInit(void);

/**
 * Ends one user's use. The call that leaves no user releases every loaded table and stops the library; the calls that
 * need a started library then return KT_ERR_NOT_INITIALIZED until the next KTInit(). A call without a matching KTInit()
 * is ignored.
 * @return always 0.
 */
int KTClean(void);

/**
 * Starts a use as KTInit() does. The uses that begin and end by these two calls take turns, in any thread and from any
 * library of the process: nobody has to know who comes first and who goes last. A program that calls KTInit() and
 * KTClean() as well does so while such a use lasts.
 * @return as KTInit().
 */
int KTBeginUse(void);

/** Ends a use that KTBeginUse() started, as KTClean() does. */
void KTEndUse(void);

/* ## 3. Messages
 *
 * A message file is an XLIFF document: one "xliff" with one "file" (attributes "source-language", "product-name",
 * "product-version"), which holds one "header" and one "body"; the body's "trans-unit" elements carry the message ID in
 * "ts" or else "id" and the text in "source", where <x ts="%s" id="1"/> stands for "%s[1]". Escapes: \\ \t \r \n \".
 * docs/message-files.md has every rule with an example.
 */

/** One loaded message file; only its address, the handle, is of use to a caller. */
typedef struct MessageTable MessageTable;

/**
 * Loads a message file; each "x" placeholder becomes its "ts" text and its "id" in square brackets, so that a message
 * can be used as a format string. The file is read twice and then no longer needed.
 * @param path   the file, a zero-terminated path as the system's open() takes it; only regular files are read. Not
 *               changed.
 * @param table  out: the handle. Untouched by failures before the file's structure was accepted, null after later ones.
 * @return 0; KT_ERR_NOT_INITIALIZED, KT_ERR_FILE_UNAVAILABLE, KT_ERR_FILE_NOT_OPENED; KT_ERR_BAD_MSG_FILE, also where
 *         two messages have one ID, the file changes in length or structure while it is read, or makes more work than
 *         docs/security.md allows; KT_ERR_NO_MEMORY, also for a message of more than INT_MAX bytes; -1 when no XML
 *         parser can be created; or the platform's own negative value for a file that cannot be read. The table is not
 *         loaded then, and nothing is left to release.
 *
 *     MessageTable *table;
 *     char path[] = "messages.xlf";
 *     int result = KTLoadMessages(path, &table);
 */
int KTLoadMessages(char *path, MessageTable **table);

/**
 * Loads as KTLoadMessages() does, with the same results, but a placeholder becomes its "ts" text alone: for reading,
 * not for formatting.
 */
int KTLoadRawMessages(char *path, MessageTable **table);

/**
 * Fetches a message by its number, in a time that does not depend on how many the file has.
 * @param table    a handle of KTLoadMessages() or KTLoadRawMessages().
 * @param id       1 to the highest ID of the file.
 * @param message  out: the message, zero-terminated UTF-8 (two zero bytes in fact) that the library owns, valid until
 *                 the table is released; null where the file has no message of that number, although the result is 0,
 *                 and on every failure but KT_ERR_NOT_INITIALIZED, which leaves it alone.
 * @return 0, KT_ERR_NOT_INITIALIZED, KT_ERR_TABLE_NOT_FOUND, or KT_ERR_INVALID_MSG_ID for an ID out of range.
 */
int KTGetMessage(MessageTable *table, unsigned int id, char **message);

/**
 * Writes a loaded table as a compiled catalog, which KTLoadCompiledMessages() and KTLoadCompiledData() load in a
 * fraction of the time. The same messages give the same bytes whenever they are compiled on one kind of machine.
 * @param size  in: the capacity of data in bytes; out: the bytes written, or those needed where the result is
 *              KT_ERR_BUFFER_TOO_SMALL. Untouched by other failures.
 * @param data  out: the catalog; untouched by failures. Null is allowed with a capacity of 0.
 * @return 0, KT_ERR_BUFFER_TOO_SMALL, KT_ERR_NOT_INITIALIZED, KT_ERR_TABLE_NOT_FOUND, or KT_ERR_INVALID_PARAMETER where
 *         size is null, or data and the capacity is not 0.
 */
int KTCompileMessages(MessageTable *table, size_t *size, void *data);

/**
 * Loads a compiled catalog, as `kelto compile` and KTCompileMessages() write it. Its table is like any other; whether
 * placeholders have their positions was decided when the messages were loaded for compiling.
 * @param path   the file; as in KTLoadMessages().
 * @param table  out: the handle; null after every failure but KT_ERR_NOT_INITIALIZED, which leaves it alone.
 * @return as KTLoadMessages(); KT_ERR_BAD_MSG_FILE for a file that is no compiled catalog, comes from a machine of
 *         another byte order, has a newer layout, or is damaged: nothing that it says is believed before it is checked.
 *         (There is no checksum: a changed letter is a changed text.) KT_ERR_INVALID_PARAMETER where table is null.
 *
 *     MessageTable *table;
 *     int result = KTLoadCompiledMessages("de.ktc", &table);
 */
int KTLoadCompiledMessages(const char *path, MessageTable **table);

/**
 * Loads a compiled catalog that lies in memory, as one that is part of the program. It is copied, and may lie at any
 * address.
 * @param size  the bytes of the catalog, all of them and no more.
 * @return as KTLoadCompiledMessages(); KT_ERR_INVALID_PARAMETER also where data is null.
 */
int KTLoadCompiledData(const void *data, size_t size, MessageTable **table);

/**
 * Walks over the messages that a table has, in the order of their numbers. A step costs no more for a number that is
 * far away, so that a file with few messages and huge numbers is walked through at once.
 * @param after    the number of the message before; 0 for the first one.
 * @param id       out: the number of the next message; 0 when there is none, and on every other failure but
 *                 KT_ERR_NOT_INITIALIZED, which leaves both outputs alone.
 * @param message  out: the message, as KTGetMessage() gives it; null where `id` is 0.
 * @return 0; KT_ERR_INVALID_MSG_ID where no message has a higher number; KT_ERR_NOT_INITIALIZED,
 *         KT_ERR_TABLE_NOT_FOUND, or KT_ERR_INVALID_PARAMETER where an output is null.
 *
 *     unsigned int id = 0;
 *     char *message;
 *     while (KTNextMessage(table, id, &id, &message) == 0)
 *         printf("%u: %s\n", id, message);
 */
int KTNextMessage(MessageTable *table, unsigned int after, unsigned int *id, char **message);

/** What a message file says about itself; KTTableInfo(). Later versions may add members at the end. */
typedef struct KTTableFacts
{
    size_t structSize;       /**< in: sizeof(KTTableFacts) */
    const char *productName; /**< UTF-8, not empty; the table's, until it is released, like the version */
    const char *productVersion;
    char language[3];       /**< two bytes and a zero byte */
    char country[3];        /**< likewise; the empty text where the file names none */
    unsigned int highestId; /**< of all messages; 0 for a file without any */
} KTTableFacts;

/**
 * Tells what the "file" element of a loaded message file says, and the highest number of its messages.
 * @param info  in: its structSize; out: the rest. Untouched by failures.
 * @return 0, KT_ERR_NOT_INITIALIZED, KT_ERR_TABLE_NOT_FOUND, or KT_ERR_INVALID_PARAMETER for null and for a structSize
 *         that is too small.
 *
 *     KTTableFacts facts = {sizeof facts};
 *     int result = KTTableInfo(table, &facts); // 0, and facts.productVersion is "2.1.0"
 */
int KTTableInfo(MessageTable *table, KTTableFacts *info);

/**
 * Releases a table with all its messages; pointers to them end with it.
 * @return 0, KT_ERR_NOT_INITIALIZED, or KT_ERR_TABLE_NOT_FOUND (nothing is released).
 */
int KTFreeMessages(MessageTable *table);

/**
 * The length in bytes of a text that ends with two zero bytes, without them; needs no started library. A single zero
 * byte counts as one of the text.
 */
int KTMsgLen(const char *message);

/**
 * Copies a text that ends with two zero bytes, and ends the copy with two as well; needs no started library.
 * @param destination  room for KTMsgLen(source) + 2 bytes.
 * @return where the two zero bytes of the source begin.
 */
const char *KTMsgCpy(const char *source, char *destination);

/**
 * Reads the product version that a message file declares. Nothing is loaded: the file is read in pieces of 300 bytes up
 * to the one in which the tag of its first "file" element ends, and is not checked beyond being well-formed so far.
 * (The pieces grow only where tags or comments of more than 36 kB would make reading on like this quadratic.)
 * @param path     as in KTLoadMessages().
 * @param version  out: room for 20 bytes. The version in UTF-8, at most 19 bytes and a zero byte; the empty text on
 *                 every failure but KT_ERR_NOT_INITIALIZED, which leaves it alone.
 * @return as KTLoadMessages(); KT_ERR_BAD_MSG_FILE also when there is no version, an empty one, or one longer than 19
 *         bytes.
 *
 *     char version[20], path[] = "messages.xlf";
 *     int result = KTGetMsgFileVer(path, version); // 0, and version is "2.1.0"
 */
int KTGetMsgFileVer(char *path, char *version);

/**
 * Finds the catalog of a user's language: the first of the files DIRECTORY/LANGUAGE/NAME.ktc and
 * DIRECTORY/LANGUAGE/NAME.xlf that can be opened, with the languages in the order of KTLanguages(). Nothing outside the
 * directory is looked at, whatever the languages are called.
 * @param directory  the folder that holds a folder per language; not empty.
 * @param name       the name of the catalog, the program's own as a rule; not empty, without a '/'.
 * @param languages  as in KTLanguages(): null for the user's.
 * @param size       in: the capacity of path in bytes, the terminator counted; out, on success and after
 *                   KT_ERR_BUFFER_TOO_SMALL: the bytes of the path, the terminator not counted.
 * @param path       out: the path; the empty text on every other result but KT_ERR_NOT_INITIALIZED and
 *                   KT_ERR_INVALID_PARAMETER. Null is allowed where the capacity is 0.
 * @return 0; KT_ERR_FILE_UNAVAILABLE when there is no such file in any language; KT_ERR_FILE_NOT_OPENED when all that
 *         there are cannot be opened; KT_ERR_BUFFER_TOO_SMALL; KT_ERR_INVALID_PARAMETER for a null, an empty or an
 *         impossible argument; KT_ERR_NOT_INITIALIZED, KT_ERR_NO_MEMORY.
 *
 *     char path[4096];
 *     size_t size = sizeof path;
 *     int result = KTFindCatalog("/usr/share/store/messages", "store", NULL, &size, path);
 */
int KTFindCatalog(const char *directory, const char *name, const char *languages, size_t *size, char *path);

/**
 * The languages in which KTFindCatalog() looks, in its order. "de_AT.UTF-8@euro:fr" becomes
 * "de_AT@euro:de_AT:de@euro:de:fr": each name without its character set, then with less and less behind it. "C" and
 * "POSIX" stand for the texts in the program and end the list. What cannot be the name of a language (longer than 63
 * bytes, or with other characters than letters, digits, '_', '-' and, behind an '@', "+=,") is left out. Needs no
 * started library.
 * @param languages  names separated by ':', the most wanted first; null for the user's: of the variables LC_ALL,
 *                   LC_MESSAGES and LANG the first that is set and not empty, and where that is neither "C" nor
 *                   "POSIX", LANGUAGE in its place if that is set.
 * @param size       in: the capacity of list in bytes, the terminator counted; out: the bytes of the list, the
 *                   terminator not counted, also where it does not fit.
 * @param list       out: the names separated by ':'; the empty text where there is none, and where they do not fit.
 *                   Null is allowed where the capacity is 0.
 * @return 0, KT_ERR_BUFFER_TOO_SMALL, or KT_ERR_INVALID_PARAMETER for a null where none is allowed.
 */
int KTLanguages(const char *languages, size_t *size, char *list);

/* ## 4. Formatting
 *
 * A format string is UTF-8 text with conversion specifications:
 *
 *     %[flags][width][.precision][h|l|L|!]name[position]      as in  "%-10s[2] costs %08.2f[1]"
 *
 * Here the brackets around flags, width, precision and modifier mean that these may be left out; those around the
 * position are part of the text. They hold the position of the argument, and the positions of one string are 1 to n,
 * each used once. Arguments are passed in the order of the positions. "%%" is a percent sign. Flags are any of "-+ #0";
 * a '*' as width or precision takes an int argument of its own before the value, where a negative one means none. The
 * names are
 *
 *     d u o x X   integers: 16 bits with 'h', 64 with '!' ("%l[1]" is "%!d[1]", "%ul[1]" is "%!u[1]"), else 32, also
 *                 with 'l'
 *     f           double, or long double with 'L'
 *     c           a character: char, or UCS2 with 'l'
 *     s U         a text in UTF-8, in UCS-2
 *     DT D T      date and time: UTF-8 text, seconds since 1970 or "2006-05-17'T08:09:10Z"
 *     DND DNS     a distinguished name in UCS-2, written dotted or with slashes
 *     E EID IP    an error text in UTF-8, an unsigned entry ID, an address (a text; it takes its argument and writes
 *                 nothing)
 *     N O         open and close a region whose texts go through the table's encoder; they take a position, no argument
 *
 * For integers the precision also cuts digits ("%.2d[1]" of 12345 is "12000"), '0' wins over '-', and "%#x[1]" of 0 is
 * "0x0". docs/format-strings.md has every rule with examples.
 */

/** A table of conversions; chapter 7. */
typedef struct formTable formTable;

/**
 * Formats a message with the arguments that follow it, in the order of the positions: char, UCS2 and 16-bit integers as
 * an int, 64-bit integers as an int64_t or uint64_t, texts as pointers.
 *
 * A null pointer for a text counts as the empty text. The arguments and the format are read only during the call, and
 * everything that it allocates is freed before it returns.
 *
 * @param reserved  ignored; null will do.
 * @param tag       whether dates, names, entry IDs and errors are wrapped in tags, as "<date>…</date>".
 * @param size      in: the capacity of out in units, the terminator counted; out: the units of the text, the terminator
 *                  not counted, also where the result is KT_ERR_BUFFER_TOO_SMALL: then the units that the text needs.
 * @param out       the text, terminated. After KT_ERR_BUFFER_TOO_SMALL it holds some terminated text of no use; with a
 *                  capacity of 0 nothing is written, and null is allowed.
 * @param format    the format string, UTF-8; not changed.
 * @return 0 or KT_ERR_BUFFER_TOO_SMALL. Before anything is written: KT_ERR_NOT_INITIALIZED, KT_ERR_FORMAT_SYNTAX,
 *         KT_ERR_NO_MEMORY, and KT_ERR_CONVERSION_INVALID_ARGUMENT for a format of 2^31 - 1 bytes and more; these leave
 *         size and out alone. From a conversion: KT_ERR_INVALID_PARAMETER (no date), KT_ERR_NO_MEMORY,
 *         KT_ERR_CONVERSION_INVALID_ARGUMENT (an "s" or "E" of 2^31 - 1 bytes and more), and whatever a formatter or
 *         encoder of the caller's returns; these make out empty and size 0. But where the text has not
 *         fitted before such a conversion is reached, as always with a capacity of 0, the result is
 *         KT_ERR_BUFFER_TOO_SMALL with the need of all others, and the call with more room tells what is wrong.
 *
 *     UCS2 text[100];
 *     unsigned long units = 100;
 *     int result = KTFormatString(NULL, false, &units, text, message, 7, "files"); // "%s[2]: %d[1]" is "files: 7"
 */
int KTFormatString(char *reserved, bool tag, unsigned long *size, UCS2 *out, char *format, ...);

/**
 * Formats as KTFormatString() does, with conversions of the caller's own.
 * @param table     the conversions, or null for the built-in ones. It also gives the encoder: its own, or the first
 *                  along its chain; there is none without a table. Nobody may change or free it during the call.
 * @param passThru  handed to every formatter as it is; the calls without it hand null.
 */
int KTFormatStringWithPassThru(char *reserved, bool tag, formTable *table, void *passThru, unsigned long *size,
                               UCS2 *out, char *format, ...);

/**
 * KTFormatString() with the arguments as a va_list. It is not advanced, so it serves a second call with more room too.
 */
int KTvFormatString(char *reserved, bool tag, unsigned long *size, UCS2 *out, char *format, va_list arguments);

/** KTFormatStringWithPassThru() with the arguments as a va_list, as in KTvFormatString(). */
int KTvFormatStringWithPassThru(char *reserved, bool tag, formTable *table, void *passThru, unsigned long *size,
                                UCS2 *out, char *format, va_list arguments);

/**
 * Formats as KTFormatString() does, with the arguments by pointer; nothing is copied.
 * @param arguments  for each argument in the order of the positions a pointer to it, of exactly the type that the
 *                   conversion names (char, UCS2, an integer of 16, 32 or 64 bits, double, long double; int for a '*');
 *                   for a text the text itself; then a null pointer, so none of them can be null.
 *                   KT_ERR_INVALID_PARAMETER, with size and out untouched, where their number is not what the format
 *                   needs.
 *
 *     int count = 7;
 *     char what[] = "files";
 *     void *arguments[] = {&count, what, NULL};
 *     int result = KTvpFormatString(NULL, false, &units, text, message, arguments);
 */
int KTvpFormatString(char *reserved, bool tag, unsigned long *size, UCS2 *out, char *format, void **arguments);

/** KTvpFormatString() with a table and a pass-through pointer as in KTFormatStringWithPassThru(). */
int KTvpFormatStringWithPassThru(char *reserved, bool tag, formTable *table, void *passThru, unsigned long *size,
                                 UCS2 *out, char *format, void **arguments);

/* ## 5. Character sets
 *
 * A character set is named as ICU names its converters ("shift_jis", "ISO-8859-15", "EUC-JP"; case, '-' and '_' do not
 * matter). Input that is malformed, or that the other side cannot show, becomes the substitution character: that is no
 * failure. The functions of this chapter and the next need no started library.
 *
 * The conversions share their contract. The source is zero-terminated. *sizeInOut is, in, the capacity of dst in its
 * units (UCS-2) or bytes, below 2^31; out, on success only, the units or bytes written without the terminator. The
 * terminator is written where there is room for it: output that fills the buffer exactly is a success without one, so
 * offer one more than the longest text expected. On failure dst becomes the empty text (where it has room, and unless
 * no converter could be opened) and the size stays. Results: 0, KT_ERR_CONVERTER_OPEN_FAILED, KT_ERR_BUFFER_TOO_SMALL,
 * KT_ERR_CONVERSION_INVALID_ARGUMENT (a capacity or source of 2^31 and more, or a UCS-2 source so long that its output
 * might come to as many bytes), KT_ERR_CONVERSION_FAILED. docs/charsets.md has every rule with examples.
 */

/**
 * Sets the process's LC_CTYPE locale from the environment and tells its name, as "ja_JP.eucJP".
 * @param locale  out: the name, whole; the empty text where the environment names a locale that does not exist. Names
 *                have no fixed limit; 256 bytes hold those of every usual system.
 * @return always 0.
 */
int KTGetSystemFullLocale(char *locale);

/**
 * As KTGetSystemFullLocale(), cut to its first five bytes, as "ja_JP".
 * @param locale  out: needs room for the whole name, which is written first.
 * @return always 0.
 */
int KTGetSystemLocale(char *locale);

/**
 * Tells the character set of the process's current LC_CTYPE locale, which KTInit() and the functions above set.
 * @param charSet  out: the name in a form that the conversions take; 256 bytes hold every usual one.
 * @return always 0.
 *
 *     char charSet[256], text[400];
 *     size_t bytes = sizeof text;
 *     KTGetSystemCharSet(charSet);
 *     int result = KTUCS2ToMultiByte(charSet, 0, 0, wide, &bytes, text);
 */
int KTGetSystemCharSet(char *charSet);

/** Converts multi-byte text to UCS-2; the reserved arguments are ignored. L bytes rarely give more than L units. */
int KTMultiByteToUCS2(const char *charSet, unsigned short reserved1, char reserved2, const char *src, size_t *sizeInOut,
                      UCS2 *dst);

/** Converts UCS-2 to multi-byte text; the reserved arguments are ignored. */
int KTUCS2ToMultiByte(const char *charSet, char reserved1, unsigned short reserved2, const UCS2 *src, size_t *sizeInOut,
                      char *dst);

/**
 * Converts UTF-8 to UCS-2. L bytes give at most L units, so a capacity of L + 1 always suffices.
 *
 *     UCS2 wide[6];
 *     size_t units = 6;
 *     int result = KTUTF8ToUCS2("files", &units, wide); // 0, units is 5, and wide is terminated
 */
int KTUTF8ToUCS2(const char *src, size_t *sizeInOut, UCS2 *dst);

/** Converts UCS-2 to UTF-8. L units give at most 3 L bytes. */
int KTUCS2ToUTF8(const UCS2 *src, size_t *sizeInOut, char *dst);

/**
 * Converts multi-byte text to UTF-8 by way of UCS-2; the reserved arguments are ignored.
 * @return as the other conversions, and KT_ERR_NO_MEMORY, which leaves dst alone. Here an unknown character set makes
 *         dst empty too.
 */
int KTMultiByteToUTF8(const char *charSet, char reserved1, char reserved2, const char *src, size_t *sizeInOut,
                      char *dst);

/** Converts UTF-8 to multi-byte text by way of UCS-2; otherwise as KTMultiByteToUTF8(). */
int KTUTF8ToMultiByte(const char *charSet, char reserved1, char reserved2, const char *src, size_t *sizeInOut,
                      char *dst);

/**
 * Converts one character to UCS-2.
 * @param mbChar  the character's bytes, the first the most significant: 0x82A0 for the bytes 82 A0. Two bytes at most;
 *                what stands above them is ignored.
 * @return its first unit; 0 for the character 0 and for every failure, an unknown character set included.
 */
UCS2 KTMBCharToUChar(const char *charSet, unsigned int mbChar);

/**
 * Converts one unit to a character of at most three bytes.
 * @return its bytes, the first the most significant; 0 for the unit 0 and for every failure.
 */
unsigned int KTUCharToMBChar(const char *charSet, UCS2 uc);

/* ## 6. UCS-2 and multi-byte text */

/** The units before the terminator. */
size_t KTUCS2strlen(const UCS2 *s);

/** Copies src with its terminator; dst has room for both. */
void KTUCS2strcpy(UCS2 *dst, const UCS2 *src);

/** Appends src to the text in dst, which has room for both and a terminator. */
void KTUCS2strcat(UCS2 *dst, const UCS2 *src);

/** Compares by units as unsigned numbers: -1, 0 or 1. */
int KTUCS2strcmp(const UCS2 *a, const UCS2 *b);

/** The first unit; 0 for an empty text and for null. */
UCS2 KTFirstUChar(const UCS2 *s);

/**
 * Drops the first unit, in place, and returns the one that is first now.
 * @return 0, and the text is left alone, where it has fewer than two units or s is null.
 */
UCS2 KTNextUChar(UCS2 *s);

/* The functions below convert their texts of L bytes to UCS-2, work there and convert back. A character is one UCS-2
 * unit after the conversion. A destination needs L + 1 bytes, L being the source's length, and may be the source
 * itself; a result that leaves no byte for its terminator does not fit. A packed character (mbChar) is as in
 * KTMBCharToUChar().
 */

/** The length in bytes. */
size_t KTMultiByteStrblen(const char *s);

/** The length in characters, or the negative result code of the conversion as above, or KT_ERR_NO_MEMORY. */
long KTMultiByteStrclen(const char *charSet, const char *s);

/** The first character, packed; 0 for an empty text and for every failure. */
unsigned int KTFirstChar(const char *charSet, const char *s);

/**
 * Drops the first character, in place, and returns the one that is first now, packed.
 * @return 0 where there are fewer than two characters or the text cannot be converted; it is then left alone. Also 0
 *         where the character that is first now cannot be packed. Malformed text whose rest no longer fits its own
 *         bytes is left alone although the result is not 0: a walk must end when the text does not change.
 */
unsigned int KTNextChar(const char *charSet, char *s);

/**
 * Copies at most n characters, never a part of one.
 * @return dst, or null on failure.
 */
char *KTMultiByteStrncpy(char *dst, const char *charSet, const char *src, size_t n);

/**
 * Converts to upper case.
 * @param sizeOut  out, on success: the bytes of the result; what it holds on entry is not read.
 * @return the same number; or the negative result code of a conversion, KT_ERR_NO_MEMORY, or KT_ERR_CONVERSION_FAILED
 *         where the text would grow (the German sharp s becomes two letters).
 */
long KTMultiByteStrupr(const char *charSet, const char *src, size_t *sizeOut, char *dst);

/**
 * Finds the first occurrence of sub in s.
 * @return a pointer into s, to be read only where s is; null when there is none, or on failure.
 */
char *KTMultiByteStrstr(const char *charSet, const char *s, const char *subCharSet, const char *sub);

/**
 * Copies the part of s from the last occurrence of a character on to dst.
 * @param mbChar  the character, packed, in chCharSet.
 * @return dst; null when there is none, or on failure.
 */
char *KTMultiByteStrrchr(const char *charSet, const char *s, const char *chCharSet, unsigned int mbChar, char *dst);

/**
 * Compares without regard to case, each text in its own character set.
 * @return negative, 0 or positive; also the result code of a conversion that fails, or KT_ERR_NO_MEMORY, which its sign
 *         cannot tell apart.
 */
int KTMultiByteStricmp(const char *charSet1, const char *s1, const char *charSet2, const char *s2);

/** Compares by UCS-2 units, each text in its own character set; the result is as in KTMultiByteStricmp(). */
int KTMultiByteStrcmp(const char *charSet1, const char *s1, const char *charSet2, const char *s2);

/* ## 7. Extending
 *
 * A caller adds conversions by building a form table, usually one that holds the new ones and is chained to a private
 * copy of the built-in table or to the built-in table itself. docs/extending.md has a complete program.
 */

/** The bits of a conversion's flags word. */
enum KTFlag
{
    FLAG_MINUS = 0x1,   /**< '-' */
    FLAG_PLUS = 0x2,    /**< '+' */
    FLAG_SPACE = 0x4,   /**< ' ' */
    FLAG_HASH = 0x8,    /**< '#' */
    FLAG_ZERO = 0x10,   /**< '0' */
    FLAG_TAG = 0x20,    /**< the call's tag argument is true */
    FLAG_ENCODE = 0x40, /**< the conversion lies, by position, between an "N" and the next "O" */
    FLAG_h = 0x100,     /**< 'h': 16 bits */
    FLAG_l = 0x200,     /**< 'l': a UCS2 for "c" */
    FLAG_L = 0x400,     /**< 'L': long double */
    FLAG_BANG = 0x800   /**< '!', and the names "l" and "ul": 64 bits */
};

/** The kind of a conversion; below CONV_N its place in builtInFormList. */
typedef enum Flag_t
{
    CONV_d = 0,
    CONV_DND = 1,
    CONV_DNS = 2,
    CONV_DT = 3,
    CONV_D = 4,
    CONV_T = 5,
    CONV_u = 6,
    CONV_U = 7,
    CONV_o = 8,
    CONV_x = 9,
    CONV_X = 10,
    CONV_f = 11,
    CONV_c = 12,
    CONV_s = 13,
    CONV_E = 14,
    CONV_EID = 15,
    CONV_IP = 16,
    CONV_N = 18,       /**< opens an encoded region */
    CONV_O = 19,       /**< closes it */
    CONV_UNKNOWN = 20, /**< the name is in no table of the chain */
    CONV_EXTERNAL = 21 /**< the name was found in another table than the built-in one */
} Flag_t;

/** What a width or precision is where no number gives it. */
enum
{
    KT_ABSENT = -1,        /**< the conversion specification has none */
    KT_FROM_ARGUMENTS = -2 /**< '*': it stands in the arguments */
};

/** What an encoder is told of its value. */
enum KTEncodedType
{
    KT_ENCODE_UNIT = 0,     /**< a pointer to one UCS-2 unit */
    KT_ENCODE_UCS2 = 1,     /**< a zero-terminated UCS-2 text */
    KT_ENCODE_CHARACTER = 2 /**< a pointer to one 8-bit character */
};

/**
 * Renders a value inside an encoded region in place of the formatters "c", "s" and "U", which then only cut and pad it.
 *
 * An encoder that finds too little room does best to write the units that fit, store the length of the whole text and
 * return 0: the formatters compare the length themselves, after they have cut it by a precision, which the encoder does
 * not know. docs/extending.md shows one.
 *
 * @param value      the value, as dataType says.
 * @param dataType   one of KTEncodedType.
 * @param sizeInOut  in: the room at out in units, counting one for the terminator of the whole text; out: the units of
 *                   the encoded text. The text fits when its length plus 1 is at most the room. An encoder that fails
 *                   stores the length too, or 0: it is read in every case, and the room left there does not fit.
 * @param out        where the text goes, never more than room units; no terminator is needed. It may be null where the
 *                   room is 0.
 * @return 0, KT_ERR_BUFFER_TOO_SMALL with the need in *sizeInOut, or another negative code. "s" and "U" pass that code
 *         on where the reported text, cut and padded, fits, and report KT_ERR_BUFFER_TOO_SMALL where it does not; "c"
 *         reports every failure as KT_ERR_BUFFER_TOO_SMALL.
 */
typedef int (*KTEncoder)(const void *value, int dataType, unsigned long *sizeInOut, UCS2 *out);

/**
 * Renders one conversion.
 *
 * @param convName   the name in the table's record; a formatter of several conversions branches on it.
 * @param width      the least units to write; -1 when the conversion specification has none, and whatever int a '*' was
 *                   given.
 * @param precision  -1 when absent, 0 for a '.' alone, and whatever int a '*' was given.
 * @param flags      bits of KTFlag.
 * @param passThru1  the encoder of the call, or null.
 * @param passThru2  the pointer that the caller gave to the format call.
 * @param argSlot    the conversion's values, one slot per code 1 to 7 of its argTypes: texts themselves, else pointers.
 * @param sizeInOut  in: the room at out in units, counting one for the terminator of the whole text; out: the units of
 *                   this conversion's text, or those that it needs.
 * @param out        where the text starts; never more than room units are written. It may be null where the room is 0.
 * @return 0 when the text was written (its length plus 1 is at most the room); KT_ERR_BUFFER_TOO_SMALL with the need in
 *         *sizeInOut; or another negative code, which ends the format call (unless the text did not fit before).
 */
typedef int (*KTFormatFunction)(const char *convName, int width, int precision, int flags, KTEncoder passThru1,
                                void *passThru2, void **argSlot, unsigned long *sizeInOut, UCS2 *out);

/**
 * One conversion of a form table. Its name is matched as a whole and with regard to case. It begins with a letter and
 * holds no '['. A name that begins with 'h', 'l' or 'L' is found only behind a modifier, since the first of these
 * letters is taken for one; "N" and "O" are never found.
 */
typedef struct KTFormatter
{
    const char *name;        /**< up to 19 ASCII characters, see above; null ends a list */
    void *reserved;          /**< not read */
    int argCount;            /**< the slots it takes: the number of codes 1 to 7 in argTypes */
    const int *argTypes;     /**< the kinds of its arguments, ended by 0: see the lists below; not null */
    KTFormatFunction format; /**< not null */
} KTFormatter;

/**
 * A table of conversions. A record that breaks the rules above is unusable: its name counts as unknown, also where a
 * table that follows has it. A chain ends with null and passes through no table twice.
 */
struct formTable
{
    bool indexed;          /**< letterIndex is valid, and formList is grouped by first letter regardless of case */
    int letterIndex[26];   /**< for a to z: the place in formList, counted from 1, of the first such name; else 0 */
    KTFormatter *formList; /**< the conversions, ended by a null name; null for a table without any */
    KTEncoder encoder;     /**< applied in encoded regions, or null */
    formTable *nextTable;  /**< where a name that is not here is looked for, or null */
};

/** One conversion specification, parsed. */
typedef struct KTParameter
{
    Flag_t type;            /**< its kind */
    int width;              /**< KT_ABSENT, KT_FROM_ARGUMENTS, else the number written */
    int precision;          /**< KT_ABSENT, KT_FROM_ARGUMENTS, 0 for a '.' alone, else the number written */
    int flags;              /**< bits of KTFlag */
    int argIndex;           /**< its first slot; 0 after parsing, assigned by the format call */
    KTFormatter *formatter; /**< its record; null ends an array */
} KTParameter;

/** The built-in table. Shared by all: only KTRegisterEncoder() may change it. */
extern formTable builtInFormTable;
/** Its list: the conversions, each at its place by Flag_t, and a last record of zeros. Not to be changed. */
extern KTFormatter builtInFormList[18];

/** The codes in KTFormatter::argTypes, and what the slot of such an argument holds. Those above take no argument. */
enum KTArgumentCode
{
    KT_ARG_END = 0,       /**< ends a list */
    KT_ARG_CHARACTER = 1, /**< a pointer to a char (UCS2 with FLAG_l) */
    KT_ARG_UTF8 = 2,      /**< a UTF-8 text */
    KT_ARG_UCS2 = 3,      /**< a UCS-2 text */
    KT_ARG_SIGNED = 4,    /**< a pointer to an integer of 16 bits with FLAG_h, else of 64 with FLAG_BANG, else of 32 */
    KT_ARG_UNSIGNED = 5,  /**< likewise */
    KT_ARG_DOUBLE = 6,    /**< a pointer to a double (long double with FLAG_L) */
    KT_ARG_POINTER = 7    /**< a pointer to a 64-bit value of any meaning */
};

/** Argument lists for KTFormatter::argTypes: one code and KT_ARG_END. */
extern const int singleCharList[], utf8StrList[], ucs2StrList[], signedIntList[], unsignedIntList[], doubleList[];

/**
 * Gives the built-in table, or a private copy of it to edit.
 * @param options  0: the shared table. Bit 0: a private copy, owned by the caller, to be freed with KTFreeFormTable();
 *                 it carries the encoder registered now, and does not know the short names "l" and "ul". Bits 0 and 1:
 *                 a copy with d u U o x X f c s only. Bit 1 alone is 0.
 * @param table    out: the table; null when memory ran out.
 * @return 0, KT_ERR_NOT_INITIALIZED (nothing is stored), KT_ERR_NO_MEMORY.
 *
 *     formTable *copy, mine = {false, {0}, myList, NULL, NULL};
 *     if (KTGetBuiltInFormTable(1, &copy) == 0)
 *         mine.nextTable = copy;
 */
int KTGetBuiltInFormTable(int options, formTable **table);

/**
 * Sets the encoder of the shared built-in table; null removes it. It serves format calls whose table is that one, or
 * reaches it along its chain before another encoder, and copies made later; not the calls without a table.
 * @return 0 or KT_ERR_NOT_INITIALIZED.
 */
int KTRegisterEncoder(KTEncoder encoder);

/** Kept for programs that ask for the size of a form table; needs no started library. @return always 0. */
int KTGetFormTableSize(void);

/** Frees a private copy; null and the shared table are left alone. @return 0 or KT_ERR_NOT_INITIALIZED. */
int KTFreeFormTable(formTable *table);

/**
 * Checks a format string and lists its conversions.
 * @param format      UCS-2.
 * @param table       where names are looked up, or null for the built-in table.
 * @param parameters  out: one record per conversion, that of position p at p - 1, ended by one with a null formatter;
 *                    null when there is none. After KT_ERR_FORMAT_SYNTAX it is filled in part. In both cases the caller
 *                    releases it with ZEL_free(), while the library is started.
 * @return 0, KT_ERR_FORMAT_SYNTAX, KT_ERR_NO_MEMORY. Whether the library is started is not asked: it must be.
 */
int checkSyntax(const UCS2 *format, formTable *table, KTParameter **parameters);

/** Releases what checkSyntax() stored, or null. @return 0. */
int ZEL_free(void *block);

/**
 * Parses one conversion specification.
 * @param cursor  in: at its '%'; out, on success: behind its ']'.
 * @param table   where the name is looked up, or null for the built-in table.
 * @param type    out, like those after it, as in KTParameter: CONV_UNKNOWN, with a null formatter, for a name that no
 *                table has.
 * @return its position, 1 or more; or 0 when it is malformed: nothing is stored then, and the cursor stays.
 */
int parseConvSpec(const UCS2 **cursor, formTable *table, Flag_t *type, int *width, int *precision, int *flags,
                  KTFormatter **formatter);

/** The position of a conversion specification that checkSyntax() accepted; moves the cursor from '%' behind ']'. */
int getConvSpecOrder(const UCS2 **cursor);

/**
 * Writes a checked format: copies its literal text and calls the formatters.
 * @param parameters  from checkSyntax(), with argIndex assigned.
 * @param encoder     handed to every formatter, or null.
 * @param passThru    handed to every formatter.
 * @param size, out   as in KTFormatString().
 * @param format      the text that checkSyntax() accepted.
 * @param slots       the arguments, ended by null; KT_ERR_INVALID_PARAMETER where a conversion finds a null one.
 * @return 0, KT_ERR_BUFFER_TOO_SMALL, or what a conversion returned, with size and out as in KTFormatString().
 */
int buildBuffer(KTParameter *parameters, KTEncoder encoder, void *passThru, unsigned long *size, UCS2 *out,
                const UCS2 *format, void **slots);

/* The built-in formatters, for use in a caller's own table. Their contract is KTFormatFunction's. */

/** "d". */
int formatInteger(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                  void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/** "u". */
int formatUnsigned(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                   void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/**
 * "o", "x" and "X", by the first character of convName. Under a name that begins otherwise it writes no digits: only
 * the zeros that precision or '0' ask for, the padding, and with '#' a "0" and that first character in front of them.
 */
int formatOctHex(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                 void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/** "f", as the C library's printf writes it in the current numeric locale. KT_ERR_NO_MEMORY for some long numbers. */
int formatDouble(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                 void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/**
 * "DT", "D" and "T", by the first two characters of convName. KT_ERR_INVALID_PARAMETER, size 0, for a malformed text
 * and for 185542587187200 seconds and more.
 */
int formatDateTime(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                   void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/**
 * "DND" and "DNS", by the third character of convName. The name may lie in out and is then copied first: of more than
 * 255 units into memory, KT_ERR_NO_MEMORY where there is none.
 */
int formatDN(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
             void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/** "EID": 32 bits, of a 64-bit argument the low ones, and with 'h' 16 bits. */
int formatEID(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
              void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/** "E". KT_ERR_NO_MEMORY when its buffer cannot be had; KT_ERR_CONVERSION_INVALID_ARGUMENT as for "s". */
int formatError(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/** "IP": writes nothing. */
int formatIP(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
             void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/** "c". A char of 0x80 to 0xFF is the character of that number. */
int formatChar(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
               void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/** "U". The text may lie in out: what is written is what a copy of it would give. */
int formatUCS2Str(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                  void **argSlot, unsigned long *sizeInOut, UCS2 *out);
/**
 * "s". KT_ERR_NO_MEMORY when its buffer cannot be had, and KT_ERR_CONVERSION_INVALID_ARGUMENT for a text of 2^31 - 1
 * bytes and more, size untouched.
 */
int formatUTF8Str(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                  void **argSlot, unsigned long *sizeInOut, UCS2 *out);

/* ## 8. Prepared formats and typed arguments
 *
 * A format call looks at its format anew each time, and believes that its arguments have the types that the format
 * names. A prepared format is looked at once, and is given arguments that say what they are: a translation that asks
 * for something else gets a result code, and cannot crash the program. Texts go in and come out as UTF-8.
 *
 *     KTPreparedFormat *greeting; // once
 *     int result = KTPrepareFormat("%s[2]: %d[1]", NULL, &greeting);
 *
 *     char text[400]; // often, in any thread
 *     size_t size = sizeof text;
 *     const KTArgument arguments[] = {KT_INT(7), KT_UTF8("files")};
 *     result = KTFormatPreparedUTF8(greeting, 0, NULL, &size, text, arguments, 2); // "files: 7"
 *
 *     KTFreePrepared(greeting);
 *
 * The arguments are compared with what the format asks for before anything is written. A text goes with the conversions
 * that take a text of its encoding, a double with "f", a long double with "Lf", a char with "c", a unit with "lc". An
 * integer of any size goes with every integer conversion whose size holds its value: "d" signed, the others unsigned,
 * where a negative value of the conversion's own size (32 or 64 bits) counts as the unsigned one of the same bits.
 * docs/prepared-formats.md has every rule with examples.
 */

/** What a typed argument is, and which member of its value holds it. */
enum KTArgumentType
{
    KT_ARGUMENT_INT = 1,         /**< i: a signed integer of 32 bits */
    KT_ARGUMENT_UINT = 2,        /**< u: an unsigned one */
    KT_ARGUMENT_INT64 = 3,       /**< i: a signed integer of 64 bits */
    KT_ARGUMENT_UINT64 = 4,      /**< u: an unsigned one */
    KT_ARGUMENT_CHAR = 5,        /**< u: a char as an unsigned number, 0 to 255 */
    KT_ARGUMENT_UNIT = 6,        /**< u: a UCS-2 unit */
    KT_ARGUMENT_DOUBLE = 7,      /**< d */
    KT_ARGUMENT_LONG_DOUBLE = 8, /**< p: points to a long double */
    KT_ARGUMENT_UTF8 = 9,        /**< p: a UTF-8 text; null is the empty one */
    KT_ARGUMENT_UCS2 = 10,       /**< p: a UCS-2 text; null is the empty one */
    KT_ARGUMENT_POINTER = 11,    /**< p: anything; the length is its kind */
    KT_ARGUMENT_CODE_POINT = 12  /**< units: a character; the length is 1 or 2, the number of its units */
};

/** The value of a typed argument, in the member that its type names. */
typedef union KTValue
{
    int64_t i;
    uint64_t u;
    double d;
    const void *p;
    UCS2 units[4];
} KTValue;

/** A typed argument. The functions below make it, or a language binding does from these numbers. */
typedef struct KTArgument
{
    uint32_t type;   /**< one of KTArgumentType; others are refused */
    uint32_t length; /**< bytes or units of a text, UINT32_MAX if zero-terminated; the kind of a pointer; else 0 */
    KTValue value;   /**< 8 bytes */
} KTArgument;

/* Each makes a typed argument. A text, a long double, and what a pointer points to are not copied: they live during the
 * call. A zero inside a text ends it. */

/** Goes with "d", and where it is not negative with "u", "o", "x", "X" and "EID"; also with a '*'. */
static inline KTArgument KT_INT(int32_t value)
{
    KTArgument argument = {KT_ARGUMENT_INT, 0, {0}};
    argument.value.i = value;
    return argument;
}

/** Goes with the same conversions where it has room there. */
static inline KTArgument KT_UINT(uint32_t value)
{
    KTArgument argument = {KT_ARGUMENT_UINT, 0, {0}};
    argument.value.u = value;
    return argument;
}

/** Goes with "!d", and with the others as far as they have room for the value. */
static inline KTArgument KT_INT64(int64_t value)
{
    KTArgument argument = {KT_ARGUMENT_INT64, 0, {0}};
    argument.value.i = value;
    return argument;
}

/** Likewise, unsigned. */
static inline KTArgument KT_UINT64(uint64_t value)
{
    KTArgument argument = {KT_ARGUMENT_UINT64, 0, {0}};
    argument.value.u = value;
    return argument;
}

/** Goes with "c". */
static inline KTArgument KT_CHAR(char value)
{
    KTArgument argument = {KT_ARGUMENT_CHAR, 0, {0}};
    argument.value.u = (unsigned char)value;
    return argument;
}

/** Goes with "lc". */
static inline KTArgument KT_UNIT(UCS2 value)
{
    KTArgument argument = {KT_ARGUMENT_UNIT, 0, {0}};
    argument.value.u = value;
    return argument;
}

/** Any character: goes with "U", and with "lc" up to U+FFFF. What is no character becomes U+FFFD. */
static inline KTArgument KT_CODE_POINT(uint32_t character)
{
    KTArgument argument = {KT_ARGUMENT_CODE_POINT, 1, {0}};
    if (character > 0xFFFF && character <= 0x10FFFF)
    {
        argument.length = 2;
        argument.value.units[0] = (UCS2)(0xD800 + ((character - 0x10000) >> 10));
        argument.value.units[1] = (UCS2)(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
    else
        argument.value.units[0] = (UCS2)(character > 0x10FFFF || (character & 0xF800) == 0xD800 ? 0xFFFD : character);
    return argument;
}

/** Goes with "f". */
static inline KTArgument KT_DOUBLE(double value)
{
    KTArgument argument = {KT_ARGUMENT_DOUBLE, 0, {0}};
    argument.value.d = value;
    return argument;
}

/** Goes with "Lf". */
static inline KTArgument KT_LONG_DOUBLE(const long double *value)
{
    KTArgument argument = {KT_ARGUMENT_LONG_DOUBLE, 0, {0}};
    argument.value.p = value;
    return argument;
}

/** Zero-terminated; goes with "s", "E", "IP", "DT", "D" and "T". */
static inline KTArgument KT_UTF8(const char *text)
{
    KTArgument argument = {KT_ARGUMENT_UTF8, UINT32_MAX, {0}};
    argument.value.p = text;
    return argument;
}

/** Of so many bytes, or to its first zero. */
static inline KTArgument KT_UTF8N(const char *text, size_t bytes)
{
    KTArgument argument = {KT_ARGUMENT_UTF8, bytes < UINT32_MAX ? (uint32_t)bytes : UINT32_MAX - 1, {0}};
    argument.value.p = text;
    return argument;
}

/** Zero-terminated; goes with "U", "DND" and "DNS". */
static inline KTArgument KT_UCS2(const UCS2 *text)
{
    KTArgument argument = {KT_ARGUMENT_UCS2, UINT32_MAX, {0}};
    argument.value.p = text;
    return argument;
}

/** Of so many units, or to its first zero. */
static inline KTArgument KT_UCS2N(const UCS2 *text, size_t units)
{
    KTArgument argument = {KT_ARGUMENT_UCS2, units < UINT32_MAX ? (uint32_t)units : UINT32_MAX - 1, {0}};
    argument.value.p = text;
    return argument;
}

/** Goes with a conversion of the caller's own that takes a pointer and asks KTPointerOfKind() for this kind. */
static inline KTArgument KT_POINTER(uint32_t kind, const void *value)
{
    KTArgument argument = {KT_ARGUMENT_POINTER, kind, {0}};
    argument.value.p = value;
    return argument;
}

/** A format string, parsed and checked. It never changes: any number of threads may use it at once. */
typedef struct KTPreparedFormat KTPreparedFormat;

/**
 * Prepares a format.
 * @param format    the format string, UTF-8; not needed afterwards.
 * @param table     its conversions, or null for the built-in ones, as in KTFormatStringWithPassThru(). It must live,
 *                  and its records must stay as they are, as long as the prepared format; the encoder is looked up in
 *                  each call.
 * @param prepared  out: the prepared format, which the caller releases with KTFreePrepared() before the KTClean() that
 *                  stops the library; null on failure.
 * @return 0; KT_ERR_NOT_INITIALIZED; KT_ERR_INVALID_PARAMETER where format or prepared is null; otherwise what a
 *         format call says of the format: KT_ERR_FORMAT_SYNTAX, KT_ERR_NO_MEMORY, KT_ERR_CONVERSION_INVALID_ARGUMENT.
 */
int KTPrepareFormat(const char *format, formTable *table, KTPreparedFormat **prepared);

/** Releases a prepared format, or null. Nobody may use it any more. */
void KTFreePrepared(KTPreparedFormat *prepared);

/**
 * The options of the calls below.
 *
 * Under KT_ENCODE_ALL no translation can leave an encoder out: every argument goes through that of the table, whether
 * the format marks it or not. "c", "s" and "U" are then written as in an encoded region; of all other conversions, the
 * caller's own included, the finished text is encoded, without the tags that KT_TAG adds. A call for whose table there
 * is no encoder is refused.
 *
 * Under KT_ISOLATE every "s", "U" and "E" and every text of a conversion of the caller's own stands between U+2068 and
 * U+2069, so that a name that is written from right to left does not turn around the number beside it. These two stand
 * outside of the padding, count nothing in a width, and are not given to an encoder. A text cut to nothing has none.
 */
enum KTFormatOption
{
    KT_TAG = 1,        /**< dates, names, entry IDs and errors are wrapped in tags */
    KT_ENCODE_ALL = 2, /**< every argument is encoded */
    KT_ISOLATE = 4     /**< texts keep their direction from what stands beside them */
};

/**
 * Formats a prepared format into UCS-2. The text is that of KTvpFormatStringWithPassThru().
 * @param prepared   from KTPrepareFormat().
 * @param options    bits of KTFormatOption; others are refused.
 * @param passThru   handed to the formatters of the caller's own conversions.
 * @param size       in: the capacity of out in units, the terminator counted; out: the units of the text, the
 *                   terminator not counted, also where the result is KT_ERR_BUFFER_TOO_SMALL: then the units that the
 *                   text needs.
 * @param out        the text, terminated; of no use after KT_ERR_BUFFER_TOO_SMALL. Null is allowed for a capacity of 0.
 * @param arguments  in the order of the positions, one for each of KTPreparedSlots(); null where there is none.
 * @param count      their number.
 * @return 0; KT_ERR_BUFFER_TOO_SMALL. With size and out untouched: KT_ERR_NOT_INITIALIZED; KT_ERR_INVALID_PARAMETER
 *         where prepared or size is null, or out with a capacity other than 0, an option unknown, an encoder asked
 *         for and missing, or an argument missing, surplus, of another kind than the format asks for, or out of range.
 *         With out empty and size 0:
 *         KT_ERR_INVALID_PARAMETER for a text that is no date, KT_ERR_NO_MEMORY, KT_ERR_CONVERSION_INVALID_ARGUMENT for
 *         a text of 2^31 - 1 bytes and more, and under KT_ENCODE_ALL for a number of more than 2^20 characters, and
 *         what a formatter or encoder of the caller's returns (but
 *         KT_ERR_BUFFER_TOO_SMALL where the text had not fitted before). Memory is taken for an "f" of more than 303
 *         characters that fits, for encoded texts and by conversions of the caller's own, else none.
 */
int KTFormatPrepared(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, UCS2 *out,
                     const KTArgument *arguments, size_t count);

/**
 * Formats as KTFormatPrepared() does, into UTF-8: the text is what KTUCS2ToUTF8() makes of the other one, so U+0000
 * from a "c" ends it. Sizes are in bytes.
 *
 * What a conversion of the caller's own writes, or an encoder, goes through a buffer: of 256 units, or on its word as
 * large as it asks for, which may be 65,536 units or the bytes that are left in out, whichever is more. A text of more
 * units is not written, and counts one byte for each of them. So the need after KT_ERR_BUFFER_TOO_SMALL may be less
 * than the text needs where such a text is long: a program repeats the call as long as the need grows. Without such
 * conversions and encoders the need suffices.
 *
 *     size_t size = sizeof few, given = 0;
 *     int result = KTFormatPreparedUTF8(prepared, 0, NULL, &size, few, arguments, count);
 *     while (result == KT_ERR_BUFFER_TOO_SMALL && size >= given)
 *     {
 *         given = size + 1;
 *         many = realloc(many, given); // and so on where there is no memory
 *         size = given;
 *         result = KTFormatPreparedUTF8(prepared, 0, NULL, &size, many, arguments, count);
 *     }
 */
int KTFormatPreparedUTF8(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, char *out,
                         const KTArgument *arguments, size_t count);

/** What an argument has to be. */
enum KTSlotCode
{
    KT_SLOT_INT16 = 1,        /**< a signed integer, "hd" */
    KT_SLOT_UINT16 = 2,       /**< an unsigned one, "hu" */
    KT_SLOT_INT32 = 3,        /**< "d", and a '*' */
    KT_SLOT_UINT32 = 4,       /**< "u" */
    KT_SLOT_INT64 = 5,        /**< "!d" */
    KT_SLOT_UINT64 = 6,       /**< "!u" */
    KT_SLOT_CHAR = 7,         /**< "c" */
    KT_SLOT_UNIT = 8,         /**< "lc" */
    KT_SLOT_DOUBLE = 9,       /**< "f" */
    KT_SLOT_LONG_DOUBLE = 10, /**< "Lf" */
    KT_SLOT_UTF8 = 11,        /**< "s" */
    KT_SLOT_UCS2 = 12,        /**< "U" */
    KT_SLOT_POINTER = 13      /**< of a conversion of the caller's own */
};

/** What the argument is for. */
enum KTSlotRole
{
    KT_SLOT_VALUE = 0,
    KT_SLOT_WIDTH = 1,    /**< a '*' */
    KT_SLOT_PRECISION = 2 /**< likewise, behind the '.' */
};

/** One argument that a format asks for. */
typedef struct KTSlot
{
    uint32_t code;     /**< one of KTSlotCode */
    uint32_t position; /**< of its conversion, 1 or more */
    uint32_t role;     /**< one of KTSlotRole */
} KTSlot;

/**
 * Tells what arguments a format asks for, in the order in which they are passed. So wrappers, checkers and language
 * bindings need no parser of their own.
 * @param slots  out: the first of them; it lives as long as the prepared format. Null is allowed.
 * @return their number.
 */
size_t KTPreparedSlots(const KTPreparedFormat *prepared, const KTSlot **slots);

/**
 * For a conversion of the caller's own that takes a pointer (KT_ARG_POINTER): the pointer, where it is of the kind that
 * the conversion expects. Without this question a conversion trusts the translation to name it for the right argument.
 * @param argSlot  the slot that the formatter was given.
 * @return the pointer that was given with KT_POINTER() and this kind to the prepared call that is running in this
 *         thread; null for another kind, and in the calls without typed arguments, which know no kinds.
 */
const void *KTPointerOfKind(void *const *argSlot, uint32_t kind);

/**
 * Writes an object where no conversion does, for reports and for the last rung of a catalog.
 * @return as a KTArgumentFunction; after a failure "(name)" is written.
 */
typedef int (*KTObjectFunction)(const void *object, size_t *size, char *out);

/**
 * A type of objects, for languages in which the program's own objects go over as they are. The records that several
 * shared objects have for one type count as one.
 */
typedef struct KTObjectType
{
    const char *key;        /**< std::type_info::name() of C++, by which shared objects know a type; or null */
    const char *name;       /**< for people; it need not be terminated */
    size_t nameLength;      /**< its bytes */
    KTObjectFunction write; /**< null for "(name)" */
} KTObjectType;

/** An object and its type, which are not copied. */
typedef struct KTObject
{
    const KTObjectType *type; /**< not null */
    const void *object;
} KTObject;

/** The kind of pointers to a KTObject, for KT_POINTER(). No others may have it. */
enum KTPointerKind
{
    KT_KIND_OBJECT = 0x6B2B2B02
};

/**
 * The object of an argument.
 * @return the object; null for one of another type, and for an argument that is none.
 */
const void *KTObjectOfType(const KTArgument *argument, const KTObjectType *type);

/**
 * Reads a slot of a conversion of the caller's own, in whatever size the format names.
 * @param argSlot  the slot that the formatter was given.
 * @param code     its code in the record, KT_ARG_CHARACTER to KT_ARG_DOUBLE.
 * @param flags    those that the formatter was given.
 * @return the value as an argument: an integer as by KT_INT64() or KT_UINT64(), a character as by KT_UNIT(), a double
 *         or long double as by KT_DOUBLE(), a text as by KT_UTF8() or KT_UCS2(); of type 0 for other codes.
 *
 *     const int64_t bytes = KTSlotArgument(argSlot, KT_ARG_SIGNED, flags).value.i; // of "%hd", "%d" and "%!d"
 */
KTArgument KTSlotArgument(void *const *argSlot, int code, int flags);

/**
 * Writes one conversion of the caller's own straight into UTF-8, in place of a KTFormatFunction whose UCS-2 would be
 * converted. Its text is that of the KTFormatFunction.
 *
 * @param convName   as there, like width, precision, flags, passThru1 and passThru2.
 * @param arguments  the conversion's values as the caller passed them, one for each code 1 to 7 of its argTypes. They
 *                   were compared with those: an integer has its value in `i`, but under KT_ARG_UNSIGNED the bits of
 *                   its size in `u` (cut it to 16 bits with FLAG_h, to 64 with FLAG_BANG, else to 32); a text is
 *                   null, or ends at its length or at its first zero; a pointer has its kind in `length`.
 * @param sizeInOut  in: the room at out in bytes, counting one for the terminator of the whole text; out: the bytes of
 *                   this conversion's text, or those that it needs.
 * @param out        where the text goes: well-formed UTF-8 without U+0000, never more than room bytes. It may be null
 *                   where the room is 0.
 * @return 0 when the text was written (its length plus 1 is at most the room); KT_ERR_BUFFER_TOO_SMALL with the need in
 *         *sizeInOut; or another negative code, as from a KTFormatFunction.
 */
typedef int (*KTUTF8FormatFunction)(const char *convName, int width, int precision, int flags, KTEncoder passThru1,
                                    void *passThru2, const KTArgument *arguments, size_t *sizeInOut, char *out);

/**
 * Gives a conversion of the caller's own a second function, which KTFormatPreparedUTF8() then calls in place of the one
 * in its record. It is looked up when a format is prepared, and only there; formats prepared before do not change.
 * Needs no started library.
 * @param formatter  the record, by its address: a copy of it has to be registered by itself. The function must be
 *                   withdrawn before the record ends, and may be called by what was prepared until then.
 * @param function   the function; null withdraws it.
 * @return 0, KT_ERR_INVALID_PARAMETER where formatter is null, or KT_ERR_NO_MEMORY.
 *
 *     int result = KTRegisterUTF8Format(&conversions[0], formatBytesUTF8);
 */
int KTRegisterUTF8Format(const KTFormatter *formatter, KTUTF8FormatFunction function);

/**
 * What a language binding puts around a call, to be found by the conversions and encoders that run during the call: an
 * encoder, for one, gets no pointer but that to its text.
 */
typedef struct KTCallContext
{
    uint32_t kind;               /**< whose it is: a number that the binding has chosen */
    void *value;                 /**< what the binding wants to find */
    struct KTCallContext *outer; /**< of KTEnterCall() */
} KTCallContext;

/** Puts a context around all that this thread calls from now on. It lies inside the contexts that are there already. */
void KTEnterCall(KTCallContext *context);

/** Takes a context away again. It must be the innermost one of this thread. */
void KTLeaveCall(const KTCallContext *context);

/**
 * The value of the context in which this thread's call runs.
 * @return the value of the innermost context; null where there is none, or where that is of another kind.
 */
void *KTCallValue(uint32_t kind);

/**
 * Tells whether a table may be used with typed arguments whatever a translation says: whether a format can name the
 * conversions of its list, and whether no conversion of its chain takes a pointer without asking for its kind.
 * @param table    the table; those that it is chained to are looked at too.
 * @param asking   the function of the records that do ask, by KTPointerOfKind(); null for none.
 * @param options  KT_ENCODE_ALL where the chain needs an encoder; else 0.
 * @param size     in: the capacity of text in bytes, the terminator counted; out: the bytes of what is wrong, the
 *                 terminator not counted, also where it does not fit.
 * @param text     out: what is wrong, in English and on one line, cut at a whole character where it does not fit; the
 *                 empty text where nothing is. Null is allowed for a capacity of 0.
 * @return 0, or KT_ERR_INVALID_PARAMETER where something is wrong, and for a null where none is allowed.
 */
int KTExplainFormTable(const formTable *table, KTFormatFunction asking, unsigned options, size_t *size, char *text);

/* ### Conversions and encoders with a context
 *
 * The functions of a form table get no pointer but that of the call. Those of a table that the library builds get a
 * context of their own and values that are read and compared already, and give a text, which the library cuts, pads and
 * encodes:
 *
 *     static int formatMoney(void *context, KTOwnCall *call)
 *     {
 *         const struct Shop *shop = context;
 *         char text[40];
 *         snprintf(text, sizeof text, "%s %lld", shop->currency, (long long)call->arguments[0].value.i);
 *         return KTGiveText(call, KT_UTF8(text));
 *     }
 *
 *     KTOwnTable *own = KTNewOwnTable(); // once
 *     KTAddConversion(own, "money", signedIntList, 0, formatMoney, &shop, NULL);
 *     char why[200];
 *     size_t size = sizeof why;
 *     formTable *table;
 *     int result = KTFinishOwnTable(own, NULL, 0, &table, &size, why); // "%!money[1]" from now on, by way of table
 *     ...
 *     KTFreeOwnTable(own); // when nothing uses the table any more
 */

/** Conversions and an encoder of the program's own, on their way to a form table and as long as that is used. */
typedef struct KTOwnTable KTOwnTable;

/** What a function of the program's is told of a conversion, or of a text to be encoded. Later versions add members. */
typedef struct KTOwnCall
{
    size_t structSize; /**< of this record, in bytes; members beyond it are not there */
    const char *name;  /**< of the conversion; the empty text for an encoder */
    int width;         /**< the text is padded to it, and cut to the precision, as that of "s", before it is encoded; */
    int precision;     /**< KT_ABSENT for none: a function that lays out its text itself stores that in both */
    int flags;         /**< bits of KTFlag */
    void *passThru;    /**< that of the call; null for an encoder */
    const KTArgument
        *arguments; /**< the values, one for each code 1 to 7, as KTSlotArgument() gives them, and pointers */
    size_t count;   /**< their number */
    void *output;   /**< the library's */
} KTOwnCall;

/**
 * Writes a conversion, or encodes the text that is its only argument. It may run in several threads at once, and twice
 * for one text where the first buffer was too small: it gives the same both times.
 * @param context  as it was given to KTAddConversion() or KTSetEncoder().
 * @return what KTGiveText() returned; 0 without a text for the empty one; or another negative code, which ends the
 *         call.
 */
typedef int (*KTOwnFunction)(void *context, KTOwnCall *call);

/** Releases a context. */
typedef void (*KTFreeFunction)(void *context);

/**
 * Begins a table. Needs no started library.
 * @return the table, to be released with KTFreeOwnTable(); null where memory runs out, which the functions below take,
 *         so that KTFinishOwnTable() is the only one to be asked.
 */
KTOwnTable *KTNewOwnTable(void);

/**
 * Adds a conversion to a table that is not finished; of several with one name the first counts. What is wrong with it
 * is told by KTFinishOwnTable().
 * @param name         as in KTFormatter; it is copied.
 * @param types        the codes of its values, ended by KT_ARG_END; they live as long as the table.
 * @param kind         that of the pointers among them, which KT_POINTER() was given. The function gets no other and no
 *                     null: in the calls without typed arguments, which know no kinds, such a conversion fails.
 * @param function     not null.
 * @param context      handed to it.
 * @param freeContext  called with the context when the table ends, and at once where the conversion cannot be added;
 *                     or null.
 */
void KTAddConversion(KTOwnTable *own, const char *name, const int *types, uint32_t kind, KTOwnFunction function,
                     void *context, KTFreeFunction freeContext);

/**
 * Sets the encoder of a table that is not finished; the last one counts. It gets whole texts, and single characters of
 * "c"; half a character is left as it is. It runs in the calls with typed arguments, and fails in the others.
 * @param code         the encoding of what it is given: KT_ARG_UTF8 or KT_ARG_UCS2. It may give either.
 * @param function     not null.
 * @param context      handed to it.
 * @param freeContext  called with the context when the table ends or gets another encoder; or null.
 */
void KTSetEncoder(KTOwnTable *own, int code, KTOwnFunction function, void *context, KTFreeFunction freeContext);

/**
 * Gives the form table, which is then used like any other and does not change. The table holds a use of the library, as
 * by KTBeginUse(), until it is released.
 * @param next     the table in which names are looked for that were not added, and which lives as long as this one;
 *                 null for the built-in one. A table is refused whose conversions take pointers without asking for
 *                 their kind.
 * @param options  0, or KT_ENCODE_ALL, under which every call with the table has that option, so that no program and no
 *                 translation can forget it.
 * @param table    out: the form table, which lives as long as own; null on failure.
 * @param size     in: the capacity of text in bytes, the terminator counted; out: the bytes of what is wrong, the
 *                 terminator not counted, also where it does not fit.
 * @param text     out: what is wrong, in English and on one line, cut at a whole character where it does not fit; the
 *                 empty text where nothing is. Null is allowed for a capacity of 0.
 * @return 0; KT_ERR_INVALID_PARAMETER where no format can name a conversion, where next is refused, where there is no
 *         encoder for KT_ENCODE_ALL, for another option, for a second time, and for a null where none is allowed;
 *         KT_ERR_NO_MEMORY, also where it ran out before; KT_ERR_NOT_INITIALIZED where the library cannot be started.
 */
int KTFinishOwnTable(KTOwnTable *own, formTable *next, unsigned options, formTable **table, size_t *size, char *text);

/** Releases a table, finished or not, with its contexts; or null. Nothing may use its form table any more. */
void KTFreeOwnTable(KTOwnTable *own);

/**
 * Gives the text of a call, once.
 * @param call  as the function got it.
 * @param text  made by KT_UTF8(), KT_UCS2() or a function like them. It is read during the call.
 * @return for the function to return: 0; KT_ERR_BUFFER_TOO_SMALL; KT_ERR_INVALID_PARAMETER for an argument that is no
 *         text; KT_ERR_NO_MEMORY; what an encoder returns.
 */
int KTGiveText(KTOwnCall *call, KTArgument text);

/**
 * Writes a time as "DT", "D" and "T" take it: "2006-05-17'T08:09:10Z". Needs no started library.
 * @param seconds  since 1970, without leap seconds. A time outside of the years 0 to 9999 is written as their first or
 *                 last second.
 * @param text     out: 21 bytes and the terminator.
 */
void KTTimeText(int64_t seconds, char *text);

/**
 * Writes the time of a clock that counts other units than seconds, as KTTimeText() does. Units that have begun before
 * their second are of the second before. A number that is none is written as the first second.
 * @param count        the units since 1970: an integer, a double or a long double.
 * @param numerator    the length of a unit in seconds is numerator / denominator, both more than 0.
 * @param text         out: 21 bytes and the terminator.
 *
 *     char text[22];
 *     KTClockText(KT_INT64(-1), 1, 1000, text); // "1969-12-31'T23:59:59Z"
 */
void KTClockText(KTArgument count, int64_t numerator, int64_t denominator, char *text);

/* A format that is not the program's own can be looked at before it is used. */

/** What is wrong with a format. */
enum KTRule
{
    KT_RULE_NONE = 0,
    KT_RULE_POSITION_MISSING = 1,   /**< a conversion without "[n]"; a '%' by itself, which is written "%%" */
    KT_RULE_POSITION_MALFORMED = 2, /**< between the brackets stands no number from 1 on, or one is not closed */
    KT_RULE_NUMBER_TOO_LARGE = 3,   /**< a width, precision or position that no format can have */
    KT_RULE_NAME_TOO_LONG = 4,      /**< more than 19 characters before the '[' */
    KT_RULE_NAME_NOT_ASCII = 5,     /**< another character before the '[' */
    KT_RULE_UNKNOWN_CONVERSION = 6, /**< no table has the name */
    KT_RULE_POSITION_REPEATED = 7,
    KT_RULE_POSITION_GAP = 8,       /**< a position below the number of conversions has none */
    KT_RULE_REFERENCE = 9,          /**< the format is correct, but not the reference */
    KT_RULE_ARGUMENT_TYPE = 10,     /**< an argument of another kind, size or role than in the reference */
    KT_RULE_ARGUMENT_MISSING = 11,  /**< fewer arguments than in the reference */
    KT_RULE_ARGUMENT_EXTRA = 12,    /**< more of them */
    KT_RULE_ENCODING_LOST = 13,     /**< an argument that the reference encodes is written without its encoder */
    KT_RULE_SELECTOR_ALONE = 20,    /**< beside a selector stands something, or it is not written as one */
    KT_RULE_SELECTOR_ARGUMENT = 21, /**< the argument that selects is no number, or no integer, or there is none */
    KT_RULE_SELECTOR_DEPTH = 22,    /**< a selector leads back to itself, or through more than 8 selectors */
    KT_RULE_SELECTOR_SIZE = 23,     /**< a selector leads to more than 1,024 messages */
    KT_RULE_VARIANT_ARGUMENTS = 24, /**< a variant takes other arguments than those before it */
    KT_RULE_VARIANT_MISSING = 25    /**< the row of a selector is empty, or there is no such message */
};

/** What is wrong with a format, and where. All texts are constant and in English. */
typedef struct KTProblem
{
    size_t structSize;     /**< in: sizeof(KTProblem); a library of another version fills no more than this */
    int rule;              /**< one of KTRule */
    unsigned int slot;     /**< which argument, from 1 in the order of passing; 0 where none is concerned */
    unsigned int position; /**< which position; 0 where none is concerned */
    size_t offset;         /**< in bytes of the format: where the conversion specification begins */
    size_t length;         /**< in bytes: how far it goes, of a malformed one as far as it will have been meant to */
    const char *expected;  /**< what the reference has there, as "a 32-bit integer" or "a width"; or null */
    const char *found;     /**< what the format has there; or null */
    unsigned int message;  /**< the message of a table that is concerned, and that the offset is in; else 0 */
} KTProblem;

/**
 * Tells whether a format call accepts a format, and if not, why and where.
 * @param format   UTF-8.
 * @param table    its conversions, or null for the built-in ones.
 * @param problem  in: structSize; out: the first problem in the order of the text, or rule KT_RULE_NONE. Null is
 *                 allowed.
 * @return as KTPrepareFormat(); KT_ERR_INVALID_PARAMETER also where structSize is too small. The size that the record
 *         had without its last member is accepted.
 *
 *     KTProblem problem = {sizeof problem};
 *     int result = KTExplainFormat("%d[1] of %q[2]", NULL, &problem); // KT_ERR_FORMAT_SYNTAX
 *     // KT_RULE_UNKNOWN_CONVERSION, offset 9, length 5
 */
int KTExplainFormat(const char *format, formTable *table, KTProblem *problem);

/**
 * What stands at a '%' of a format. A conversion that is wrong by itself has a rule, up to KT_RULE_UNKNOWN_CONVERSION.
 * It ends where its author will have meant it to end. Only its place is told, and where its name is unknown also its
 * position.
 */
typedef struct KTConversion
{
    size_t structSize;            /**< in: sizeof(KTConversion); a library of another version fills no more than this */
    size_t offset;                /**< where the '%' stands, in bytes of the format; in: 0 before the first */
    size_t length;                /**< how far the conversion goes, in bytes; in: 0 before the first */
    int rule;                     /**< KT_RULE_NONE, or what is wrong */
    unsigned int position;        /**< from 1; 0 where there is none */
    Flag_t type;                  /**< CONV_N and CONV_O for the ends of a region; CONV_UNKNOWN where it is wrong */
    int width;                    /**< KT_ABSENT, KT_FROM_ARGUMENTS or a number */
    int precision;                /**< likewise */
    int flags;                    /**< bits of KTFlag */
    const KTFormatter *formatter; /**< the record in its table; null for the ends of a region, and where it is wrong */
    KTSlot *slotList;             /**< in: room for the arguments that the conversion takes; or null */
    size_t slotRoom;              /**< in: for how many of them */
    size_t slotCount;             /**< how many there are, in the order of passing; the first slotRoom in slotList */
} KTConversion;

/**
 * Walks over the conversions of a format, right or not, in the order of the text, so that checkers, editors and other
 * programs that show a format need no parser of their own. KTExplainFormat() tells what is wrong with the format as a
 * whole: a position that is repeated, missing, or higher than a format of this length can have. Needs no started
 * library and takes no memory; a walk takes time in proportion to the format.
 * @param format      UTF-8, zero-terminated.
 * @param table       its conversions, or null for the built-in ones.
 * @param conversion  in: structSize, slots and slotRoom, and in offset and length the conversion before, behind which
 *                    the walk goes on; out: the next one. A caller may change length to go on elsewhere in the format.
 * @return whether there is one; false, with nothing changed, also for null and for too small a structSize.
 *
 *     KTConversion found = {sizeof found};
 *     while (KTNextConversion("%s[2] of %q[1]", NULL, &found))
 *         printf("%zu+%zu: %d\n", found.offset, found.length, found.rule); // 0+5: 0, then 9+5: 6
 */
bool KTNextConversion(const char *format, formTable *table, KTConversion *conversion);

/**
 * Tells whether the arguments of one format may be passed to another, as a translation of it: as many, and each of the
 * same kind and size and in the same role (a value, or the width or precision of a '*'). Whether an integer is signed
 * does not matter, nor which letter shows it. A text that the reference writes in an encoded region has to lie in one
 * here too, or be written as a date, which cannot be anything else, or not at all ("IP", "%.0s[1]").
 * @param format     the translation, UTF-8.
 * @param reference  the program's own format, UTF-8.
 * @param table      the conversions of both, or null for the built-in ones.
 * @param problem    in: structSize; out: as in KTExplainFormat(), of the format. Null is allowed.
 * @return 0 when they may; KT_ERR_INVALID_PARAMETER when they may not (rule KT_RULE_ARGUMENT_… or
 *         KT_RULE_ENCODING_LOST), for null, and for too small a structSize; else as KTPrepareFormat(), for the format
 *         and then for the reference.
 */
int KTCompareFormats(const char *format, const char *reference, formTable *table, KTProblem *problem);

/**
 * Makes a sentence of a problem, as "argument 2 is a 32-bit integer here, a UTF-8 string in the reference", in English,
 * without a full stop; needs no started library.
 * @param size  in: the capacity of text in bytes, the terminator counted; out: the bytes of the sentence, the
 *              terminator not counted, also where it does not fit.
 * @return 0; KT_ERR_BUFFER_TOO_SMALL, and text holds the empty text where it has room; or KT_ERR_INVALID_PARAMETER
 *         where problem or size is null, or text with a capacity other than 0.
 */
int KTProblemText(const KTProblem *problem, size_t *size, char *text);

/* ## 9. Catalogs
 *
 * A program whose texts come from translators needs more than a format: the languages that its user reads, one after
 * the other; a message that is looked at once and then kept; and something to print whatever a translation is like. A
 * catalog has all of that behind one call.
 *
 *     KTCatalog *store; // once: the user's languages, then English
 *     int result = KTOpenCatalog("/usr/share/locale", "store", NULL, &store);
 *
 *     char line[200]; // often, in any thread
 *     size_t size = sizeof line;
 *     const KTArgument arguments[] = {KT_INT(12), KT_UTF8("report.txt")};
 *     KTCatalogFormatUTF8(store, 3, "%s[2] has %d[1] pages", &size, line, arguments, 2);
 *     puts(line); // there is always a text
 *
 *     KTCloseCatalog(store);
 *
 * **The ladder.** The text is the first of these that can be used: the message in the user's languages, one after the
 * other; the message in the source language; the text in the source, which the call brings; and "[store 3: 12,
 * report.txt]". A message is passed over where the catalog lacks it, where it is empty while something below is not,
 * where it is malformed or asks for other arguments than the call brings, where it writes an argument without the
 * encoder that the text in the source puts it through, where it fails while it is formatted, and where it becomes too
 * long. The last rung takes no memory and cannot fail. onProblem is told what was passed over. docs/catalogs.md is the
 * guide.
 *
 * **Threads.** Any number of threads may use a catalog, from its opening to its closing. A message that was used before
 * takes no lock.
 */

/** A catalog in all the languages that a user may be given. */
typedef struct KTCatalog KTCatalog;

/**
 * Why something was passed over on the way to a text. The texts live during the call that is told of it. Later versions
 * add members at the end.
 */
typedef struct KTCatalogProblem
{
    size_t structSize;    /**< of this record, in bytes; members beyond it are not there */
    const char *catalog;  /**< the name of the catalog */
    const char *language; /**< the language that was passed over; the empty text for the text in the source */
    const char *file;     /**< its file, or the directory that has none; the empty text for the text in the source */
    int64_t id;           /**< of the message, INT64_MAX for a higher one; 0 where the file as a whole is of no use */
    int result;           /**< one of KTResult */
    const char *text;     /**< a sentence for the developer, in English and on one line */
} KTCatalogProblem;

/** Told once per message and language what was passed over, in the thread that asked for the message. */
typedef void (*KTProblemFunction)(void *context, const KTCatalogProblem *problem);

/**
 * Asked after a conversion or encoder of the program's own may have failed, and after a KTProblemFunction: whether the
 * call is to end at once, without a text and without a report. For languages whose functions throw.
 */
typedef bool (*KTStopFunction)(void *context);

/**
 * Writes an argument of type KT_ARGUMENT_POINTER, other than a KTObject, for reports and for the last rung, as UTF-8. A
 * program that has this function also says that the conversions of its table ask for the kind of a pointer before they
 * look at it: on the last rung the first of the table's own list that takes one pointer and does not fail writes the
 * argument, before this function is asked.
 * @param size  in: the capacity of out in bytes, the terminator counted; out: the bytes of the text, the terminator not
 *              counted, also after KT_ERR_BUFFER_TOO_SMALL.
 * @return 0, KT_ERR_BUFFER_TOO_SMALL, or any other failure: then "(pointer)" is written.
 */
typedef int (*KTArgumentFunction)(void *context, const KTArgument *argument, size_t *size, char *out);

/**
 * Gives the conversions of a language, so that each language of a catalog writes with its own: numbers and dates, say.
 * Asked once for each language that is loaded, and once for the source language, whose conversions are those of the
 * texts in the source. It must not use the catalog, which waits for it. KTLConversions() of the add-on is one.
 * @param language  a name as in KTLanguages(), "de_AT"; of a catalog that is a single file what that says of itself.
 * @return a table that lives as long as the catalog; null for the conversions that all languages have.
 */
typedef formTable *(*KTConversionsFunction)(void *context, const char *language);

/**
 * How a catalog is found, and how its messages are formatted. Zeros stand for what is usual. Later versions add members
 * at the end.
 *
 * A text may have maxSize bytes, beside 8 times those of the text arguments: "%2000000000d[1]" in a translation
 * exhausts nothing. The text in the source is not passed over for being longer, unless it needs more than 1 MiB as
 * well. The functions may be null, run in any thread that uses the catalog, and may use it too, but for conversions.
 */
typedef struct KTCatalogOptions
{
    size_t structSize;          /**< sizeof(KTCatalogOptions); what lies beyond it counts as zero */
    const char *languages;      /**< as in KTLanguages(): null for the user's */
    const char *sourceLanguage; /**< the language that has its turn behind the user's: null for "en", "" for none */
    formTable *table;           /**< the conversions, or null for the built-in ones; it lives as long as the catalog */
    void *passThru;             /**< handed to conversions of the program's own */
    unsigned formatOptions;     /**< bits of KTFormatOption; KT_ENCODE_ALL needs a table with an encoder */
    size_t maxSize;             /**< see above; 0 stands for 1 MiB */
    void *context;              /**< handed to the functions below */
    KTProblemFunction onProblem;
    KTStopFunction isStopped;
    KTArgumentFunction writeArgument;
    KTConversionsFunction conversions; /**< those of each language, behind the ones of table as that is now; or null */
    void *conversionsContext;          /**< handed to it */
} KTCatalogOptions;

/**
 * Opens the catalog of the user's languages and of the source language: the files DIRECTORY/LANGUAGE/NAME.ktc, or else
 * DIRECTORY/LANGUAGE/NAME.xlf, in the order of KTLanguages(). The first that is of use is loaded, the others when they
 * are needed; a file that is missing, malformed or unreadable is told to onProblem and passed over, and where there is
 * none at all, the catalog gives the texts in the source. A damaged ".ktc" gives way to the ".xlf" beside it.
 *
 * An open catalog is a use of the library, which begins and ends as by KTBeginUse() and KTEndUse(). isStopped is not
 * asked while it is opened.
 * @param directory  the folder that holds a folder per language; not empty.
 * @param name       the name of the catalog, the program's own as a rule; not empty, without a '/'.
 * @param options    null for the usual ones; not needed afterwards, nor are the texts in it.
 * @param catalog    out: the catalog, to be released with KTCloseCatalog(). Also where the result is
 *                   KT_ERR_NOT_INITIALIZED, or KT_ERR_INVALID_PARAMETER for an impossible directory or name: it then
 *                   gives the texts in the source, as far as the library is started. Null after other failures.
 * @return 0, also without any file; KT_ERR_NOT_INITIALIZED where the library cannot be started; KT_ERR_NO_MEMORY;
 *         KT_ERR_INVALID_PARAMETER for an impossible directory or name, for null where none is allowed, and for options
 *         of an unknown kind: too small a structSize, an unknown bit, KT_ENCODE_ALL without an encoder.
 */
int KTOpenCatalog(const char *directory, const char *name, const KTCatalogOptions *options, KTCatalog **catalog);

/**
 * Opens one file, "….ktc" or any other name for an XLIFF file, as a catalog of one language; languages and
 * sourceLanguage are not looked at. Its name is that of the file, without directory and suffix.
 * @param catalog  out: as in KTOpenCatalog(); also where the file cannot be loaded, and then it gives the texts in the
 *                 source.
 * @return as KTOpenCatalog(), and what KTLoadMessages() and KTLoadCompiledMessages() say of the file.
 */
int KTOpenCatalogFile(const char *path, const KTCatalogOptions *options, KTCatalog **catalog);

/**
 * Opens a compiled catalog that lies in memory, as one that is part of the program; it is read during the call.
 * @param name     any text.
 * @param data     as in KTLoadCompiledData().
 * @param size     its bytes.
 * @param catalog  out: as in KTOpenCatalogFile().
 * @return likewise.
 */
int KTOpenCatalogData(const char *name, const void *data, size_t size, const KTCatalogOptions *options,
                      KTCatalog **catalog);

/**
 * Opens a format of the program's own in the place of a catalog, with the options of one: a text that comes from no
 * translation. The calls below then write this text, whatever the number and the text in the source, and what does not
 * fit is a failure. They return what KTFormatPrepared() does, out being empty and size 0 after every failure; but
 * KT_ERR_CONVERSION_FAILED where isStopped() says so, and KT_ERR_BUFFER_TOO_SMALL with a size of 0 for a text that is
 * longer than maxSize allows, each unit counted as a byte. KTExplainCatalog() says why.
 * @param format   UTF-8; not needed afterwards.
 * @param options  as in KTOpenCatalog(), but for languages, sourceLanguage, onProblem and conversions, which are not
 *                 looked at.
 * @param catalog  out: as in KTOpenCatalog(); also where the format is refused.
 * @return 0; KT_ERR_NOT_INITIALIZED; KT_ERR_NO_MEMORY; KT_ERR_INVALID_PARAMETER as there; and what KTPrepareFormat()
 *         says of the format.
 */
int KTOpenCatalogFormat(const char *format, const KTCatalogOptions *options, KTCatalog **catalog);

/** The format of KTOpenCatalogFormat(), which lives as long as the catalog; null for others and for a refused one. */
const KTPreparedFormat *KTCatalogPrepared(const KTCatalog *catalog);

/** Closes a catalog, or null. Nobody may use it any more: no call on it may still be in progress. */
void KTCloseCatalog(KTCatalog *catalog);

/**
 * Writes a message in UCS-2. There is always a text; see "The ladder" above.
 * @param catalog    null has no messages and no name: the text in the source, or "[3: 12, report.txt]".
 * @param id         the number. One below 1 or above 2147483647 is that of a message that is not there. Of numbers that
 *                   no file has a catalog keeps 4,096, so that each is told once, and no more: others are not told.
 * @param source     the text in the source, a format in UTF-8; null where there is none. Up to 8 of them are kept for
 *                   each number.
 * @param size       in: the capacity of out in units, the terminator counted; out: the units of the text, the
 *                   terminator not counted, also where the result is KT_ERR_BUFFER_TOO_SMALL: then the units that the
 *                   text needs.
 * @param out        the text, terminated. After KT_ERR_BUFFER_TOO_SMALL as much of it as fits, cut at a whole character
 *                   and terminated, so that a program whose line has a fixed length may ignore the result. (A number of
 *                   more than 303 characters is left out where it does not fit.) Null is allowed for a capacity of 0.
 * @param arguments  in the order of the positions; null where there is none.
 * @param count      their number.
 * @return 0 on every rung, or KT_ERR_BUFFER_TOO_SMALL. KT_ERR_INVALID_PARAMETER, with nothing touched, where size is
 *         null, or out with a capacity other than 0, or arguments with a count other than 0. KT_ERR_CONVERSION_FAILED,
 *         with out empty and size 0, where isStopped() of the options said so.
 */
int KTCatalogFormat(const KTCatalog *catalog, int64_t id, const char *source, size_t *size, UCS2 *out,
                    const KTArgument *arguments, size_t count);

/** Writes a message as KTCatalogFormat() does, in UTF-8. Sizes are in bytes. */
int KTCatalogFormatUTF8(const KTCatalog *catalog, int64_t id, const char *source, size_t *size, char *out,
                        const KTArgument *arguments, size_t count);

/** A message that is asked for, as a language binding names it. Later versions may add members at the end. */
typedef struct KTCatalogRequest
{
    size_t structSize;   /**< sizeof(KTCatalogRequest) */
    int64_t id;          /**< the number, or its 64 bits */
    bool isUnsigned;     /**< whether these are an unsigned number */
    const char *source;  /**< the text in the source; null for none */
    size_t sourceLength; /**< its bytes, or to its first zero; SIZE_MAX where it is zero-terminated */
    const KTArgument *arguments;
    size_t count;
} KTCatalogRequest;

/**
 * KTCatalogFormat() for language bindings.
 * @return likewise; KT_ERR_INVALID_PARAMETER also where request is null or its structSize too small.
 */
int KTCatalogFormatRequest(const KTCatalog *catalog, const KTCatalogRequest *request, size_t *size, UCS2 *out);

/** KTCatalogFormatUTF8() for language bindings; as KTCatalogFormatRequest(). */
int KTCatalogFormatRequestUTF8(const KTCatalog *catalog, const KTCatalogRequest *request, size_t *size, char *out);

/**
 * Tells why a catalog could not be opened, or why the format of KTOpenCatalogFormat() did not take the arguments of a
 * call, as KTExplainFailure() does.
 * @param catalog  what the opening gave, which may be null.
 * @param request  that of the call, of which the arguments are looked at; null for the opening.
 * @param result   what the call or the opening returned.
 * @param size     as in KTExplainFailure(), like text and the result.
 */
int KTExplainCatalog(const KTCatalog *catalog, const KTCatalogRequest *request, int result, size_t *size, char *text);

/**
 * A message as it stands in the first language that has it, UTF-8.
 * @return the text, which lives as long as the catalog; null where no language has one, and for a null catalog.
 */
const char *KTCatalogText(const KTCatalog *catalog, int64_t id);

/**
 * The first language of which messages are loaded, as "de" or "de_AT": the name of its folder, or of a single file what
 * that says of itself.
 * @return the name, which lives as long as the catalog; the empty text where there is none, and for a null catalog.
 */
const char *KTCatalogLanguage(const KTCatalog *catalog);

/**
 * Tells why a format did not take its arguments, in a sentence for a log, in English and on one line, without a full
 * stop: what onProblem is told, for programs that format by themselves. Control characters become blanks, and of a long
 * value the beginning is written.
 * @param format     the format, UTF-8.
 * @param result     what the call returned.
 * @param options    of them table, passThru, formatOptions and maxSize, as in that call, and writeArgument; or null.
 * @param arguments  those of the call.
 * @param count      their number.
 * @param size       in: the capacity of text in bytes, the terminator counted; out: the bytes of the sentence, the
 *                   terminator not counted, also where it does not fit.
 * @param text       out: the sentence, cut at a whole character where it does not fit. Null is allowed for a capacity
 *                   of 0.
 * @return 0; KT_ERR_BUFFER_TOO_SMALL; KT_ERR_INVALID_PARAMETER for a null where none is allowed and for options as in
 *         KTOpenCatalog(). Where memory is short the sentence says less.
 *
 *     const KTArgument arguments[] = {KT_UTF8("report.txt"), KT_UTF8("12")};
 *     char why[200];
 *     size_t size = sizeof why;
 *     KTExplainFailure("%s[1] has %d[2] pages", KT_ERR_INVALID_PARAMETER, NULL, arguments, 2, &size, why);
 *     // "%s[1] has %d[2] pages": argument 2 is a 32-bit integer here, a UTF-8 string in the call
 */
int KTExplainFailure(const char *format, int result, const KTCatalogOptions *options, const KTArgument *arguments,
                     size_t count, size_t *size, char *text);

/**
 * Writes an argument as the last rung does, in UTF-8: a number in decimal, a time as "1970-01-01 00:00:00", a text as
 * it is.
 * @param size  in: the capacity of text in bytes, the terminator counted; out: the bytes of the text, the terminator
 *              not counted, also where it does not fit.
 * @param text  out: the text, cut at a whole character where it does not fit. Null is allowed for a capacity of 0.
 * @return 0; KT_ERR_BUFFER_TOO_SMALL; KT_ERR_INVALID_PARAMETER for a null where none is allowed.
 */
int KTArgumentText(const KTArgument *argument, size_t *size, char *text);

/**
 * Where a text is cut, so that whole characters are left. Needs no started library.
 * @param text  UTF-8 of `size` bytes, not terminated.
 * @param most  the bytes that are wanted at most.
 * @return the bytes that are left: size, or less than size and at most `most`.
 */
size_t KTCutUTF8(const char *text, size_t size, size_t most);

/**
 * The bytes of UTF-8 that a text with these arguments may have: maxSize, as in KTCatalogOptions, and 8 times the bytes
 * of the texts among them. For programs that format by themselves.
 */
size_t KTTextLimit(size_t maxSize, const KTArgument *arguments, size_t count);

/* ## 10. Plural forms and selection
 *
 * A message that consists of one of the conversions "plural", "ordinal" and "select", and of nothing else, is a
 * selector: in its place stands one of the messages in a row, whose first number is the width, chosen by the argument
 * whose number stands in the brackets (counted as arguments are passed).
 *
 *     12   %101plural[1]                           how many: the row begins at 101
 *     102  %d[1] file copied to %s[2]              101 + KT_VARIANT_ONE
 *     106  %d[1] files copied to %s[2]             101 + KT_VARIANT_OTHER
 *     107  nothing%nil[1] copied to %s[2]          101 + KT_VARIANT_EXACTLY_0
 *
 * A program asks for message 12, whatever its row holds; which numbers take which message is known of each language.
 * "ordinal" is for 1st, 2nd, 3rd. A precision is the number of digits that the text shows behind the mark:
 * "%101.1plural[1]" goes with "%.1f[1]". "select" takes the message at the place of the number, 0 to 63, and for any
 * other, or where there is none, the first. A message of a row may be a selector too. Other conversions take the
 * argument whatever it is; "nil" takes an integer (64 bits with '!') and writes nothing. docs/plurals.md tells it from
 * the beginning.
 *
 *     KTPreparedFormat *copied; // once
 *     int result = KTPrepareMessage(table, 12, NULL, NULL, &copied);
 *
 *     const KTArgument arguments[] = {KT_INT(22), KT_UTF8("Invoices")}; // often
 *     result = KTFormatPreparedUTF8(copied, 0, NULL, &size, text, arguments, 2); // "22 files copied to Invoices"
 */

/** The places in the row of a "plural" and an "ordinal". */
enum KTVariant
{
    KT_VARIANT_ZERO = 0,
    KT_VARIANT_ONE = 1,
    KT_VARIANT_TWO = 2,
    KT_VARIANT_FEW = 3,
    KT_VARIANT_MANY = 4,
    KT_VARIANT_OTHER = 5,     /**< for numbers of no other category */
    KT_VARIANT_EXACTLY_0 = 6, /**< 0 shown without digits behind the mark; looked for before the category */
    KT_VARIANT_EXACTLY_1 = 7  /**< 1, not -1, likewise */
};

/**
 * Tells the category of a number in a language: which form of a noun goes with it. Needs no started library.
 * @param locale   the language, as "pl", "pt_PT", "pt-PT" or "de_AT.UTF-8": a region that has no rules of its own takes
 *                 those of the language, an unknown language KT_VARIANT_OTHER.
 * @param ordinal  whether the number counts a place (1st, 2nd) and not things.
 * @param number   an integer of any size, of which the sign does not matter, or a double or long double; infinity and
 *                 what is no number take KT_VARIANT_OTHER. Where the number counts a place, an integer.
 * @param digits   the digits that are shown behind the mark, 0 or more: "1.0" is another number than "1" to English.
 * @return KT_VARIANT_ZERO to KT_VARIANT_OTHER; KT_ERR_INVALID_PARAMETER for null, a negative number of digits, and an
 *         argument that is no number.
 *
 *     int variant = KTPluralCategory("pl", false, KT_INT(22), 0); // KT_VARIANT_FEW: 22 pliki
 */
int KTPluralCategory(const char *locale, bool ordinal, KTArgument number, int digits);

/**
 * Prepares a message of a table as KTPrepareFormat() does, and where it is a selector, all that it leads to. The
 * prepared format is like any other: a call chooses by its arguments, and then checks them and writes.
 * KTPreparedSlots() tells the slots of the first variant; all of them take as many arguments of the same kinds, whether
 * an integer is signed not counting. A call has two results more: KT_ERR_INVALID_MSG_ID, with size and out untouched,
 * where the row has neither what its arguments ask for nor KT_VARIANT_OTHER (or, of a "select", the first); and
 * KT_ERR_INVALID_PARAMETER also where the argument that selects is no number.
 * @param table     not needed afterwards.
 * @param id        the number of the message.
 * @param locale    the language whose rules count, as in KTPluralCategory(); null for that of the file, its
 *                  "source-language".
 * @param forms     the conversions, as in KTPrepareFormat(), and "nil" where they have none; null for the built-in ones
 *                  and "nil".
 * @param prepared  out: as in KTPrepareFormat().
 * @return as KTPrepareFormat(); KT_ERR_TABLE_NOT_FOUND; KT_ERR_INVALID_MSG_ID where there is no such message, or no
 *         message in the row of a selector; KT_ERR_INVALID_PARAMETER also where the argument that selects is missing or
 *         no number; KT_ERR_FORMAT_SYNTAX also for text beside a selector, a selector that leads back to itself or
 *         through more than 8 selectors or to more than 1,024 messages, and for variants that take other arguments.
 */
int KTPrepareMessage(MessageTable *table, unsigned int id, const char *locale, formTable *forms,
                     KTPreparedFormat **prepared);

/**
 * Chooses the message of a selector, for a call that takes a text: the message may be formatted with the same
 * arguments, where the call's table has "nil" (KTGetVariantFormTable()).
 * @param id         in: the number of the message; out, on success: of the one that was chosen, which is the same where
 *                   the message is no selector, or 0.
 * @param locale     as in KTPrepareMessage().
 * @param arguments  those of the format call to come; of these the ones that select are looked at.
 * @param message    out: the message, as in KTGetMessage(); null, and the number 0, where there is none: no such
 *                   message, or neither a variant nor one for any other. Null on every failure but
 *                   KT_ERR_NOT_INITIALIZED, which leaves the number alone.
 * @return 0; KT_ERR_NOT_INITIALIZED, KT_ERR_TABLE_NOT_FOUND; KT_ERR_FORMAT_SYNTAX for text beside a selector and for a
 *         selector that leads back to itself or through more than 8 selectors; KT_ERR_INVALID_PARAMETER where the
 *         argument that selects is missing or no number, or id, message or the arguments are null.
 *
 *     unsigned int id = 12;
 *     char *message;
 *     formTable *forms;
 *     int result = KTSelectMessage(table, &id, NULL, arguments, 2, &message); // id is 106 now
 *     result = KTGetVariantFormTable(&forms);
 *     result = KTFormatStringWithPassThru(NULL, false, forms, NULL, &units, wide, message, 22, "Invoices");
 */
int KTSelectMessage(MessageTable *table, unsigned int *id, const char *locale, const KTArgument *arguments,
                    size_t count, char **message);

/**
 * Tells whether KTPrepareMessage() accepts a message, and if not, why and where.
 * @param problem  in: structSize; out: as in KTExplainFormat(), with the number of the message concerned. Null is
 *                 allowed.
 * @return as KTPrepareMessage(); KT_ERR_INVALID_PARAMETER also where structSize is too small.
 */
int KTExplainMessage(MessageTable *table, unsigned int id, formTable *forms, KTProblem *problem);

/**
 * Gives a table that has "nil" and is chained to the shared built-in table, so that its encoder is the one registered
 * there. The table belongs to the library: it may be chained to, and must not be changed.
 * @return 0, KT_ERR_NOT_INITIALIZED (nothing is stored), or KT_ERR_INVALID_PARAMETER where table is null.
 */
int KTGetVariantFormTable(formTable **table);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif
#endif
