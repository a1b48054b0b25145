// What a user's first program in C++ does.
#include <iostream>
#include <kelto.h>

int main(int argc, char **argv)
{
    if (argc != 2 || KTInit() != 0)
        return 1;
    MessageTable *table = nullptr;
    char *message = nullptr;
    UCS2 wide[100];
    unsigned long units = 100;
    char text[400];
    size_t bytes = sizeof text;
    const bool done = KTLoadMessages(argv[1], &table) == 0 && KTGetMessage(table, 1, &message) == 0 &&
                      KTFormatString(nullptr, false, &units, wide, message, 7, "files") == 0 &&
                      wide == std::u16string(u"files: 7") && KTUCS2ToUTF8(wide, &bytes, text) == 0;
    if (done)
        std::cout << text << '\n';
    KTClean();
    return done ? 0 : 1;
}
