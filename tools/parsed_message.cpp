#include "parsed_message.h"

#include "charset.h"
#include "failure.h"
#include "syntax_fault.h"

#include <memory>

namespace tool
{
namespace
{

struct FreeParameters
{
    void operator()(KTParameter *parameters) const { ZEL_free(parameters); }
};

} // namespace

std::vector<Conversion> parseMessage(const std::string &text)
{
    const std::u16string format = ucs2FromUtf8(text);
    KTParameter *parameters = nullptr;
    const int result = checkSyntax(format.c_str(), nullptr, &parameters);
    const std::unique_ptr<KTParameter, FreeParameters> release(parameters);
    if (result == KT_ERR_FORMAT_SYNTAX)
        throw Failure(describeSyntaxFault(format));
    if (result != 0)
        throw Failure(meaningOf(result));

    std::vector<Conversion> conversions;
    for (const KTParameter *parameter = parameters; parameter != nullptr && parameter->formatter != nullptr;
         ++parameter)
        conversions.push_back({*parameter, {}});
    for (const Specification &specification : specificationsOf(format))
        conversions[static_cast<size_t>(specification.position) - 1].written = specification.place.of(format);
    return conversions;
}

} // namespace tool
