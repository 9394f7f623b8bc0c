#include "registration/RegistryRows.h"

namespace Lumora {

namespace {

// The properties of our files, for the details page, the details pane and the tool tip.
constexpr const wchar_t* fullDetails =
    L"prop:System.PropGroup.Image;System.Image.Dimensions;System.Image.HorizontalSize;"
    L"System.Image.VerticalSize;System.Image.BitDepth;System.Media.EncodingSettings;System.Media.FrameCount;"
    L"System.PropGroup.Origin;"
    L"System.Media.CreatorApplication;System.PropGroup.Description;System.Comment;"
    L"System.PropGroup.FileSystem;System.ItemNameDisplay;System.ItemTypeText;System.ItemFolderPathDisplay;"
    L"System.DateCreated;System.DateModified;System.Size;System.FileAttributes;System.OfflineAvailability;"
    L"System.OfflineStatus;System.SharedWith;System.FileOwner;System.ComputerName";
// Those of version 0.1.0.
constexpr const wchar_t* earlierFullDetails =
    L"prop:System.PropGroup.Image;System.Image.Dimensions;System.Image.HorizontalSize;"
    L"System.Image.VerticalSize;System.Image.BitDepth;System.Media.FrameCount;"
    L"System.PropGroup.Origin;"
    L"System.Media.CreatorApplication;System.PropGroup.Description;System.Comment;"
    L"System.PropGroup.FileSystem;System.ItemNameDisplay;System.ItemTypeText;System.ItemFolderPathDisplay;"
    L"System.DateCreated;System.DateModified;System.Size;System.FileAttributes;System.OfflineAvailability;"
    L"System.OfflineStatus;System.SharedWith;System.FileOwner;System.ComputerName";
constexpr const wchar_t* previewDetails =
    L"prop:System.Image.Dimensions;System.Media.FrameCount;System.Image.BitDepth;"
    L"System.Media.CreatorApplication;System.Comment;*System.DateModified;*System.Size;*System.DateCreated";
constexpr const wchar_t* infoTip =
    L"prop:System.ItemTypeText;System.Image.Dimensions;System.Media.FrameCount;"
    L"System.Media.CreatorApplication;System.DateModified;System.Size";

// The order of the rows matters in two places: a class is complete before WIC's list of decoders names it,
// and before a file name extension does.
constexpr Row rows[] = {
    // The decoder.
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"", L"Lumora decoder"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"FriendlyName", L"Lumora decoder"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"Author", L"Lumora"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"Vendor", L"%vendor%"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"Version", LUMORA_VERSION},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"SpecVersion", L"1.0.0.0"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"Date", LUMORA_RELEASE_DATE},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"ContainerFormat", L"%container%"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"FileExtensions", L"%extensions%"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"MimeTypes", L"%mimeTypes%"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"SupportMultiframe", 1u},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"SupportAnimation", 0u},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"SupportChromakey", 0u},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"SupportLossless", 1u},
    // Low, so that WIC asks other codecs first.
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%", L"ArbitrationPriority", 10u},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%\\Formats\\%8bppGray%", L"", L""},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%\\Formats\\%24bppRGB%", L"", L""},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%\\InprocServer32", L"", L"%dll%"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoder%\\InprocServer32", L"ThreadingModel", L"Both"},

    // Its place in WIC's list of decoders.
    {For::Classes, Branch::Classes, L"CLSID\\%decoders%\\Instance\\%decoder%", L"CLSID", L"%decoder%"},
    {For::Classes, Branch::Classes, L"CLSID\\%decoders%\\Instance\\%decoder%", L"FriendlyName",
     L"Lumora decoder"},

    // The property handler.
    {For::Classes, Branch::Classes, L"CLSID\\%handler%", L"", L"Lumora property handler"},
    // An acquisition program may still be writing the file.
    {For::Classes, Branch::Classes, L"CLSID\\%handler%", L"EnableShareDenyNone", 1u},
    {For::Classes, Branch::Classes, L"CLSID\\%handler%\\InprocServer32", L"", L"%dll%"},
    {For::Classes, Branch::Classes, L"CLSID\\%handler%\\InprocServer32", L"ThreadingModel", L"Both"},

    // Thumbnails: the shell's own provider, which asks WIC.
    {For::Thumbnails, Branch::Classes, L"%ext%\\ShellEx\\%thumbnails%", L"", L"%photoThumbnails%"},
    {For::Thumbnails, Branch::Classes, L"SystemFileAssociations\\%ext%\\ShellEx\\%thumbnails%", L"",
     L"%photoThumbnails%"},

    // Properties, and which of them are shown.
    {For::Properties, Branch::PropertyHandlers, L"%ext%", L"", L"%handler%"},
    {For::Properties, Branch::Classes, L"SystemFileAssociations\\%ext%", L"FullDetails", fullDetails,
     earlierFullDetails},
    {For::Properties, Branch::Classes, L"SystemFileAssociations\\%ext%", L"PreviewDetails", previewDetails},
    {For::Properties, Branch::Classes, L"SystemFileAssociations\\%ext%", L"InfoTip", infoTip},

    // These apply to all files of an extension, not only to those that we can read.
    {For::Pictures, Branch::Classes, L"%ext%", L"Content Type", L"%mimeType%"},
    {For::Pictures, Branch::Classes, L"%ext%", L"PerceivedType", L"image"},
    {For::Pictures, Branch::Kinds, L"", L"%ext%", L"picture"},

    // Windows' own viewer asks WIC. This makes it one of the programs to choose from.
    {For::PhotoViewer, Branch::Microsoft, L"Windows Photo Viewer\\Capabilities\\FileAssociations", L"%ext%",
     L"PhotoViewer.FileAssoc.Tiff"},
};

} // namespace

std::span<const Row> RegistryRows() noexcept
{
    return rows;
}

} // namespace Lumora
