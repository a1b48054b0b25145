// Files that are no files, that end early, that change while they are loaded, and that hardly end at all.

#include "message/loading.h"
#include "support/fault_loop.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

class FileFaults : public MessageTest
{
};

int loadPath(std::string path)
{
    MessageTable *table = nullptr;
    const int result = KTLoadMessages(path.data(), &table);
    return result == 0 ? KTFreeMessages(table) : result;
}

int versionOf(std::string path)
{
    std::array<char, 20> version{};
    return KTGetMsgFileVer(path.data(), version.data());
}

/** A name in the file system that is gone at the end. */
class TemporaryPath
{
public:
    TemporaryPath() : m_path(testing::TempDir() + "kelto-file-" + std::to_string(getpid())) { remove(); }
    ~TemporaryPath() { remove(); }
    TemporaryPath(const TemporaryPath &) = delete;
    TemporaryPath &operator=(const TemporaryPath &) = delete;

    const std::string &text() const { return m_path; }
    char *data() { return m_path.data(); }
    void write(const std::string &bytes) const { std::ofstream(m_path, std::ios::binary) << bytes; }

private:
    void remove() const { std::remove(m_path.c_str()); }

    std::string m_path;
};

TEST_F(FileFaults, WhatIsNoRegularFileIsRefusedAtOnce)
{
    const auto expectRefused = [](const std::string &path) {
        EXPECT_EQ(loadPath(path), KT_ERR_FILE_NOT_OPENED) << path;
        EXPECT_EQ(versionOf(path), KT_ERR_FILE_NOT_OPENED) << path;
    };
    for (const char *path : {"/", "/dev/null", "/dev/zero", "/dev/tty", "/dev/full"})
        expectRefused(path);
    {
        const TemporaryPath fifo; // to which nobody writes
        ASSERT_EQ(mkfifo(fifo.text().c_str(), 0600), 0);
        expectRefused(fifo.text());
    }
    const TemporaryPath path;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.text().copy(address.sun_path, sizeof address.sun_path - 1);
    const int socketFile = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(socketFile, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    expectRefused(path.text());
    close(socketFile);
}

const std::string threeChunks = MessageFile().unit(1, std::string(500, 'a')).unit(2, "b").xml(900);

// Each pass has four reads: three chunks, and one that finds no more bytes.
TEST_F(FileFaults, AShortReadEndsTheDocument)
{
    for (const unsigned read : {1, 2, 3, 5, 6, 7})
        for (const unsigned long bytes : {0UL, 1UL, 150UL, 299UL})
        {
            FakeZel::file(memoryPath, threeChunks).shortReads[read] = bytes;
            const bool hasEverything = read % 4 == 3 && bytes == 299; // but the line break at the end
            EXPECT_EQ(loadFile().result, hasEverything ? 0 : KT_ERR_BAD_MSG_FILE) << "read " << read << ": " << bytes;
        }
}

TEST_F(FileFaults, AReadErrorIsPassedOnFromEveryChunk)
{
    for (int read = 1; read <= 8; ++read)
    {
        FakeZel::file(memoryPath, threeChunks).readErrors[static_cast<unsigned>(read)] = -1000 - read;
        EXPECT_EQ(loadFile().result, -1000 - read);
    }
}

// Where the file changes, the second pass finds something else than the first has measured.
TEST_F(FileFaults, AFileMayChangeBetweenThePasses)
{
    const std::string before = MessageFile().unit(1, "message").xml();
    struct Row
    {
        const char *label;
        std::function<void(const TemporaryPath &)> change;
        int result;
    };
    for (const Row &row : {
             Row{"truncated", [](const TemporaryPath &path) { EXPECT_EQ(truncate(path.text().c_str(), 100), 0); },
                 KT_ERR_BAD_MSG_FILE},
             Row{"emptied", [](const TemporaryPath &path) { path.write(""); }, KT_ERR_BAD_MSG_FILE},
             Row{"longer message",
                 [](const TemporaryPath &path) { path.write(MessageFile().unit(1, "messages").xml()); },
                 KT_ERR_BAD_MSG_FILE},
             Row{"one message more",
                 [](const TemporaryPath &path) { path.write(MessageFile().unit(1, "message").unit(2, "").xml()); },
                 KT_ERR_BAD_MSG_FILE},
             Row{"blanks at the end", [&](const TemporaryPath &path) { path.write(before + std::string(1000, ' ')); },
                 0},
             Row{"other text of the same length",
                 [](const TemporaryPath &path) { path.write(MessageFile().unit(1, "MESSAGE").xml()); }, 0},
             Row{"removed", [](const TemporaryPath &path) { EXPECT_EQ(unlink(path.text().c_str()), 0); }, 0},
         })
    {
        SCOPED_TRACE(row.label);
        const TemporaryPath path;
        path.write(before);
        int parsers = 0;
        FakeZel::observe([&](const Call &call) {
            if (call.operation == Operation::ParserCreate && ++parsers == 2)
                row.change(path);
        });
        EXPECT_EQ(loadPath(path.text()), row.result);
        EXPECT_EQ(parsers, 2);
    }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

long peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(FileFaults, BlanksWithoutEndTakeNoMemory)
{
    // The first passes over 4 GiB once, which is more than a message may have; the others are as long as patience allows.
    constexpr uint64_t fourGiB = uint64_t{1} << 32, patience = uint64_t{1} << 27;
    const std::string xml = MessageFile().unit(1, "message").xml();
    const long before = peakKilobytes();
    for (const auto &[place, count, passes, result] : {std::tuple{"</source>", fourGiB, 1, int{KT_ERR_NO_MEMORY}},
                                                       {"</body>", patience, 2, 0},
                                                       {"</xliff>", patience, 2, 0}})
    {
        SCOPED_TRACE(place);
        FakeFile &file = FakeZel::file(memoryPath, xml);
        file.blanksAt = xml.find(place);
        file.blanks = count;
        uint64_t reads = 0;
        FakeZel::observe([&](const Call &call) { reads += call.operation == Operation::FileRead ? 1 : 0; });
        EXPECT_EQ(loadPath(memoryPath), result);
        EXPECT_EQ(reads, static_cast<unsigned>(passes) * ((xml.size() + count) / 300 + 1));
    }
    EXPECT_LT(peakKilobytes() - before, 10 * 1024);
}

#endif

} // namespace
