#include "agreement.h"
#include "check/file_check.h"
#include "check/texts/resolved_text.h"
#include "document.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fmt/core.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <random>
#include <sys/mman.h>
#include <unistd.h>

using namespace tool::check;
using tool::Placeholders;

namespace
{

/** A file without a name that the library can open. */
class NamelessFile
{
public:
    explicit NamelessFile(const std::string &bytes) : m_descriptor(memfd_create("test", MFD_CLOEXEC))
    {
        if (write(m_descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            std::abort();
    }
    ~NamelessFile() { close(m_descriptor); }
    NamelessFile(const NamelessFile &) = delete;
    NamelessFile &operator=(const NamelessFile &) = delete;

    std::string path() const { return fmt::format("/proc/self/fd/{}", m_descriptor); }

private:
    int m_descriptor;
};

bool isFormat(const char *message)
{
    unsigned long units = 0;
    return KTvpFormatString(nullptr, false, &units, nullptr, const_cast<char *>(message),
                            std::vector<void *>{nullptr}.data()) != KT_ERR_FORMAT_SYNTAX;
}

bool has(const Findings &findings, int message, std::initializer_list<Rule> rules)
{
    return std::any_of(findings.begin(), findings.end(), [&](const Finding &finding) {
        return finding.message == message && std::find(rules.begin(), rules.end(), finding.rule) != rules.end();
    });
}

std::string disagreementOnMessages(const ParsedFile &parsed, MessageTable *table)
{
    const Findings findings = checkMessages(parsed, &builtInFormTable, nullptr);
    for (const Message &message : parsed.messages())
    {
        char *text = nullptr;
        if (KTGetMessage(table, static_cast<unsigned>(message.id), &text) != 0 || text == nullptr)
            return fmt::format("message {} is not in the table", message.id);
        const ResolvedText resolved(parsed.rawText(message));
        if (resolved.text() != text)
            return fmt::format("message {} is '{}' to the checker, '{}' to the library", message.id, resolved.text(),
                               text);
        if (has(findings, message.id,
                {Rule::badConversion, Rule::positionGap, Rule::positionRepeat, Rule::lonePercent}) == isFormat(text))
            return fmt::format("'{}' is a format to one of them", text);
    }
    return "";
}

} // namespace

std::string disagreement(const std::string &bytes, bool *loads)
{
    const NamelessFile file(bytes);
    std::string path = file.path();
    MessageTable *table = nullptr;
    const int result = KTLoadMessages(path.data(), &table);
    if (loads != nullptr)
        *loads = result == 0;
    if (result == KT_ERR_NO_MEMORY)
        return "";
    const ParsedFile parsed(SourceText("file", bytes), Placeholders::positioned);
    const bool isClean = std::all_of(parsed.findings().begin(), parsed.findings().end(), [](const Finding &finding) {
        return rowOf(finding.rule).severity == Severity::warning;
    });
    std::string text;
    if (isClean != (result == 0))
        text = fmt::format("the library's result is {}, the checker finds: {}", result,
                           isClean ? "nothing" : tool::sayInEnglish(parsed.findings().front().text));
    else if (result == 0)
        text = disagreementOnMessages(parsed, table);
    if (result == 0)
        KTFreeMessages(table);
    return text;
}

namespace
{

std::vector<std::string> filesIn(const char *folder)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(std::string(KELTO_SOURCE_DIR) + folder))
        names.push_back(entry.path());
    std::sort(names.begin(), names.end()); // every run damages the same bytes
    std::vector<std::string> files;
    for (const std::string &name : names)
    {
        std::ifstream stream(name, std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    return files;
}

constexpr const char *pieces[] = {
    "<x ts='%d' id='1'/>",
    "<x ts=\"%s\" id=\"2\"/>",
    "<x ts='' id='1'/>",
    "<x id='1'/>",
    "<x ts='%s[2]' id='1'/>",
    "<x ts='s' id='2'/>",
    "<x ts='%d ' id='3'/>",
    "%",
    "%d[1]",
    "%d[2]",
    "%N[1]",
    "%d[1001]",
    "%%",
    "[1]",
    "\\",
    "\\n",
    "\\q",
    "<note/>",
    "<note>n</note>",
    "<source>",
    "</source>",
    "<source/>",
    "<context>c</context>",
    "<context-group/>",
    "<header/>",
    "<body>",
    "</body>",
    "<g/>",
    "<!-- -->",
    "<![CDATA[a&b]]>",
    "<trans-unit id='9'><source>z</source></trans-unit>",
    "<trans-unit ts='1'/>",
    "</trans-unit>",
    "&amp;",
    "&#37;",
    "&e;",
    "<!DOCTYPE xliff [<!ENTITY e '<note/>'><!ATTLIST x ts CDATA '%d' id CDATA '1'>]>",
    "<?xml version='1.0'?>",
    "id='0'",
    "ts='-1'",
    "ts='4294967297'",
    "source-language='deu'",
    "product-name=''",
    "=======",
    "\xE2\x80\xAE",
    "\xC3\xA9",
    "\xFF",
    "\r\n",
    "\t",
};

/** A file changed in up to three places. */
std::string mutant(const std::vector<std::string> &files, std::mt19937 &random)
{
    const auto below = [&](size_t bound) { return bound == 0 ? 0 : random() % bound; };
    std::string bytes = files[below(files.size())];
    for (size_t changes = 1 + below(3); changes > 0; --changes)
    {
        const size_t at = below(bytes.size() + 1);
        const size_t length = below(std::min<size_t>(bytes.size() - at, 40) + 1);
        const std::string part = bytes.substr(at, length);
        switch (below(9))
        {
        case 0:
            bytes.erase(at, length);
            break;
        case 1:
            bytes.insert(below(bytes.size() + 1), part);
            break;
        case 2:
            if (at < bytes.size())
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
            break;
        case 3:
            bytes.insert(at, pieces[below(std::size(pieces))]);
            break;
        default: // between tags, where more is valid
            bytes.insert(std::min(bytes.find('>', at), bytes.size() - 1) + 1, pieces[below(std::size(pieces))]);
        }
    }
    return bytes;
}

TEST(CheckAgreement, WithTheLibraryOnDamagedFiles)
{
    ASSERT_EQ(KTInit(), 0);
    std::vector<std::string> files = filesIn("/fuzz/corpus/load");
    const std::vector<std::string> examples = filesIn("/examples/messages");
    files.insert(files.end(), examples.begin(), examples.end());
    ASSERT_GT(files.size(), 10U);
    for (const std::string &file : files)
        EXPECT_EQ(disagreement(file), "") << file;
    // A huge number costs address space, which the sanitizers mark as used, 20,000 times.
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const std::string &file) { return file.find("2147483647") != std::string::npos; }),
                files.end());
    const char *const wanted = std::getenv("KELTO_CHECK_MUTANTS");
    const unsigned long count = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 20000;
    std::mt19937 random(1);
    unsigned long loaded = 0;
    for (unsigned long i = 0; i < count && !HasFailure(); ++i)
    {
        const std::string file = mutant(files, random);
        bool loads = false;
        EXPECT_EQ(disagreement(file, &loads), "") << "mutant " << i << ":\n" << file;
        loaded += loads ? 1 : 0;
    }
    EXPECT_GT(loaded, count / 20);
    EXPECT_LT(loaded, count / 2);
    KTClean();
}

