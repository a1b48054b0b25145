// kelto-po: PO files for the program kelto, which starts it. It stands by itself since libgettextpo was not written for
// hostile input, and because of its licence (GPL-3 or later). A fault in here ends this process alone, under limits of
// memory and time that kelto sets.
//
//     kelto-po read   <a PO file  >the bilingual document
//     kelto-po write  <the document  >a PO file
//
// The document is XLIFF 1.2 with attributes of ours, of the namespace "urn:kelto:translation": "line" of an entry's
// msgstr and of a finding, "obsolete", "format" (written: "c-format" or "no-c-format"; read: whichever the entry
// names, as "python-format"), "header" and "charset" of the file, "control" where a text has characters that no XML
// document can hold, "name" of a finding that is ours. Texts are written with \\, \t, \r and \n. A
// plural entry is a group ("x-gettext-plurals") of units with the same number, a "form" each; "plural" is its
// msgid_plural.

#include "po/read_po.h"
#include "po/write_po.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>

namespace
{

std::string readInput()
{
    std::string input;
    std::array<char, 65536> buffer{};
    for (ssize_t got = 0; (got = read(STDIN_FILENO, buffer.data(), buffer.size())) != 0;)
        if (got > 0)
            input.append(buffer.data(), static_cast<size_t>(got));
        else if (errno != EINTR)
        {
            std::perror("kelto-po");
            std::exit(EXIT_FAILURE);
        }
    return input;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string_view mode = argc == 2 ? argv[1] : "";
    if (mode == "read" || mode == "write") // libgettextpo frees some blocks never: they end with the process
        _exit(mode == "read" ? po::readPo(readInput()) : po::writePo(readInput()));
    std::fputs("kelto-po is started by kelto, which reads and writes PO files with it.\n", stderr);
    return EXIT_FAILURE;
}
