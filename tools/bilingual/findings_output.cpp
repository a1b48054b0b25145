#include "bilingual/findings_output.h"

#include "io/output.h"
#include "io/terminal.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <unistd.h>

namespace tool::bilingual
{

using namespace check;

namespace
{

/** Findings for people go where diagnostics go; the documents of the others are an output. */
void writeToError(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace

FindingsOutput::FindingsOutput(const CommandLine &line, const std::string &form, bool isQuiet,
                               const std::string &reference, const Levels &levels)
    : m_levels(levels)
{
    const WriterOptions options{form == "text" && Terminal::showsColors(STDERR_FILENO), isQuiet, reference, &m_levels};
    m_writer = makeWriter(form, form == "text" ? Sink(writeToError) : Sink(print), options);
    if (m_writer == nullptr)
        throw line.misuse(say(Text::badForm, {terminal().quote(form)}));
    m_writer->begin();
}

void FindingsOutput::tell(const std::vector<Diagnostic> &diagnostics)
{
    for (const Diagnostic &diagnostic : diagnostics)
    {
        m_writer->write(diagnostic);
        ++(diagnostic.severity == Severity::error ? m_summary.errors : m_summary.warnings);
    }
}

bool FindingsOutput::tellErrors(const std::vector<Diagnostic> &diagnostics)
{
    std::vector<Diagnostic> errors;
    std::copy_if(diagnostics.begin(), diagnostics.end(), std::back_inserter(errors),
                 [](const Diagnostic &found) { return found.severity == Severity::error; });
    tell(errors);
    return errors.empty();
}

bool FindingsOutput::tellErrors(Findings findings, SourceText &source)
{
    return tellErrors(report(std::move(findings), source, nullptr, m_levels));
}

void FindingsOutput::finish(size_t files)
{
    m_summary.files = files;
    m_writer->end(m_summary);
}

} // namespace tool::bilingual
