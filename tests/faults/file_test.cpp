// Files that end early, and files that hardly end at all.

#include "message/loading.h"

#include <sys/resource.h>

namespace
{

class FileFaults : public MessageTest
{
};

// Each pass has four reads: three chunks, and one that finds no more bytes.
TEST_F(FileFaults, AShortReadEndsTheDocument)
{
    const std::string threeChunks = MessageFile().unit(1, std::string(500, 'a')).unit(2, "b").xml(900);
    for (const unsigned read : {1, 2, 3, 5, 6, 7})
        for (const unsigned long bytes : {0UL, 1UL, 150UL, 299UL})
        {
            FakeZel::file(memoryPath, threeChunks).shortReads[read] = bytes;
            const bool hasEverything = read % 4 == 3 && bytes == 299; // but the line break at the end
            EXPECT_EQ(loadFile().result, hasEverything ? 0 : KT_ERR_BAD_MSG_FILE) << "read " << read << ": " << bytes;
        }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST_F(FileFaults, BlanksWithoutEndTakeNoMemory)
{
    const auto peakKilobytes = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    // The first passes over 2 GiB once, which is more than a message may have; the other is as long as patience allows.
    constexpr uint64_t twoGiB = uint64_t{1} << 31, patience = uint64_t{1} << 27;
    const std::string xml = MessageFile().unit(1, "message").xml();
    const long before = peakKilobytes();
    for (const auto &[place, count, result] :
         {std::tuple{"</source>", twoGiB, int{KT_ERR_NO_MEMORY}}, {"</body>", patience, 0}})
    {
        FakeFile &file = FakeZel::file(memoryPath, xml);
        file.blanksAt = xml.find(place);
        file.blanks = count;
        MessageTable *table = nullptr;
        EXPECT_EQ(KTLoadMessages(memoryPath, &table), result) << place;
        EXPECT_EQ(KTFreeMessages(table), result == 0 ? 0 : KT_ERR_TABLE_NOT_FOUND);
    }
    EXPECT_LT(peakKilobytes() - before, 10 * 1024);
}

#endif

} // namespace
