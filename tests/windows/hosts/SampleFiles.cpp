#include "windows/hosts/SampleFiles.h"

#include "support/FileBytes.h"
#include "support/TestFolders.h"

#include <gtest/gtest.h>

#include <algorithm>

std::vector<SampleFile> SampleFiles()
{
    const std::filesystem::path folder = TestFolder("source") / "samples";
    std::vector<SampleFile> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        files.push_back({entry.path().filename().string(), FileBytes(entry.path())});
    std::ranges::sort(files, {}, &SampleFile::name);
    EXPECT_FALSE(files.empty()) << folder;
    return files;
}

bool IsHdf(const SampleFile& sample)
{
    return sample.name.ends_with(".h5");
}
