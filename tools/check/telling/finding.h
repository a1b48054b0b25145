/**
 * What a check finds. While a file is checked, a Finding names its place in bytes; once the file is done, report()
 * turns the findings into Diagnostics in the order of the file, with lines and columns, which need the file no more.
 * What it says is a Phrase, which a writer puts into words if it is to be told at all; it quotes the file as it is, in
 * UTF-8, and what shows it escapes it.
 */
#ifndef KELTO_TOOLS_CHECK_TELLING_FINDING_H
#define KELTO_TOOLS_CHECK_TELLING_FINDING_H

#include "check/rules.h"
#include "check/texts/source_text.h"
#include "text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

/** A second place that explains a finding. */
struct Note
{
    bool isInReference; // else in the file itself
    Range place;
    Phrase text;
};

struct Finding
{
    Rule rule;
    int message;  // its number; 0 where no message is concerned
    size_t order; // where it is told: the beginning of its unit, or of its place
    Range place;
    Phrase text;
    std::optional<Note> note;
};

using Findings = std::vector<Finding>;

struct Place
{
    std::string file;
    Position begin, end; // the end is behind the last code point
    Range bytes;
    bool isLine = false; // the column is not known
};

struct Diagnostic
{
    Rule rule;
    Severity severity;
    int message;
    Place place;
    Phrase text;
    Excerpt excerpt;
    std::optional<Place> notePlace;
    Phrase noteText;
};

/** What is to be told of one file. */
struct Report
{
    std::string file; // its name
    std::vector<Diagnostic> diagnostics;
    std::string failure; // why the file could not be checked, for a terminal; else empty
    size_t untoldErrors = 0;
    size_t untoldWarnings = 0;
};

/**
 * The findings that are not switched off, in the order of the file; within a unit, what concerns it as a whole comes
 * last.
 * @param source     the file, which is indexed here if there is anything to report.
 * @param reference  indexed, or null where there is none.
 */
std::vector<Diagnostic> report(Findings findings, SourceText &source, const SourceText *reference,
                               const Levels &levels);

constexpr size_t noLimit = static_cast<size_t>(-1);

/** The same, but for so many of them at most, errors before warnings. */
Report reportUpTo(size_t limit, Findings findings, SourceText &source, const SourceText *reference,
                  const Levels &levels);

} // namespace tool::check

#endif
