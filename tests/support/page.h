/**
 * The tables of a page of the documentation, or of a file of rows, so that the tests compare with the library what a
 * reader reads.
 */
#ifndef KELTO_TESTS_SUPPORT_PAGE_H
#define KELTO_TESTS_SUPPORT_PAGE_H

#include <string>
#include <vector>

using Row = std::vector<std::string>;

/** The text of a file, named from the project's folder. */
std::string readPage(const std::string &name);

/**
 * The rows of all tables of a page whose heading is this line, as "| Source | Message |". Cells are without blanks
 * around them, and without backquotes.
 */
std::vector<Row> rowsUnder(const std::string &page, const std::string &heading);

#endif
