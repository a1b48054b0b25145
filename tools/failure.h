/**
 * Why something could not be done, on its way to main(), which prints it and ends with ExitStatus::failed. The text is
 * UTF-8; what it quotes of files and arguments went through the Terminal.
 */
#ifndef KELTO_TOOLS_FAILURE_H
#define KELTO_TOOLS_FAILURE_H

#include <exception>
#include <string>

namespace tool
{

class Failure : public std::exception
{
public:
    explicit Failure(std::string text) : m_text(std::move(text)) {}
    /** The library's result for work on a subject: a file, a charset. */
    Failure(const std::string &subject, int result);

    const char *what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

/** Standard output takes no more, so that the work on every file ends. */
class OutputFailure : public Failure
{
public:
    using Failure::Failure;
};

/** A second line that says what to do next: "Try 'kelto --help'." */
std::string hint(const std::string &command);

/** The meaning of a result of the library, with its name: "there is no such file (KT_ERR_FILE_UNAVAILABLE)". */
std::string meaningOf(int result);

/** " (KT_ERR_FILE_UNAVAILABLE)"; for a result without a name its number. */
std::string nameOf(int result);

/**
 * What the operating system says of an errno value; in our words where it knows English only, as it does where no
 * locale of the user's language is installed.
 */
std::string systemText(int error);

/** Prints diagnostics, "kelto: …", behind what stands in standard output so far. */
void complain(const std::string &text);

} // namespace tool

#endif
