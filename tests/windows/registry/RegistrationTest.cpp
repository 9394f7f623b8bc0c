#include "windows/registry/RegistrationTest.h"

#include "registration/Registration.h"

#include <gmock/gmock.h>

using Lumora::CheckRegistration;
using Lumora::Choices;
using Lumora::PresentChoices;
using Lumora::Register;
using Lumora::RegistrationResult;
using Lumora::RegistrationState;
using Lumora::Scope;
using Lumora::Unregister;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

TEST_F(Registration, TellsComWhereTheClassesAre)
{
    const RegistrationResult result = Register(Scope::Machine, dllPath);
    EXPECT_FALSE(result.failure);
    EXPECT_THAT(result.leftToOthers, IsEmpty());

    for (const std::wstring& key : {decoder, handler})
    {
        EXPECT_EQ(Text(key + L"\\InprocServer32"), dllPath);
        EXPECT_EQ(Text(key + L"\\InprocServer32", L"ThreadingModel"), L"Both");
    }
    EXPECT_EQ(Number(handler, L"EnableShareDenyNone"), 1);
    EXPECT_EQ(Number(handler, L"DisableProcessIsolation"), -1);
}

TEST_F(Registration, TellsWicAboutTheDecoder)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);

    const std::wstring instance = classes + L"CLSID\\{7ED96837-96F0-4812-B211-F13C24117ED3}\\Instance\\"
                                            L"{0B6C4D37-1F0E-4E5B-9C57-6A3D2C9E41F8}";
    EXPECT_EQ(Text(instance, L"CLSID"), L"{0B6C4D37-1F0E-4E5B-9C57-6A3D2C9E41F8}");
    EXPECT_EQ(Text(instance, L"FriendlyName"), L"Lumora decoder");
    EXPECT_EQ(Text(decoder, L"ContainerFormat"), L"{E3A7F2C1-58D4-4B96-A60F-2D8B7C1E9F34}");
    EXPECT_EQ(Text(decoder, L"FileExtensions"),
              L".mrc,.mrcs,.preali,.map,.st,.ali,.rec,.dm3,.dm4,.emd,.h5,.hdf5,.ser,.emi,.npy,.lattice");
    EXPECT_EQ(Text(decoder, L"MimeTypes"),
              L"image/x-mrc,image/x-digital-micrograph,application/x-hdf5,image/x-ser,image/x-emi,"
              L"application/x-npy,image/x-tav-raw,image/x-tav-bin,image/x-lattice");
    EXPECT_EQ(Number(decoder, L"SupportMultiframe"), 1);
    EXPECT_EQ(Number(decoder, L"ArbitrationPriority"), 10);
    EXPECT_EQ(Text(decoder + L"\\Formats\\{6FDDC324-4E03-4BFE-B185-3D77768DC908}"), L"");
    EXPECT_EQ(Text(decoder + L"\\Formats\\{6FDDC324-4E03-4BFE-B185-3D77768DC90D}"), L"");
}

TEST_F(Registration, WritesTheHeaderPatterns)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);

    for (int i = 0; i < 23; ++i)
    {
        const std::wstring pattern = decoder + L"\\Patterns\\" + std::to_wstring(i);
        EXPECT_EQ(Number(pattern, L"Position"), 0) << i;
        EXPECT_EQ(Number(pattern, L"Length"), 64) << i;
        EXPECT_EQ(Number(pattern, L"EndOfStream"), 0) << i;
        EXPECT_EQ(Binary(pattern, L"Pattern").size(), 64U) << i;
        EXPECT_EQ(Binary(pattern, L"Mask").size(), 64U) << i;
    }
    EXPECT_FALSE(Exists(decoder + L"\\Patterns\\23"));

    // The second one: a little-endian MRC header of mode 2 or 6.
    std::vector<uint8_t> wanted(64);
    std::vector<uint8_t> mask(64);
    for (const size_t zero : {2U, 3U, 6U, 7U, 11U, 13U, 14U, 15U})
        mask[zero] = 0xFF;
    wanted[12] = 0x02;
    mask[12] = 0xFB;
    EXPECT_EQ(Binary(decoder + L"\\Patterns\\1", L"Pattern"), wanted);
    EXPECT_EQ(Binary(decoder + L"\\Patterns\\1", L"Mask"), mask);
}

TEST_F(Registration, BindsTheExtensionsToThumbnailsAndProperties)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);

    for (const std::wstring extension : {L".mrc", L".mrcs", L".preali", L".map", L".st", L".ali", L".rec"})
    {
        const std::wstring associations = classes + L"SystemFileAssociations\\" + extension;
        EXPECT_EQ(Text(classes + extension + thumbnails), L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}");
        EXPECT_EQ(Text(associations + thumbnails), L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}");
        EXPECT_EQ(Text(handlers + extension), L"{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}");
        for (const wchar_t* const list : {L"FullDetails", L"PreviewDetails", L"InfoTip"})
            EXPECT_TRUE(Text(associations, list).starts_with(L"prop:")) << list;
    }
}

