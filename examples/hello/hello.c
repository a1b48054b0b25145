/* Greets a user in the language of a message file and the character set of the terminal: hello [FILE] */
#include <kelto.h>
#include <stdio.h>

int main(int argc, char **argv)
{
    char path[] = "messages/en.xlf", charSet[256], line[400], *message = NULL;
    UCS2 text[200];
    unsigned long units = 200; /* the capacity; afterwards the length */
    size_t bytes = sizeof line;
    MessageTable *table = NULL;
    int result;

    if ((result = KTInit()) == 0 && (result = KTLoadMessages(argc > 1 ? argv[1] : path, &table)) == 0 &&
        (result = KTGetMessage(table, 1, &message)) == 0 && message != NULL &&
        (result = KTFormatString(NULL, false, &units, text, message, "Ada", 7)) == 0 &&
        KTGetSystemCharSet(charSet) == 0 && (result = KTUCS2ToMultiByte(charSet, 0, 0, text, &bytes, line)) == 0)
        puts(line); /* Hello Ada, you have 7 new messages. */
    else
        fprintf(stderr, "hello: %s\n", result != 0 ? KTResultText(result) : "the file has no message 1");
    KTClean(); /* releases the table too */
    return result == 0 && message != NULL ? 0 : 1;
}
