/**
 * Runs one piece of work a number of times and does nothing else, for tools that count.
 *
 *     bench_workload --list              work, contender, calls to count, goals and description, by tabs
 *     bench_workload --compare           compares what the contenders give; fails where they differ
 *     bench_workload WORK CONTENDER N    sets up, then makes N calls
 */
#include "workload.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/random.h>

// In the C library's place: expat salts its hash tables with one of these, and counts shall be the same in every run.

extern "C" void arc4random_buf(void *buffer, size_t length)
{
    memset(buffer, 'k', length);
}

ssize_t getrandom(void *buffer, size_t length, unsigned int)
{
    arc4random_buf(buffer, length);
    return static_cast<ssize_t>(length);
}

namespace
{

void list()
{
    for (const bench::Contender &contender : bench::contenders())
    {
        const bench::Work &work = bench::workNamed(contender.work);
        printf("%s\t%s\t%zu\t%s\t%s\t%s\n", work.name.c_str(), contender.name.c_str(), work.calls, work.goal,
               work.timeGoal, work.text);
    }
}

int compare()
{
    int differences = 0;
    std::string work;
    std::string expected;
    for (const bench::Contender &contender : bench::contenders())
    {
        const std::string given = contender.setUp()->result();
        if (contender.work != work)
        {
            work = contender.work;
            expected = given;
        }
        if (given == expected)
            continue;
        ++differences;
        fprintf(stderr, "%s: %s gives\n  %.300s\nwhere the first gives\n  %.300s\n", work.c_str(),
                contender.name.c_str(), given.c_str(), expected.c_str());
    }
    return differences == 0 ? 0 : 1;
}

int run(std::string_view work, std::string_view name, size_t calls)
{
    for (const bench::Contender &contender : bench::contenders())
        if (contender.work == work && contender.name == name)
        {
            contender.setUp()->run(calls);
            return 0;
        }
    fprintf(stderr, "nobody of that name does that work: see --list\n");
    return 2;
}

} // namespace

int main(int argc, char **argv)
{
    bench::startProcess();
    const std::string_view command = argc > 1 ? argv[1] : "";
    if (argc == 2 && command == "--list")
        list();
    else if (argc == 2 && command == "--compare")
        return compare();
    else if (argc == 4)
        return run(command, argv[2], strtoul(argv[3], nullptr, 10));
    else
    {
        fprintf(stderr, "usage: bench_workload --list | --compare | WORK CONTENDER CALLS\n");
        return 2;
    }
    return 0;
}
