#include "check/session.h"

#include "check/rules/files/completeness.h"
#include "check/telling/progress_bar.h"
#include "failure.h"
#include "io/input.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <utility>

// Workers check files in the order of the list, each taking the next one; their reports are told in that order too, so
// that the output does not depend on their number.

namespace tool::check
{
namespace
{

SourceText readSource(const std::string &path, const Setting &setting)
{
    return {path == "-" ? setting.stdinName : path, readMessageFile(path)};
}

/** The findings in a file, without those that its notes switch off. */
Findings findingsOf(const ParsedFile &parsed, const Reference *reference, const Setting &setting)
{
    Findings findings = parsed.findings();
    Findings others = checkMessages(parsed, setting.table, reference);
    findings.insert(findings.end(), std::make_move_iterator(others.begin()), std::make_move_iterator(others.end()));
    suppress(findings, parsed.suppressions());
    if (setting.complete > 0 && reference != nullptr)
        requireShare(findings, parsed, reference->parsed(), setting.complete);
    return findings;
}

/** Takes the findings of the baseline away; moves those that a new one can hold into it. */
void takeKnown(Findings &findings, const std::string &file, const Setting &setting)
{
    if (setting.baseline != nullptr)
        setting.baseline->takeKnown(findings, file);
    if (setting.known == nullptr)
        return;
    setting.known->add(findings, file, setting.levels);
    const auto isListed = [](const Finding &finding) { return !isFixed(finding.rule); };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isListed), findings.end());
}

Report reportOn(Findings findings, SourceText &source, const Reference *reference, const Setting &setting)
{
    takeKnown(findings, source.name(), setting);
    return reportUpTo(setting.limit, std::move(findings), source,
                      reference != nullptr ? &reference->parsed().source() : nullptr, setting.levels);
}

Report checkFile(const std::string &path, const Reference *reference, const Setting &setting)
{
    const auto failed = [&path, &setting](std::string why) {
        return Report{path == "-" ? setting.stdinName : path, {}, std::move(why), 0, 0};
    };
    try
    {
        ParsedFile parsed(readSource(path, setting), setting.placeholders);
        return reportOn(findingsOf(parsed, reference, setting), parsed.source(), reference, setting);
    }
    catch (const Failure &failure)
    {
        return failed(failure.what());
    }
    catch (const std::bad_alloc &)
    {
        return failed(inputName(path) + ": " + meaningOf(KT_ERR_NO_MEMORY));
    }
}

/** Checks files in threads and hands out the reports in the order of the files. */
class Workers
{
public:
    Workers(const std::vector<Input> &files, const References &references, const Setting &setting, size_t count)
        : m_files(files), m_references(references), m_setting(setting), m_reports(files.size())
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

    /** Waits for the report of a file. */
    Report take(size_t index, ProgressBar &progress)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_reports[index])
        {
            m_isReady.wait_for(lock, ProgressBar::interval);
            progress.show(m_done, m_files.size());
        }
        return *std::exchange(m_reports[index], std::nullopt);
    }

private:
    void work()
    {
        for (size_t index = m_next++; index < m_files.size(); index = m_next++)
        {
            Report report = checkFile(m_files[index].path, m_references.at(m_files[index].reference), m_setting);
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_reports[index] = std::move(report);
            ++m_done;
            m_isReady.notify_one();
        }
    }

    const std::vector<Input> &m_files;
    const References &m_references;
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
    Teller(Writer &writer, ProgressBar &progress) : m_writer(writer), m_progress(progress) {}

    void tell(const Report &report)
    {
        if (!report.failure.empty() || !report.diagnostics.empty())
            m_progress.hide();
        if (!report.failure.empty())
        {
            complain(report.failure);
            m_writer.tellUnread(report.file);
            ++m_unread;
        }
        for (const Diagnostic &diagnostic : report.diagnostics)
        {
            m_writer.write(diagnostic);
            ++(diagnostic.severity == Severity::error ? m_summary.errors : m_summary.warnings);
        }
        m_summary.errors += report.untoldErrors;
        m_summary.warnings += report.untoldWarnings;
        if (report.untoldErrors + report.untoldWarnings > 0)
            m_writer.tellUntold(report);
    }

    ExitStatus finish(size_t files, const Baseline *baseline)
    {
        m_progress.hide();
        m_summary.files = files - m_unread;
        m_summary.known = baseline != nullptr ? baseline->known() : 0;
        m_summary.stale = baseline != nullptr ? baseline->stale() : 0;
        m_writer.end(m_summary);
        if (m_unread > 0)
            return ExitStatus::failed;
        return m_summary.errors > 0 ? ExitStatus::negative : ExitStatus::done;
    }

private:
    Writer &m_writer;
    ProgressBar &m_progress;
    Summary m_summary;
    size_t m_unread = 0;
};

} // namespace

struct References::Row
{
    Row(const std::string &path, const Setting &setting)
        : parsed(readSource(path, setting), setting.placeholders), reference(parsed, setting.table)
    {
        parsed.source().index();
    }

    ParsedFile parsed;
    Reference reference;
};

References::References(const std::vector<std::string> &paths, const Setting &setting)
{
    for (const std::string &path : paths)
        m_rows.push_back(std::make_unique<Row>(path, setting));
}

References::~References() = default;

const Reference *References::at(size_t index) const
{
    return index == Input::none ? nullptr : &m_rows[index]->reference;
}

std::vector<Report> References::reports(const Inputs &inputs, const Setting &setting) const
{
    std::vector<Report> reports;
    for (size_t i = 0; i < m_rows.size(); ++i)
    {
        ParsedFile &parsed = m_rows[i]->parsed;
        Findings findings = findingsOf(parsed, nullptr, setting);
        if (!inputs.isReferenceChecked) // an empty text of a reference is meant to be empty
            findings.erase(std::remove_if(findings.begin(), findings.end(),
                                          [](const Finding &each) { return each.rule == Rule::emptyMessage; }),
                           findings.end());
        for (const Input &missing : inputs.missing)
            if (missing.reference == i)
                findings.push_back({Rule::messageMissing, 0, parsed.body().begin, parsed.body(),
                                    Phrase{Text::fileMissing, {missing.path}}, std::nullopt});
        reports.push_back(reportOn(std::move(findings), parsed.source(), nullptr, setting));
    }
    return reports;
}

ExitStatus checkInputs(const Inputs &inputs, const References &references, const Setting &setting, Writer &writer,
                       size_t jobs)
{
    ProgressBar progress;
    Teller teller(writer, progress);
    writer.begin();
    for (const Report &report : references.reports(inputs, setting))
        teller.tell(report);
    if (inputs.files.size() == 1)
        teller.tell(checkFile(inputs.files[0].path, references.at(inputs.files[0].reference), setting));
    else
    {
        Workers workers(inputs.files, references, setting, jobs);
        for (size_t i = 0; i < inputs.files.size(); ++i)
            teller.tell(workers.take(i, progress));
    }
    return teller.finish(inputs.files.size() + (inputs.isReferenceChecked ? 1 : 0), setting.baseline);
}

} // namespace tool::check
