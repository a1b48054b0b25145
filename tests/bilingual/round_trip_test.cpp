#include "bilingual/forms.h"
#include "bilingual/import.h"
#include "bilingual/update.h"
#include "io/input.h"
#include "io/memory_file.h"
#include "io/output.h"
#include "kelto.h"
#include "library/library_use.h"
#include "library/message_file.h"
#include "random_catalog.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <regex>
#include <unistd.h>

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

RemarkedFile sourceOf(const std::string &bytes)
{
    return RemarkedFile(check::SourceText("en.xlf", bytes));
}

/** A file in the folder of the tests, which tools can read. */
std::string written(const std::string &name, const std::string &bytes)
{
    const std::string path = testing::TempDir() + "kelto-" + std::to_string(getpid()) + "-" + name;
    writeFile(path, bytes);
    return path;
}

/** What a command makes of its standard input; nothing where it fails. */
std::optional<std::string> through(const std::string &command, const std::string &document)
{
    const std::string input = written("input", document);
    const std::string output = written("output", "");
    const int status = std::system((command + " <" + input + " >" + output + " 2>/dev/null").c_str());
    std::string result = readWhole(output);
    unlink(input.c_str());
    unlink(output.c_str());
    return status == 0 ? std::optional(std::move(result)) : std::nullopt;
}

/** It wants line ends at the same places, which is a warning of ours: random translations have them anywhere. */
constexpr const char *acceptedByGettext =
    "! (LC_ALL=C msgfmt -c -o /dev/null - 2>&1 | grep -v -e 'do not both' -e 'msgfmt: found')";

/** A reference and a translation on their way through a bilingual file. */
class Journey
{
public:
    Journey(const std::string &reference, const std::string &translation)
        : m_source(sourceOf(reference)), m_translated(sourceOf(translation))
    {
        m_forms.add("nil=int");
        m_source.parsed.source().index();
    }

    std::string exported(const Form &form)
    {
        Bilingual catalog = bilingualOf(m_source, m_translated.parsed.language());
        addTranslation(catalog, m_translated);
        dropEmpty(catalog);
        return form.write(catalog, m_forms.get());
    }

    /** The message file that an import makes, which finds nothing wrong. */
    std::string imported(const std::string &document)
    {
        const check::Reference compared(m_source.parsed, m_forms.get());
        Imported imported = import(readBilingual(check::SourceText("bilingual", document)), m_source, compared,
                                   check::Levels(), {m_forms.get(), false, ""});
        for (const check::Diagnostic &found : imported.diagnostics)
            EXPECT_NE(found.severity, check::Severity::error) << sayInEnglish(found.text) << "\n" << document;
        return messageFileOf(std::move(imported.document), m_forms.get());
    }

    /** The same bilingual file when the reference has become another one. */
    std::string updated(const Form &form, const std::string &document, const std::string &newReference)
    {
        const RemarkedFile reference = sourceOf(newReference);
        Bilingual catalog = bilingualOf(reference, m_translated.parsed.language());
        update(catalog, readBilingual(check::SourceText("old", document)).content);
        noteArguments(catalog, m_forms.get());
        return form.write(catalog, m_forms.get());
    }

private:
    check::FormTable m_forms;
    RemarkedFile m_source;
    RemarkedFile m_translated;
};

struct Pair
{
    /** The one in the folder golden/, which has everything. */
    static Pair golden()
    {
        const std::string folder = KELTO_SOURCE_DIR "/tests/bilingual/golden/";
        Pair pair;
        pair.reference = readWhole(folder + "en.xlf");
        pair.translation = readWhole(folder + "pl.xlf");
        return pair;
    }

    static Pair random(unsigned seed)
    {
        MessageDocument original;
        MessageDocument translated;
        RandomCatalog(seed).fill(original, translated);
        check::FormTable forms;
        return {messageFileOf(original, forms.get()), messageFileOf(translated, forms.get())};
    }

    /** What comes back through a form. */
    std::map<unsigned, std::string> expected(const Form &form) const
    {
        std::map<unsigned, std::string> messages = loaded(translation);
        for (const auto &[id, source] : loaded(reference))
            if (source.empty()) // comes back from the reference; PO has no entry for it
                form.knowsEmpty ? messages.emplace(id, "") : messages.insert_or_assign(id, "");
            else if (const auto text = messages.find(id);
                     !form.knowsEmpty && text != messages.end() && text->second.empty())
                messages.erase(text);
        return messages;
    }

    std::string reference, translation;
};

