/**
 * The pieces of work that are measured, and those who do them. A contender is registered by a static object in the file
 * of its group, so a file that is not built (its library is missing) is a contender that does not take part. The same
 * contenders are timed by bench_kelto, counted through bench_workload, and have their memory watched by bench_memory.
 */
#ifndef KELTO_BENCH_WORKLOAD_H
#define KELTO_BENCH_WORKLOAD_H

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bench
{

/** A piece of work: what everybody who takes part in it is measured by. */
struct Work
{
    std::string name;          // "W1"
    const char *text;          // for the reader
    size_t calls;              // how many are counted: few of the slow ones
    const char *goal;          // "1700": instructions; "1.05 ICU": times what that contender needs; "": none
    const char *timeGoal = ""; // "1.15 expat": the same for the time
};

extern const std::vector<Work> works;
const Work &workNamed(std::string_view name);

/** Keeps the compiler from leaving out what nobody looks at. */
inline void keep(const void *value)
{
    asm volatile("" : : "r"(value) : "memory");
}

/** Somebody doing a piece of work, set up and ready. */
class Job
{
public:
    Job() = default;
    virtual ~Job() = default;
    Job(const Job &) = delete;
    Job &operator=(const Job &) = delete;

    virtual void run(size_t calls) = 0;
    /** What one call gives, as UTF-8; all who do the same work must give the same. */
    virtual std::string result() = 0;
};

std::string utf8(std::string_view text);
std::string utf8(std::u16string_view text);

/** A job that makes one call, which returns a view of what it gave. */
template <class Call> class JobOf final : public Job
{
public:
    explicit JobOf(Call call) : m_call(std::move(call)) {}
    void run(size_t calls) override
    {
        for (size_t i = 0; i < calls; ++i)
        {
            const auto given = m_call();
            keep(given.data());
        }
    }
    std::string result() override { return utf8(m_call()); }

private:
    Call m_call;
};

template <class Call> std::unique_ptr<Job> job(Call call)
{
    return std::make_unique<JobOf<Call>>(std::move(call));
}

struct Contender
{
    std::string work;
    std::string name;
    std::function<std::unique_ptr<Job>()> setUp;
};

constexpr const char *kelto = "Kelto";

/** All who were registered, in the order of the works, Kelto first in each. */
const std::vector<Contender> &contenders();

/** Registers a contender: static const Register w1("W1", "{fmt}", [] { return job([...] { ... }); }); */
class Register
{
public:
    Register(std::string work, std::string name, std::function<std::unique_ptr<Job>()> setUp);
    /** For works that are the same for this contender: {fmt} does not prepare. */
    Register(std::initializer_list<const char *> works, const std::string &name,
             const std::function<std::unique_ptr<Job>()> &setUp);
};

/** Starts what all contenders expect of the process: Kelto, and the locale. Ends the program where that fails. */
void startProcess();

/** Ends the program with a sentence where something that cannot fail has failed: nothing measured would be true. */
void require(bool condition, std::string_view what);

/** The path of a catalog that make_catalogs.py wrote, or a tool made of it. */
std::string catalog(std::string_view file);

/** The messages that are asked for; see make_catalogs.py. */
constexpr int plainMessage = 1000;
constexpr size_t plainBytes = 53; // in UTF-8
constexpr int formattedMessage = 1234;
constexpr const char *plainKey = "The last backup of this server is complete.";
constexpr const char *formattedKey = "%2$s: %1$d";

} // namespace bench

#endif
