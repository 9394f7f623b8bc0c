#include "windows/walk/programs/TestLog.h"
#include "windows/clients/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TestLog LogOf(std::string_view text)
{
    const TemporaryFolder folder;
    return TestLog(folder.Write("log", std::vector<uint8_t>(text.begin(), text.end())));
}

TEST(TestLog, KnowsThatAllTestsHavePassed)
{
    const TestLog log = LogOf("[ RUN      ] Files.Open\r\n"
                              "[       OK ] Files.Open (3 ms)\r\n"
                              "[ RUN      ] Files.Close\r\n"
                              "[  SKIPPED ] Files.Close (0 ms)\r\n"
                              "[  PASSED  ] 1 test.\r\n"
                              "[  SKIPPED ] 1 test, listed below:\r\n"
                              "[  SKIPPED ] Files.Close\r\n");
    EXPECT_EQ(log.passed, "1 test.");
    EXPECT_THAT(log.failed, IsEmpty());
    EXPECT_THAT(log.skipped, ElementsAre("Files.Close"));
}

TEST(TestLog, NamesTheTestsThatFailed)
{
    const TestLog log = LogOf("[  FAILED  ] Of/Files.Open/0, where GetParam() = 1 (3 ms)\n"
                              "[  PASSED  ] 7 tests.\n"
                              "[  FAILED  ] 1 test, listed below:\n"
                              "[  FAILED  ] Of/Files.Open/0, where GetParam() = 1\n");
    EXPECT_THAT(log.failed, ElementsAre("Of/Files.Open/0, where GetParam() = 1"));
}

TEST(TestLog, OfAProgramThatCrashedHasNoEnd)
{
    EXPECT_EQ(LogOf("[ RUN      ] Files.Open\n").passed, "");
}

} // namespace
