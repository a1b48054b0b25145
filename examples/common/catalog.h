/* Where the programs here have their catalogs: catalogs/LANGUAGE/examples.xlf. */
#ifndef EXAMPLES_CATALOG_H
#define EXAMPLES_CATALOG_H

#include <kelto.h>

#ifndef CATALOGS
#define CATALOGS "catalogs" /* the build tells the folder */
#endif

/* Loads the catalog of the first of these languages ("de_AT:fr") that has one; null for the user's own. */
static int openCatalog(const char *languages, MessageTable **catalog)
{
    char path[4096];
    size_t size = sizeof path;
    const int result = KTFindCatalog(CATALOGS, "examples", languages, &size, path);

    return result == 0 ? KTLoadMessages(path, catalog) : result;
}

/* A message of a catalog; null where it has none of that number. */
static const char *messageOf(MessageTable *catalog, unsigned int id)
{
    char *message = NULL;

    KTGetMessage(catalog, id, &message);
    return message;
}

#endif
