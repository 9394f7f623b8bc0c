#include "windows/walk/shell/ThumbnailMatch.h"
#include "support/TestFolders.h"
#include "windows/clients/WicClient.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Picture
{
    std::filesystem::path file;
    ComPtr<IWICBitmapSource> source;
};

std::vector<Picture> Pictures()
{
    std::vector<Picture> pictures;
    for (const auto& entry : std::filesystem::directory_iterator(TestFolder("source") / "docs" / "pictures"))
        pictures.push_back({entry.path(), PictureFile(&Wic(), entry.path())});
    EXPECT_GT(pictures.size(), 10U);
    return pictures;
}

// Wine's scaler repeats pixels or leaves them out. A picture of noise changes when pixels are left out.
TEST(ThumbnailMatch, AcceptsEachPictureInAnotherSize)
{
    for (const Picture& picture : Pictures())
    {
        UINT width = 0;
        UINT height = 0;
        ASSERT_EQ(picture.source->GetSize(&width, &height), S_OK);
        const ComPtr<IWICBitmapSource> larger = Scaled(picture.source.Get(), width * 2, height * 2);
        EXPECT_TRUE(Match(&Wic(), larger.Get(), picture.source.Get()).IsSamePicture()) << picture.file;
    }
}

TEST(ThumbnailMatch, RefusesThePictureOfAnotherSample)
{
    const std::vector<Picture> pictures = Pictures();
    for (const Picture& shown : pictures)
    {
        for (const Picture& expected : pictures)
        {
            const ThumbnailMatch match = Match(&Wic(), shown.source.Get(), expected.source.Get());
            EXPECT_EQ(match.IsSamePicture(), shown.file == expected.file)
                << shown.file << expected.file << match.difference;
        }
    }
}

TEST(ThumbnailMatch, RefusesAnotherShapeAndAnUpsideDownPicture)
{
    const std::filesystem::path file = TestFolder("source") / "docs" / "pictures" / "edge.png";
    const ComPtr<IWICBitmapSource> picture = PictureFile(&Wic(), file);
    UINT width = 0;
    UINT height = 0;
    ASSERT_EQ(picture->GetSize(&width, &height), S_OK);
    const ComPtr<IWICBitmapSource> narrow = Scaled(picture.Get(), width / 2, height);
    EXPECT_FALSE(Match(&Wic(), narrow.Get(), picture.Get()).hasSameShape);
    ComPtr<IWICBitmapFlipRotator> flipped;
    ASSERT_EQ(Wic().CreateBitmapFlipRotator(flipped.Put()), S_OK);
    ASSERT_EQ(flipped->Initialize(picture.Get(), WICBitmapTransformFlipVertical), S_OK);
    EXPECT_FALSE(Match(&Wic(), flipped.Get(), picture.Get()).IsSamePicture());
}

} // namespace
