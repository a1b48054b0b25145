#include "check/checks.h"
#include "check/progress.h"
#include "check/writers.h"
#include "command_line.h"
#include "message_file.h"
#include "output.h"
#include "output_file.h"
#include "terminal.h"
#include "text.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <fmt/core.h>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tool
{
namespace
{

using namespace check;

struct Options
{
    std::string reference;
    std::string format = "text";
    std::string output;
    std::string colour = "auto";
    std::string stdinName = "<stdin>";
    std::string jobs;
    std::string explained;
    Words warnings;
    Words forms;
    bool isRaw = false;
    bool isQuiet = false;
    bool listsRules = false;
};

/** What all files are checked with. */
struct Setting
{
    Catalog::Placeholders placeholders;
    formTable *table; // null with --raw
    Levels levels;
    std::string stdinName;
    const Reference *reference = nullptr;
};

/** The document on its way out: to standard output, or to a file. */
class Output
{
public:
    explicit Output(const std::string &path)
    {
        if (!path.empty())
            m_file.emplace(path);
    }

    void operator()(std::string_view text)
    {
        if (m_file)
            m_file->write(text);
        else
            print(text);
    }

    void finish()
    {
        if (m_file)
            m_file->finish();
    }

private:
    std::optional<OutputFile> m_file;
};

SourceText readSource(const std::string &path, const std::string &stdinName)
{
    return {path == "-" ? stdinName : path, readMessageFile(path)};
}

Findings findingsOf(const Catalog &catalog, const Setting &setting)
{
    Findings findings = catalog.findings();
    Findings others = checkMessages(catalog, setting.table, setting.reference);
    findings.insert(findings.end(), std::make_move_iterator(others.begin()), std::make_move_iterator(others.end()));
    return findings;
}

Report checkFile(const std::string &path, const Setting &setting)
{
    try
    {
        Catalog catalog(readSource(path, setting.stdinName), setting.placeholders);
        const SourceText *const reference =
            setting.reference != nullptr ? &setting.reference->catalog().source() : nullptr;
        return {report(findingsOf(catalog, setting), catalog.source(), reference, setting.levels), ""};
    }
    catch (const Failure &failure)
    {
        return {{}, failure.what()};
    }
    catch (const std::bad_alloc &)
    {
        return {{}, inputName(path) + ": " + meaningOf(KT_ERR_NO_MEMORY)};
    }
}

/** Checks files in threads and hands out the reports in the order of the files. */
class Workers
{
public:
    Workers(const Words &files, const Setting &setting, size_t count)
        : m_files(files), m_setting(setting), m_reports(files.size())
    {
        for (size_t i = 0; i < std::min(count, files.size()); ++i)
            m_threads.emplace_back([this] { work(); });
    }

    ~Workers()
    {
        m_next = m_files.size();
        for (std::thread &thread : m_threads)
            thread.join();
    }

    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    /** The report of a file, which is waited for. */
    Report take(size_t index, Progress &progress)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_reports[index])
        {
            m_isReady.wait_for(lock, Progress::interval);
            progress.show(m_done, m_files.size());
        }
        return *std::exchange(m_reports[index], std::nullopt);
    }

private:
    void work()
    {
        for (size_t index = m_next++; index < m_files.size(); index = m_next++)
        {
            Report report = checkFile(m_files[index], m_setting);
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_reports[index] = std::move(report);
            ++m_done;
            m_isReady.notify_one();
        }
    }

    const Words &m_files;
    const Setting &m_setting;
    std::atomic<size_t> m_next{0};
    std::mutex m_mutex;
    std::condition_variable m_isReady;
    std::vector<std::optional<Report>> m_reports;
    size_t m_done = 0;
    std::vector<std::thread> m_threads;
};

/** Tells reports and counts what they hold. */
class Teller
{
public:
    Teller(Writer &writer, Progress &progress) : m_writer(writer), m_progress(progress) {}

