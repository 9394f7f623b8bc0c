#pragma once

#include "platform/ComPtr.h"

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <span>
#include <vector>

// A client of WIC that knows nothing of Lumora. Every function fails the test, and gives something empty,
// when WIC refuses.

/// WIC's factory.
[[nodiscard]] IWICImagingFactory& Wic();

/// A stream over bytes that stay where they are.
[[nodiscard]] ComPtr<IStream> StreamOver(std::span<const uint8_t> content);

/// The decoder that WIC finds for the bytes.
[[nodiscard]] ComPtr<IWICBitmapDecoder> Discover(std::span<const uint8_t> content);

/// What WIC answers when it is asked for a decoder for the bytes.
[[nodiscard]] HRESULT DiscoveryResult(std::span<const uint8_t> content);

/// The container format of a decoder.
[[nodiscard]] GUID FormatOf(const ComPtr<IWICBitmapDecoder>& decoder);

/// The picture in another pixel format.
[[nodiscard]] ComPtr<IWICBitmapSource> Converted(IWICBitmapSource* source, REFGUID format);

/// The picture in another size.
[[nodiscard]] ComPtr<IWICBitmapSource> Scaled(IWICBitmapSource* source, UINT width, UINT height);

/// All rows of a picture without padding.
[[nodiscard]] std::vector<uint8_t> PixelsOf(IWICBitmapSource* source, UINT bytesPerPixel);

/// The picture as a file of one of WIC's own formats.
[[nodiscard]] std::vector<uint8_t> Encoded(IWICBitmapSource* source, REFGUID container);
