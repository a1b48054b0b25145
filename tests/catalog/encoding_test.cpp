// An encoder that no translation can leave out: by the comparison with the text in the source, and by KT_ENCODE_ALL.

#include "catalog/store.h"

namespace
{

/** Doubles every unit behind a '<', so that what was encoded can be told, and once only. A '!' fails. */
int mark(const void *value, int type, unsigned long *size, UCS2 *out)
{
    std::u16string text = type == KT_ENCODE_UCS2   ? std::u16string(static_cast<const UCS2 *>(value))
                          : type == KT_ENCODE_UNIT ? std::u16string(1, *static_cast<const UCS2 *>(value))
                                                   : std::u16string(1, *static_cast<const unsigned char *>(value));
    if (text == u"!")
        return *size = 0, KT_ERR_CONVERSION_FAILED;
    text = u'<' + text + u'>';
    text.copy(out, std::min<size_t>(*size, text.size()));
    *size = text.size();
    return 0;
}

/** An own conversion, which encodes what it writes where it is asked to. */
int own(const char *, int, int, int flags, KTEncoder encoder, void *, void **slots, unsigned long *size, UCS2 *out)
{
    const void *const value = KTPointerOfKind(slots, 7);
    if (value == nullptr)
        return *size = 0, KT_ERR_INVALID_PARAMETER;
    if ((flags & FLAG_ENCODE) != 0)
        return encoder(value, KT_ENCODE_UCS2, size, out);
    const std::u16string text = static_cast<const UCS2 *>(value);
    text.copy(out, std::min<size_t>(*size, text.size()));
    const bool fits = text.size() < *size;
    *size = text.size();
    return fits ? 0 : KT_ERR_BUFFER_TOO_SMALL;
}

const int pointerList[] = {KT_ARG_POINTER, KT_ARG_END};
KTFormatter ownList[] = {{"own", nullptr, 1, pointerList, own}, {nullptr, nullptr, 0, nullptr, nullptr}};
formTable marking = {false, {}, ownList, mark, &builtInFormTable};
formTable silent = {false, {}, ownList, nullptr, &builtInFormTable};
const UCS2 object[] = u"obj";

/** Whose conversions they are: the catalog's, or each language's. */
enum class Conversions
{
    ofCatalog,
    ofLanguages
};

/** A catalog with one message, in "de" and, where there is an English text, in "en". */
class Opened
{
public:
    Opened(const std::string &translation, formTable *table, unsigned formatOptions, const std::string &english = "",
           Conversions conversions = Conversions::ofCatalog)
    {
        FakeZel::file("d/de/store.xlf", MessageFile().unit(1, escaped(translation)).xml());
        FakeZel::file("d/en/store.xlf", MessageFile().unit(1, escaped(english)).xml());
        KTCatalogOptions options = {};
        options.structSize = sizeof options;
        options.languages = "de";
        options.sourceLanguage = english.empty() ? "" : "en";
        if (conversions == Conversions::ofCatalog)
            options.table = table;
        else
            options.conversions = [](void *context, const char *) { return static_cast<formTable *>(context); };
        options.conversionsContext = table;
        options.formatOptions = formatOptions;
        options.context = &stories;
        options.onProblem = [](void *context, const KTCatalogProblem *problem) {
            static_cast<std::vector<std::string> *>(context)->push_back(problem->text);
        };
        EXPECT_EQ(KTOpenCatalog("d", "store", &options, &m_catalog), 0);
    }
    ~Opened() { KTCloseCatalog(m_catalog); }
    Opened(const Opened &) = delete;
    Opened &operator=(const Opened &) = delete;

    template <class... Arguments> std::string formatOr(const char *source, const Arguments &...arguments) const
    {
        const KTArgument list[] = {typed(arguments)..., KTArgument()};
        return textOf(m_catalog, {sizeof(KTCatalogRequest), 1, false, source, SIZE_MAX, list, sizeof...(arguments)});
    }

