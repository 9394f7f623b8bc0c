#include "core/display/FrameConversion.h"

#include "core/Diagnostics.h"
#include "core/display/CodeFrame.h"
#include "core/display/DisplayScaling.h"
#include "core/samples/RescaleToUInt32.h"
#include "core/samples/SampleDecoding.h"
#include "core/samples/StoredImage.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

using Bytes = std::vector<uint8_t>;

/// Copies rows of `rowBytes` into the picture, the frame's last row first if `flip` is set.
void CopyRows(const Bytes& frame, Bytes& picture, size_t rowBytes, size_t rows, bool flip)
{
    for (size_t row = 0; row < rows; ++row)
    {
        const size_t source = (flip ? rows - 1 - row : row) * rowBytes;
        std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(source), rowBytes,
                    picture.begin() + static_cast<std::ptrdiff_t>(row * rowBytes));
    }
}

/// Turns one frame's samples into the display picture.
class FrameConverter
{
public:
    FrameConverter(RawImageBase& image, Bytes& frame)
        : image(image), frame(frame), picture(image.displayPixels),
          pixelCount(size_t{image.width} * image.height)
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

    /// Also converts RGB24. If such a frame is flipped, its rows are copied as if a pixel had one byte, so
    /// two thirds of the picture stay black.
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
            // The frame is the picture, without the bytes that a strided read has left after it.
            if (frame.size() > pictureBytes)
                frame = Bytes(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(pictureBytes));
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

    void ConvertInteger16(CodeFrame::Rank rank)
    {
        CodeFrame{frame, image.width, image.height, rank}.ScaleToDisplayBytes(picture, image.flipVertical);
    }

    void ConvertUInt32()
    {
        const auto decode = [](const uint8_t* bytes) { return LoadLittleEndian<uint32_t>(bytes); };
        StoredImage<unsigned int, 4, decltype(decode)> samples{image.width, image.height, frame, decode};
        FindRange(samples, std::numeric_limits<uint32_t>::max(), 0);
        ScaleByDynamicRange(samples, picture, image.flipVertical);
    }

    void ConvertInt32()
    {
        const auto decode = [](const uint8_t* bytes) { return LoadLittleEndian<int32_t>(bytes); };
        StoredImage<int, 4, decltype(decode)> samples{image.width, image.height, frame, decode};
        FindRange(samples, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min());
        DistanceImage distances{samples};
        ScaleByDynamicRange(distances, picture, image.flipVertical);
    }

    template <size_t sampleBytes, typename Decode>
    void ConvertFloating(bool force32Bit, Decode decode)
    {
        StoredImage<double, sampleBytes, Decode> samples{image.width, image.height, frame, std::move(decode)};
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

    /// Converts signed bytes to unsigned ones, or unsigned bytes to signed ones.
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

/// The value of every half-precision code. The table saves time because frames repeat their codes.
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

void ConvertFrame(RawImageBase& image, std::vector<uint8_t>& frame)
{
    FrameConverter converter{image, frame};
    const bool isBigEndian = image.byteOrder == ByteOrder::BigEndian;
    const bool force32Bit = image.fileType == FileType::Raw;
    switch (image.pixelType)
    {
    case PixelType::UInt4:
        converter.ConvertUInt4();
        break;
    case PixelType::UInt8:
    case PixelType::RGB24:
        converter.ConvertUInt8();
        break;
    case PixelType::Int8:
        converter.ConvertInt8();
        break;
    case PixelType::UInt16:
        converter.ConvertInteger16(isBigEndian ? [](uint16_t code) { return __builtin_bswap16(code); }
                                               : [](uint16_t code) { return code; });
        break;
    case PixelType::Int16:
        // If the sign bit is inverted, signed samples have the same order as unsigned ones.
        converter.ConvertInteger16(
            isBigEndian
                ? [](uint16_t code) { return static_cast<uint16_t>(__builtin_bswap16(code) ^ 0x8000); }
                : [](uint16_t code) { return static_cast<uint16_t>(code ^ 0x8000); });
        break;
    // 32-bit integers and everything wider than Float32 is little-endian in every file that has them.
    case PixelType::UInt32:
        converter.ConvertUInt32();
        break;
    case PixelType::Int32:
        converter.ConvertInt32();
        break;
    case PixelType::Float16:
        converter.ConvertFloating<2>(force32Bit, [values = HalfTable(image.byteOrder)](const uint8_t* bytes) {
            return values[LoadLittleEndian<uint16_t>(bytes)];
        });
        break;
    case PixelType::Float32:
        if (isBigEndian)
            converter.ConvertFloating<4>(
                force32Bit, [](const uint8_t* bytes) { return Float32FromBits(LoadBigEndian32(bytes)); });
        else
            converter.ConvertFloating<4>(force32Bit,
                                         [](const uint8_t* bytes) { return LoadLittleEndian<float>(bytes); });
        break;
    case PixelType::Double64:
        converter.ConvertFloating<8>(force32Bit,
                                     [](const uint8_t* bytes) { return LoadLittleEndian<double>(bytes); });
        break;
    case PixelType::Complex64:
        converter.ConvertFloating<8>(false, [](const uint8_t* bytes) { return Magnitude<float>(bytes); });
        break;
    case PixelType::Complex128:
        converter.ConvertFloating<16>(false, [](const uint8_t* bytes) { return Magnitude<double>(bytes); });
        break;
    case PixelType::RGBA32:
        converter.ConvertRgba32();
        break;
    case PixelType::Unknown:
        break;
    }
}

} // namespace Tav::Imaging::RawImage
