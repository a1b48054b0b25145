// Prints rows of a table, each formatted by message 6 of a message file, which fixes the columns and their order:
//     report [FILE]
//
// Shows Kelto in C++: a catalog, arguments of C++ types, texts in the source that the compiler compares with them, and
// what becomes of a file that is missing or has no such message: the table is printed all the same.
#include <kelto.hpp>

#include <iostream>
#include <string>

namespace
{

struct Document
{
    std::string title;
    double megabytes;
    unsigned pages;
};

const Document documents[] = {{"Zürich", 12.5, 240}, {"東京", 0.25, 8}};

} // namespace

int main(int argc, char **argv)
{
    kelto::catalog_options options;
    options.on_problem = [](const kelto::problem &p) { std::cerr << "report: " << p.text << '\n'; };

    std::error_code failure;
    const kelto::catalog store = kelto::catalog::load(argc > 1 ? argv[1] : "messages/en.xlf", options, failure);
    for (const Document &document : documents)
        std::cout << store.format(6, KELTO_DEFAULT("%s[1]: %.2f[2] MB, %u[3] pages"), document.title,
                                  document.megabytes, document.pages)
                  << '\n';
    return failure ? 1 : 0;
}
