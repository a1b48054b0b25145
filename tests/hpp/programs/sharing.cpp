// Shared objects with hidden visibility that hand each other catalogs, objects and exceptions; see sharing.py. Each is
// this file with its LIBRARY; the program is the file without. It succeeds by returning 0.
#include <kelto.hpp>

#include <cstdio>

namespace shop
{
struct money
{
    int cents;
};
} // namespace shop
template <> struct kelto::argument_of<shop::money> : kelto::by_identity<shop::money>
{
};

struct faces
{
    kelto::catalog (*open)();
    std::string (*format)(const kelto::catalog &, int cents);
};

#ifdef LIBRARY

namespace
{

kelto::catalog open()
{
    const kelto::form_table table = kelto::form_table::builder()
                                        .add<shop::money>("money",
                                                          [](const shop::money &m) {
                                                              if (m.cents < 0)
                                                                  throw std::domain_error("debts");
                                                              return std::to_string(m.cents);
                                                          })
                                        .with_encoder([](std::string_view text) {
                                            if (text == "!")
                                                throw std::runtime_error("alarm");
                                            return '<' + std::string(text) + '>';
                                        })
                                        .build();
    kelto::catalog_options options;
    options.table = &table;
    options.on_problem = [](const kelto::problem &p) {
        if (p.id == 9)
            throw std::domain_error("told");
    };
    std::error_code failure;
    return kelto::catalog::load("shop.xlf", options, failure);
}

std::string format(const kelto::catalog &catalog, int cents)
{
    std::string text;
    try
    {
        text =
            catalog.format(cents, kelto::unchecked("%money[1] %N[2]%s[3]"), shop::money{cents}, cents == 7 ? "!" : "a");
        text += cents == 6 ? catalog.format(9, kelto::unchecked("%d[1]"), "x") : "";
    }
    catch (const std::runtime_error &e)
    {
        text = e.what();
    }
    catch (const std::domain_error &e)
    {
        text = e.what();
    }
    return text;
}

} // namespace

extern "C" __attribute__((visibility("default"))) faces LIBRARY()
{
    return {open, format};
}

#else

#include <dlfcn.h>

extern "C" faces first();
extern "C" faces second();

int main(int, char **arguments)
{
    void *const plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr)
        return std::puts(dlerror());
    const auto third = reinterpret_cast<faces (*)()>(dlsym(plugin, "third"));
    const faces all[] = {first(), second(), third()};
    int faults = 0;
    for (const faces &maker : all)
        for (const faces &user : all)
        {
            const kelto::catalog catalog = maker.open();
            const std::string texts = user.format(catalog, 5) + ", " + user.format(catalog, -1) + ", " +
                                      user.format(catalog, 7) + ", " + user.format(catalog, 6);
            if (texts != "5 <a>, debts, alarm, told")
                faults += std::printf("%d of %d: %s\n", int(&user - all), int(&maker - all), texts.c_str()) > 0;
        }
    return faults;
}

#endif
