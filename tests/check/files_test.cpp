#include "check/file_check.h"
#include "check/inputs.h"
#include "check/rules/files/completeness.h"
#include "check/rules/files/file_language.h"
#include "check/telling/baseline.h"
#include "document.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fmt/core.h>
#include <fstream>
#include <gtest/gtest.h>

using namespace tool::check;
using tool::Placeholders;

namespace
{

Findings findingsIn(const std::string &path, const std::string &bytes)
{
    const ParsedFile parsed(SourceText(path, bytes), Placeholders::positioned);
    return checkMessages(parsed, nullptr, nullptr);
}

TEST(Files, NameTheirLanguageByTheirPath)
{
    const struct
    {
        const char *path, *language;
        bool isGerman; // so that a file in German is not told
    } rows[] = {{"fr/store.xlf", "fr", false},
                {"de/store.xlf", "de", true},
                {"store.de_AT.xlf", "de_AT", true},
                {"store.pt-BR.xlf", "pt-BR", false},
                {"store_fr.xlf", "fr", false},
                {"store-fr.xlf", "", true},
                {"store-pt_BR.xlf", "pt_BR", false},
                {"store.fr.d/x.xlf", "", true},
                {"fr/de/x.xlf", "de", true},
                {"a/fr/b/x.xlf", "fr", false},
                {"/fr", "fr", false},
                {"fr", "fr", false},
                {"xx/x.xlf", "", true},
                {"FR/x.xlf", "", true},
                {"fra/pt+BR/pt-br/x.xlf", "", true},
                {"zfr.xlf", "", true}};
    for (const auto &[path, language, isGerman] : rows)
    {
        EXPECT_EQ(languageInPath(path), language) << path;
        EXPECT_EQ(findingsIn(path, unit("a")).empty(), isGerman) << path;
    }
}

TEST(Files, HaveTheWantedShareOfTheirReference)
{
    const auto numbered = [](int id, const char *text) {
        return fmt::format("<trans-unit id='{}'><source>{}</source></trans-unit>", id, text);
    };
    const ParsedFile reference(SourceText("en", document(numbered(1, "a") + numbered(2, "b") + numbered(3, "c"))),
                               Placeholders::positioned);
    const ParsedFile parsed(SourceText("de", document(numbered(1, "a") + numbered(2, "") + numbered(3, "c"))),
                            Placeholders::positioned);
    const Reference compared(reference, nullptr);
    for (const auto &[percent, isTold] : {std::pair(66, false), std::pair(67, true)})
    {
        Findings findings = checkMessages(parsed, nullptr, &compared);
        requireShare(findings, parsed, reference, static_cast<unsigned>(percent));
        const auto isIncomplete = [](const Finding &finding) { return finding.rule == Rule::incomplete; };
        EXPECT_EQ(std::any_of(findings.begin(), findings.end(), isIncomplete), isTold) << percent;
    }
}

TEST(Files, HaveKnownFindingsAsOftenAsTheirBaselineHasThem)
{
    const Findings three = findingsIn("x", unit("a\\q\\q\\"));
    ASSERT_EQ(three.size(), 3U);
    BaselineWriter writer;
    Levels levels;
    writer.add(three, "x", levels);
    levels.apply("no-unknown-escape");
    writer.add(three, "y", levels);
    const std::string text = writer.text();
    Baseline baseline("# a comment\r\n\n" + text + "x: 1: gone: more");
    Findings six = three;
    six.insert(six.end(), three.begin(), three.end());
    baseline.takeKnown(six, "x");
    EXPECT_EQ(six.size(), 3U);
    EXPECT_EQ(baseline.known(), 3U);
    EXPECT_GE(baseline.stale(), 1U);
    Findings again = three;
    Baseline(text).takeKnown(again, "y");
    EXPECT_EQ(again.size(), 2U); // of a rule that was off when the baseline was written
}

/** A folder that is removed with what it holds. */
struct Folder
{
    std::string path = std::filesystem::temp_directory_path() / "kelto-XXXXXX";

    Folder() { mkdtemp(path.data()); }
    ~Folder() { std::filesystem::remove_all(path); }

    void add(const std::string &file) const
    {
        std::filesystem::create_directories((path + "/" + file).substr(0, (path + "/" + file).rfind('/')));
        std::ofstream(path + "/" + file) << file;
    }
};

TEST(Files, AreComparedWithTheOneOfTheSamePath)
{
    const Folder folder;
    for (const char *file : {"en/a.xlf", "en/sub/b.xliff", "en/note.txt", "de/a.xlf", "de/sub/b.xliff", "fr/x/a.xlf",
                             "fr/x/sub/c.xlf", "alone/d.xlf", "alone/e.xlf/note"})
        folder.add(file);
    const auto shown = [&](const Inputs &inputs) {
        std::string text;
        for (const std::vector<Input> *const list : {&inputs.files, &inputs.missing})
        {
            for (const Input &input : *list)
                text += input.path.substr(folder.path.size() + 1) +
                        (input.reference == Input::none ? " " : fmt::format(":{} ", input.reference));
            text += list == &inputs.files ? "- " : "";
        }
        return text + std::to_string(inputs.references.size()) + (inputs.isReferenceChecked ? "!" : "");
    };
    const auto at = [&](const char *name) { return folder.path + "/" + name; };
    EXPECT_EQ(shown(collectInputs({at("de"), at("fr/"), at("alone/d.xlf"), at("en")}, at("en"))),
              "de/a.xlf:0 de/sub/b.xliff:1 fr/x/a.xlf:0 fr/x/sub/c.xlf alone/d.xlf - fr/x/sub/b.xliff:1 2");
    EXPECT_EQ(shown(collectInputs({at("en"), at("de")}, at("en/a.xlf"))),
              "en/sub/b.xliff:0 de/a.xlf:0 de/sub/b.xliff:0 - 1!");
    EXPECT_EQ(shown(collectInputs({at("alone"), at("none")}, "")), "alone/d.xlf none - 0");
}

} // namespace
