// The table of all works: their names, what each does, and the goals.

#include "workload.h"

namespace
{

// Goals are in instructions per call, or relative to a contender that does only what cannot be left out.
std::vector<bench::Work> listWorks()
{
    std::vector<bench::Work> list = {
        {"W1", "format one string and one integer, positions swapped", 1000, "2200"},
        {"W2", "format ten arguments: integers with widths, three doubles, strings", 500, "9800"},
        {"W3", "format 2,000 units of literal text and one integer", 300, "5000"},
        {"W3/mixed", "the same with text of several scripts", 100, ""},
        {"W4", "W1 into a buffer that is too small, then the retry", 1000, "4300"},
        {"W5/1", "look one message up among 2,000, one catalog open", 50000, "110"},
        {"W5/20", "look one message up among 2,000, 20 catalogs open, in the oldest", 50000, "160"},
        {"W6/2000", "load 2,000 messages (250 kB)", 1, "1.08 expat", "1.15 expat"},
        {"W6/20000", "load 20,000 messages (2.5 MB)", 1, "1.08 expat", "1.15 expat"},
        {"W6c/2000", "load 2,000 messages, compiled and checked", 1, "45000"},
        {"W6c/20000", "load 20,000 messages, compiled and checked", 1, "400000"},
        {"W7/in/42B", "UTF-8 to UCS-2, 42 bytes of mixed scripts", 1000, "1.05 ICU bare"},
        {"W7/out/42B", "UCS-2 to UTF-8, 42 bytes of mixed scripts", 1000, "1.05 ICU bare"},
        {"W7/in/64KiB", "UTF-8 to UCS-2, 64 KiB of mixed scripts", 10, "1.05 ICU bare"},
        {"W7/out/64KiB", "UCS-2 to UTF-8, 64 KiB of mixed scripts", 10, "1.05 ICU bare"},
        {"W8/42B", "Shift-JIS to UTF-8, 42 bytes", 500, "1.05 ICU"},
        {"W8/64KiB", "Shift-JIS to UTF-8, 64 KiB", 5, "1.05 ICU"},
        {"W9", "from key to UTF-8 text: get, format, convert", 2000, "2600"},
        {"W1p/UCS-2", "W1 with a prepared format, into UCS-2", 2000, "500"},
        {"W1p/UTF-8", "W1 with a prepared format, into UTF-8", 2000, "500"},
        {"W1o/called", "W1p with a number written by a conversion of the program's own, into UTF-8", 2000, ""},
        {"W1o/UTF-8", "the same by its function for UTF-8", 2000, ""},
        {"W2p", "W2 with a prepared format, into UTF-8", 1000, "4000"},
        {"W3p", "W3 with a prepared format, into UTF-8", 1000, "650"},
        {"W4p", "W4 with a prepared format, into UTF-8", 2000, "1000"},
        {"W9p", "look a message up, and W1 with a prepared format into UTF-8", 2000, "650"},
        {"W9c", "W9p from C++, into a string that is used again", 2000, "1.25 C"},
        {"W9c/short", "a message of a catalog as a new string of 8 bytes", 2000, "750"},
        {"W9c/long", "the same of 63 bytes", 2000, "950"},
        {"W9c/again", "W9c/short into a string that is used again", 2000, "760"},
        {"prepare", "prepare W1 and release it", 2000, "1150"},
        {"L1", "lead from a number to the Polish message that goes with it", 2000, "400"},
        {"L2", "the same and format it with a text, into UTF-8", 2000, "850"},
        {"L2/catalog", "the same by a catalog, into a string that is used again", 2000, "1050"},
        {"L2/first", "prepare that message with its three forms, as its first use does, and release it", 500, ""},
        {"L3", "the category of a number in Polish", 5000, "120"},
        {"L3/first", "the same in another language each time", 5000, "2000"},
        {"L/number/2", "write 42 as a language does, by %number", 2000, "500"},
        {"L/number/7", "write 1234567 so", 2000, "800"},
        {"L/decimal", "write a double with two decimals, by %.2decimal", 1000, "1.1 ICU"},
        {"L/datetime", "write a date and time, by %.2datetime", 200, "1.1 ICU"},
        {"L/and", "join three texts, by %and", 1000, "1.2 ICU"},
        {"L/open", "open a language for the first time", 40, "200000"},
        {"L/open/again", "open it again, and close it", 2000, "2000"},
        {"P/block", "a block of 32 bytes, taken and released", 2000, ""},
        {"P/lock", "a lock that nobody else wants, taken and released", 2000, ""},
        {"P/text", "12 bytes of UTF-8 become UCS-2", 2000, ""},
        {"P/double", "the digits of 12345.678", 1000, ""},
    };
    struct Family
    {
        const char *name;
        const char *text; // with the smallest size
        size_t calls;
    };
    constexpr Family families[] = {
        {"literal text", "a format of 250 units", 100},
        {"argument text", "an argument of 250 bytes", 100},
        {"conversions", "a format of 10 conversions", 20},
        {"width", "a number 100 units wide", 100},
        {"name components", "a distinguished name of 5 components", 50},
        {"messages", "a file of 25 messages", 1},
        {"message length", "a message of 1,100 bytes", 2},
        {"depth", "a hostile file, 100 elements deep", 2},
        {"attributes", "an element with 200 attributes nobody reads", 2},
        {"catalogs", "a lookup in the oldest of 5 catalogs", 1000},
        {"export XLIFF 1.2", "25 messages for translators", 1},
        {"import XLIFF 1.2", "the same, read and checked", 1},
        {"export XLIFF 2.0", "25 messages for translators", 1},
        {"import XLIFF 2.0", "the same, read and checked", 1},
    };
    for (const Family &family : families)
        for (const char *size : {"1", "4", "16", "64"})
            list.push_back({"W11/" + std::string(family.name) + "/" + size, family.text, family.calls, "", ""});
    return list;
}

} // namespace

const std::vector<bench::Work> bench::works = listWorks();
