/**
 * @file kelto-locale.h
 * Kelto's add-on: numbers, dates, amounts and lists as people write them.
 *
 * ## 1. Conversions of a language
 *
 * "%d" and "%D" write the same everywhere. This add-on brings conversions that write as the readers of a language do,
 * by ICU's rules: "%number[1]" of 1234567 is "1.234.567" in German and "1 234 567" in Polish. A language is opened
 * once, and its form table is given to any format call, or to a catalog:
 *
 *     #include <kelto-locale.h>
 *     #include <stdio.h>
 *
 *     int main(void)
 *     {
 *         KTLLanguage *polish = NULL;
 *         unsigned long units = 100;
 *         size_t bytes = 300;
 *         UCS2 wide[100];
 *         char format[] = "%number[1] / %.2date[2]", text[300];
 *
 *         if (KTInit() != 0 || KTLOpenLanguage("pl", "Europe/Warsaw", &polish) != 0)
 *             return 1;
 *         if (KTFormatStringWithPassThru(NULL, false, KTLFormTable(polish), NULL, &units, wide, format, 1234567,
 *                                        "1795608000") == 0 &&
 *             KTUCS2ToUTF8(wide, &bytes, text) == 0)
 *             puts(text); // 1 234 567 / 25 listopada 2026
 *         KTLCloseLanguage(polish);
 *         return KTClean();
 *     }
 *
 * Link with kelto-locale and kelto. docs/locale.md is the guide.
 *
 * **The conversions.** Behind them stand "nil" and the built-in ones; a program's own table may stand in front.
 *
 *     number, unumber       a signed, an unsigned integer, sizes as in "d": digits in groups; flags and width as in "d"
 *     decimal               a double: the digits that "f" writes, in groups; precision 2 unless given; as in "f" else
 *     percent               a double: the same with a percent sign; 29.95 is "29,95 %"
 *     money                 two UTF-8 texts, "1234.50" and "EUR": an amount and its symbol; with '#' its code
 *     unit                  a double and a UTF-8 text, "kilobyte": a measure, short; with '#' in words; without a
 *                           precision up to two decimals
 *     date, time, datetime  a UTF-8 text, as "D", "T" and "DT": precision 0 short, 1 medium (the usual one), 2 long,
 *                           3 full
 *     ago                   a signed integer, seconds, negative for the past: "vor 3 Tagen", "in 2 Stunden"
 *     and, or               a UTF-8 text, an item a line: "a, b und c", "a, b oder c"
 *
 * **Threads.** An open language never changes: any number of threads may format with it at once.
 *
 * **The environment.** No locale of the process is read or set, and no variable decides what is written.
 *
 * **Untrusted input.** What a translation, an argument, the name of a locale or of a time zone holds is answered with a
 * result code, and in a catalog with the next rung of the ladder: KT_ERR_INVALID_PARAMETER for an amount that is no
 * decimal number, a code that is no currency, a unit that is none, a date that is none, and a precision above 999;
 * KT_ERR_CONVERSION_FAILED where ICU has no data; KT_ERR_NO_MEMORY where it, or the add-on, runs out of memory.
 */
#ifndef KELTO_LOCALE_H
#define KELTO_LOCALE_H

#include <kelto.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** An open language, with a time zone; only its address is of use to a caller. */
typedef struct KTLLanguage KTLLanguage;

/**
 * Opens a language. What its conversions need is made when they are first used. A language that is open already, or was
 * so a short while ago, is opened again at almost no cost.
 * @param locale    a BCP 47 tag ("pl", "ar-EG", "th-TH-u-nu-thai", "de-u-ca-buddhist") or a POSIX name ("pl_PL.UTF-8",
 *                  "sr_RS@latin"; modifiers but latin, cyrillic, devanagari and valencia are ignored). A language that
 *                  ICU does not know, "C", "POSIX", the empty text and any other text have the rules of the root, which
 *                  belong to no language; KTLLanguageName() tells so.
 * @param timeZone  where dates and times are shown: a name of the time zone database ("Europe/Warsaw") or "GMT+02:00";
 *                  null for UTC.
 * @param language  out: the language, which the caller closes with KTLCloseLanguage(); null on failure.
 * @return 0; KT_ERR_NOT_INITIALIZED; KT_ERR_INVALID_PARAMETER where locale or language is null, for a locale of more
 *         than 156 bytes, and for a time zone that is none; KT_ERR_NO_MEMORY; KT_ERR_CONVERSION_FAILED where ICU has no
 *         data.
 */
int KTLOpenLanguage(const char *locale, const char *timeZone, KTLLanguage **language);

/**
 * Closes a language, or null. Nobody may use its table any more, nor a format that was prepared with it, once it was
 * closed as often as it was opened.
 */
void KTLCloseLanguage(KTLLanguage *language);

/**
 * The form table of a language. It lives as long as the language is open, and is not to be changed; its records are not
 * to be copied, since each finds its language by the address of its name. To put conversions in front, chain to it.
 * @return null for null.
 */
formTable *KTLFormTable(KTLLanguage *language);

/**
 * The name of the rules by which a language writes, as BCP 47 has it: "pl" where "pl_XX" was opened, and "root" where
 * ICU does not know the language.
 * @return a text of the language's, while it is open; null for null.
 */
const char *KTLLanguageName(const KTLLanguage *language);

/**
 * The form table of a language by its name: a KTConversionsFunction for catalogs, where each language of the ladder has
 * the conversions of its own. The language stays open until the program ends.
 * @param timeZone  as in KTLOpenLanguage(): a zero-terminated text, or null.
 * @param language  likewise.
 * @return the table, or null where KTLOpenLanguage() fails.
 *
 *     KTCatalogOptions options = {sizeof options};
 *     options.conversions = KTLConversions;
 *     options.conversionsContext = "Europe/Warsaw"; // a cast to char * in C++
 */
formTable *KTLConversions(void *timeZone, const char *language);

/**
 * Gives back what is kept for languages that nobody has open: for programs that count their memory, or call ICU's
 * u_cleanup().
 */
void KTLForgetLanguages(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif
#endif
