/**
 * How findings are told: one writer per output form, all given the reports of the files in their order. The one for
 * people speaks their language, those for machines English. Whatever a file holds, what a writer prints moves no cursor
 * and breaks no document: it escapes what it quotes.
 */
#ifndef KELTO_TOOLS_CHECK_TELLING_WRITERS_H
#define KELTO_TOOLS_CHECK_TELLING_WRITERS_H

#include "check/telling/finding.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tool::check
{

using Sink = std::function<void(std::string_view)>;

struct Summary
{
    size_t files = 0;
    size_t errors = 0;
    size_t warnings = 0;
    size_t known = 0; // of a baseline, which are not told
    size_t stale = 0; // lines of it that nothing was found for
};

class Writer
{
public:
    explicit Writer(Sink sink) : m_sink(std::move(sink)) {}
    virtual ~Writer() = default;
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    virtual void begin() {}
    virtual void write(const Diagnostic &diagnostic) = 0;
    /** That a file could not be read, which people are told of elsewhere. */
    virtual void tellUnread(const std::string &) {}
    /** That a file has more findings than are told. */
    virtual void tellUntold(const Report &) {}
    virtual void end(const Summary &) {}

protected:
    void print(std::string_view text) { m_sink(text); }

private:
    Sink m_sink;
};

struct WriterOptions
{
    bool isColoured = false;
    bool isQuiet = false;  // no summary
    std::string reference; // the name of the reference, or empty
    const Levels *levels = nullptr;
};

std::unique_ptr<Writer> textWriter(Sink sink, const WriterOptions &options);
std::unique_ptr<Writer> jsonWriter(Sink sink, const WriterOptions &options);
std::unique_ptr<Writer> sarifWriter(Sink sink, const WriterOptions &options);
std::unique_ptr<Writer> githubWriter(Sink sink, const WriterOptions &options);

/** The writer of an output form by the name that options have for it, or null. */
std::unique_ptr<Writer> makeWriter(std::string_view form, Sink sink, const WriterOptions &options);

/** "message 1: …": what a diagnostic says, by itself. */
Phrase sentenceOf(const Diagnostic &diagnostic);

/** "5 more findings are not told": of a file that has more than the limit. */
Phrase untoldOf(const Report &report);

/** A text as a JSON string, between quotation marks; bytes that are no UTF-8 become U+FFFD. */
std::string jsonString(std::string_view text);

/** A path as a relative or absolute URI reference. */
std::string uriOf(std::string_view path);

} // namespace tool::check

#endif
