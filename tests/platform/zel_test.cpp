#include "platform/zel.h"

#include "platform/scoped.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

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

/** Bytes of which no two stretches are alike. */
std::string pattern(size_t size)
{
    std::string bytes;
    for (size_t n = 0; bytes.size() < size; ++n)
        bytes += std::to_string(n) + ' ';
    return bytes.substr(0, size);
}

int openCode(const std::string &path)
{
    void *handle = nullptr;
    const int code = ZEL_FileOpen(path.c_str(), 1, 0, 0, &handle);
    if (handle != nullptr)
        ZEL_FileClose(&handle);
    return code;
}

struct ReadResult
{
    int code;
    std::string bytes;
    uint64_t offset;
};

ReadResult readAt(kelto::File &file, uint64_t offset, unsigned long length)
{
    std::vector<char> buffer(length);
    const int code = file.read(&offset, buffer.data(), &length);
    return {code, code == 0 ? std::string(buffer.data(), length) : std::string(), offset};
}

/** Reads in pieces of this size until a read fails; that read's code, and the bytes before it. */
ReadResult readThrough(kelto::File &file, unsigned long piece)
{
    ReadResult all{0, "", 0};
    while (all.code == 0)
    {
        const ReadResult next = readAt(file, all.offset, piece);
        EXPECT_EQ(next.offset, all.offset + next.bytes.size());
        all = {next.code, all.bytes + next.bytes, next.offset};
    }
    return all;
}

} // namespace

TEST_F(Files, OpeningTellsWhatIsMissingFromWhatCannotBeRead)
{
    const std::string regular = write("regular", "text");
    fs::create_symlink(regular, path("link"));
    fs::create_symlink(path("nowhere"), path("dangling"));
    fs::create_symlink(path("loop"), path("loop"));
    fs::create_directory(path("directory"));
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
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
        {"a device", "/dev/null", ZEL_ERR_FILE_ACCESS},
        {"a link to itself", path("loop"), ZEL_ERR_FILE_ACCESS},
        {"a name longer than any", path(std::string(300, 'n')), ZEL_ERR_FILE_ACCESS},
    };
    for (const auto &row : rows)
        EXPECT_EQ(openCode(row.path), row.code) << row.label;
}

TEST_F(Files, OpeningIsRefusedWithoutPermission)
{
    const std::string file = write("secret", "text");
    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    const bool isRoot = geteuid() == 0;
    if (isRoot && seteuid(65534) != 0)
        GTEST_SKIP() << "root may read everything, and cannot become anybody else here";
    const int code = openCode(file);
    const int back = isRoot ? seteuid(0) : 0;
    EXPECT_EQ(code, ZEL_ERR_FILE_ACCESS);
    EXPECT_EQ(back, 0);
}

TEST_F(Files, OpeningIsRefusedWithoutADescriptorLeft)
{
    const std::string file = write("regular", "text");
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit none = limit;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const int code = openCode(file);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(code, ZEL_ERR_FILE_ACCESS);
    EXPECT_EQ(openCode(file), 0);
}

TEST_F(Files, ReadsTheSameInPiecesOfAnySize)
{
    constexpr size_t border = 32 * 1024; // of what is read ahead
    for (const size_t size : {size_t{0}, size_t{1}, size_t{299}, size_t{300}, size_t{301}, border - 1, border,
                              border + 1, 2 * border, 3 * border + 77})
    {
        const std::string bytes = pattern(size);
        const std::string name = write("file" + std::to_string(size), bytes);
        for (const unsigned long piece : {300UL, 7777UL, 32768UL, 100000UL, 200000UL})
        {
            SCOPED_TRACE(std::to_string(size) + " bytes in pieces of " + std::to_string(piece));
            kelto::File file;
            ASSERT_EQ(file.open(name.c_str()), 0);
            for (int pass = 1; pass <= 2; ++pass)
            {
                const ReadResult all = readThrough(file, piece);
                EXPECT_EQ(all.code, ZEL_ERR_END_OF_FILE);
                EXPECT_TRUE(all.bytes == bytes) << "pass " << pass;
            }
        }
    }
}

TEST_F(Files, APieceIsShortOnlyAtTheEndOfTheFile)
{
    const std::string bytes = pattern(40000);
    kelto::File file;
    ASSERT_EQ(file.open(write("file", bytes).c_str()), 0);
    for (uint64_t offset = 0; offset < bytes.size(); offset += 300)
        ASSERT_EQ(readAt(file, offset, 300).bytes.size(), std::min<size_t>(300, bytes.size() - offset)) << offset;
}

