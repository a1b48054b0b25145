#include "support/page.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace
{

std::string trimmed(const std::string &text)
{
    const size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

Row cellsOf(const std::string &line)
{
    Row cells;
    std::istringstream columns(line.substr(1));
    for (std::string cell; std::getline(columns, cell, '|');)
    {
        cell = trimmed(cell);
        const bool isCode =
            cell.size() >= 2 && cell.front() == '`' && cell.back() == '`' && cell.find('`', 1) == cell.size() - 1;
        cells.push_back(isCode ? cell.substr(1, cell.size() - 2) : cell);
    }
    return cells;
}

} // namespace

std::string readPage(const std::string &name)
{
    std::ifstream file(KELTO_SOURCE_DIR "/" + name);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::vector<Row> rowsUnder(const std::string &page, const std::string &heading)
{
    std::vector<Row> rows;
    bool isInside = false;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);)
    {
        if (line == heading)
            isInside = true;
        else if (line.empty() || line[0] != '|')
            isInside = false;
        else if (isInside && line.compare(0, 4, "|---") != 0)
            rows.push_back(cellsOf(line));
    }
    return rows;
}
