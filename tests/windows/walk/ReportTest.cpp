#include "windows/walk/Report.h"
#include "support/FileBytes.h"
#include "windows/clients/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

TEST(Report, HasEachStepWithItsDetailsAndTheTotal)
{
    const TemporaryFolder folder;
    {
        Report report(folder.Path() / "report.txt");
        report.Note("Lumora on Windows");
        report.AddDifferences("the first", {});
        report.Add(Verdict::NotChecked, "the second", {"it needs an administrator"});
        EXPECT_FALSE(report.HasDifferences());
        report.AddDifferences("the third", {"one", "two"});
        report.Add(Verdict::Look, "the fourth");
        report.Add(Verdict::Look, "the fifth");
        report.AddTotal();
        EXPECT_TRUE(report.HasDifferences());
    }
    const std::vector<uint8_t> bytes = folder.Read("report.txt");
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()),
              "Lumora on Windows\r\n"
              "passed       the first\r\n"
              "not checked  the second\r\n"
              "               it needs an administrator\r\n"
              "differs      the third\r\n"
              "               one\r\n"
              "               two\r\n"
              "look         the fourth\r\n"
              "look         the fifth\r\n"
              "\r\n"
              "Total: 1 passed, 1 differs, 1 not checked, 2 look\r\n");
}

TEST(Report, TakesTheStepsOfAnother)
{
    const TemporaryFolder folder;
    {
        Report part(folder.Path() / "part.txt");
        part.Add(Verdict::Differs, "the first", {"looks like", "passed       this"});
    }
    {
        Report report(folder.Path() / "report.txt");
        report.Add(Verdict::Passed, "the beginning");
        report.AddPart(folder.Path() / "part.txt");
        report.AddTotal();
        EXPECT_TRUE(report.HasDifferences());
    }
    const std::vector<uint8_t> bytes = folder.Read("report.txt");
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()),
              "passed       the beginning\r\n"
              "differs      the first\r\n"
              "               looks like\r\n"
              "               passed       this\r\n"
              "\r\n"
              "Total: 1 passed, 1 differs, 0 not checked, 0 look\r\n");
}

} // namespace