    void tell(const Report &report)
    {
        if (!report.failure.empty() || !report.diagnostics.empty())
            m_progress.hide();
        if (!report.failure.empty())
        {
            complain(report.failure);
            ++m_unread;
        }
        for (const Diagnostic &diagnostic : report.diagnostics)
        {
            m_writer.write(diagnostic);
            ++(diagnostic.severity == Severity::error ? m_summary.errors : m_summary.warnings);
        }
    }

    ExitStatus finish(size_t files)
    {
        m_progress.hide();
        m_summary.files = files - m_unread;
        m_writer.end(m_summary);
        if (m_unread > 0)
            return ExitStatus::failed;
        return m_summary.errors > 0 ? ExitStatus::negative : ExitStatus::done;
    }

private:
    Writer &m_writer;
    Progress &m_progress;
    Summary m_summary;
    size_t m_unread = 0;
};

bool wantsColour(const CommandLine &line, const Options &options)
{
    if (options.colour != "auto" && options.colour != "always" && options.colour != "never")
        throw line.misuse(say(Text::badColour, {terminal().quote(options.colour)}));
    if (options.colour != "auto")
        return options.colour == "always";
    return options.output.empty() && Terminal::showsColors(STDOUT_FILENO);
}

std::unique_ptr<Writer> makeWriter(const CommandLine &line, const std::string &format, Sink sink,
                                   const WriterOptions &options)
{
    constexpr struct
    {
        const char *name;
        std::unique_ptr<Writer> (*make)(Sink, const WriterOptions &);
    } writers[] = {{"text", textWriter}, {"json", jsonWriter}, {"sarif", sarifWriter}, {"github", githubWriter}};
    for (const auto &row : writers)
        if (format == row.name)
            return row.make(std::move(sink), options);
    throw line.misuse(say(Text::badForm, {terminal().quote(format)}));
}

size_t jobsOf(const CommandLine &line, const std::string &jobs)
{
    if (jobs.empty())
        return std::max(1U, std::thread::hardware_concurrency());
    constexpr size_t most = 256;
    const bool isNumber = jobs.size() <= 3 && jobs.find_first_not_of("0123456789") == std::string::npos;
    const size_t number = isNumber ? std::strtoul(jobs.c_str(), nullptr, 10) : 0;
    if (number == 0 || number > most)
        throw line.misuse(say(Text::badJobs, {most, terminal().quote(jobs)}));
    return number;
}

ExitStatus explain(const CommandLine &line, const Options &options, const Words &files)
{
    if (!files.empty())
        throw line.misuse(
            say(Text::surplusWord, {terminal().quote(files[0]), options.listsRules ? "--list-rules" : "--explain"}));
    if (options.listsRules)
    {
        printText(listOfRules());
        return ExitStatus::done;
    }
    const std::optional<Rule> rule = findRule(options.explained);
    if (!rule)
        throw line.misuse(say(Text::noRuleNamed, {terminal().quote(options.explained)}));
    printText(pageOf(*rule));
    return ExitStatus::done;
}

