/**
 * A file of the user's that is whole or stays what it was. It is written beside its place and put there when it is
 * complete, so that a full disk costs nothing and nobody sees half of it. It keeps its mode and its owner, and a link
 * to it stays a link. A device, a pipe and what /dev/stdout leads to are written straight; so is a file in a folder
 * where no other can be made, and one whose owner could not be kept.
 */
#ifndef KELTO_TOOLS_OUTPUT_FILE_H
#define KELTO_TOOLS_OUTPUT_FILE_H

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tool
{

/** Every failure is an OutputFailure that names the file. */
class OutputFile
{
public:
    explicit OutputFile(const std::string &path);
    /** Removes a file that was not finished. */
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    void write(std::string_view bytes);

    /** Puts the file into its place. */
    void finish();

private:
    struct Close
    {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };

    bool openBeside();
    void take(int descriptor);
    [[noreturn]] void fail() const;

    std::string m_name;   // as the user gave it
    std::string m_place;  // where the links in it lead
    std::string m_beside; // empty where it is written straight
    std::unique_ptr<std::FILE, Close> m_file;
};

} // namespace tool

#endif