TEST(RoundTrip, GivesTheSameMessagesToTheByte)
{
    const Library library;
    for (unsigned seed = 1; seed <= 100; ++seed)
    {
        const Pair pair = Pair::random(seed);
        Journey journey(pair.reference, pair.translation);
        for (const Form &form : allForms())
        {
            if (!form.knowsEmpty && seed % 4 != 0) // this one starts a program, which takes its time
                continue;
            const std::string document = journey.exported(form);
            const std::string again = journey.imported(document);
            EXPECT_EQ(originOf(again), Origin::untouched);
            ASSERT_EQ(loaded(again), pair.expected(form)) << form.name << ", seed " << seed << "\n" << document;
        }
    }
}

// A change of these files is one for everybody who has such files under version control:
//     kelto export -r en.xlf pl.xlf -o pl.po
TEST(RoundTrip, WritesTheGoldenFiles)
{
    const Library library;
    const Pair pair = Pair::golden();
    Journey journey(pair.reference, pair.translation);
    for (const Form &form : allForms())
    {
        const std::string document =
            readWhole(KELTO_SOURCE_DIR "/tests/bilingual/golden/pl" + std::string(form.extension));
        EXPECT_EQ(journey.exported(form), document);
        std::map<unsigned, std::string> expected = pair.expected(form);
        expected.erase(10); // translated from another text
        expected.erase(99); // the reference has no such message any more
        EXPECT_EQ(loaded(journey.imported(document)), expected) << form.name;
        if (!form.knowsEmpty)
        {
            EXPECT_TRUE(through(acceptedByGettext, document));
        }
    }
}

// What a tool writes is another file: wrapped, in another order, in another charset. It says the same.
TEST(RoundTrip, GoesThroughTheToolsOfGettext)
{
    const Library library;
    const Form &po = *findForm("po");
    constexpr const char *tools[] = {"msgcat --width=20 --sort-output -", "msgconv --to-code=GB18030",
                                     "msgattrib --no-obsolete --force-po", "msgcat --no-wrap --indent --force-po -"};
    for (unsigned seed = 4; seed <= 100; seed += 16)
    {
        const Pair pair = Pair::random(seed);
        Journey journey(pair.reference, pair.translation);
        const std::string document = journey.exported(po);
        const std::string expected = journey.imported(document);
        EXPECT_TRUE(through(acceptedByGettext, document)) << document;
        const std::string newer = journey.updated(po, document, Pair::random(seed + 1000).reference);
        EXPECT_TRUE(through(acceptedByGettext, newer)) << newer;
        for (const char *const tool : tools)
        {
            const auto result = through(std::string("LC_ALL=C ") + tool, document);
            ASSERT_TRUE(result) << tool << "\n" << document;
            EXPECT_EQ(journey.imported(*result), expected) << tool << ", seed " << seed << "\n" << *result;
        }
    }
}

// Where the schemas are (Debian's php-symfony-translation), documents are what they say.
TEST(RoundTrip, WritesDocumentsThatTheSchemasAccept)
{
    const std::string folder = "/usr/share/php/Symfony/Component/Translation/Resources/schemas/";
    if (access((folder + "xml.xsd").c_str(), R_OK) != 0)
        GTEST_SKIP() << "the schemas are not there";
    const Library library;
    for (const auto &[name, schema] :
         {std::pair("xliff", "xliff-core-1.2-strict.xsd"), {"xliff2", "xliff-core-2.0.xsd"}})
    {
        std::string text = readWhole(folder + schema);
        const std::regex import("schemaLocation=\"[^\"]*xml.xsd\"");
        text = std::regex_replace(text, import, "schemaLocation=\"" + folder + "xml.xsd\"");
        const std::string path = written(schema, text);
        const Form &form = *findForm(name);
        std::string command = "xmllint --nonet --noout --schema " + path;
        std::vector<std::string> files;
        for (unsigned seed = 0; seed <= 60; ++seed)
        {
            const Pair pair = seed == 0 ? Pair::golden() : Pair::random(seed);
            Journey journey(pair.reference, pair.translation);
            std::string document = journey.exported(form);
            if (seed % 2 == 1)
                document = journey.updated(form, document, Pair::random(seed + 1000).reference);
            files.push_back(written(std::to_string(seed), document));
            command += " " + files.back();
        }
        EXPECT_EQ(std::system((command + " 2>" + path + ".log").c_str()), 0) << readWhole(path + ".log");
        files.insert(files.end(), {path, path + ".log"});
        for (const std::string &file : files)
            unlink(file.c_str());
    }
}

} // namespace
