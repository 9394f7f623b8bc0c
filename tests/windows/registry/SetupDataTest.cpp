#include "setup/SetupData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Lumora::ReadSetupData;
using Lumora::SetupData;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

TEST(SetupDataOfTheInstaller, HasThePathAndTheChoices)
{
    const SetupData data = ReadSetupData(L"C:\\L\\Lumora.dll|WITHOUT=.h5, map|WITH=|PICTURES=0|PHOTOVIEWER=");
    EXPECT_EQ(data.dllPath, L"C:\\L\\Lumora.dll");
    EXPECT_THAT(data.mistake, IsEmpty());
    EXPECT_THAT(data.choices.leftOut, ElementsAre(L".h5", L".map"));
    EXPECT_THAT(data.choices.withProperties, IsEmpty());
    EXPECT_FALSE(data.choices.arePictures);
    EXPECT_FALSE(data.choices.areInPhotoViewer);
}

TEST(SetupDataOfTheInstaller, PrefersANewChoiceToOneThatWasKept)
{
    const SetupData data =
        ReadSetupData(L"L.dll|WITHOUT=none|KEPTWITHOUT=.map|KEPTPHOTOVIEWER=1|KEPTWITH=.later");
    EXPECT_THAT(data.mistake, IsEmpty());
    EXPECT_THAT(data.choices.leftOut, IsEmpty());
    EXPECT_TRUE(data.choices.areInPhotoViewer);
}

TEST(SetupDataOfTheInstaller, NamesAChoiceThatItCannotTake)
{
    EXPECT_EQ(ReadSetupData(L"L.dll|PICTURES=no").mistake, L"PICTURES: the choice is 0 or 1, and not \"no\"");
    EXPECT_THAT(ReadSetupData(L"L.dll|WITHOUT=.map|.st").mistake, HasSubstr(L"\".st\""));
}

TEST(SetupDataOfTheInstaller, TakesNoOtherDllFromAChoice)
{
    const SetupData data = ReadSetupData(L"L.dll|WITHOUT=.map|DLL=C:\\evil.dll");
    EXPECT_EQ(data.dllPath, L"L.dll");
    EXPECT_THAT(data.choices.leftOut, ElementsAre(L".map"));
}

} // namespace
