#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using std::chrono::hours;

/// A file with three frames, and, where the picture of its second frame belongs, that of its third.
class SkipExisting : public testing::Test
{
protected:
    SkipExisting()
    {
        folder.Write("a.mrc", GrayStack(3));
        EXPECT_EQ(ToolRun({L"render", L"--frame", L"1-2", L"a.mrc"}, folder.Path()).exitCode, 0U);
        right = folder.Read("a-1.png");
        wrong = folder.Read("a-2.png");
        EXPECT_NE(right, wrong);
        std::filesystem::rename(folder.Path() / "a-2.png", folder.Path() / "a-1.png");
    }

    /// Sets the time of the picture to so many hours after that of its source.
    void SetAge(hours later) const
    {
        // The C++ library sets whole seconds.
        const std::filesystem::path source = folder.Path() / "a.mrc";
        const auto time = std::chrono::floor<std::chrono::seconds>(std::filesystem::last_write_time(source));
        std::filesystem::last_write_time(source, time);
        std::filesystem::last_write_time(folder.Path() / "a-1.png", time + later);
    }

    [[nodiscard]] ToolRun Render() const
    {
        return {{L"render", L"--skip-existing", L"--frame", L"1", L"a.mrc"}, folder.Path()};
    }

    const TemporaryFolder folder;
    Bytes right;
    Bytes wrong;
};

TEST_F(SkipExisting, KeepsAPictureThatIsNotOlderThanItsSource)
{
    for (const hours later : {hours(1), hours(0)})
    {
        SetAge(later);
        const ToolRun run = Render();
        EXPECT_EQ(run.exitCode, 0U) << run.error;
        EXPECT_THAT(run.output, IsEmpty());
        EXPECT_EQ(folder.Read("a-1.png"), wrong) << later.count();
    }
}

TEST_F(SkipExisting, ReplacesAnOlderPicture)
{
    SetAge(hours(-1));
    const ToolRun run = Render();
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "a-1.png\n");
    EXPECT_EQ(folder.Read("a-1.png"), right);
}

TEST_F(SkipExisting, ReplacesADamagedPicture)
{
    for (const size_t length : {size_t{0}, size_t{8}, size_t{40}})
    {
        folder.Write("a-1.png", Bytes(right.begin(), right.begin() + static_cast<std::ptrdiff_t>(length)));
        SetAge(hours(1));
        const ToolRun run = Render();
        EXPECT_EQ(run.exitCode, 0U) << length << run.error;
        EXPECT_EQ(run.output, "a-1.png\n") << length;
        EXPECT_EQ(folder.Read("a-1.png"), right) << length;
    }
}

TEST_F(SkipExisting, ReplacesAPictureIfAProgramWasKilledWhileItWroteAnother)
{
    SetAge(hours(1));
    folder.Write("a-1.png.lumora-part", Bytes(100, 0x89));
    const ToolRun run = Render();
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "a-1.png\n");
    EXPECT_EQ(folder.Read("a-1.png"), right);
    EXPECT_THAT(folder.Files(), ElementsAre("a-1.png", "a.mrc"));
}

TEST_F(SkipExisting, ReplacesWithoutTheOption)
{
    SetAge(hours(1));
    EXPECT_EQ(ToolRun({L"render", L"--frame", L"1", L"a.mrc"}, folder.Path()).output, "a-1.png\n");
    EXPECT_EQ(folder.Read("a-1.png"), right);
}

} // namespace
