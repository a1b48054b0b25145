#include "check/telling/writers.h"

namespace tool::check
{

std::unique_ptr<Writer> makeWriter(std::string_view form, Sink sink, const WriterOptions &options)
{
    constexpr struct
    {
        std::string_view name;
        std::unique_ptr<Writer> (*make)(Sink, const WriterOptions &);
    } writers[] = {{"text", textWriter}, {"json", jsonWriter}, {"sarif", sarifWriter}, {"github", githubWriter}};
    for (const auto &row : writers)
        if (form == row.name)
            return row.make(std::move(sink), options);
    return nullptr;
}

} // namespace tool::check