TEST_F(Registration, CallsOnlyFilesOfAnExtensionOfItsOwnPictures)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);

    const auto kind = [](const wchar_t* extension) {
        return Text(windows + L"Explorer\\KindMap", extension);
    };
    EXPECT_EQ(kind(L".mrc"), L"picture");
    EXPECT_EQ(Text(classes + L".mrc", L"PerceivedType"), L"image");
    EXPECT_EQ(Text(classes + L".mrc", L"Content Type"), L"image/x-mrc");
    EXPECT_EQ(kind(L".map"), absent);
    EXPECT_EQ(Text(classes + L".map", L"PerceivedType"), absent);
    EXPECT_EQ(Text(classes + L".map", L"Content Type"), absent);
}

TEST_F(Registration, LeavesNothingBehind)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);
    EXPECT_THAT(Differences(before, TakeRegistrySnapshot()), Not(IsEmpty()));
    const RegistrationResult result = Unregister(Scope::Machine);
    EXPECT_FALSE(result.failure);
    EXPECT_THAT(result.leftToOthers, IsEmpty());
    EXPECT_THAT(Differences(before, TakeRegistrySnapshot()), IsEmpty());
}

TEST_F(Registration, WritesForTheUserOnlyWhatWindowsTakesFromAUser)
{
    EXPECT_FALSE(Register(Scope::User, dllPath).failure);

    EXPECT_EQ(Text(HKEY_CURRENT_USER, decoder + L"\\InprocServer32"), dllPath);
    EXPECT_EQ(Text(HKEY_CURRENT_USER, classes + L".mrc" + thumbnails),
              L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}");
    for (const std::wstring& path : Differences(before, TakeRegistrySnapshot()))
        EXPECT_TRUE(path.starts_with(L"HKEY_CURRENT_USER\\SOFTWARE\\Classes"))
            << testing::PrintToString(path);

    EXPECT_FALSE(Unregister(Scope::User).failure);
    EXPECT_THAT(Differences(before, TakeRegistrySnapshot()), IsEmpty());
}

TEST_F(Registration, ReplacesAnotherRegistrationOfItsOwn)
{
    EXPECT_FALSE(Register(Scope::Machine, L"D:\\Old\\Lumora.dll").failure);
    // Another version may have had more patterns, which would go on to claim streams.
    SetText(decoder + L"\\Patterns\\99", L"Pattern", L"");

    const RegistrationResult result = Register(Scope::Machine, dllPath);
    EXPECT_FALSE(result.failure);
    EXPECT_THAT(result.leftToOthers, IsEmpty());
    EXPECT_EQ(Text(decoder + L"\\InprocServer32"), dllPath);
    EXPECT_FALSE(Exists(decoder + L"\\Patterns\\99"));
}

TEST_F(Registration, IsCheckedAgainstTheTable)
{
    RegistrationState state = CheckRegistration(Scope::Machine, dllPath);
    EXPECT_FALSE(state.IsComplete());
    EXPECT_THAT(state.missing, Contains(L"HKEY_LOCAL_MACHINE\\" + decoder + L"\\InprocServer32"));
    EXPECT_THAT(state.missing, Contains(L"HKEY_LOCAL_MACHINE\\" + windows + L"Explorer\\KindMap, .mrc"));
    EXPECT_THAT(state.outdated, IsEmpty());

    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);
    state = CheckRegistration(Scope::Machine, dllPath);
    EXPECT_TRUE(state.IsComplete());
    EXPECT_THAT(state.leftToOthers, IsEmpty());

    state = CheckRegistration(Scope::Machine, L"D:\\Elsewhere\\Lumora.dll");
    EXPECT_FALSE(state.IsComplete());
    EXPECT_THAT(state.missing, IsEmpty());
    EXPECT_THAT(state.outdated, ElementsAre(L"HKEY_LOCAL_MACHINE\\" + decoder + L"\\InprocServer32",
                                            L"HKEY_LOCAL_MACHINE\\" + handler + L"\\InprocServer32"));
}

