#include "workload.h"

#include "kelto.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace
{

std::vector<bench::Contender> &registered()
{
    static std::vector<bench::Contender> list;
    return list;
}

size_t rank(const bench::Contender &contender)
{
    const auto at = static_cast<size_t>(&bench::workNamed(contender.work) - bench::works.data());
    return 2 * at + (contender.name == bench::kelto ? 0 : 1);
}

} // namespace

const bench::Work &bench::workNamed(std::string_view name)
{
    const auto found = std::find_if(works.begin(), works.end(), [&](const Work &work) { return work.name == name; });
    require(found != works.end(), "there is no work named " + std::string(name));
    return *found;
}

const std::vector<bench::Contender> &bench::contenders()
{
    static const bool sorted = [] {
        std::stable_sort(registered().begin(), registered().end(),
                         [](const Contender &a, const Contender &b) { return rank(a) < rank(b); });
        return true;
    }();
    static_cast<void>(sorted);
    return registered();
}

bench::Register::Register(std::string work, std::string name, std::function<std::unique_ptr<Job>()> setUp)
{
    registered().push_back({std::move(work), std::move(name), std::move(setUp)});
}

bench::Register::Register(std::initializer_list<const char *> works, const std::string &name,
                          const std::function<std::unique_ptr<Job>()> &setUp)
{
    for (const char *work : works)
        registered().push_back({work, name, setUp});
}

void bench::startProcess()
{
    setenv("LC_ALL", "C.UTF-8", 1);
    require(setlocale(LC_ALL, "") != nullptr, "the locale C.UTF-8 is missing");
    require(KTInit() == 0, "KTInit failed");
}

void bench::require(bool condition, std::string_view what)
{
    if (condition)
        return;
    fprintf(stderr, "bench: %.*s\n", static_cast<int>(what.size()), what.data());
    exit(2);
}

std::string bench::catalog(std::string_view file)
{
    return std::string(KELTO_BENCH_CATALOGS "/").append(file);
}

std::string bench::utf8(std::string_view text)
{
    return std::string(text);
}

std::string bench::utf8(std::u16string_view text)
{
    std::string converted(3 * text.size(), '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(converted.data(), static_cast<int32_t>(converted.size()), &length, text.data(),
                static_cast<int32_t>(text.size()), &status);
    require(U_SUCCESS(status), "a result is no UTF-16");
    converted.resize(static_cast<size_t>(length));
    return converted;
}
