#include "message/exported_grammar.h"

#include "message/grammar/attributes.h"

using kelto::elements;

constexpr ElementMapRow elmtMapTable[11] = {elements[0], elements[1], elements[2], elements[3],
                                            elements[4], elements[5], elements[6], elements[7],
                                            elements[8], elements[9], elements[10]};
static_assert(sizeof elmtMapTable == sizeof elements);

void mapElmtName(const char *name, ElementID *id, int *level)
{
    const ElementMapRow &row = kelto::findElement(name);
    *id = row.id;
    *level = row.level;
}

const char *getAttrValue(const char **attrs, const char *name)
{
    return kelto::findAttribute(attrs, name);
}