TEST(RegistrationOfThisMachine, LeavesTheRegistryAsItWas)
{
    // Of Windows' own keys, a new Wine prefix lacks this one.
    MakeKey(HKEY_LOCAL_MACHINE, windows + L"PropertySystem\\PropertyHandlers");
    // A person may have registered Lumora here.
    const std::wstring earlierDll = Text(decoder + L"\\InprocServer32");
    EXPECT_FALSE(Unregister(Scope::Machine).failure);
    const RegistrySnapshot before = TakeRegistrySnapshot();
    ASSERT_TRUE(before.contains(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\CLSID"));

    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);
    EXPECT_FALSE(Unregister(Scope::Machine).failure);
    EXPECT_THAT(Differences(before, TakeRegistrySnapshot()), IsEmpty());

    if (earlierDll != absent)
        static_cast<void>(Register(Scope::Machine, earlierDll));
}

TEST_F(Registration, LeavesOutTheExtensionsThatItIsToldTo)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath).failure);
    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{.leftOut = {L".h5", L".mrc"}}).failure);
    for (const wchar_t* const extension : {L".h5", L".mrc"})
    {
        EXPECT_FALSE(Exists(classes + extension)) << extension;
        EXPECT_FALSE(Exists(classes + L"SystemFileAssociations\\" + extension)) << extension;
        EXPECT_FALSE(Exists(handlers + extension)) << extension;
    }
    EXPECT_EQ(Text(windows + L"Explorer\\KindMap", L".mrc"), absent);
    EXPECT_EQ(Text(handlers + L".dm3"), L"{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}");
    EXPECT_EQ(Text(L"SOFTWARE\\Lumora", L"LeftOutExtensions"), L".h5,.mrc");
    EXPECT_THAT(Text(decoder, L"FileExtensions"), StartsWith(L".mrcs,"));
    EXPECT_THAT(Text(decoder, L"FileExtensions"), Not(HasSubstr(L".h5")));
    EXPECT_TRUE(CheckRegistration(Scope::Machine, dllPath).IsComplete());
}

TEST_F(Registration, RemembersWhatIsLeftOut)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{.leftOut = {L".mrc"}}).failure);
    ASSERT_FALSE(Register(Scope::Machine, L"C:\\elsewhere\\Lumora.dll").failure);
    EXPECT_THAT(PresentChoices(Scope::Machine).leftOut, ElementsAre(L".mrc"));
    EXPECT_FALSE(Exists(handlers + L".mrc"));

    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{}).failure);
    EXPECT_THAT(PresentChoices(Scope::Machine).leftOut, IsEmpty());
    EXPECT_TRUE(Exists(handlers + L".mrc"));
    EXPECT_EQ(Text(L"SOFTWARE\\Lumora", L"LeftOutExtensions"), absent);
}

TEST_F(Registration, HasNoPropertyHandlerForAnyDataUnlessToldTo)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath).failure);
    for (const std::wstring extension : {L".h5", L".hdf5"})
    {
        EXPECT_FALSE(Exists(handlers + extension));
        EXPECT_EQ(Text(classes + L"SystemFileAssociations\\" + extension, L"FullDetails"), absent);
        EXPECT_EQ(Text(classes + extension + thumbnails), L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}");
    }
    EXPECT_EQ(Text(handlers + L".emd"), L"{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}");

    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{.withProperties = {L".h5"}}).failure);
    EXPECT_EQ(Text(handlers + L".h5"), L"{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}");
    EXPECT_THAT(Text(classes + L"SystemFileAssociations\\.h5", L"FullDetails"), StartsWith(L"prop:"));
    EXPECT_FALSE(Exists(handlers + L".hdf5"));
    EXPECT_EQ(Text(L"SOFTWARE\\Lumora", L"PropertyExtensions"), L".h5");
}

TEST_F(Registration, CallsNoFilePictureIfToldNotTo)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath).failure);
    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{.arePictures = false}).failure);
    EXPECT_EQ(Text(windows + L"Explorer\\KindMap", L".mrc"), absent);
    EXPECT_EQ(Text(classes + L".mrc", L"PerceivedType"), absent);
    EXPECT_EQ(Text(classes + L".mrc", L"Content Type"), absent);
    EXPECT_EQ(Text(classes + L".mrc" + thumbnails), L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}");
    EXPECT_EQ(Text(handlers + L".mrc"), L"{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}");
    EXPECT_EQ(Text(L"SOFTWARE\\Lumora", L"Pictures"), L"0");
}

TEST_F(Registration, OffersThePhotoViewerOnlyIfToldTo)
{
    const std::wstring viewer = L"SOFTWARE\\Microsoft\\Windows Photo Viewer\\Capabilities\\FileAssociations";
    ASSERT_FALSE(Register(Scope::Machine, dllPath).failure);
    EXPECT_EQ(Text(viewer, L".mrc"), absent);

    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{.areInPhotoViewer = true}).failure);
    EXPECT_EQ(Text(viewer, L".mrc"), L"PhotoViewer.FileAssoc.Tiff");
    EXPECT_EQ(Text(viewer, L".lattice"), L"PhotoViewer.FileAssoc.Tiff");
    EXPECT_EQ(Text(viewer, L".map"), absent);
    EXPECT_EQ(Text(viewer, L".h5"), absent);
    EXPECT_EQ(Text(L"SOFTWARE\\Lumora", L"PhotoViewer"), L"1");
}

