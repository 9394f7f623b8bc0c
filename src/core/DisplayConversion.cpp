#include "core/CodeFrame.h"
#include "core/Diagnostics.h"
#include "core/DisplayScaling.h"
#include "core/RawImageBase.h"
#include "core/RescaleToUInt32.h"
#include "core/SampleDecoding.h"
#include "core/StreamReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

using Bytes = std::vector<uint8_t>;

/// Copies rows of `rowBytes` into the picture, the frame's last row first when flipped.
void CopyRows(const Bytes& frame, Bytes& picture, size_t rowBytes, size_t rows, bool flip)
{
    for (size_t row = 0; row < rows; ++row)
    {
        const size_t source = (flip ? rows - 1 - row : row) * rowBytes;
        std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(source), rowBytes,
                    picture.begin() + static_cast<std::ptrdiff_t>(row * rowBytes));
    }
}

/// The frame's stored samples of `sampleBytes` each, decoded one by one.
template <typename T, size_t sampleBytes, typename Decode>
class StoredImage final : public Image<T>
{
public:
    StoredImage(const RawImageBase& image, const Bytes& frameBytes, Decode sampleDecode)
        : Image<T>(image.width, image.height), frame(frameBytes), decode(std::move(sampleDecode))
    {}

    void Load(size_t first, std::span<T> block) const override
    {
        const uint8_t* const stored = frame.data() + first * sampleBytes;
        for (size_t i = 0; i < block.size(); ++i)
            block[i] = decode(stored + i * sampleBytes);
    }

private:
    const Bytes& frame;
    Decode decode;
};

/// Turns one frame's samples into the display picture.
class FrameConverter
{
public:
    FrameConverter(const RawImageBase& image, Bytes& frame, Bytes& picture)
        : image(image), frame(frame), picture(picture), pixelCount(size_t{image.width} * image.height)
    {}

    void ConvertUInt4()
    {
        picture.resize(pixelCount);
        const auto unpack = [this](size_t source, size_t target, size_t pairs) {
            for (size_t i = 0; i < pairs; ++i)
            {
                const uint8_t pair = frame[source + i];
                picture[target + 2 * i] = static_cast<uint8_t>((pair & 0x0F) * 17);
                picture[target + 2 * i + 1] = static_cast<uint8_t>((pair >> 4) * 17);
            }
        };
        if (image.flipVertical)
        {
            // A flipped row begins at a whole byte; the odd pixel at its end is lost.
            const size_t rowBytes = image.width / 2;
            for (size_t row = 0; row < image.height; ++row)
                unpack((image.height - 1 - row) * rowBytes, row * image.width, rowBytes);
        }
        else
        {
            unpack(0, 0, pixelCount / 2);
        }
        StretchContrast(picture, pixelCount);
    }

    /// Also for RGB24, whose rows are deliberately taken for single bytes when flipped.
    void ConvertUInt8()
    {
        const size_t pictureBytes = pixelCount * BytesPerPixel(image.pixelType);
        if (image.flipVertical)
        {
            picture.resize(pictureBytes);
            CopyRows(frame, picture, image.width, image.height, true);
        }
        else
        {
            // The frame is the picture, but for what a strided read has left behind it.
            frame.resize(pictureBytes);
            picture = std::move(frame);
        }
        StretchContrast(picture, pixelCount);
    }

    void ConvertInt8()
    {
        const size_t zeroBytes = static_cast<size_t>(
            std::count(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(pixelCount), uint8_t{0}));
        picture.resize(pixelCount);
        CopyRows(frame, picture, image.width, image.height, image.flipVertical);
        ShiftBytes();
        // Many old files hold unsigned bytes where the header says signed: their dark pixels are zero and
        // their bright ones jump by more than half the range when they are shifted.
        if (image.fileType == FileType::Mrc &&
            (static_cast<double>(zeroBytes) / static_cast<double>(pixelCount) > 0.25 || HasJump()))
        {
            WriteDiagnostic(L"MRC: ",
                            L"The pixel format is UInt8 while the MRC header specifies Int8 (type 0)");
            ShiftBytes();
        }
        StretchContrast(picture, pixelCount);
    }

    void ConvertInteger16(CodeFrame::Order order)
    {
        CodeFrame{frame, image.width, image.height, order}.ScaleToDisplayBytes(picture, image.flipVertical);
    }

    void ConvertUInt32()
    {
        const auto decode = [](const uint8_t* bytes) { return LoadLittleEndian<uint32_t>(bytes); };
        StoredImage<unsigned int, 4, decltype(decode)> samples{image, frame, decode};
        FindRange(samples, std::numeric_limits<uint32_t>::max(), 0);
        ScaleByDynamicRange(samples, picture, image.flipVertical);
    }