    std::vector<std::string> stories;

private:
    KTCatalog *m_catalog = nullptr;
};

TEST(Encoding, IsNotLostInATranslation)
{
    const std::string fromSource = "b <x> 7";
    const struct
    {
        const char *source, *translation;
        std::string text;
    } rows[] = {
        {"b %N[1]%s[2]%O[3] %d[4]", "B %s[1] %d[2]", fromSource},
        {"b %N[1]%s[2]%O[3] %d[4]", "B %d[2] %.3s[1]", fromSource},
        {"b %N[1]%s[2]%O[3] %d[4]", "B %E[1] %d[2]", fromSource},
        {"b %N[1]%s[2]%O[3] %d[4]", "B %s[1]%N[2] %d[3]", fromSource},
        {"b %N[1]%s[2]%O[3] %d[4]", "%N[1]%E[2]%O[3] %d[4]", fromSource}, // regions end there
        {"b %N[1]%s[2]%O[3] %d[4]", "B %N[1]%-5s[2]%O[3]|%d[4]", "B <x>  |7"},
        {"b %N[1]%s[2]%O[3] %d[4]", "B %.0s[1]%d[2]", "B 7"}, // what writes nothing lets nothing through
        {"b %N[1]%s[2]%O[3] %d[4]", "B %IP[1]%d[2]", "B 7"},
        {"b %s[1] %d[2]", "B %N[1]%s[2]%O[3] %d[4]", "B <x> 7"}, // more is no loss
        {"b %s[1] %N[2]%d[3]%O[4]", "B %s[1] %d[2]", "B x 7"},   // of a number there is none
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.translation);
        const Opened catalog(row.translation, &marking, 0);
        for (int call = 0; call < 2; ++call)
            EXPECT_EQ(catalog.formatOr(row.source, "x", 7), row.text);
        const bool isLost = row.text == fromSource;
        EXPECT_EQ(catalog.stories.size(), isLost ? 1u : 0u);
        KTProblem problem = {};
        problem.structSize = sizeof problem;
        EXPECT_EQ(KTInit(), 0);
        EXPECT_EQ(KTCompareFormats(row.translation, row.source, &marking, &problem),
                  isLost ? KT_ERR_INVALID_PARAMETER : 0);
        EXPECT_EQ(problem.rule, isLost ? KT_RULE_ENCODING_LOST : KT_RULE_NONE);
        KTClean();
        EXPECT_TRUE(!isLost || row.translation[problem.offset] == '%');
    }
    const Opened catalog("B %s[1]", &marking, 0);
    EXPECT_EQ(catalog.formatOr("b %s[1]", "x"), "B x"); // the verdict belongs to the source
    EXPECT_EQ(catalog.formatOr("b %N[1]%s[2]%O[3]", "x"), "b <x>");
    EXPECT_EQ(catalog.formatOr("b %s[1]", "x"), "B x");
    EXPECT_EQ(catalog.formatOr(nullptr, "x"), "B x");
    EXPECT_EQ(catalog.stories,
              std::vector<std::string>{"\"B %s[1]\": argument 1 is not encoded here, as it is in the source"});
}

TEST(Encoding, IsNotLostWhereTheConversionsAreALanguages)
{
    const Opened catalog("B %s[1]", &marking, 0, "", Conversions::ofLanguages);
    EXPECT_EQ(catalog.formatOr("b %s[1]", "x"), "B x");
    EXPECT_EQ(catalog.formatOr("b %N[1]%s[2]%O[3]", "x"), "b <x>");
    EXPECT_EQ(catalog.formatOr(nullptr, "x"), "B x");
}

// What keeps a rung from one call says nothing of the next.
TEST(Encoding, PassesARungOverForTheCallAlone)
{
    const Opened lost("B %s[1]", &marking, 0, "E %N[1]%s[2]%O[3]");
    EXPECT_EQ(lost.formatOr("b %N[1]%s[2]%O[3]", "x"), "E <x>");
    EXPECT_EQ(lost.formatOr("b %s[1]", "x"), "B x");
    EXPECT_EQ(lost.formatOr("b %N[1]%s[2]%O[3]", "x"), "E <x>");
    for (unsigned step = 1; step <= 3; ++step)
    {
        const Opened withoutMemory("B %s[1]", nullptr, 0, "E %s[1]");
        FakeZel::fail(Operation::Malloc, step);
        withoutMemory.formatOr("b %s[1]", "x");
        FakeZel::fail(Operation::Malloc, 0);
        EXPECT_EQ(withoutMemory.formatOr("b %s[1]", "x"), "B x") << step;
    }
}

