#include "check/inputs.h"

#include "io/input.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

namespace tool::check
{
namespace
{

namespace fs = std::filesystem;

bool isFolder(const std::string &path)
{
    std::error_code error;
    return path != "-" && fs::is_directory(path, error);
}

/** The message files below a folder, by their paths from there, in order. */
std::vector<std::string> filesBelow(const std::string &folder)
{
    std::vector<std::string> files;
    std::error_code error;
    for (auto entry = fs::recursive_directory_iterator(folder, error);
         !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
    {
        const std::string extension = entry->path().extension().string();
        std::error_code ignored;
        if ((extension == ".xlf" || extension == ".xliff") && entry->is_regular_file(ignored))
            files.push_back(entry->path().lexically_relative(folder).string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string joined(const std::string &folder, const std::string &path)
{
    return folder.empty() || folder.back() == '/' ? folder + path : folder + '/' + path;
}

/** Pairs files with those of a folder. */
class Pairing
{
public:
    Pairing(std::string folder, Inputs &inputs) : m_folder(std::move(folder)), m_inputs(inputs)
    {
        for (const std::string &path : filesBelow(m_folder))
        {
            m_places.emplace(path, m_inputs.references.size());
            m_inputs.references.push_back(joined(m_folder, path));
        }
    }

    void addFile(const std::string &path) { m_inputs.files.push_back({path, pairOf(path).reference}); }

    void addFolder(const std::string &folder)
    {
        std::map<std::string, std::set<size_t>> found; // by the folder that stands for that of the reference
        for (const std::string &path : filesBelow(folder))
        {
            const std::string whole = joined(folder, path);
            if (std::any_of(m_inputs.references.begin(), m_inputs.references.end(),
                            [&whole](const std::string &other) { return isSameFile(whole, other); }))
                continue;
            const Pair pair = pairOf(path);
            m_inputs.files.push_back({whole, pair.reference});
            if (pair.reference != Input::none)
                found[joined(folder, path.substr(0, path.size() - pair.shared))].insert(pair.reference);
        }
        for (const auto &[root, references] : found)
            for (const auto &[path, place] : m_places)
                if (references.count(place) == 0)
                    m_inputs.missing.push_back({joined(root, path), place});
    }

private:
    struct Pair
    {
        size_t reference;
        size_t shared; // the bytes at the end of the path that both have
    };

    /** With the one that has the longest end of the path. */
    Pair pairOf(const std::string &path) const
    {
        for (size_t begin = 0; begin < path.size();)
        {
            if (const auto place = m_places.find(path.substr(begin)); place != m_places.end())
                return {place->second, path.size() - begin};
            const size_t slash = path.find('/', begin);
            begin = slash == std::string::npos ? path.size() : slash + 1;
        }
        return {Input::none, 0};
    }

    std::string m_folder;
    Inputs &m_inputs;
    std::map<std::string, size_t> m_places; // by their paths in the folder
};

} // namespace

Inputs collectInputs(const std::vector<std::string> &operands, const std::string &reference)
{
    Inputs inputs;
    if (!reference.empty() && isFolder(reference))
    {
        Pairing pairing(reference, inputs);
        for (const std::string &operand : operands)
            isFolder(operand) ? pairing.addFolder(operand) : pairing.addFile(operand);
        return inputs;
    }
    const bool hasReference = !reference.empty();
    if (hasReference)
        inputs.references.push_back(reference);
    const auto add = [&](const std::string &path) {
        if (hasReference && isSameFile(path, reference))
            inputs.isReferenceChecked = true;
        else
            inputs.files.push_back({path, hasReference ? 0 : Input::none});
    };
    for (const std::string &operand : operands)
    {
        const std::vector<std::string> below = isFolder(operand) ? filesBelow(operand) : std::vector<std::string>();
        for (const std::string &path : below)
            add(joined(operand, path));
        if (below.empty()) // a folder without message files cannot be checked
            add(operand);
    }
    return inputs;
}

} // namespace tool::check
