/* A program that declares the library's variables in the ordinary way sees the very ones that the library uses. Built
   both position-independent and not: in the latter the program itself holds them. */

#include "check.h"
#include "kelto.h"

extern int keltoRefCount;
extern bool keltoInitialized;
extern void *tableListMutex;
extern const UCS2 date_tag_o[7], ucs2_colon[2];

static int encoder(const void *value, int dataType, unsigned long *sizeInOut, UCS2 *out)
{
    (void)value, (void)dataType, (void)out;
    *sizeInOut = 0;
    return 0;
}

int main(void)
{
    formTable *table = NULL;
    CHECK(keltoRefCount == 0 && !keltoInitialized && tableListMutex == NULL);
    CHECK(KTInit() == 0);
    CHECK(keltoRefCount == 1 && keltoInitialized && tableListMutex != NULL);

    CHECK(KTGetBuiltInFormTable(0, &table) == 0);
    CHECK(table == &builtInFormTable);
    CHECK(builtInFormTable.formList == builtInFormList);
    CHECK(builtInFormList[CONV_d].argTypes == signedIntList && signedIntList[0] == 4);
    CHECK(KTRegisterEncoder(encoder) == 0);
    CHECK(builtInFormTable.encoder == encoder);
    CHECK(date_tag_o[0] == '<' && date_tag_o[5] == '>' && date_tag_o[6] == 0 && ucs2_colon[0] == ':');

    CHECK(KTClean() == 0);
    CHECK(keltoRefCount == 0 && !keltoInitialized && tableListMutex == NULL);
    return 0;
}
