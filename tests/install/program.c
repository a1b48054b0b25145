/* What a user's first program in C does. */
#include <kelto.h>
#include <stdio.h>

int main(int argc, char **argv)
{
    MessageTable *table = NULL;
    char *message = NULL, text[400];
    UCS2 wide[100];
    unsigned long units = sizeof wide / sizeof wide[0];
    size_t bytes = sizeof text;
    int result = argc == 2 ? KTInit() : 1;

    if (result == 0)
        result = KTLoadMessages(argv[1], &table);
    if (result == 0)
        result = KTGetMessage(table, 1, &message);
    if (result == 0)
        result = KTFormatString(NULL, false, &units, wide, message, 7, "files");
    if (result == 0)
        result = KTUCS2ToUTF8(wide, &bytes, text);
    if (result == 0)
        puts(text);
    else
        fprintf(stderr, "%s\n", KTResultText(result));
    KTClean();
    return result == 0 ? 0 : 1;
}
