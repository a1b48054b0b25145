/*
 * A server whose catalog is replaced 400 times while eight threads format:
 *     swap
 *
 * Shows how a program takes new translations without a restart. Whoever formats holds the catalog by a count, so that
 * the old one is closed when the last of them is done, and never before.
 */
#include <kelto.h>
#include <pthread.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifndef CATALOGS
#define CATALOGS "catalogs" /* the build tells the folder */
#endif

enum
{
    DONE = 30,
    THREADS = 8,
    REPLACEMENTS = 400
};

typedef struct Shared
{
    KTCatalog *catalog;
    int holders; /* those who format with it, and being the current one counts too */
} Shared;

static const char *const languages[] = {"en", "de"}; /* which take turns */
static char expected[2][100];                        /* what a request is answered in each */

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static Shared *current;
static bool isOver;
static long wrong;

static Shared *hold(void)
{
    Shared *held;

    pthread_mutex_lock(&lock);
    held = isOver ? NULL : current;
    if (held != NULL)
        ++held->holders;
    pthread_mutex_unlock(&lock);
    return held;
}

static void letGo(Shared *held)
{
    bool wasLast;

    pthread_mutex_lock(&lock);
    wasLast = --held->holders == 0;
    pthread_mutex_unlock(&lock);
    if (wasLast)
    {
        KTCloseCatalog(held->catalog);
        free(held);
    }
}

static Shared *opened(const char *language)
{
    Shared *const made = calloc(1, sizeof *made);
    KTCatalogOptions options = {.structSize = sizeof options};

    options.languages = language;
    if (made == NULL || KTOpenCatalog(CATALOGS, "examples", &options, &made->catalog) != 0)
    {
        free(made);
        return NULL;
    }
    made->holders = 1;
    return made;
}

/* Lets new requests take another catalog; those that are under way end with theirs. */
static void replace(Shared *made)
{
    Shared *old;

    pthread_mutex_lock(&lock);
    old = current;
    current = made;
    pthread_mutex_unlock(&lock);
    if (old != NULL)
        letGo(old);
}

static void answer(const KTCatalog *catalog, char *line, size_t size)
{
    const KTArgument arguments[] = {KT_INT(12), KT_INT(40)};

    KTCatalogFormatUTF8(catalog, DONE, "%d[1] %d[2]", &size, line, arguments, 2);
}

static void *serve(void *unused)
{
    Shared *held;

    while ((held = hold()) != NULL)
    {
        char line[sizeof expected[0]];

        answer(held->catalog, line, sizeof line);
        letGo(held);
        if (strcmp(line, expected[0]) != 0 && strcmp(line, expected[1]) != 0)
            __atomic_add_fetch(&wrong, 1, __ATOMIC_RELAXED);
    }
    return unused;
}

int main(void)
{
    pthread_t threads[THREADS];
    int started = 0, replaced = 0;

    for (int i = 0; i < 2; ++i)
    {
        Shared *const made = opened(languages[i]);

        if (made == NULL)
            return 1;
        answer(made->catalog, expected[i], sizeof expected[i]);
        replace(made);
    }
    while (started < THREADS && pthread_create(&threads[started], NULL, serve, NULL) == 0)
        ++started;
    for (; replaced < REPLACEMENTS; ++replaced)
    {
        Shared *const made = opened(languages[replaced % 2]);

        if (made == NULL)
            break;
        replace(made);
    }
    pthread_mutex_lock(&lock);
    isOver = true;
    pthread_mutex_unlock(&lock);
    for (int i = 0; i < started; ++i)
        pthread_join(threads[i], NULL);
    replace(NULL);
    printf("%s\n%s\n%d catalogs, %d threads, %ld wrong lines\n", expected[0], expected[1], replaced, started, wrong);
    return replaced == REPLACEMENTS && wrong == 0 ? 0 : 1;
}
