// Prints rows of a table, each formatted by message 6 of a message file, which fixes the columns and their order:
//     report [FILE]
//
// Shows how the C interface sits in C++: handles that release themselves, and a text that grows to the size that a call
// reports.
#include <kelto.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace
{

void require(int result)
{
    if (result != 0)
        throw std::runtime_error(KTResultText(result));
}

struct Library
{
    Library() { require(KTInit()); }
    ~Library() { KTClean(); }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
};

struct FreeMessages
{
    void operator()(MessageTable *table) const { KTFreeMessages(table); }
};
using Messages = std::unique_ptr<MessageTable, FreeMessages>;

Messages load(std::string path)
{
    MessageTable *table = nullptr;
    require(KTLoadMessages(path.data(), &table));
    return Messages(table);
}

/** The message with the arguments in the order of its positions. */
template <typename... Arguments> std::u16string format(const Messages &messages, unsigned id, Arguments... arguments)
{
    char *message = nullptr;
    require(KTGetMessage(messages.get(), id, &message));
    if (message == nullptr)
        throw std::runtime_error("the file has no message " + std::to_string(id));
    std::u16string text(20, u'\0');
    for (;;)
    {
        unsigned long size = text.size();
        const int result = KTFormatString(nullptr, false, &size, text.data(), message, arguments...);
        if (result != KT_ERR_BUFFER_TOO_SMALL)
            require(result);
        text.resize(result == 0 ? size : size + 1);
        if (result == 0)
            return text;
    }
}

std::string utf8(const std::u16string &text)
{
    std::string bytes(3 * text.size() + 1, '\0');
    size_t size = bytes.size();
    require(KTUCS2ToUTF8(text.c_str(), &size, bytes.data()));
    bytes.resize(size);
    return bytes;
}

struct Document
{
    const char *title; // UTF-8
    double megabytes;
    unsigned pages;
};

constexpr Document documents[] = {{"Zürich", 12.5, 240}, {"東京", 0.25, 8}};

} // namespace

int main(int argc, char **argv)
{
    try
    {
        const Library library;
        const Messages messages = load(argc > 1 ? argv[1] : "messages/en.xlf");
        for (const Document &document : documents)
            std::cout << utf8(format(messages, 6, document.title, document.megabytes, document.pages)) << '\n';
        return 0;
    }
    catch (const std::exception &failure)
    {
        std::cerr << "report: " << failure.what() << '\n';
        return 1;
    }
}
