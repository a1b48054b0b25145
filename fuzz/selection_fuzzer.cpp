// An input is a table of messages that select others: its language, what is passed, and messages from short pieces, so
// that rings, long chains and shared rows come up by themselves. The message that is selected, formatted by itself, is
// what the prepared message writes; and what is prepared takes no more memory than the table deserves.

#include "kelto.h"
#include "support/fake_zel.h"
#include "support/message_file_builder.h"
#include "support/require.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

namespace
{

char path[] = "messages.xlf";
constexpr uint64_t mostMemory = uint64_t{4} << 20;

std::string formatted(const KTPreparedFormat *prepared, const std::vector<KTArgument> &arguments)
{
    std::string text(500, '\0');
    size_t size = text.size();
    const int result =
        KTFormatPreparedUTF8(prepared, 0, nullptr, &size, text.data(), arguments.data(), arguments.size());
    return result == 0 ? text.substr(0, size) : std::string(KTResultName(result));
}

std::string selector(FuzzedDataProvider &input)
{
    const char *const names[] = {"plural", "ordinal", "select"};
    std::string text = "%" + std::to_string(input.ConsumeIntegralInRange(0, 70));
    if (input.ConsumeIntegralInRange(0, 9) == 0)
        text += "." + std::to_string(input.ConsumeIntegralInRange(0, 3));
    return text + input.PickValueInArray(names) + "[" + std::to_string(input.ConsumeIntegralInRange(1, 2)) + "]";
}

std::string message(FuzzedDataProvider &input)
{
    switch (input.ConsumeIntegralInRange(0, 9))
    {
    case 0:
        return input.ConsumeRandomLengthString(20);
    case 1:
        return "%f[1]%s[2]";
    case 2:
        return "%nil[1]%d[2]";
    case 3:
    case 4:
    case 5:
        return "%d[1]%d[2]";
    default:
        return selector(input);
    }
}

KTArgument argument(FuzzedDataProvider &input)
{
    switch (input.ConsumeIntegralInRange(0, 5))
    {
    case 0:
        return KT_DOUBLE(input.ConsumeFloatingPoint<double>());
    case 1:
        return KT_INT64(input.ConsumeIntegral<int64_t>());
    case 2:
        return KT_UTF8("text");
    default:
        return KT_INT(input.ConsumeIntegralInRange(-2, 120));
    }
}

MessageTable *load(FuzzedDataProvider &input)
{
    const char *const languages[] = {"en", "pl", "ar", "lv", "xx", "br"};
    MessageFile file;
    file.attribute("source-language", input.PickValueInArray(languages));
    for (long id = 1; id <= 90 && input.remaining_bytes() > 0; ++id)
        if (const std::string text = message(input); text.find_first_of("<&\"\\") == std::string::npos)
            file.unit(id, text);
    FakeZel::file(path, file.xml());
    MessageTable *table = nullptr;
    KTLoadMessages(path, &table);
    return table;
}

void compare(MessageTable *table, unsigned first, const std::vector<KTArgument> &arguments)
{
    FakeZel::record();
    KTPreparedFormat *prepared = nullptr;
    const int result = KTPrepareMessage(table, first, nullptr, nullptr, &prepared);
    uint64_t taken = 0;
    for (const uint64_t size : FakeZel::blockSizes())
        taken += size;
    require(taken <= mostMemory, "memory is bounded");
    require((result == 0) == (prepared != nullptr), "a failure prepares nothing");

    KTProblem problem = {sizeof problem, -1, 0, 0, 0, 0, nullptr, nullptr, 0};
    char text[200];
    size_t size = sizeof text;
    require(KTExplainMessage(table, first, nullptr, &problem) == result, "a message is explained as it is prepared");
    require((problem.rule == KT_RULE_NONE) == (result == 0), "a failure has its rule");
    require(KTProblemText(&problem, &size, text) == 0, "a problem has a sentence");

    unsigned id = first;
    char *message = nullptr;
    const int selected = KTSelectMessage(table, &id, nullptr, arguments.data(), arguments.size(), &message);
    if (result == 0)
    {
        std::string expected = KTResultName(selected != 0 ? selected : int{KT_ERR_INVALID_MSG_ID});
        if (message != nullptr)
        {
            formTable *forms = nullptr;
            KTPreparedFormat *format = nullptr;
            require(KTGetVariantFormTable(&forms) == 0 && KTPrepareFormat(message, forms, &format) == 0,
                    "a variant of what was prepared is a format");
            expected = formatted(format, arguments);
            KTFreePrepared(format);
        }
        require(formatted(prepared, arguments) == expected, "both ways lead to one text");
    }
    KTFreePrepared(prepared);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    FakeZel::reset();
    FuzzedDataProvider input(data, size);
    const std::vector<KTArgument> arguments = {argument(input), argument(input)};
    MessageTable *const table = load(input);
    if (table == nullptr)
        return 0;
    const Outstanding before = FakeZel::outstanding();
    for (const unsigned first : {1U, 2U, 3U, 0U, 91U})
        compare(table, first, arguments);
    require(FakeZel::outstanding() == before, "nothing is left behind");
    require(KTFreeMessages(table) == 0, "a table is released");
    return 0;
}
