#include "bilingual/forms.h"
#include "bilingual/import.h"
#include "bilingual/plural_forms.h"
#include "bilingual/xliff/xliff_writer.h"
#include "library/library_use.h"
#include "random_catalog.h"

#include <gtest/gtest.h>

using namespace tool;
using namespace tool::bilingual;

namespace
{

/** A document with a few bytes changed, left out, or put in from elsewhere in it. */
std::string mutant(std::string document, RandomCatalog &random)
{
    constexpr const char *bits[] = {"<",   ">",        "\"",  "&",  "</",   "%",  "[1]",
                                    "id=", "&#x202E;", "<g>", "\0", "\xFF", "]]>"};
    for (size_t changes = 1 + random.below(4); changes > 0; --changes)
    {
        const size_t at = random.below(document.size());
        const size_t length = random.below(40);
        if (random.below(3) == 0)
            document.erase(at, length);
        else if (random.below(2) == 0)
            document.insert(at, bits[random.below(std::size(bits))]);
        else
            document.insert(at, document.substr(random.below(document.size()), length));
    }
    return document;
}

// That no mutant ends the program is for the sanitizers to see.
TEST(Mutants, OfXliffGiveMessagesThatTheCheckerAccepts)
{
    const Library library;
    check::FormTable forms;
    forms.add("nil=int");
    size_t imported = 0;
    for (unsigned seed = 1; seed <= 40; ++seed)
    {
        RandomCatalog random(seed);
        MessageDocument original;
        MessageDocument translated;
        random.fill(original, translated);
        RemarkedFile source(check::SourceText("en.xlf", messageFileOf(original, forms.get())));
        source.parsed.source().index();
        const RemarkedFile translation(check::SourceText("de.xlf", messageFileOf(translated, forms.get())));
        Bilingual catalog = bilingualOf(source, translation.parsed.language());
        addTranslation(catalog, translation);
        const check::Reference reference(source.parsed, forms.get());
        const auto write = seed % 2 == 0 ? xliff12Of : xliff2Of;
        const std::string document = write(catalog, forms.get());
        for (int i = 0; i < 25; ++i)
        {
            Imported result = import(readBilingual(check::SourceText("m", "<" + mutant(document, random).substr(1))),
                                     source, reference, check::Levels(), {forms.get(), true, "de"});
            const std::string file = messageFileOf(std::move(result.document), forms.get());
            const check::ParsedFile again(check::SourceText("out", file), Placeholders::positioned);
            ASSERT_TRUE(again.findings().empty()) << file;
            imported += again.messages().size();
            if (!catalog.selectors.empty()) // the rows of the translation are not those of the reference
                continue;
            for (const check::Finding &finding : checkMessages(again, forms.get(), &reference))
            {
                ASSERT_NE(check::rowOf(finding.rule).severity, check::Severity::error)
                    << sayInEnglish(finding.text) << "\n"
                    << file;
            }
        }
    }
    EXPECT_GT(imported, 500U);
}

} // namespace
