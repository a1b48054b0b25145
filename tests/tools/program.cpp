#include "program.h"

#include "support/message_file_builder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/** A folder that lives as long as the test program. */
class Folder
{
public:
    Folder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "kelto-XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~Folder() { std::filesystem::remove_all(m_path); }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    std::filesystem::path operator/(const std::string &name) const { return m_path / name; }
    std::string path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

const Folder &folder()
{
    static const Folder theFolder;
    return theFolder;
}

std::string read(const std::string &name)
{
    std::ifstream file(folder() / name, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string shellQuoted(const std::string &word)
{
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

} // namespace

Outcome runKelto(const std::vector<std::string> &words, const Setting &setting)
{
    write(".in", setting.input);
    std::string command = "cd " + shellQuoted(folder().path()) + " && LC_ALL=" + setting.locale + " " KELTO_PROGRAM;
    for (const std::string &word : words)
        command += " " + shellQuoted(word);
    command += " <.in 2>.err >.out " + setting.outputTo;
    const int status = std::system(command.c_str()); // NOLINT(cert-env33-c): redirection is what a shell is for
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read(".out"), read(".err")};
}

void write(const std::string &name, const std::string &bytes)
{
    std::ofstream(folder() / name, std::ios::binary) << bytes;
}

void makePipe(const std::string &name)
{
    mkfifo((folder() / name).c_str(), S_IRUSR | S_IWUSR);
}

std::string messageFile(const std::vector<std::string> &sources)
{
    MessageFile file;
    for (size_t i = 0; i < sources.size(); ++i)
        if (!sources[i].empty())
            file.unit(static_cast<long>(i) + 1, sources[i]);
    return file.xml();
}
