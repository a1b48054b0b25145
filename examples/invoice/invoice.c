/*
 * Writes an invoice in each of some languages, or in those that are named:
 *     invoice [FOLDER [LANGUAGE...]]
 *
 * Shows the add-on: numbers, amounts, percentages, measures, dates and lists as the readers of a language write them.
 * The program knows none of it. It hands over numbers, decimal texts, seconds and lines; which conversion writes them
 * is said in the catalogs, and each language of a catalog has conversions of its own. Without a catalog the texts below
 * are printed, which are English.
 */
#include <inttypes.h>
#include <kelto-locale.h>
#include <stdio.h>

struct Item
{
    const char *name; /* in English; its message is that many behind the first */
    int64_t count, cents;
};

static const struct Item items[] = {{"Notebook", 1200, 349}, {"Pencil", 12500, 45}, {"Ruler", 85, 1290}};

enum
{
    itemCount = sizeof items / sizeof items[0],
    firstName = 20 /* the message of the first item's name */
};

/* An amount in the decimal text that "money" takes: a double would not hold it. */
struct Amount
{
    char text[32];
};

static struct Amount amountOf(int64_t cents)
{
    struct Amount amount;

    snprintf(amount.text, sizeof amount.text, "%" PRId64 ".%02" PRId64, cents / 100, cents % 100);
    return amount;
}

/* A message as a text; what is longer than the text is cut. */
static void formatInto(char *text, size_t size, const KTCatalog *catalog, int id, const char *source,
                       const KTArgument *arguments, size_t count)
{
    KTCatalogFormatUTF8(catalog, id, source, &size, text, arguments, count);
}

static void printMessage(const KTCatalog *catalog, int id, const char *source, const KTArgument *arguments,
                         size_t count)
{
    char line[400];

    formatInto(line, sizeof line, catalog, id, source, arguments, count);
    puts(line);
}

static void printInvoice(const KTCatalog *catalog)
{
    const KTArgument number = KT_UTF8("2026-0815"), day = KT_UTF8("1795608000"), due = KT_UTF8("1798200000");
    const KTArgument percentage = KT_DOUBLE(19), weight = KT_DOUBLE(1234.5), kilograms = KT_UTF8("kilogram");
    const KTArgument euro = KT_UTF8("EUR");
    char names[itemCount][60], list[sizeof names] = "";
    int64_t net = 0, tax;
    size_t i, used = 0;

    printMessage(catalog, 1, "Invoice %s[1]", &number, 1);
    printMessage(catalog, 2, "Date: %.2date[1]", &day, 1);
    for (i = 0; i < itemCount; ++i)
    {
        const struct Amount price = amountOf(items[i].cents), sum = amountOf(items[i].count * items[i].cents);
        KTArgument arguments[] = {
            KT_UTF8(names[i]), KT_INT64(items[i].count), KT_UTF8(price.text), euro, KT_UTF8(sum.text), euro};

        formatInto(names[i], sizeof names[i], catalog, firstName + (int)i, items[i].name, NULL, 0);
        printMessage(catalog, 3, "%s[1]: %!number[2] at %money[3], %money[4]", arguments, 6);
        net += items[i].count * items[i].cents;
        used += (size_t)snprintf(list + used, sizeof list - used, "%s\n", names[i]);
    }
    tax = (net * 19 + 50) / 100;
    {
        const struct Amount amounts[] = {amountOf(net), amountOf(tax), amountOf(net + tax)};
        const KTArgument beforeTax[] = {KT_UTF8(amounts[0].text), euro};
        const KTArgument taxes[] = {percentage, KT_UTF8(amounts[1].text), euro};
        const KTArgument total[] = {KT_UTF8(amounts[2].text), euro};
        const KTArgument measure[] = {weight, kilograms}, lines = KT_UTF8(list);

        printMessage(catalog, 4, "Net: %money[1]", beforeTax, 2);
        printMessage(catalog, 5, "VAT (%.0percent[1]): %money[2]", taxes, 3);
        printMessage(catalog, 6, "Total: %money[1]", total, 2);
        printMessage(catalog, 7, "Please pay by %.3date[1].", &due, 1);
        printMessage(catalog, 8, "We deliver: %and[1].", &lines, 1);
        printMessage(catalog, 9, "Weight: %.1unit[1]", measure, 2);
    }
}

int main(int argc, char **argv)
{
    static char zone[] = "Europe/Warsaw";
    static char *known[] = {"en", "de", "pl", "ar_EG", "th", "hi"};
    char **languages = argc > 2 ? argv + 2 : known;
    const int count = argc > 2 ? argc - 2 : (int)(sizeof known / sizeof known[0]);
    int i;

    for (i = 0; i < count; ++i)
    {
        KTCatalogOptions options = {.structSize = sizeof options};
        KTCatalog *catalog = NULL;

        options.languages = languages[i];
        options.conversions = KTLConversions;
        options.conversionsContext = zone;
        KTOpenCatalog(argc > 1 ? argv[1] : "messages", "invoice", &options, &catalog);
        if (i > 0)
            putchar('\n');
        printInvoice(catalog);
        KTCloseCatalog(catalog);
    }
    return 0;
}
