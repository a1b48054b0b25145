#include "hpp/texts.h"

#include <map>
#include <stdexcept>

struct Money
{
    int cents;
};
struct Weight
{
    double grams;
};
template <> struct kelto::argument_of<Money> : kelto::by_identity<Money>
{
};
template <> struct kelto::argument_of<Weight> : kelto::by_identity<Weight>
{
};
enum class Grade
{
    high
};
template <> struct kelto::argument_of<Grade> : kelto::by_identity<Grade>
{
    static std::u16string convert(Grade level) { return level == Grade::high ? u"hïgh" : u"low"; }
};

namespace
{

std::string money(const Money &m)
{
    if (m.cents < 0)
        throw std::domain_error("debts");
    return std::to_string(m.cents / 100) + "." + std::to_string(m.cents % 100);
}

std::string escapeHtml(std::string_view text)
{
    std::string escaped;
    for (const char c : text)
        escaped += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    return escaped;
}

kelto::form_table exampleTable()
{
    return kelto::form_table::builder()
        .add<Money>("money", money)
        .add<Weight>("weight",
                     [unit = std::u16string(u" g")](const Weight &w) { // with a state
                         const std::string grams = std::to_string(static_cast<int>(w.grams));
                         return std::u16string(grams.begin(), grams.end()) + unit;
                     })
        .add<long>("stars", [](long n) { return std::string(static_cast<std::size_t>(n), '*'); })
        .add<unsigned char>("byte", [](unsigned char n) { return std::to_string(n); })
        .add<double>("percent", [](double d) { return std::to_string(static_cast<int>(100 * d)) + '%'; })
        .add<std::string_view, std::u16string_view, char16_t>(
            "both",
            [](std::string_view a, std::u16string_view b, char16_t c, const kelto::conversion_spec &spec) {
                return std::string(spec.name) + ' ' + std::string(a) + std::string(b.begin(), b.end()) +
                       static_cast<char>(c) + ' ' + std::to_string(spec.width);
            })
        .with_encoder(escapeHtml)
        .build();
}

TEST(OwnConversions, WriteTheirValues)
{
    kelto::form_table table = exampleTable();
    kelto::format_options options;
    options.table = &table;
    const auto text = [&](const char *format, const auto &...arguments) {
        return text_with(options, format, arguments...);
    };
    const std::string refused = "KT_ERR_INVALID_PARAMETER";
    std::string accents; // whose length in bytes is told late
    for (int i = 0; i < 70000; ++i)
        accents += "é";
    const Expected rows[] = {
        {"12.50|   12.50|12|12.500",
         text("%money[1]|%8money[2]|%.2money[3]|%-06money[4]", Money{1250}, Money{1250}, Money{1250}, Money{1250})},
        {"7 g and 12.50", text("%weight[2] and %money[1]", Money{1250}, Weight{7})},
        {"***|**", text("%stars[1]|%!stars[2]", 3, 2L)},
        {std::string(3000, '*'), text("%stars[1]", 3000)},
        {"255", text("%byte[1]", 255)},
        {refused, text("%byte[1]", 256)},
        {"50% 25%", text("%percent[1] %Lpercent[2]", 0.5, 0.25L)},
        {"both xyz 4", text("%4lboth[1]", "x", u"y", u'z')},
        {"both " + accents + "yz -1", text("%lboth[1]", accents, u"y", u'z')},
        {"a<b a&lt;b &lt; &lt; ***", text("%s[1] %N[2]%s[3] %c[4] %lc[5] %stars[6]", "a<b", "a<b", '<', u'<', 3)},
        {"\xEF\xBF\xBD 😀", text("%N[1]%lc[2] %s[3]", char16_t(0xD83D), "😀")},
        // A translation that mistakes one type for another reads nothing.
        {refused, text("%money[1]", Weight{7})},
        {refused, text("%money[1]", 7)},
        {refused, text("%s[1]", Money{7})},
        {refused, text("%!d[1]", Money{7})},
        {"KT_ERR_FORMAT_SYNTAX", text_of("%money[1]", Money{7})},
    };
    for (const Expected &row : rows)
        EXPECT_EQ(row.text, row.given);
}

TEST(OwnConversions, ThrowThroughTheLibrary)
{
    kelto::form_table table = exampleTable();
    kelto::format_options options;
    options.table = &table;
    const kelto::prepared_format prepared("%stars[1]%money[2]", options);
    for (const int stars : {0, 3000}) // where the text fits and where it does not
        EXPECT_THROW(prepared.format(stars, Money{-1}), std::domain_error);
    std::string text = prepared.format(1, Money{100});
    EXPECT_THROW(prepared.format_to(std::back_inserter(text), 1), kelto::error);
    prepared.format_to(std::back_inserter(text), 2, Money{200});
    EXPECT_EQ(text, "*1.0**2.0");
}

/** What an error says. */
template <class Call> std::string thrownBy(Call call)
{
    try
    {
        call();
    }
    catch (const kelto::error &e)
    {
        return e.what();
    }
    return {};
}

TEST(OwnConversions, AndAllElseSayWhatIsWrong)
{
    const kelto::form_table table = exampleTable();
    kelto::format_options options;
    options.table = &table;
    options.max_size = 3;
    const auto formatted = [&](const char *format, const auto &...arguments) {
        return thrownBy([&] { kelto::prepared_format(format, options).format(arguments...); });
    };
    const auto names = [](auto... name) {
        return thrownBy([&] {
            kelto::form_table::builder builder;
            (builder.add<int>(name, [](int) { return ""; }), ...);
            builder.build();
        });
    };
    const Expected rows[] = {
        {"\"%s[1] %d[2]\": argument 2 is a 32-bit integer here, a UTF-8 string in the call",
         formatted("%s[1] %d[2]", "a", "b")},
        {"\"%s[1] %d[2]\": argument 2, a 32-bit integer here, is not in the call", formatted("%s[1] %d[2]", "a")},
        {"\"\xEF\xBF\xBD %d\": a conversion has no position, as in %s[1] (a percent sign by itself is written %%)",
         formatted("\xFF\x1B%d")},
        {"\"%s[1]\": argument 2, a double in the call, is missing here", formatted("%s[1]", "a", 1.5)},
        {"\"%s[1]\": argument 1 is a UTF-8 string here, an object in the call", formatted("%s[1]", Money{5})},
        {"\"%money[1]\": %money[1] cannot write argument 1: (Weight)", formatted("%money[1]", Weight{5})},
        {"\"%hd[1] at %T[2]\\n\": %T[2] cannot write argument 2: \"no\\n \"",
         formatted("%hd[1] at %T[2]\n", 12, "no\n\xC2\x9B")},
        {"\"%T[1]\": %T[1] cannot write argument 1: \"a b c\"", formatted("%T[1]", "a\u202Eb\u2028c")},
        {"\"%lc[1] %*hd[2]\": %*hd[2] cannot write argument 2: 7, argument 3: 32768",
         formatted("%lc[1] %*hd[2]", U'a', 7, 32768)},
        {"\"%D[1]\": %D[1] cannot write argument 1: \"" + std::string(59, 'x') + "...\"",
         formatted("%D[1]", std::string(59, 'x') + "é and more")},
        {"\"%d[1]\": the text is longer than max_size, 3", formatted("%d[1]", 1234)},
        {"\"%s[1] %d[3]\": position 2 is missing: the positions must be 1 to the number of conversions, each once",
         formatted("%s[1] %d[3]", 1)},
        {"there is no format", thrownBy([] {
             kelto::prepared_format one("%d[1]");
             const kelto::prepared_format other = std::move(one);
             one.format(1);
         })},
        {"kelto::catalog::find(\"a/b\", \"m\"): the name of a catalog has no '/' and is not empty",
         thrownBy([] { kelto::catalog::find("a/b", "m"); })},
        {"kelto::catalog::find(\"a\", \"\"): the directory is not empty",
         thrownBy([] { kelto::catalog::find("a", ""); })},
        {"kelto::catalog::load(\"no/a.xlf\"): there is no such file",
         thrownBy([] { kelto::catalog::load("no/a.xlf"); })},
        {"kelto::catalog::embedded(\"a\"): not a well-formed message file, or one without a usable product version",
         thrownBy([] { kelto::catalog::embedded("a", "", 0); })},
        {"kelto::form_table: no conversion can have the name \"9x\": no conversion can have the name \"h\"",
         names("ok", "9x", "h")},
        {"", names("ok")},
    };
    for (const Expected &row : rows)
        EXPECT_EQ(row.text, row.given);
    options.max_size = 0;
    EXPECT_EQ(formatted("%d[1]", 12), "\"%d[1]\": the text is longer than max_size, 1");
}

TEST(OwnConversions, WriteWhereThereIsNoText)
{
    kelto::form_table table = exampleTable();
    kelto::catalog_options options;
    options.table = &table;
    EXPECT_EQ(kelto::catalog::find("store", "none", options)
                  .format(1, Money{1250}, Money{-1}, Weight{7.5}, Grade::high, "a<b", '<', 1.5),
              "[store 1: 12.50, (Money), 7 g, hïgh, a&lt;b, &lt;, 1.5]");
    table = kelto::form_table::builder()
                .with_encoder([](std::string_view text) {
                    if (text == "!")
                        throw std::domain_error("no such text");
                    return text;
                })
                .build();
    EXPECT_EQ(kelto::catalog::find("store", "none", options).format(1, "a", '!', Weight{7.5}),
              "[store 1: a, ?, (Weight)]");
}

TEST(OwnConversions, OutliveTheirTable)
{
    std::unique_ptr<kelto::prepared_format> prepared;
    {
        const kelto::form_table table = exampleTable();
        kelto::format_options options;
        options.table = &table;
        prepared = std::make_unique<kelto::prepared_format>("%money[1]", options);
    }
    EXPECT_EQ(prepared->format(Money{5}), "0.5");
}

int cFormatter(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *)
{
    *size = 0;
    return 0;
}

TEST(OwnConversions, AreRefusedWhereTheyAreNotSafe)
{
    constexpr int pointer[] = {KT_ARG_POINTER, 0}, integer[] = {KT_ARG_SIGNED, 0};
    KTFormatter unsafe[] = {{"raw", nullptr, 1, pointer, cFormatter}, {}};
    KTFormatter safe[] = {{"nothing", nullptr, 1, integer, cFormatter}, {}};
    formTable unsafeTable = {false, {}, unsafe, nullptr, nullptr};
    formTable safeTable = {false, {}, safe, nullptr, &builtInFormTable};
    formTable front = {false, {}, safe, nullptr, &unsafeTable};
    const kelto::form_table own = exampleTable();
    const std::pair<formTable *, int> tables[] = {
        {&unsafeTable, KT_ERR_INVALID_PARAMETER}, {&front, KT_ERR_INVALID_PARAMETER}, {&safeTable, 0}, {own.get(), 0}};
    for (const auto &[table, result] : tables)
    {
        std::error_code failure;
        const kelto::form_table built = kelto::form_table::builder().in_front_of(table).build(failure);
        EXPECT_EQ(failure, kelto::make_error(result));
        EXPECT_EQ(built.get() == nullptr, result != 0);
    }
    for (const char *name : {"", "host", "long", "List", "N", "O", "1st", "a[", "caf\xC3\xA9", "abcdefghijklmnopqrst"})
        EXPECT_THROW(kelto::form_table::builder().add<int>(name, [](int) { return ""; }).build(), kelto::error) << name;
    UCS2 out[10];
    unsigned long size = 10;
    char format[] = "%N[1]%s[2]";
    EXPECT_EQ(KTFormatStringWithPassThru(nullptr, false, own.get(), nullptr, &size, out, format, "x"),
              KT_ERR_INVALID_PARAMETER); // nothing is written unescaped
}

} // namespace
