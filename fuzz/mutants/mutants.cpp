// The mutation campaign. A valid catalog is damaged at random, loaded and read whole, as often as asked for, in processes
// that may die; then the same is done with other libraries. One seed, so every run damages the same bytes.
//   kelto_mutants DIRECTORY N [PEER...]

#include "mutants/reader.h"

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr unsigned peerMutants = 3000;
constexpr unsigned batch = 1000; // mutants of ours that share a process
constexpr rlim_t addressSpace = rlim_t{1} << 30;
constexpr int processorSeconds = 10, wallSeconds = 120;

// ---- Damage ----

using Random = std::minstd_rand;

size_t below(Random &random, size_t limit)
{
    return limit == 0 ? 0 : random() % limit;
}

void damageOnce(Random &random, std::string &bytes)
{
    const size_t place = below(random, bytes.size());
    const size_t length = std::min(1 + below(random, 40), bytes.size() - place);
    constexpr uint32_t edges[] = {0, 1, 0x7F, 0xFF, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF0};
    switch (below(random, 7))
    {
    case 0:
        bytes[place] = static_cast<char>(bytes[place] ^ (1 << below(random, 8)));
        break;
    case 1:
        bytes[place] = static_cast<char>(random());
        break;
    case 2:
    {
        const uint32_t number = edges[below(random, std::size(edges))];
        std::memcpy(&bytes[place], &number, std::min(sizeof number, bytes.size() - place));
        break;
    }
    case 3:
        bytes.erase(place, length);
        break;
    case 4:
        bytes.insert(place, bytes.substr(below(random, bytes.size()), length));
        break;
    case 5:
        bytes.replace(place, length, bytes.substr(below(random, bytes.size()), length));
        break;
    default:
        if (below(random, 8) == 0)
            bytes.resize(place);
        else
            std::reverse(&bytes[place], &bytes[place] + length);
    }
}

constexpr unsigned intact = UINT_MAX; // the number of the catalog itself

/** Half of all mutants are damaged in one place, the others in up to eight. */
std::string mutant(const std::string &valid, unsigned number)
{
    std::string bytes = valid;
    if (number == intact)
        return bytes;
    Random random(number + 1);
    random.discard(3);
    for (size_t damages = 1 + below(random, 2) * below(random, 8); damages > 0 && !bytes.empty(); --damages)
        damageOnce(random, bytes);
    return bytes;
}

// ---- Processes ----

void limitTime()
{
    const itimerval processor = {{0, 0}, {processorSeconds, 0}}, wall = {{0, 0}, {wallSeconds, 0}};
    setitimer(ITIMER_PROF, &processor, nullptr);
    setitimer(ITIMER_REAL, &wall, nullptr);
}

/** Reads mutants one after the other and notes each outcome where the parent sees it; does not return. */
[[noreturn]] void readMutants(const Reader &reader, const std::string &directory, const std::string &valid,
                              unsigned first, unsigned count, volatile Outcome *outcomes)
{
    const rlimit memory = {addressSpace, addressSpace}, noCore = {0, 0};
    setrlimit(RLIMIT_AS, &memory);
    setrlimit(RLIMIT_CORE, &noCore);
    for (unsigned i = 0; i < count; ++i)
    {
        limitTime();
        writeFile(directory + "/" + reader.file, mutant(valid, first + i));
        outcomes[i] = reader.read(directory);
    }
    _exit(0);
}

Outcome outcomeOf(int status)
{
    if (!WIFSIGNALED(status))
        return Outcome::unknown;
    return WTERMSIG(status) == SIGPROF || WTERMSIG(status) == SIGALRM ? Outcome::timeOut : Outcome::signal;
}

using Counts = std::array<unsigned, 6>;

void runBatch(const Reader &reader, const std::string &directory, const std::string &valid, unsigned first,
              unsigned count, Counts &counts)
{
    auto *const shared =
        static_cast<Outcome *>(mmap(nullptr, count, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    for (unsigned done = 0; done < count;)
    {
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0)
            readMutants(reader, directory, valid, first + done, count - done, shared + done);
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) != child)
        {
            std::perror("mutants");
            std::exit(2);
        }
        while (done < count && shared[done] != Outcome::unknown)
            ++done;
        if (done < count)
        {
            shared[done] = outcomeOf(status);
            if (shared[done] == Outcome::signal && &reader == &keltoReader)
                std::printf("mutant %u ended by signal %d\n", first + done, WTERMSIG(status));
            ++done;
        }
    }
    for (unsigned i = 0; i < count; ++i)
        ++counts[static_cast<size_t>(shared[i])];
    munmap(shared, count);
}

/** @return whether no mutant ended its process, or took more time than it may. */
bool run(const Reader &reader, const std::string &parent, unsigned mutants, unsigned perProcess)
{
    const std::string directory = parent + "/" + reader.name;
    std::filesystem::create_directories(directory);
    const auto start = [&] { std::printf("%-8s %-6s ", reader.name, reader.format); };
    if (!reader.make(directory))
    {
        start();
        std::puts("not installed");
        return true;
    }
    std::ifstream file(directory + "/" + reader.file, std::ios::binary);
    const std::string valid{std::istreambuf_iterator<char>(file), {}};
    Counts counts{};
    runBatch(reader, directory, valid, intact, 1, counts);
    if (counts[static_cast<size_t>(Outcome::loaded)] != 1)
    {
        start();
        std::puts("does not load its own catalog");
        return false;
    }
    counts = {};
    for (unsigned first = 0; first < mutants; first += perProcess)
        runBatch(reader, directory, valid, first, std::min(perProcess, mutants - first), counts);
    const auto count = [&](Outcome outcome) { return counts[static_cast<size_t>(outcome)]; };
    start();
    std::printf("%8u %10u %10u %10u %10u %10u\n", mutants, count(Outcome::signal),
                count(Outcome::timeOut) + count(Outcome::unknown), count(Outcome::noMemory), count(Outcome::refused),
                count(Outcome::loaded));
    return count(Outcome::signal) + count(Outcome::timeOut) + count(Outcome::unknown) == 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    const std::string directory = argv[1];
    std::printf("%-8s %-6s %8s %10s %10s %10s %10s %10s\n", "library", "format", "mutants", "by signal", "time-out",
                "no memory", "refused", "loaded");
    const auto mutants = static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10));
    const bool isSafe = mutants == 0 || run(keltoReader, directory, mutants, batch);
    for (const Reader *peer = peerReaders; peer->name != nullptr; ++peer)
        if (std::any_of(argv + 3, argv + argc, [&](const char *name) { return std::strcmp(name, peer->name) == 0; }))
            run(*peer, directory, peerMutants, 1);
    return isSafe ? 0 : 1;
}
