/**
 * The built program as a test subject: runs it with words, bytes for its standard input and a locale, and gives back its
 * exit status and what it wrote. Files named without a folder are those of the test's own folder, see write().
 */
#ifndef KELTO_TESTS_TOOLS_PROGRAM_H
#define KELTO_TESTS_TOOLS_PROGRAM_H

#include <string>
#include <vector>

struct Outcome
{
    int status; // -1 when it did not exit by itself
    std::string out;
    std::string err;
};

struct Setting
{
    std::string input = {};
    std::string locale = "C.UTF-8";
    std::string outputTo = {}; // a shell redirection of standard output, as ">/dev/full"
};

Outcome runKelto(const std::vector<std::string> &words, const Setting &setting = {});

/** Writes a file into the folder in which the program runs. */
void write(const std::string &name, const std::string &bytes);

/** Makes a pipe that programs open by its name, in the same folder. */
void makePipe(const std::string &name);

/** A message file with the given sources, which are XML, numbered from 1; an empty one leaves its number out. */
std::string messageFile(const std::vector<std::string> &sources);

#endif