const Choices otherChoices = {.leftOut = {L".map", L".npy"},
                              .withProperties = {L".h5", L".hdf5"},
                              .arePictures = false,
                              .areInPhotoViewer = true};

TEST_F(Registration, KeepsEachChoice)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath, otherChoices).failure);
    EXPECT_EQ(PresentChoices(Scope::Machine), otherChoices);
    const RegistrySnapshot chosen = TakeRegistrySnapshot();
    ASSERT_FALSE(Register(Scope::Machine, dllPath).failure);
    EXPECT_THAT(Differences(chosen, TakeRegistrySnapshot()), IsEmpty());
    EXPECT_TRUE(CheckRegistration(Scope::Machine, dllPath).IsComplete());
}

TEST_F(Registration, GoesFromAnyChoicesToAnyOthers)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath).failure);
    const RegistrySnapshot usual = TakeRegistrySnapshot();
    ASSERT_FALSE(Register(Scope::Machine, dllPath, otherChoices).failure);
    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{}).failure);
    EXPECT_THAT(Differences(usual, TakeRegistrySnapshot()), IsEmpty());

    ASSERT_FALSE(Register(Scope::Machine, dllPath, otherChoices).failure);
    ASSERT_FALSE(Unregister(Scope::Machine).failure);
    EXPECT_THAT(Differences(before, TakeRegistrySnapshot()), IsEmpty());
}

TEST_F(Registration, TakesAStoredChoiceThatItDoesNotUnderstandForNone)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath, otherChoices).failure);
    SetText(L"SOFTWARE\\Lumora", L"LeftOutExtensions", L".later");
    SetText(L"SOFTWARE\\Lumora", L"Pictures", L"sometimes");
    EXPECT_THAT(PresentChoices(Scope::Machine).leftOut, IsEmpty());
    EXPECT_TRUE(PresentChoices(Scope::Machine).arePictures);
    EXPECT_TRUE(PresentChoices(Scope::Machine).areInPhotoViewer);
}

// Version 0.1.0 registered properties of .h5 files, and fewer details.
TEST_F(Registration, ReplacesWhatAnEarlierVersionHasWritten)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath).failure);
    const RegistrySnapshot present = TakeRegistrySnapshot();
    const wchar_t* const earlierDetails =
        L"prop:System.PropGroup.Image;System.Image.Dimensions;System.Image.HorizontalSize;"
        L"System.Image.VerticalSize;System.Image.BitDepth;System.Media.FrameCount;System.PropGroup.Origin;"
        L"System.Media.CreatorApplication;System.PropGroup.Description;System.Comment;"
        L"System.PropGroup.FileSystem;System.ItemNameDisplay;System.ItemTypeText;"
        L"System.ItemFolderPathDisplay;System.DateCreated;System.DateModified;System.Size;"
        L"System.FileAttributes;System.OfflineAvailability;System.OfflineStatus;System.SharedWith;"
        L"System.FileOwner;System.ComputerName";
    SetText(classes + L"SystemFileAssociations\\.mrc", L"FullDetails", earlierDetails);
    SetText(classes + L"SystemFileAssociations\\.h5", L"FullDetails", earlierDetails);
    SetText(handlers + L".h5", L"", L"{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}");

    EXPECT_THAT(
        CheckRegistration(Scope::Machine, dllPath).outdated,
        ElementsAre(L"HKEY_LOCAL_MACHINE\\" + classes + L"SystemFileAssociations\\.mrc, FullDetails"));
    const RegistrationResult result = Register(Scope::Machine, dllPath);
    EXPECT_FALSE(result.failure);
    EXPECT_THAT(result.leftToOthers, IsEmpty());
    EXPECT_THAT(Differences(present, TakeRegistrySnapshot()), IsEmpty());

    SetText(classes + L"SystemFileAssociations\\.mrc", L"FullDetails", earlierDetails);
    SetText(handlers + L".h5", L"", L"{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}");
    EXPECT_FALSE(Unregister(Scope::Machine).failure);
    EXPECT_THAT(Differences(before, TakeRegistrySnapshot()), IsEmpty());
}

TEST_F(Registration, TakesARegistrationBackThatLeavesExtensionsOut)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath, Choices{.leftOut = {L".h5", L".mrc"}}).failure);
    ASSERT_FALSE(Unregister(Scope::Machine).failure);
    EXPECT_EQ(TakeRegistrySnapshot(), before);
}

} // namespace
