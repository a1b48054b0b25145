#include "bilingual/bilingual_file.h"
#include "bilingual/import.h"
#include "bilingual/message_parts.h"
#include "bilingual/xliff_reader.h"
#include "kelto.h"
#include "memory_file.h"
#include "message_file.h"
#include "random_catalog.h"

#include <gtest/gtest.h>

using namespace tool;
using namespace tool::bilingual;

namespace
{

/** The messages as a program gets them, by the library. */
std::map<unsigned, std::string> loaded(const std::string &bytes)
{
    std::map<unsigned, std::string> messages;
    const MemoryFile file(bytes);
    MessageFile(file.path()).forEachMessage([&](unsigned id, const std::string &message) {
        messages.emplace(id, message);
    });
    return messages;
}

SourceFile sourceOf(const std::string &bytes)
{
    return SourceFile(check::SourceText("file", bytes));
}

/** Exports and imports a translation, whose messages in the end are these. */
void sendThrough(const Form &form, const std::string &reference, const std::string &translation,
                 const std::map<unsigned, std::string> &expected)
{
    check::FormTable forms;
    forms.add("nil=int");
    SourceFile source = sourceOf(reference);
    source.catalog.source().index();
    const SourceFile translated = sourceOf(translation);
    Bilingual catalog = bilingualOf(source, translated.catalog.language());
    addTranslation(catalog, translated);
    const std::string document = form.write(catalog, forms.get());
    const check::Reference compared(source.catalog, forms.get());
    Imported imported = import(readBilingual(check::SourceText("bilingual", document)), source, compared,
                               check::Levels(), {forms.get(), false, ""});
    for (const check::Diagnostic &found : imported.diagnostics)
        EXPECT_NE(found.severity, check::Severity::error) << sayInEnglish(found.text) << "\n" << document;
    const std::string again = messageFileOf(std::move(imported.document), forms.get());
    EXPECT_EQ(originOf(again), Origin::untouched);
    ASSERT_EQ(loaded(again), expected) << document;
}

TEST(RoundTrip, GivesTheSameMessagesToTheByte)
{
    const Library library;
    check::FormTable forms;
    for (unsigned seed = 1; seed <= 100; ++seed)
    {
        MessageDocument original;
        MessageDocument translated;
        RandomCatalog(seed).fill(original, translated);
        const std::string reference = messageFileOf(original, forms.get());
        const std::string translation = messageFileOf(translated, forms.get());
        std::map<unsigned, std::string> expected = loaded(translation);
        for (const auto &[id, text] : loaded(reference)) // what is empty comes back from the reference
            if (text.empty() && expected.count(id) == 0)
                expected[id] = "";
        for (const Form &form : allForms())
        {
            const bool startsProgram = !form.knowsEmpty; // which takes its time
            if (startsProgram && seed % 4 != 0)
                continue;
            std::map<unsigned, std::string> sayable = expected;
            const std::map<unsigned, std::string> originals = loaded(reference);
            for (const auto &[id, source] : originals) // what is empty on one side is nothing to PO
                if (const auto text = sayable.find(id); !form.knowsEmpty && text != sayable.end())
                {
                    if (source.empty())
                        text->second.clear();
                    else if (text->second.empty())
                        sayable.erase(text);
                }
            sendThrough(form, reference, translation, sayable);
            ASSERT_FALSE(HasFatalFailure()) << form.name << ", seed " << seed;
        }
    }
}

} // namespace
