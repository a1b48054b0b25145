// What a user's first program in C++ does, with a call of the C interface in between.
#include <iostream>
#include <kelto.hpp>

int main(int argc, char **argv)
{
    const kelto::catalog catalog = kelto::catalog::load(argc == 2 ? argv[1] : "");
    UCS2 wide[100];
    unsigned long units = 100;
    char format[] = "%s[1]";
    if (KTFormatString(nullptr, false, &units, wide, format, "files") != 0 || wide != std::u16string(u"files"))
        return 1;
    std::cout << catalog.format(1, KELTO_DEFAULT("%d[1] of %s[2]"), 7, "files") << '\n';
}