    void ConvertInt32()
    {
        const auto decode = [](const uint8_t* bytes) { return LoadLittleEndian<int32_t>(bytes); };
        StoredImage<int, 4, decltype(decode)> samples{image, frame, decode};
        FindRange(samples, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min());
        DistanceImage distances{samples};
        ScaleByDynamicRange(distances, picture, image.flipVertical);
    }

    template <size_t sampleBytes, typename Decode>
    void ConvertFloating(bool force32Bit, Decode decode)
    {
        StoredImage<double, sampleBytes, Decode> samples{image, frame, std::move(decode)};
        // The maximum starts at the smallest positive number: a frame of negative samples keeps it.
        FindRange(samples, std::numeric_limits<double>::max(), std::numeric_limits<double>::min());
        const RescaleToUInt32 rescale{samples, force32Bit};
        if (rescale.FitsIn16Bit())
        {
            CodeFrame{samples, rescale, frame}.ScaleToDisplayBytes(picture, image.flipVertical);
        }
        else
        {
            RescaledImage quantised{samples, rescale};
            ScaleByDynamicRange(quantised, picture, image.flipVertical);
        }
    }

    void ConvertRgba32()
    {
        picture.resize(pixelCount * 3);
        for (size_t pixel = 0; pixel < pixelCount; ++pixel)
        {
            for (size_t channel = 0; channel < 3; ++channel)
                picture[pixel * 3 + channel] = frame[pixel * 4 + channel];
        }
    }

private:
    template <typename T>
    static void FindRange(Image<T>& samples, std::type_identity_t<T> lowStart,
                          std::type_identity_t<T> highStart)
    {
        samples.minimum = lowStart;
        samples.maximum = highStart;
        IncludeSamples(samples);
    }

    /// Between signed and unsigned bytes, either way.
    void ShiftBytes()
    {
        for (uint8_t& byte : picture)
            byte ^= 0x80;
    }

    [[nodiscard]] bool HasJump() const
    {
        int widest = 0;
        for (size_t row = 0; row < image.height && widest <= 127; ++row)
        {
            const uint8_t* const pixels = picture.data() + row * image.width;
            for (size_t column = 1; column < image.width; ++column)
                widest = std::max(widest, std::abs(pixels[column] - pixels[column - 1]));
        }
        return widest > 127;
    }

    const RawImageBase& image;
    Bytes& frame;
    Bytes& picture;
    size_t pixelCount;
};

float Float32FromBits(uint32_t bits) noexcept
{
    return std::bit_cast<float>(bits);
}

template <typename Real>
double Magnitude(const uint8_t* bytes) noexcept
{
    const double real = LoadLittleEndian<Real>(bytes);
    const double imaginary = LoadLittleEndian<Real>(bytes + sizeof(Real));
    return std::sqrt(real * real + imaginary * imaginary);
}

/// Every half-precision code's value; most frames repeat few of them.
std::vector<float> HalfTable(ByteOrder order)
{
    std::vector<float> values(65536);
    for (uint32_t stored = 0; stored < values.size(); ++stored)
    {
        const auto code = static_cast<uint16_t>(stored);
        values[stored] = DecodeHalf(order == ByteOrder::BigEndian ? __builtin_bswap16(code) : code);
    }
    return values;
}

} // namespace

float DecodeHalf(uint16_t code) noexcept
{
    const int exponent = (code >> 10) & 31;
    if (exponent == 31)
        return std::numeric_limits<float>::infinity();
    const float fraction = static_cast<float>(code & 1023) * 0.0009765625f;
    const float magnitude = std::ldexp(exponent != 0 ? fraction + 1.0f : fraction, exponent - 15);
    return (code & 0x8000) != 0 ? -magnitude : magnitude;
}

