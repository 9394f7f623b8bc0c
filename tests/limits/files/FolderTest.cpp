#include "limits/Limits.h"
#include "support/FileBytes.h"
#include "support/TestFolders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace {

using std::filesystem::path;

/// The files of a folder and of its folders, in the order of their names.
std::vector<path> FilesIn(const path& folder)
{
    std::vector<path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

const path sourceTree = TestFolder("source");

class FolderLimits : public testing::TestWithParam<path>
{};

TEST_P(FolderLimits, HoldForEveryFile)
{
    const std::vector<path> files = FilesIn(GetParam());
    ASSERT_FALSE(files.empty());
    for (const path& file : files)
        ExpectWithinLimits(FileBytes(file), file.filename().string());
}

INSTANTIATE_TEST_SUITE_P(Limits, FolderLimits,
                         testing::Values(sourceTree / "fuzz/corpus", sourceTree / "fuzz/regressions",
                                         sourceTree / "samples", TestFolder("mrc"), TestFolder("npy"),
                                         TestFolder("hdf")));

/// The lengths to which a file is cut: all up to a header's length, many behind it, and all near the end.
/// Starting the sandbox of the HDF5 library takes most of the time for a file, so there are fewer.
std::vector<size_t> CutLengths(size_t fileBytes, bool isHdf)
{
    const size_t headerBytes = isHdf ? 256 : 2048;
    const size_t step = isHdf ? 2003 : 257;
    const size_t endBytes = isHdf ? 16 : 128;
    std::vector<size_t> lengths;
    for (size_t length = 0; length < fileBytes;)
    {
        lengths.push_back(length);
        const bool isStep = length >= headerBytes && fileBytes - length > endBytes;
        length = isStep ? std::min(length + step, fileBytes - endBytes) : length + 1;
    }
    return lengths;
}

void ExpectWithinLimitsWhenCut(const path& name, bool isHdf)
{
    SCOPED_TRACE(name);
    const Bytes whole = FileBytes(name);
    ASSERT_FALSE(whole.empty());
    Bytes file;
    for (const size_t length : CutLengths(whole.size(), isHdf))
    {
        file.assign(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
        ExpectWithinLimits(file, "cut to " + std::to_string(length));
    }
}

TEST(CutFileLimits, HoldForEverySample)
{
    for (const path& sample : FilesIn(sourceTree / "samples"))
        ExpectWithinLimitsWhenCut(sample, sample.extension() == ".h5");
}

// The inputs that the fuzzer has found, which have check sums for names, are cut and changed as it is. So are
// HDF5 files, of which the folder has enough.
TEST(CutFileLimits, HoldForEverySeedOfTheFuzzer)
{
    for (const path& seed : FilesIn(sourceTree / "fuzz/corpus"))
    {
        constexpr size_t checkSumLetters = 40;
        const std::string name = seed.filename().string();
        if (name.size() != checkSumLetters && !name.starts_with("hdf_"))
            ExpectWithinLimitsWhenCut(seed, false);
    }
}

// Printed when all tests have run.
class TablePrinter : public testing::Environment
{
public:
    void TearDown() override { std::cout << LimitTable(); }
};

const auto* const printer = testing::AddGlobalTestEnvironment(new TablePrinter);

} // namespace
