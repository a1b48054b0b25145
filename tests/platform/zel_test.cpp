#include "platform/zel.h"

#include "platform/scoped.h"

#include <cerrno>
#include <cstddef>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

thread_local std::function<void()> afterStatus; // done once, when the status of a file has been asked for

} // namespace

extern "C" int stat(const char *path, struct stat *status) noexcept
{
    static auto *const real = reinterpret_cast<decltype(&stat)>(dlsym(RTLD_NEXT, "stat"));
    const int result = real(path, status);
    if (const auto act = std::exchange(afterStatus, nullptr))
        act();
    return result;
}

/** Every third call is interrupted, another one gives about half of the bytes. */
extern "C" ssize_t pread(int descriptor, void *buffer, size_t bytes, off_t offset)
{
    static auto *const real = reinterpret_cast<decltype(&pread)>(dlsym(RTLD_NEXT, "pread"));
    thread_local unsigned calls = 0;
    errno = EINTR;
    return ++calls % 3 == 0 ? -1 : real(descriptor, buffer, calls % 3 == 1 ? bytes / 2 + 1 : bytes, offset);
}

namespace
{

namespace fs = std::filesystem;

/** Gives each test a folder of its own. */
class Files : public testing::Test
{
protected:
    Files()
    {
        std::string pattern = testing::TempDir() + "kelto-XXXXXX";
        m_folder = mkdtemp(pattern.data());
    }
    ~Files() override { fs::remove_all(m_folder); }

    std::string path(const std::string &name) const { return (m_folder / name).string(); }

    std::string write(const std::string &name, const std::string &bytes) const
    {
        std::ofstream(path(name), std::ios::binary | std::ios::app) << bytes;
        return path(name);
    }