/** A few conversions with positions of their own, nearly always 1 to n. */
std::string randomFormat(std::mt19937 &random)
{
    constexpr const char *names[] = {"d", "u",  "hd", "!x",  "s", "E", "U", "c", "lc",
                                     "f", "Lf", "*d", ".*s", "N", "O", "q", "*N"};
    std::string format;
    for (unsigned position = 1, count = random() % 4; position <= count; ++position)
    {
        const unsigned shown = random() % 20 == 0 ? position + 1 : position;
        const std::string conversion = fmt::format("%{}[{}]", names[random() % std::size(names)], shown);
        format = random() % 2 == 0 ? conversion + format : format + conversion;
    }
    return format;
}

TEST(CheckAgreement, WithTheLibraryOnWhatMayStandForWhat)
{
    ASSERT_EQ(KTInit(), 0);
    std::mt19937 random(1);
    size_t fitting = 0;
    for (int i = 0; i < 20000 && !HasFailure(); ++i)
    {
        const std::string format = randomFormat(random);
        const std::string reference = random() % 4 == 0 ? format : randomFormat(random);
        const ParsedFile parsed(SourceText("file", unit(format)), Placeholders::positioned);
        const ParsedFile original(SourceText("reference", unit(reference)), Placeholders::positioned);
        const Findings findings =
            checkMessages(parsed, &builtInFormTable, std::make_unique<Reference>(original, &builtInFormTable).get());
        if (KTExplainFormat(reference.c_str(), nullptr, nullptr) != 0)
            continue;
        const bool fits = KTCompareFormats(format.c_str(), reference.c_str(), nullptr, nullptr) == 0;
        fitting += fits ? 1 : 0;
        EXPECT_EQ(fits, !has(findings, 1,
                             {Rule::badConversion, Rule::positionGap, Rule::positionRepeat, Rule::argumentType,
                              Rule::argumentMissing, Rule::argumentExtra, Rule::encodingLost}))
            << format << " for " << reference;
    }
    EXPECT_GT(fitting, 3000U);
    KTClean();
}

} // namespace
