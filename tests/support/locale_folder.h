/**
 * Locales that a bare machine does not have, built by localedef in a folder of their own and removed with it. LOCPATH
 * names the folder while the object lives.
 */
#ifndef KELTO_TESTS_SUPPORT_LOCALE_FOLDER_H
#define KELTO_TESTS_SUPPORT_LOCALE_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

class LocaleFolder
{
public:
    LocaleFolder() : m_path(std::filesystem::temp_directory_path() / ("kelto" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(m_path);
        setenv("LOCPATH", m_path.c_str(), 1);
    }
    ~LocaleFolder()
    {
        unsetenv("LOCPATH");
        std::filesystem::remove_all(m_path);
    }
    LocaleFolder(const LocaleFolder &) = delete;
    LocaleFolder &operator=(const LocaleFolder &) = delete;

    /** Builds a locale, as build("ja_JP.eucJP", "ja_JP", "EUC-JP"); false where localedef or its source is missing. */
    bool build(const std::string &name, const std::string &source, const std::string &charMap) const
    {
        const std::string command = "localedef --no-archive -i " + source + " -f " + charMap + " '" +
                                    (m_path / name).string() + "' >/dev/null 2>&1";
        return std::system(command.c_str()) == 0;
    }

    const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

#endif