bool RawImageBase::ConvertToDisplay(IStream* stream, uint64_t streamSize, uint64_t dataOffset)
{
    if (readMode == readModeHeader)
        return true;
    if (width == 0 || height == 0 || width >= 65536 || height >= 65536)
    {
        WriteDiagnostic(L"Invalid resolution");
        return false;
    }
    if (byteOrder == ByteOrder::BigEndian)
        WriteDiagnostic(L"Big endian byte ordering");
    if (BytesPerPixel(pixelType) == 0)
        return false;

    Bytes frame;
    if (!ReadFramePixels(frame, stream, streamSize, dataOffset))
    {
        WriteDiagnostic(L"Failed to read the image data into memory");
        return false;
    }

    FrameConverter converter{*this, frame, displayPixels};
    const bool isBigEndian = byteOrder == ByteOrder::BigEndian;
    const bool force32Bit = fileType == FileType::Raw;
    switch (pixelType)
    {
    case PixelType::UInt4:
        converter.ConvertUInt4();
        return true;
    case PixelType::UInt8:
    case PixelType::RGB24:
        converter.ConvertUInt8();
        return true;
    case PixelType::Int8:
        converter.ConvertInt8();
        return true;
    case PixelType::UInt16:
        converter.ConvertInteger16(isBigEndian ? [](uint16_t code) { return __builtin_bswap16(code); }
                                               : [](uint16_t code) { return code; });
        return true;
    case PixelType::Int16:
        // With the sign bit turned, signed samples keep their order as unsigned ones.
        converter.ConvertInteger16(
            isBigEndian
                ? [](uint16_t code) { return static_cast<uint16_t>(__builtin_bswap16(code) ^ 0x8000); }
                : [](uint16_t code) { return static_cast<uint16_t>(code ^ 0x8000); });
        return true;
    // 32-bit integers and everything wider than Float32 is little-endian in every file that has them.
    case PixelType::UInt32:
        converter.ConvertUInt32();
        return true;
    case PixelType::Int32:
        converter.ConvertInt32();
        return true;
    case PixelType::Float16:
        converter.ConvertFloating<2>(force32Bit, [values = HalfTable(byteOrder)](const uint8_t* bytes) {
            return values[LoadLittleEndian<uint16_t>(bytes)];
        });
        return true;
    case PixelType::Float32:
        if (isBigEndian)
            converter.ConvertFloating<4>(
                force32Bit, [](const uint8_t* bytes) { return Float32FromBits(LoadBigEndian32(bytes)); });
        else
            converter.ConvertFloating<4>(force32Bit,
                                         [](const uint8_t* bytes) { return LoadLittleEndian<float>(bytes); });
        return true;
    case PixelType::Double64:
        converter.ConvertFloating<8>(force32Bit,
                                     [](const uint8_t* bytes) { return LoadLittleEndian<double>(bytes); });
        return true;
    case PixelType::Complex64:
        converter.ConvertFloating<8>(false, [](const uint8_t* bytes) { return Magnitude<float>(bytes); });
        return true;
    case PixelType::Complex128:
        converter.ConvertFloating<16>(false, [](const uint8_t* bytes) { return Magnitude<double>(bytes); });
        return true;
    case PixelType::RGBA32:
        converter.ConvertRgba32();
        return true;
    case PixelType::Unknown:
        break;
    }
    return false;
}

bool RawImageBase::ReadFramePixels(std::vector<uint8_t>& samples, IStream* stream, uint64_t streamSize,
                                   uint64_t dataOffset) const
{
    const uint64_t sampleBytes = BytesPerPixel(pixelType);
    const uint64_t frameBytes = sampleBytes * width * height;
    const bool isPacked = xStride == 0 && yStride == 0;

    uint64_t bytesToRead = pixelType == PixelType::UInt4 ? frameBytes / 2 : frameBytes;
    if (!isPacked)
    {
        // Everything to the end of the stream, in 32 bits; a frame must fit in it.
        bytesToRead = static_cast<uint32_t>(streamSize - dataOffset);
        if (bytesToRead < frameBytes)
            return false;
    }
    if (bytesToRead > std::numeric_limits<uint32_t>::max() || dataOffset > streamSize ||
        bytesToRead > streamSize - dataOffset)
        return false;

    if (samples.size() < bytesToRead)
        samples.resize(bytesToRead);
    if (!ReadStreamAt(stream, dataOffset, samples.data(), static_cast<uint32_t>(bytesToRead)))
        return false;
    if (isPacked)
        return true;

    const std::vector<uint8_t> stored(samples.begin(),
                                      samples.begin() + static_cast<std::ptrdiff_t>(frameBytes));
    auto target = samples.begin();
    for (uint64_t y = 0; y < height; ++y)
    {
        for (uint64_t x = 0; x < width; ++x)
        {
            // A layout that reaches beyond the first frameBytes bytes wraps to their start.
            const uint64_t position = (x * xStride + y * yStride) % frameBytes;
            for (uint64_t byte = 0; byte < sampleBytes; ++byte)
                *target++ = stored[(position + byte) % frameBytes];
        }
    }
    return true;
}

} // namespace Tav::Imaging::RawImage