TEST_F(Files, ReadsAtAnyPosition)
{
    const std::string bytes = pattern(70000);
    kelto::File file;
    ASSERT_EQ(file.open(write("file", bytes).c_str()), 0);
    for (const uint64_t offset : {69990, 0, 300, 0, 32767, 32768, 100, 65536, 32700, 69999})
    {
        SCOPED_TRACE(offset);
        const ReadResult piece = readAt(file, offset, 300);
        EXPECT_EQ(piece.code, 0);
        EXPECT_EQ(piece.bytes, bytes.substr(offset, 300));
        EXPECT_EQ(piece.offset, offset + piece.bytes.size());
    }
    for (const uint64_t offset : {uint64_t{70000}, uint64_t{70001}, uint64_t{1} << 40})
    {
        SCOPED_TRACE(offset);
        const ReadResult piece = readAt(file, offset, 300);
        EXPECT_EQ(piece.code, ZEL_ERR_END_OF_FILE);
        EXPECT_EQ(piece.offset, offset);
    }
}

TEST_F(Files, WhatIsAppendedBehindTheEndIsReadNext)
{
    kelto::File file;
    ASSERT_EQ(file.open(write("file", "one").c_str()), 0);
    const ReadResult first = readThrough(file, 300);
    EXPECT_EQ(first.bytes, "one");
    write("file", "two");
    EXPECT_EQ(readAt(file, first.offset, 300).bytes, "two");
    EXPECT_EQ(readAt(file, 0, 300).bytes, "onetwo");
}

TEST_F(Files, GoingBackReadsTheFileAnew)
{
    kelto::File file;
    ASSERT_EQ(file.open(write("file", "before").c_str()), 0);
    EXPECT_EQ(readAt(file, 0, 300).bytes, "before");
    std::ofstream(path("file"), std::ios::trunc) << "now";
    EXPECT_EQ(readAt(file, 0, 300).bytes, "now");
}

TEST_F(Files, TwoHandlesOfOneFileAreApart)
{
    const std::string name = write("file", pattern(1000));
    kelto::File one, other;
    ASSERT_EQ(one.open(name.c_str()), 0);
    ASSERT_EQ(other.open(name.c_str()), 0);
    EXPECT_EQ(readAt(one, 0, 300).bytes, readAt(other, 0, 300).bytes);
    EXPECT_EQ(readAt(one, 300, 300).bytes, pattern(1000).substr(300, 300));
    EXPECT_EQ(readAt(other, 900, 300).bytes, pattern(1000).substr(900));
}

TEST_F(Files, ClosingForgetsTheHandleAndFreesTheDescriptor)
{
    const auto lowestFreeDescriptor = [] {
        const int descriptor = dup(STDERR_FILENO);
        close(descriptor);
        return descriptor;
    };
    const std::string name = write("file", "text");
    const int before = lowestFreeDescriptor();
    void *handle = nullptr;
    ASSERT_EQ(ZEL_FileOpen(name.c_str(), 1, 0, 0, &handle), 0);
    EXPECT_GT(lowestFreeDescriptor(), before);
    EXPECT_EQ(ZEL_FileClose(&handle), 0);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(lowestFreeDescriptor(), before);

    for (const std::string &refused : {m_folder.string(), path("nowhere"), std::string("/dev/null")})
    {
        EXPECT_LT(openCode(refused), 0);
        EXPECT_EQ(lowestFreeDescriptor(), before) << refused;
    }
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
        std::memset(block, 1, size);
        EXPECT_EQ(ZEL_free(block), 0);
    }
    EXPECT_EQ(ZEL_free(nullptr), 0);
    EXPECT_EQ(ZEL_malloc(tag, std::numeric_limits<unsigned long>::max() / 2), nullptr);
    EXPECT_EQ(kelto::allocate<uint64_t>(tag, std::numeric_limits<size_t>::max() / 8 + 1), nullptr)
        << "a product that wraps";
    EXPECT_EQ(ZEL_FreeMemTag(&tag), 0);
    EXPECT_EQ(tag, nullptr);
}

namespace
{

/** Adds to one plain number from several threads, each time inside the lock. */
template <typename Enter, typename Leave> int countInThreads(Enter enter, Leave leave)
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
    return number;
}

} // namespace

TEST(Locks, AMutexExcludes)
{
    void *mutex = nullptr;
    ASSERT_EQ(ZEL_LMutexCreate(&mutex, 1000), 0);
    EXPECT_EQ(countInThreads([&] { return ZEL_LMutexAcquire(mutex); }, [&] { return ZEL_LMutexRelease(mutex); }), 4000);
    EXPECT_EQ(ZEL_LMutexDestroy(&mutex), 0);
    EXPECT_EQ(mutex, nullptr);
}

TEST(Locks, ASpinLockExcludesAndStartsAsZero)
{
    static void *lock;
    EXPECT_EQ(countInThreads([] { return ZEL_EnterSpinLock(&lock); }, [] { return ZEL_LeaveSpinLock(&lock); }), 4000);
    EXPECT_EQ(lock, nullptr);
}

TEST(StartUp, AcceptsAnyHandle)
{
    for (const long handle : {0L, 1L, -1L})
    {
        EXPECT_EQ(ZEL_Startup(handle, 0), 0);
        EXPECT_EQ(ZEL_Cleanup(handle), 0);
    }
}
