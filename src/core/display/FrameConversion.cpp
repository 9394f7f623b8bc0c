#include "core/display/FrameConversion.h"

#include "core/Diagnostics.h"
#include "core/display/BytePasses.h"
#include "core/display/DisplayMap.h"
#include "core/display/DisplayScaling.h"
#include "core/display/DynamicRangeCalculator.h"
#include "core/display/Histogram.h"
#include "core/display/SampleRange.h"
#include "core/samples/RescaleToUInt32.h"
#include "core/samples/SampleDecoding.h"
#include "core/samples/StoredImage.h"
#include "core/samples/Vectorised.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace Tav::Imaging::RawImage {

namespace {

template <typename Number>
struct LoadNumber
{
    Number operator()(const uint8_t* bytes) const noexcept { return LoadLittleEndian<Number>(bytes); }
};

/// Turns one frame's samples into the display picture.
class FrameConverter
{
public:
    FrameConverter(const RawImageBase& image, FrameBytes& frame)
        : image(image), frame(frame), pixelCount(size_t{image.width} * image.height)
    {}

    void ConvertUInt4()
    {
        FrameBytes picture(pixelCount);
        const auto unpack = [&](size_t source, size_t target, size_t pairs) {
            Vectorised([=, from = frame.data() + source, to = picture.data() + target] {
                for (size_t i = 0; i < pairs; ++i)
                {
                    to[2 * i] = static_cast<uint8_t>((from[i] & 0x0F) * 17);
                    to[2 * i + 1] = static_cast<uint8_t>((from[i] >> 4) * 17);
                }
            });
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
        frame = std::move(picture);
        StretchContrast(frame, pixelCount);
    }

    /// Also converts RGB24. If such a frame is flipped, its rows are copied as if a pixel had one byte, so
    /// two thirds of the picture stay black.
    void ConvertUInt8()
    {
        frame.Truncate(pixelCount * BytesPerPixel(image.pixelType));
        if (image.flipVertical)
        {
            FlipRows(frame.data(), image.width, image.height);
            std::fill(frame.data() + pixelCount, frame.data() + frame.size(), uint8_t{0});
        }
        StretchContrast(frame, pixelCount);
    }

    void ConvertInt8()
    {
        frame.Truncate(pixelCount);
        const bool isOldMrc = image.fileType == FileType::Mrc;
        const auto zeros = static_cast<double>(isOldMrc ? ZeroBytes(frame.data(), pixelCount) : 0);
        if (image.flipVertical)
            FlipRows(frame.data(), image.width, image.height);
        ShiftBytes(frame.data(), pixelCount);
        // Many old files hold unsigned bytes where the header says signed: their dark pixels are zero and
        // their bright ones jump by more than half the range when they are shifted.
        if (image.fileType == FileType::Mrc && (zeros / static_cast<double>(pixelCount) > 0.25 ||
                                                HasJump(frame.data(), image.width, image.height)))
        {
            WriteDiagnostic(L"MRC: ",
                            L"The pixel format is UInt8 while the MRC header specifies Int8 (type 0)");
            ShiftBytes(frame.data(), pixelCount);
        }
        StretchContrast(frame, pixelCount);
    }

    /// If the sign bit is inverted, signed samples have the same order as unsigned ones.
    void ConvertInteger16(uint16_t turned)
    {
        const Range<uint16_t> range = CodeRange(turned);
        Histogram histogram{size_t{range.high} - range.low + 1, pixelCount};
        histogram.Add(frame.data(), pixelCount, turned, range.low);
        ReplaceCodes(MapOf(histogram.Sum()), turned, range.low);
    }

    void ConvertUInt32()
    {
        StoredImage<unsigned int, 4, LoadNumber<uint32_t>> samples{
            image.width, image.height, frame.data(), {}};
        SetRange(samples,
                 Widened<uint32_t>({std::numeric_limits<uint32_t>::max(), 0}, frame.data(), pixelCount));
        ScaleByDynamicRange(samples, frame, image.flipVertical);
    }

    void ConvertInt32()
    {
        StoredImage<int, 4, LoadNumber<int32_t>> samples{image.width, image.height, frame.data(), {}};
        SetRange(samples,
                 Widened<int32_t>({std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()},
                                  frame.data(), pixelCount));
        DistanceImage distances{samples};
        ScaleByDynamicRange(distances, frame, image.flipVertical);
    }

    template <typename Real>
    void ConvertFloating(bool force32Bit)
    {
        StoredImage<double, sizeof(Real), LoadNumber<Real>> samples{
            image.width, image.height, frame.data(), {}};
        SetRange(samples, RealRange<Real>(frame.data(), pixelCount));
        const RescaleToUInt32 rescale{samples, force32Bit};
        if (rescale.FitsIn16Bit())
            ConvertQuantised<Real>(rescale);
        else
            ConvertWide(samples, rescale);
    }

    /// Half-precision numbers have only 65536 codes, so the arithmetic is done once for each code.
    void ConvertFloat16(bool force32Bit)
    {
        const Range<uint16_t> range = CodeRange(0);
        Histogram histogram{size_t{range.high} - range.low + 1, pixelCount};
        histogram.Add(frame.data(), pixelCount, 0, range.low);
        const std::span<const uint32_t> counts = histogram.Sum();

        // A code that does not occur has the value 0 here, and counts for nothing.
        std::vector<float> values(65536);
        std::vector<float> present;
        for (size_t code = range.low; code <= range.high; ++code)
        {
            if (counts[code - range.low] == 0)
                continue;
            values[code] = DecodeHalf(static_cast<uint16_t>(code));
            present.push_back(values[code]);
        }
        const auto decode = [table = values.data()](const uint8_t* bytes) {
            return table[LoadLittleEndian<uint16_t>(bytes)];
        };
        StoredImage<double, 2, decltype(decode)> samples{image.width, image.height, frame.data(), decode};
        SetRange(samples, RealRange<float>(reinterpret_cast<const uint8_t*>(present.data()), present.size()));
        const RescaleToUInt32 rescale{samples, force32Bit};
        if (!rescale.FitsIn16Bit())
            return ConvertWide(samples, rescale);

        std::vector<uint32_t> quantisedCounts(65536);
        for (size_t code = range.low; code <= range.high; ++code)
            quantisedCounts[Quantised(rescale, values[code])] += counts[code - range.low];
        const DisplayMap map = MapOf(std::span(quantisedCounts).first(size_t{rescale.Highest()} + 1));
        std::vector<uint8_t> bytes(counts.size());
        for (size_t code = range.low; code <= range.high; ++code)
            bytes[code - range.low] = map.ByteOf(Quantised(rescale, values[code]));
        ReplaceCodes(DisplayMap{0, std::move(bytes)}, 0, range.low);
    }

    void ConvertRgba32()
    {
        uint8_t* const bytes = frame.data();
        // Each pixel's fourth byte is written over by the next pixel, and that of the last one is cut off.
        for (size_t pixel = 0; pixel < pixelCount; ++pixel)
        {
            const auto colours = LoadLittleEndian<uint32_t>(bytes + 4 * pixel);
            std::memcpy(bytes + 3 * pixel, &colours, sizeof(colours));
        }
        frame.Truncate(3 * pixelCount);
    }

private:
    template <typename T>
    static void SetRange(Image<T>& samples, const Range<T>& range)
    {
        samples.minimum = range.low;
        samples.maximum = range.high;
    }

    /// The smallest and the largest of the frame's 16-bit words, with the bits of `turned` turned.
    [[nodiscard]] Range<uint16_t> CodeRange(uint16_t turned) const
    {
        if (turned == 0)
            return Widened<uint16_t>({0xFFFF, 0}, frame.data(), pixelCount);
        const Range<int16_t> range = Widened<int16_t>({0x7FFF, -0x8000}, frame.data(), pixelCount);
        return {static_cast<uint16_t>(range.low ^ turned), static_cast<uint16_t>(range.high ^ turned)};
    }

    /// The range of real numbers. The maximum starts at the smallest positive number: a frame of negative
    /// samples keeps it.
    template <typename Real>
    [[nodiscard]] static Range<double> RealRange(const uint8_t* stored, size_t count)
    {
        constexpr Real infinity = std::numeric_limits<Real>::infinity();
        const auto [low, high] = Widened<Real>({infinity, -infinity}, stored, count);
        return {std::min<double>(low, std::numeric_limits<double>::max()),
                std::max<double>(high, std::numeric_limits<double>::min())};
    }

    void ConvertWide(const Image<double>& samples, const RescaleToUInt32& rescale)
    {
        RescaledImage quantised{samples, rescale};
        ScaleByDynamicRange(quantised, frame, image.flipVertical);
    }

    static uint16_t Quantised(const RescaleToUInt32& rescale, double sample)
    {
        return static_cast<uint16_t>(static_cast<int32_t>(rescale(sample)));
    }

    /// Quantises the stored samples to codes of 16 bits and shows these. The codes are written over the frame
    /// from its beginning on: its samples are wider, and are read before a code reaches them.
    template <typename Real>
    void ConvertQuantised(const RescaleToUInt32& rescale)
    {
        Histogram histogram{65536, pixelCount};
        std::array<uint16_t, blockSamples> codes;
        for (size_t done = 0; done < pixelCount; done += codes.size())
        {
            const size_t size = std::min(codes.size(), pixelCount - done);
            Vectorised([=, from = frame.data() + sizeof(Real) * done, to = codes.data()] {
                for (size_t i = 0; i < size; ++i)
                    to[i] = Quantised(rescale, LoadLittleEndian<Real>(from + sizeof(Real) * i));
            });
            const size_t converted = done + size;
            Prefetch(frame.data() + sizeof(Real) * converted,
                     sizeof(Real) * std::min(codes.size(), pixelCount - converted));
            const auto* const stored = reinterpret_cast<const uint8_t*>(codes.data());
            histogram.Add(stored, size);
            std::memcpy(frame.data() + 2 * done, stored, 2 * size);
        }
        ReplaceCodes(MapOf(histogram.Sum().first(size_t{rescale.Highest()} + 1)), 0, 0);
    }

    /// The display bytes of codes, from how often each occurs.
    [[nodiscard]] DisplayMap MapOf(std::span<const uint32_t> counts) const
    {
        const auto highest = static_cast<uint32_t>(counts.size() - 1);
        DynamicRangeCalculator calculator{0, highest};
        calculator.ComputeExactRange(counts, pixelCount, 0, highest);
        return DisplayMap::OfRange(calculator.low, calculator.high);
    }

    /// Writes the display bytes of 16-bit words over them.
    void ReplaceCodes(const DisplayMap& map, uint16_t turned, uint16_t lowest)
    {
        map.Replace(frame.data(), pixelCount, frame.data(), turned, lowest);
        frame.Truncate(pixelCount);
        if (image.flipVertical)
            FlipRows(frame.data(), image.width, image.height);
    }

    const RawImageBase& image;
    FrameBytes& frame;
    size_t pixelCount;
};

} // namespace

void ConvertFrame(RawImageBase& image, FrameBytes frame)
{
    const size_t pixelCount = size_t{image.width} * image.height;
    static_assert(!IsAlwaysLittleEndian(PixelType::UInt16) && !IsAlwaysLittleEndian(PixelType::Int16) &&
                  !IsAlwaysLittleEndian(PixelType::Float16) && !IsAlwaysLittleEndian(PixelType::Float32));
    if (image.byteOrder == ByteOrder::BigEndian)
    {
        if (image.pixelType == PixelType::Float32)
            SwapBytes<uint32_t>(frame.data(), pixelCount);
        else if (BytesPerPixel(image.pixelType) == 2)
            SwapBytes<uint16_t>(frame.data(), pixelCount);
    }

    FrameConverter converter{image, frame};
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
        converter.ConvertInteger16(0);
        break;
    case PixelType::Int16:
        converter.ConvertInteger16(0x8000);
        break;
    case PixelType::UInt32:
        converter.ConvertUInt32();
        break;
    case PixelType::Int32:
        converter.ConvertInt32();
        break;
    case PixelType::Float16:
        converter.ConvertFloat16(force32Bit);
        break;
    case PixelType::Float32:
        converter.ConvertFloating<float>(force32Bit);
        break;
    case PixelType::Double64:
        converter.ConvertFloating<double>(force32Bit);
        break;
    case PixelType::Complex64:
        ReplaceByMagnitudes<float>(frame.data(), pixelCount);
        converter.ConvertFloating<double>(false);
        break;
    case PixelType::Complex128:
        ReplaceByMagnitudes<double>(frame.data(), pixelCount);
        converter.ConvertFloating<double>(false);
        break;
    case PixelType::RGBA32:
        converter.ConvertRgba32();
        break;
    case PixelType::Unknown:
        return;
    }
    image.displayPixels = std::move(frame);
}

} // namespace Tav::Imaging::RawImage
