#include "message/file_version.h"

#include "message/loading.h"

namespace
{

class FileVersionTest : public MessageTest
{
};

using Answer = std::pair<int, std::string>; // result and version

Answer query(const std::string &xml)
{
    FakeZel::file(memoryPath, xml);
    const std::unique_ptr<char[]> version(new char[20]); // exactly the room that is asked for
    version[0] = '?';
    const int result = KTGetMsgFileVer(memoryPath, version.get());
    return {result, version.get()};
}

std::string withVersion(const std::string &version)
{
    return MessageFile().attribute("product-version", version).xml();
}

const Answer noVersion = {KT_ERR_BAD_MSG_FILE, ""};

TEST_F(FileVersionTest, GivesTheVersionOfTheFirstFileElement)
{
    struct Row
    {
        const char *label;
        std::string xml;
        Answer answer;
    };
    const std::string longest(19, '9');
    const std::string fileTag = "<file product-version=\"7\">";
    const std::string padding(300, ' ');
    const Row rows[] = {
        {"an ordinary file", withVersion("1.0"), {0, "1.0"}},
        {"19 bytes", withVersion(longest), {0, longest}},
        {"20 bytes", withVersion(longest + "9"), noVersion},
        {"empty", withVersion(""), noVersion},
        {"none", MessageFile().without("product-version").xml(), noVersion},
        {"no such element", "<xliff/>", noVersion},
        {"an empty file", "", noVersion},
        {"a file that cannot be loaded", "<a><file product-version='7'/></a>", {0, "7"}},
        {"the document element", "<file product-version='7'/>", {0, "7"}},
        {"only the first counts", "<a><file/><file product-version='7'/></a>", noVersion},
        {"the second is not read", "<a><file product-version='1'/><file product-version='7'/></a>", {0, "1"}},
        {"malformed before", "<a></b>" + fileTag, noVersion},
        {"malformed in the same chunk", "<a>" + fileTag + "</b>", noVersion},
        {"malformed in the next chunk", "<a>" + fileTag + padding + "</b>", {0, "7"}},
        {"cut off behind the chunk", "<a>" + fileTag + padding, {0, "7"}},
        {"in a later chunk", "<a>" + padding + padding + fileTag + padding + "</b>", {0, "7"}},
    };
    for (const Row &row : rows)
        EXPECT_EQ(query(row.xml), row.answer) << row.label;
}

TEST_F(FileVersionTest, ReadsNoFurtherThanTheChunkOfTheElement)
{
    FakeZel::record();
    EXPECT_EQ(query("<a>" + std::string(500, ' ') + "<file product-version='7'>" + std::string(5000, ' ')),
              (Answer{0, "7"}));
    EXPECT_EQ(FakeZel::count(Operation::FileRead), 2u);
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 0u);
}

} // namespace
