// A program of sources with and without exceptions: what fails here is thrown, whatever quiet.cpp has of the same
// functions. It succeeds by returning 0.
#include <kelto.hpp>

bool failsQuietly();

template <class Call> int silenceOf(const Call &call)
{
    try
    {
        call();
    }
    catch (const kelto::error &e)
    {
        return *e.what() == '\0';
    }
    return 1;
}

int main()
{
    const kelto::prepared_format prepared("%d[1]");
    char line[9];
    int silences = failsQuietly() ? 0 : 1;
    silences += silenceOf([] { kelto::prepared_format("%d"); });
    silences += silenceOf([&] { prepared.format("x"); });
    silences += silenceOf([&] { prepared.format_to(line, std::string("x")); });
    silences += silenceOf([] { kelto::catalog::load("missing.xlf"); });
    silences += silenceOf([] { kelto::form_table::builder().add<int>("9x", [](int) { return ""; }).build(); });
    return silences;
}
