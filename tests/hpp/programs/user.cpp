// Every name of kelto.hpp in a program that knows no exceptions. It succeeds by returning 0.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <iterator>
#include <memory>
#include <mutex>
#include <system_error>
#include <vector>

// Macros of large frameworks and of <complex.h>, which programs have in force.
#define slots
#define signals public
#define emit
#define foreach(item, list) for (item : list)
#define I 1i
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#define require(x) #x
#define error(x) #x
#include <kelto.hpp>

struct Money
{
    int cents;
};
template <> struct kelto::argument_of<Money> : kelto::by_identity<Money>
{
};

int main()
{
    std::error_code failure;
    const kelto::library library(failure);
    const kelto::form_table table = kelto::form_table::builder()
                                        .add<Money>("money", [](const Money &m) { return std::to_string(m.cents); })
                                        .with_encoder([](std::u16string_view text) { return text; })
                                        .in_front_of(&builtInFormTable)
                                        .build(failure);
    kelto::catalog_options options;
    options.table = &table;
    options.tag = true;
    options.on_problem = [](const kelto::problem &) {};
    const kelto::prepared_format prepared("%money[1] of %s[2]", options, failure);
    const kelto::catalog missing = kelto::catalog::load("missing.xlf", failure);
    const kelto::catalog store = kelto::catalog::find("store", "missing", options, failure);
    std::string text = store.format(1, KELTO_DEFAULT("%EID[1] "), 1U);
    prepared.format_to(std::back_inserter(text), failure, Money{7}, "ten");
    store.format_to(std::back_inserter(text), 2, kelto::unchecked(" %money[1]"), Money{5});
    store.format_to(std::back_inserter(text), 90, KELTO_DEFAULT(" %!u[1]"), sizeof(int));
    return text == "<EID>0X00000001</EID> 7 of ten 5 4" && !failure && missing.language().empty() ? 0 : 1;
}
