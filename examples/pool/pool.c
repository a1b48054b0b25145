/*
 * Four threads report on twelve jobs, each job in the language of whoever ordered it:
 *     pool
 *
 * Shows how threads share what Kelto has: all catalogs are loaded once and read by every thread, without a lock of the
 * program's own. Only the queue of jobs has one.
 */
#include "catalog.h"
#include "formatted.h"
#include <pthread.h>
#include <stdio.h>

enum
{
    DONE = 30,
    THREADS = 4,
    JOBS = 12,
    LANGUAGES = 6
};

static const char *const languages[LANGUAGES] = {"en", "de", "el", "ru", "ar", "ja"};
static MessageTable *catalogs[LANGUAGES];

static pthread_mutex_t queueLock = PTHREAD_MUTEX_INITIALIZER;
static int nextJob;
static char *reports[JOBS];

static int takeJob(void)
{
    int job;

    pthread_mutex_lock(&queueLock);
    job = nextJob < JOBS ? nextJob++ : -1;
    pthread_mutex_unlock(&queueLock);
    return job;
}

static void *work(void *unused)
{
    int job;

    while ((job = takeJob()) >= 0)
        reports[job] = formatted("UTF-8", NULL, NULL, messageOf(catalogs[job % LANGUAGES], DONE), job + 1, JOBS);
    return unused;
}

int main(void)
{
    pthread_t threads[THREADS];
    int started = 0, result = KTInit();

    for (int i = 0; i < LANGUAGES && result == 0; ++i)
        result = openCatalog(languages[i], &catalogs[i]);
    if (result != 0)
    {
        fprintf(stderr, "pool: %s\n", KTResultText(result));
        return 1;
    }
    while (started < THREADS && pthread_create(&threads[started], NULL, work, NULL) == 0)
        ++started;
    if (started == 0)
        work(NULL);
    while (started > 0)
        pthread_join(threads[--started], NULL);
    for (int i = 0; i < JOBS; ++i)
    {
        puts(reports[i] != NULL ? reports[i] : "?");
        free(reports[i]);
    }
    KTClean();
    return 0;
}
