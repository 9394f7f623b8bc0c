#pragma once

#include "platform/ComPtr.h"

#include <windows.h>

#include <wincodec.h>

#include <filesystem>

/// WIC's factory. Throws std::runtime_error if there is none.
[[nodiscard]] ComPtr<IWICImagingFactory> ImagingFactory();

/// The picture of a file that WIC itself can read. Throws std::runtime_error if it cannot.
[[nodiscard]] ComPtr<IWICBitmapSource> PictureFile(IWICImagingFactory* factory,
                                                   const std::filesystem::path& file);

/// How a thumbnail compares with the picture that it shows.
struct ThumbnailMatch
{
    /// Whether one is a scaled copy of the other, give or take a pixel.
    bool hasSameShape = false;
    /// The mean difference of the levels, 0 to 255, of the same parts of the pictures.
    double difference = 255;

    /// The shell scales with another filter, and may convert colours. Even the frames of a series differ by
    /// more.
    [[nodiscard]] bool IsSamePicture() const { return hasSameShape && difference < 3; }
};

/// Compares the pictures in 16 x 16 parts. Throws std::runtime_error if WIC refuses one.
[[nodiscard]] ThumbnailMatch Match(IWICImagingFactory* factory, IWICBitmapSource* thumbnail,
                                   IWICBitmapSource* picture);