    fs::path m_folder;
};

int lowestFreeDescriptor()
{
    const int descriptor = dup(STDERR_FILENO);
    close(descriptor);
    return descriptor;
}

int openCode(const std::string &path)
{
    const int before = lowestFreeDescriptor();
    void *handle = &handle;
    const int code = ZEL_FileOpen(path.c_str(), 1, 0, 0, &handle);
    EXPECT_EQ(handle != nullptr, code == 0);
    EXPECT_EQ(lowestFreeDescriptor() > before, code == 0);
    EXPECT_EQ(code == 0 ? ZEL_FileClose(&handle) : 0, 0);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(lowestFreeDescriptor(), before);
    return code;
}

/** Reads at a position, and checks the result against what the file is known to hold. */
void expectRead(kelto::File &file, uint64_t offset, unsigned long length, const std::string &content)
{
    SCOPED_TRACE(std::to_string(length) + " bytes at " + std::to_string(offset));
    const uint64_t end = std::min<uint64_t>(offset + length, content.size());
    std::vector<char> buffer(length);
    uint64_t position = offset;
    const int code = file.read(&position, buffer.data(), &length);
    EXPECT_EQ(code, offset < content.size() ? 0 : ZEL_ERR_END_OF_FILE);
    ASSERT_EQ(position, code == 0 ? end : offset);
    EXPECT_TRUE(code != 0 || std::string(buffer.data(), length) == content.substr(offset, end - offset));
}

TEST_F(Files, OpeningTellsWhatIsMissingFromWhatCannotBeRead)
{
    const std::string regular = write("regular", "text");
    fs::create_symlink(regular, path("link"));
    fs::create_symlink(path("nowhere"), path("dangling"));
    fs::create_symlink(path("loop"), path("loop"));
    fs::create_directory(path("directory"));
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    sockaddr_un address{AF_UNIX, {}};
    path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    const int socketFile = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(socketFile, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    const struct
    {
        const char *label;
        std::string path;
        int code;
    } rows[] = {
        {"a regular file", regular, 0},
        {"a link to one", path("link"), 0},
        {"no such file", path("nowhere"), ZEL_ERR_FILE_MISSING},
        {"no such folder", path("nowhere/file"), ZEL_ERR_FILE_MISSING},
        {"a file where a folder should be", regular + "/file", ZEL_ERR_FILE_MISSING},
        {"a link to nothing", path("dangling"), ZEL_ERR_FILE_MISSING},
        {"an empty path", "", ZEL_ERR_FILE_MISSING},
        {"a directory", path("directory"), ZEL_ERR_FILE_ACCESS},
        {"a FIFO, at once", path("fifo"), ZEL_ERR_FILE_ACCESS},
        {"a socket", path("socket"), ZEL_ERR_FILE_ACCESS},
        {"a device", "/dev/null", ZEL_ERR_FILE_ACCESS},
        {"a link to itself", path("loop"), ZEL_ERR_FILE_ACCESS},
        {"a name longer than any", path(std::string(300, 'n')), ZEL_ERR_FILE_ACCESS},
    };
    for (const auto &row : rows)
        EXPECT_EQ(openCode(row.path), row.code) << row.label;
    close(socketFile);
    afterStatus = [&] { fs::rename(path("fifo"), regular); };
    EXPECT_EQ(openCode(regular), ZEL_ERR_FILE_ACCESS) << "what the name means by then is no regular file";
    // A program that brings a platform of its own gives these.
    constexpr int codes[] = {ZEL_ERR_FILE_MISSING, ZEL_ERR_FILE_ACCESS, ZEL_ERR_READ, ZEL_ERR_END_OF_FILE,
                             ZEL_ERR_NO_MEMORY};
    EXPECT_THAT(codes, testing::ElementsAre(-5991, -5993, -5994, -5995, -7999));
}

TEST_F(Files, OpeningIsRefusedWithoutPermissionAndWithoutADescriptorLeft)
{
    const std::string file = write("secret", "text");
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none = {0, limit.rlim_max};
    void *handle = nullptr;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(ZEL_FileOpen(file.c_str(), 1, 0, 0, &handle), ZEL_ERR_FILE_ACCESS);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);

    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    const bool isRoot = geteuid() == 0;
    if (isRoot && seteuid(65534) != 0)
        GTEST_SKIP() << "root may read everything, and cannot become anybody else here";
    const int code = openCode(file);
    ASSERT_EQ(isRoot ? seteuid(0) : 0, 0);
    EXPECT_EQ(code, ZEL_ERR_FILE_ACCESS);
}

TEST_F(Files, ReadsAnythingAnywhereInAnyOrder)
{
    std::mt19937 random(20060517);
    constexpr size_t border = 32 * 1024; // of what is read ahead
    for (const size_t size : {size_t{0}, size_t{1}, size_t{300}, border - 1, border, border + 1, 3 * border + 77})
    {
        std::string bytes;
        for (size_t n = 0; bytes.size() < size; ++n) // no two stretches are alike
            bytes += std::to_string(n) + ' ';
        bytes.resize(size);
        const std::string name = write("file" + std::to_string(size), bytes);
        kelto::File one, other; // handles that do not disturb each other
        ASSERT_EQ(one.open(name.c_str()) + other.open(name.c_str()), 0);
        for (const unsigned long piece : {300UL, 7777UL, 100000UL, 200000UL})
            for (uint64_t offset = 0; offset < size + piece; offset += piece)
                expectRead(one, offset, piece, bytes);
        for (int round = 0; round < 300; ++round)
            expectRead(round % 3 == 0 ? other : one, random() % (size + 10),
                       1 + random() % (round % 7 == 0 ? 70000 : 300), bytes);
        expectRead(one, uint64_t{1} << 40, 300, bytes);
    }
    kelto::File unreadable; // at its beginning
    ASSERT_EQ(unreadable.open("/proc/self/mem"), 0);
    for (const unsigned long length : {300UL, 200000UL, 0UL})
    {
        std::vector<char> buffer(length);
        uint64_t offset = 0;
        unsigned long left = length;
        EXPECT_EQ(unreadable.read(&offset, buffer.data(), &left), length > 0 ? ZEL_ERR_READ : 0) << length;
        EXPECT_TRUE(offset == 0 && left == length);
    }
}

TEST_F(Files, WhatIsAppendedOrChangedIsReadNextTime)
{
    kelto::File file;
    const std::string name = write("file", "one");
    ASSERT_EQ(file.open(name.c_str()), 0);
    expectRead(file, 0, 300, "one");
    expectRead(file, 3, 300, "one");
    write("file", "two");
    expectRead(file, 3, 300, "onetwo");
    std::ofstream(name, std::ios::trunc) << "now";
    expectRead(file, 0, 300, "now");
}

TEST(Memory, ComesAlignedAndIsRefusedWithNull)
{
    void *tag = nullptr;
    ASSERT_EQ(ZEL_AllocMemTag(0, &tag), 0);
    EXPECT_NE(tag, nullptr);
    for (const unsigned long size : {1UL, 24UL, 100000UL})
    {
        void *const block = ZEL_malloc(tag, size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t), 0u);
        EXPECT_EQ(ZEL_free(std::memset(block, 1, size)), 0);
    }
    EXPECT_EQ(ZEL_free(nullptr), 0);
    EXPECT_EQ(ZEL_malloc(tag, SIZE_MAX / 2), nullptr);
    EXPECT_EQ(kelto::allocate<uint64_t>(tag, SIZE_MAX / 8 + 1), nullptr) << "a product that wraps";
    EXPECT_EQ(ZEL_FreeMemTag(&tag) + ZEL_Cleanup(0), 0);
    EXPECT_EQ(tag, nullptr);
}

/** Adds to one plain number from several threads, each time inside the lock. */
template <typename Enter, typename Leave> void expectExclusion(Enter enter, Leave leave)
{
    int number = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < 1000; ++n)
            {
                EXPECT_EQ(enter(), 0);
                ++number;
                EXPECT_EQ(leave(), 0);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(number, 4000);
}

TEST(Locks, Exclude)
{
    void *mutex = nullptr;
    ASSERT_EQ(ZEL_LMutexCreate(&mutex, 1000), 0);
    expectExclusion([&] { return ZEL_LMutexAcquire(mutex); }, [&] { return ZEL_LMutexRelease(mutex); });
    EXPECT_EQ(ZEL_LMutexDestroy(&mutex), 0);
    EXPECT_EQ(mutex, nullptr);

    static void *spinLock; // starts as zero
    expectExclusion([] { return ZEL_EnterSpinLock(&spinLock); }, [] { return ZEL_LeaveSpinLock(&spinLock); });
    EXPECT_EQ(spinLock, nullptr);
}

} // namespace