TEST(Encoding, OfEverythingLeavesNothingOut)
{
    const long double real = 2.5L;
    const KTArgument pointer = KT_POINTER(7, object);
    const struct
    {
        const char *format;
        KTArgument argument;
        std::string text, tagged;
    } rows[] = {
        {"a %s[1]", KT_UTF8("<"), "a <<>", ""},
        {"a %5s[1]|", KT_UTF8("x"), "a   <x>|", ""},
        {"a %N[1]%s[2]%O[3]", KT_UTF8("x"), "a <x>", ""},
        {"a %U[1]", KT_UCS2(object), "a <obj>", ""},
        {"a %U[1]", KT_CODE_POINT(0x1F600), "a <😀>", ""},
        {"a %c[1]", KT_CHAR('x'), "a <x>", ""},
        {"a %lc[1]", KT_CODE_POINT('x'), "a <x>", ""},
        {"a %E[1]", KT_UTF8("x"), "a <x>", "a <error><x></error>"},
        {"a %DND[1]", KT_UCS2(object), "a <obj>", "a <DN><obj></DN>"},
        {"a %own[1]", pointer, "a <obj>", ""},
        {"a %N[1]%own[2]%O[3]", pointer, "a <obj>", ""},
        {"a %4d[1]", KT_INT(7), "a <   7>", ""},
        {"a %300d[1]", KT_INT(7), "a <" + std::string(299, ' ') + "7>", ""},
        {"a %#x[1]", KT_UINT(7), "a <0x7>", ""},
        {"a %.1Lf[1]", KT_LONG_DOUBLE(&real), "a <2.5>", ""},
        {"a %D[1]", KT_UTF8("0"), "a <1/1/1970>", ""},
        {"a %EID[1]", KT_UINT(7), "a <0X00000007>", "a <EID>0X00000007</EID>"},
        {"a %IP[1]", KT_UTF8("x"), "a ", "a "},
        {"a %s[1]", KT_UTF8("!"), "[store 1: ?]", ""}, // nothing is written that was not encoded
        {"a %own[1]", KT_POINTER(8, object), "[store 1: <(pointer)>]", ""},
        {"a %02000000000d[1]", KT_INT(7), "[store 1: <7>]", ""}, // is measured, not made
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.format);
        EXPECT_EQ(Opened(row.format, &marking, KT_ENCODE_ALL).formatOr(nullptr, row.argument), row.text);
        if (!row.tagged.empty())
        {
            const Opened tagging(row.format, &marking, KT_ENCODE_ALL | KT_TAG);
            EXPECT_EQ(tagging.formatOr(nullptr, row.argument), row.tagged);
        }
    }
}

TEST(Encoding, OfEverythingNeedsAnEncoder)
{
    KTCatalogOptions options = {};
    options.structSize = sizeof options;
    options.formatOptions = KT_ENCODE_ALL;
    for (formTable *table : {static_cast<formTable *>(nullptr), &silent})
    {
        KTCatalog *catalog = nullptr;
        options.table = table;
        EXPECT_EQ(KTOpenCatalog("d", "store", &options, &catalog), KT_ERR_INVALID_PARAMETER);
        EXPECT_EQ(catalog, nullptr);
        KTPreparedFormat *prepared = nullptr;
        ASSERT_EQ(KTInit() + KTPrepareFormat("a", table, &prepared), 0);
        char text[10] = "?";
        size_t size = sizeof text;
        EXPECT_EQ(KTFormatPreparedUTF8(prepared, KT_ENCODE_ALL, nullptr, &size, text, nullptr, 0),
                  KT_ERR_INVALID_PARAMETER);
        EXPECT_EQ(text[0], '?');
        KTFreePrepared(prepared);
        KTClean();
    }
    ASSERT_EQ(KTInit() + KTRegisterEncoder(mark), 0);
    {
        const Opened catalog("a %s[1]", &silent, KT_ENCODE_ALL); // that of the shared table
        EXPECT_EQ(catalog.formatOr(nullptr, "x"), "a <x>");
        KTRegisterEncoder(nullptr); // and now it is gone
        EXPECT_EQ(catalog.formatOr("b %s[1]", "x"), "[store 1: ?]");
        EXPECT_EQ(catalog.stories.at(0), "\"a %s[1]\": there is no encoder, and every argument is to go through it");
    }
    KTClean();
}

} // namespace
