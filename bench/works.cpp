#include "workload.h"

// Goals are in instructions per call, or relative to a contender that does only what cannot be left out.
const std::vector<bench::Work> bench::works = {
    {"W1", "format one string and one integer, positions swapped", 1000, "1700"},
    {"W2", "format ten arguments: integers with widths, three doubles, strings", 500, "9800"},
    {"W3", "format 2,000 units of literal text and one integer", 300, "5000"},
    {"W4", "W1 into a buffer that is too small, then the retry", 1000, "3400"},
    {"W5/1", "look one message up among 2,000, one catalog open", 50000, "110"},
    {"W5/20", "look one message up among 2,000, 20 catalogs open", 50000, "160"},
    {"W6/2000", "load 2,000 messages (250 kB)", 1, "1.08 expat"},
    {"W6/20000", "load 20,000 messages (2.5 MB)", 1, "1.08 expat"},
    {"W7/in/42B", "UTF-8 to UCS-2, 42 bytes of mixed scripts", 1000, "1.05 ICU bare"},
    {"W7/out/42B", "UCS-2 to UTF-8, 42 bytes of mixed scripts", 1000, "1.05 ICU bare"},
    {"W7/in/64KiB", "UTF-8 to UCS-2, 64 KiB of mixed scripts", 10, "1.05 ICU bare"},
    {"W7/out/64KiB", "UCS-2 to UTF-8, 64 KiB of mixed scripts", 10, "1.05 ICU bare"},
    {"W8/42B", "Shift-JIS to UTF-8, 42 bytes", 500, "1.05 ICU"},
    {"W8/64KiB", "Shift-JIS to UTF-8, 64 KiB", 5, "1.05 ICU"},
    {"W9", "from key to UTF-8 text: get, format, convert", 2000, "2600"},
};
