#include "hpp/texts.h"

#include <random>

#if KELTO_HAS_LOCALE
#include "kelto-locale.h"
#endif

namespace
{

constexpr size_t mostConversions = 4096;

/** What there is to know of a format, in one line. */
std::string byCompiler(const std::string &format)
{
    const auto parsed = std::make_unique<kelto::detail::parsed_text<mostConversions>>(format.c_str());
    std::string line = std::to_string(parsed->rule);
    for (size_t i = 0; i < parsed->slot_count; ++i)
        line += ' ' + std::to_string(parsed->slot_at[i].position) + ':' + std::to_string(parsed->slot_at[i].code);
    return line;
}

/** The conversions that the compiler knows: the built-in ones, and the add-on's where it is built. */
formTable *conversions()
{
#if KELTO_HAS_LOCALE
    return KTLConversions(nullptr, "root");
#else
    return nullptr;
#endif
}

std::string byLibrary(const std::string &format)
{
    KTProblem problem = {};
    problem.structSize = sizeof problem;
    const int result = KTExplainFormat(format.c_str(), conversions(), &problem);
    const bool isName = problem.rule == KT_RULE_NAME_TOO_LONG || problem.rule == KT_RULE_NAME_NOT_ASCII;
    std::string line = std::to_string(isName ? KT_RULE_UNKNOWN_CONVERSION : result == 0 ? 0 : problem.rule);
    if (result != 0)
        return line;
    std::error_code failure;
    const kelto::form_table table = kelto::form_table::builder().in_front_of(conversions()).build();
    kelto::format_options options;
    options.table = &table;
    const kelto::prepared_format prepared(format, options, failure);
    const KTSlot *slots = nullptr;
    const size_t count = KTPreparedSlots(prepared.get(), &slots);
    for (size_t i = 0; i < count; ++i)
        line += ' ' + std::to_string(slots[i].position) + ':' + std::to_string(slots[i].code);
    return line;
}

/** Compares the parser that runs while programs are compiled with that of the library. */
class Syntax : public testing::Test
{
protected:
    static void compare(const std::string &bytes)
    {
        const std::string format = bytes.substr(0, bytes.find('\0'));
        ASSERT_LT(format.size() / 5, mostConversions);
        ASSERT_EQ(byCompiler(format), byLibrary(format)) << format;
    }

    kelto::library m_library;
};

// Formats of likely pieces, in which one in four is right. KELTO_RANDOM_FORMATS asks for more of them.
TEST_F(Syntax, IsTheSameForRandomFormats)
{
    std::vector<std::string> names = {"ul", "l", "N", "O"};
    for (const KTFormatter *record = builtInFormList; record->name != nullptr; ++record)
        names.emplace_back(record->name);
    for (const KTFormatter *record = KELTO_HAS_LOCALE != 0 ? conversions()->formList : nullptr;
         record != nullptr && record->name != nullptr; ++record)
        names.emplace_back(record->name);
    const char *const pieces[] = {"%",
                                  "%%",
                                  "[",
                                  "]",
                                  "[1]",
                                  "[2]",
                                  "[3]",
                                  "[01]",
                                  "[1001]",
                                  "[2147483648]",
                                  "h",
                                  "L",
                                  "!",
                                  "-",
                                  "0",
                                  "*",
                                  ".",
                                  ".*",
                                  ".5",
                                  "7",
                                  "2147483648",
                                  "text",
                                  "é",
                                  "\xFF",
                                  "\xF0\x9F\x98\x80",
                                  "\xF0\x9F",
                                  "\xE2\x82",
                                  "abcdefghijklmnopqrs",
                                  "abcdefghijklmnopqrst",
                                  " ",
                                  "#",
                                  "d",
                                  "DND"};
    const char *const wanted = std::getenv("KELTO_RANDOM_FORMATS");
    std::mt19937 random(1);
    const auto below = [&](size_t n) { return random() % n; };
    for (long n = wanted != nullptr ? std::atol(wanted) : 20000; n > 0; --n)
    {
        std::string format;
        const size_t conversions = below(6);
        for (size_t i = 1; i <= conversions; ++i)
        {
            format += std::string("%") + (below(3) == 0 ? "*" : "") + (below(4) == 0 ? ".*" : "");
            format += below(3) == 0 ? std::string(1, "hlL!"[below(4)]) : "";
            format += names[below(names.size())];
            format += '[' + std::to_string(conversions + 1 - i) + ']';
        }
        for (size_t extra = below(2) * below(4); extra > 0; --extra)
            format.insert(below(format.size() + 1), pieces[below(std::size(pieces))]);
        compare(format);
    }
    for (int length = 990; length < 1010; ++length) // so long that a position above 1,000 may be meant
        compare("%d[1003]" + std::string(static_cast<size_t>(length), 'x'));
}

} // namespace