ExitStatus checkAll(const CommandLine &line, const Options &options, const Words &files, Setting &setting)
{
    const size_t jobs = jobsOf(line, options.jobs);
    WriterOptions writing;
    writing.isColoured = wantsColour(line, options);
    writing.isQuiet = options.isQuiet;
    writing.reference = options.reference == "-" ? options.stdinName : options.reference;
    writing.levels = &setting.levels;
    Words inputs = files;
    if (!options.reference.empty())
        inputs.push_back(options.reference);
    requireOtherFile(options.output, inputs);
    std::optional<Output> output; // opened when the reference is read: a failure before leaves the file alone
    const Sink sink = [&output](std::string_view text) { (*output)(text); };
    const std::unique_ptr<Writer> writer = makeWriter(line, options.format, sink, writing);

    std::optional<Catalog> catalog;
    std::optional<Reference> reference;
    Words rest = files;
    if (!options.reference.empty())
    {
        catalog.emplace(readSource(options.reference, setting.stdinName), setting.placeholders);
        catalog->source().index();
        const auto isReference = [&](const std::string &file) { return isSameFile(file, options.reference); };
        rest.erase(std::remove_if(rest.begin(), rest.end(), isReference), rest.end());
    }
    output.emplace(options.output);
    Progress progress;
    Teller teller(*writer, progress);
    writer->begin();
    if (catalog)
    {
        teller.tell({report(findingsOf(*catalog, setting), catalog->source(), nullptr, setting.levels), ""});
        reference.emplace(*catalog, setting.table);
        setting.reference = &*reference;
    }
    if (rest.size() == 1)
        teller.tell(checkFile(rest[0], setting));
    else
    {
        Workers workers(rest, setting, jobs);
        for (size_t i = 0; i < rest.size(); ++i)
            teller.tell(workers.take(i, progress));
    }
    const ExitStatus status = teller.finish(files.size());
    output->finish();
    return status;
}

ExitStatus run(CommandLine &line)
{
    Options options;
    line.option("-r,--reference", "FILE", options.reference, "Compare with the messages of this file");
    line.option("--format", "FORM", options.format, "text (the default), json, sarif or github");
    line.option("-o,--output", "FILE", options.output, "Write the findings to a file; '-' is standard output");
    line.options("-W", "RULE", options.warnings,
                 "Report a rule; no-RULE: do not; error, error=RULE: warnings, or this one, count as errors");
    line.option("--color", "WHEN", options.colour, "auto (the default), always or never");
    line.flag("--raw", options.isRaw, "The messages are fetched and never formatted: conversions are not checked");
    line.options("--form", "NAME=TYPE[,TYPE...]", options.forms,
                 "A conversion of the program's own and its arguments: char, utf8, ucs2, int, uint, double, pointer");
    line.option("-j,--jobs", "N", options.jobs, "Files to check at once; as many as there are processors");
    line.option("--stdin-filename", "NAME", options.stdinName, "What to call standard input, the file '-'");
    line.flag("-q,--quiet", options.isQuiet, "No summary");
    line.flag("--list-rules", options.listsRules, "List the rules and end");
    line.option("--explain", "RULE", options.explained, "Explain a rule and end");
    const Words files = line.operands();
    if (options.output == "-")
        options.output.clear();
    if (options.listsRules || !options.explained.empty())
        return explain(line, options, files);
    Setting setting{
        options.isRaw ? Catalog::Placeholders::raw : Catalog::Placeholders::positioned, nullptr, {}, options.stdinName};
    for (const std::string &warning : options.warnings)
        if (const std::string fault = setting.levels.apply(warning); !fault.empty())
            throw line.misuse(fmt::format("-W{}: {}", terminal().showBytes(warning), fault));
    FormTable forms;
    for (const std::string &form : options.forms)
        if (const std::string fault = forms.add(form); !fault.empty())
            throw line.misuse(fmt::format("--form {}: {}", terminal().showBytes(form), fault));
    setting.table = options.isRaw ? nullptr : forms.get();
    if (files.empty())
        throw line.misuse(say(Text::noFile));
    if (std::count(files.begin(), files.end(), "-") + (options.reference == "-" ? 1 : 0) > 1)
        throw line.misuse(say(Text::standardInputTwice));
    return checkAll(line, options, files, setting);
}

constexpr const char *details = R"(Reports what keeps FILE from loading, what keeps its messages from being
formatted, and with -r where they ask for other arguments than those of the
reference, each with its line and column. For FILE '-' is standard input. The
exit status is 0 where there are no errors, 1 where there are.

Example:
  kelto check -r en.xlf de.xlf fr.xlf
)";

} // namespace

const Subcommand checkSubcommand = {"check", "[OPTION...] [-r FILE] FILE...",
                                    "Check message files, and compare them with another", details, run};

} // namespace tool
