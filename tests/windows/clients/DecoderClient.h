#pragma once

#include "platform/ComPtr.h"
#include "support/streams/TestStream.h"

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <vector>

/// Stands where an object belongs and must be left alone by a call that fails.
template <typename Interface>
[[nodiscard]] Interface* Untouchable()
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<Interface*>(uintptr_t{0x1234});
}

/// A decoder of Lumora.dll that has seen no stream yet.
[[nodiscard]] ComPtr<IWICBitmapDecoder> NewDecoder();

/// A decoder that has opened the stream; a test failure when it refuses to.
[[nodiscard]] ComPtr<IWICBitmapDecoder> NewDecoder(IStream& stream);

/// What the decoder answers to a stream.
HRESULT Initialize(const ComPtr<IWICBitmapDecoder>& decoder, IStream& stream);

/// The number of frames; a test failure when the decoder does not tell.
[[nodiscard]] UINT FrameCount(const ComPtr<IWICBitmapDecoder>& decoder);

/// One frame of an opened decoder; empty, after a test failure, when it gives none.
[[nodiscard]] ComPtr<IWICBitmapFrameDecode> Frame(const ComPtr<IWICBitmapDecoder>& decoder, UINT index);

/// The result of asking for a frame that cannot be had. A test failure when the place for it is touched.
[[nodiscard]] HRESULT FrameRefusal(const ComPtr<IWICBitmapDecoder>& decoder, UINT index);

/// All rows of a frame without padding; empty, after a test failure, when they cannot be copied.
[[nodiscard]] std::vector<uint8_t> Picture(const ComPtr<IWICBitmapFrameDecode>& frame);

/// The calls that a stream has had so far.
[[nodiscard]] uint32_t Calls(const TestStream& stream);
