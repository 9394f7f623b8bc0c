#include "support/display/ReferenceDisplay.h"

#include "support/display/ReferenceRange.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

using namespace Tav::Imaging::RawImage;

namespace {

/// The sample bytes of the frame without gaps; nothing when the stream does not hold them.
std::optional<Bytes> PackedSamples(const StoredFrame& frame)
{
    const uint64_t sampleBytes = BytesPerPixel(frame.pixelType);
    const uint64_t count = sampleBytes * frame.width * frame.height;
    const bool packed = frame.xStride == 0 && frame.yStride == 0;
    const uint64_t needed = packed && frame.pixelType == PixelType::UInt4 ? count / 2 : count;
    if (needed > 0xFFFFFFFF || needed > frame.bytes.size())
        return std::nullopt;

    Bytes samples;
    if (packed)
    {
        for (uint64_t i = 0; i < needed; ++i)
            samples.push_back(frame.bytes[i]);
        return samples;
    }
    for (uint64_t y = 0; y < frame.height; ++y)
        for (uint64_t x = 0; x < frame.width; ++x)
            for (uint64_t i = 0; i < sampleBytes; ++i)
                samples.push_back(frame.bytes[(x * frame.xStride + y * frame.yStride + i) % count]);
    return samples;
}

/// The number in `size` bytes at `offset`.
uint64_t NumberAt(const Bytes& bytes, size_t offset, size_t size, ByteOrder order)
{
    uint64_t number = 0;
    for (size_t i = 0; i < size; ++i)
    {
        const size_t fromMostSignificant = order == ByteOrder::BigEndian ? i : size - 1 - i;
        number = number * 256 + bytes[offset + fromMostSignificant];
    }
    return number;
}

double Half(uint64_t code)
{
    const auto exponent = static_cast<int>((code >> 10) & 31);
    if (exponent == 31)
        return std::numeric_limits<double>::infinity();
    const double fraction = static_cast<double>(code & 1023) * 0.0009765625;
    const double size = std::ldexp(1.0, exponent - 15) * (exponent != 0 ? fraction + 1 : fraction);
    return (code & 0x8000) != 0 ? -size : size;
}

double Single(uint64_t code)
{
    return std::bit_cast<float>(static_cast<uint32_t>(code));
}

double Double(uint64_t code)
{
    return std::bit_cast<double>(code);
}

double Magnitude(double real, double imaginary)
{
    return std::sqrt(real * real + imaginary * imaginary);
}

Bytes ScaledToBytes(const SampledFrame& image, bool flip)
{
    const double step = static_cast<double>(image.maximum - image.minimum) / 255.0;
    Bytes picture;
    for (size_t y = 0; y < image.height; ++y)
    {
        const size_t row = flip ? image.height - 1 - y : y;
        for (size_t x = 0; x < image.width; ++x)
        {
            const double sample = image.samples[row * image.width + x];
            const double value = (sample - static_cast<double>(image.minimum)) / step;
            if (std::isnan(value) || value < 0)
                picture.push_back(0);
            else if (value > 255.0)
                picture.push_back(255);
            else
                picture.push_back(static_cast<uint8_t>(value));
        }
    }
    return picture;
}

/// The last steps for every sample that is wider than a byte.
DisplayedFrame ShowSamplesInRange(SampledFrame& image, const StoredFrame& frame)
{
    const ReferenceRange range = ReferenceRangeOf(image);
    image.minimum = range.low;
    image.maximum = range.high;
    return {true, ScaledToBytes(image, frame.flipVertical), range.lines};
}

DisplayedFrame ShowIntegers(const StoredFrame& frame, const std::vector<int64_t>& values, bool isSigned)
{
    int64_t minimum = isSigned ? 2147483647 : 4294967295;
    int64_t maximum = isSigned ? -2147483648LL : 0;
    for (const int64_t value : values)
    {
        if (value < minimum)
            minimum = value;
        if (value > maximum)
            maximum = value;
    }
    const int64_t origin = isSigned ? minimum : 0;

    SampledFrame image;
    image.width = frame.width;
    image.height = frame.height;
    image.minimum = static_cast<uint32_t>(minimum - origin);
    image.maximum = static_cast<uint32_t>(maximum - origin);
    for (const int64_t value : values)
        image.samples.push_back(static_cast<uint32_t>(value - origin));
    return ShowSamplesInRange(image, frame);
}

/// The whole part of a number modulo 2^32; 0 for what is not finite.
uint32_t WholePart(double number)
{
    if (!std::isfinite(number))
        return 0;
    double remainder = std::fmod(std::trunc(number), 4294967296.0);
    if (remainder < 0)
        remainder += 4294967296.0;
    return static_cast<uint32_t>(remainder);
}

DisplayedFrame ShowNumbers(const StoredFrame& frame, const std::vector<double>& values, bool canForce32Bit)
{
    double minimum = 1.7976931348623157e308;
    double maximum = 2.2250738585072014e-308;
    for (const double value : values)
    {
        if (value < minimum)
            minimum = value;
        if (value > maximum)
            maximum = value;
    }
    const double range = maximum - minimum;
    const bool force32Bit = canForce32Bit && frame.fileType == FileType::Raw;
    const double full = WholePart(range) > 65535 || force32Bit ? 4294967295.0 : 65535.0;
    const double scale = full / range;

    SampledFrame image;
    image.width = frame.width;
    image.height = frame.height;
    image.minimum = 0;
    image.maximum = WholePart(scale * range);
    for (const double value : values)
    {
        const double product = (value - minimum) * scale;
        if (std::isnan(product))
            image.samples.push_back(0);
        else if (product > full)
            image.samples.push_back(static_cast<uint32_t>(full));
        else
            image.samples.push_back(static_cast<uint32_t>(product));
    }
    return ShowSamplesInRange(image, frame);
}

void StretchContrastPlainly(Bytes& picture)
{
    std::vector<double> shares(256);
    for (const uint8_t value : picture)
        shares[value] += 1;
    for (double& share : shares)
        share /= static_cast<double>(picture.size());

    int low = 0;
    int high = 255;
    double sum = 0;
    for (int bin = 255; bin >= 1; --bin)
    {
        sum += shares[static_cast<size_t>(bin)];
        if (sum > 0.99)
        {
            low = bin - 1;
            break;
        }
    }
    sum = 0;
    for (int bin = 0; bin <= 255; ++bin)
    {
        sum += shares[static_cast<size_t>(bin)];
        if (sum > 0.99)
        {
            high = bin;
            break;
        }
    }
    if (high - low == 255 || high <= low)
        return;
    for (uint8_t& value : picture)
    {
        const double stretched = (value - low) * (255.0 / (high - low));
        value = stretched < 0 ? 0 : stretched > 255.0 ? 255 : static_cast<uint8_t>(stretched);
    }
}

DisplayedFrame ShowNibbles(const StoredFrame& frame, const Bytes& samples)
{
    Bytes picture(size_t{frame.width} * frame.height);
    if (frame.flipVertical)
    {
        const size_t rowBytes = frame.width / 2;
        for (size_t y = 0; y < frame.height; ++y)
            for (size_t i = 0; i < rowBytes; ++i)
            {
                const uint8_t pair = samples[(frame.height - 1 - y) * rowBytes + i];
                picture[y * frame.width + 2 * i] = static_cast<uint8_t>((pair & 15) * 17);
                picture[y * frame.width + 2 * i + 1] = static_cast<uint8_t>((pair >> 4) * 17);
            }
    }
    else
    {
        for (size_t i = 0; i < picture.size() / 2; ++i)
        {
            picture[2 * i] = static_cast<uint8_t>((samples[i] & 15) * 17);
            picture[2 * i + 1] = static_cast<uint8_t>((samples[i] >> 4) * 17);
        }
    }
    StretchContrastPlainly(picture);
    return {true, picture, {}};
}

/// Eight-bit samples, and the three-byte samples that take the same way.
DisplayedFrame ShowBytes(const StoredFrame& frame, const Bytes& samples)
{
    Bytes picture = samples;
    if (frame.flipVertical)
    {
        picture.assign(samples.size(), 0);
        for (size_t y = 0; y < frame.height; ++y)
            for (size_t x = 0; x < frame.width; ++x)
                picture[y * frame.width + x] = samples[(frame.height - 1 - y) * frame.width + x];
    }
    if (picture.size() == size_t{frame.width} * frame.height)
        StretchContrastPlainly(picture);
    return {true, picture, {}};
}

DisplayedFrame ShowSignedBytes(const StoredFrame& frame, const Bytes& samples)
{
    Bytes shifted;
    for (size_t y = 0; y < frame.height; ++y)
        for (size_t x = 0; x < frame.width; ++x)
        {
            const size_t row = frame.flipVertical ? frame.height - 1 - y : y;
            shifted.push_back(static_cast<uint8_t>(samples[row * frame.width + x] + 128));
        }

    Lines lines;
    if (frame.fileType == FileType::Mrc)
    {
        size_t zeros = 0;
        for (const uint8_t sample : samples)
            zeros += sample == 0 ? 1 : 0;
        bool isUnsigned = static_cast<double>(zeros) > 0.25 * static_cast<double>(samples.size());
        for (size_t y = 0; y < frame.height; ++y)
            for (size_t x = 1; x < frame.width; ++x)
            {
                const int here = shifted[y * frame.width + x];
                const int before = shifted[y * frame.width + x - 1];
                isUnsigned = isUnsigned || std::abs(here - before) > 127;
            }
        if (isUnsigned)
        {
            lines.emplace_back("[Lumora] MRC: The pixel format is UInt8 while the MRC header specifies Int8 "
                               "(type 0)");
            for (uint8_t& value : shifted)
                value = static_cast<uint8_t>(value + 128);
        }
    }
    StretchContrastPlainly(shifted);
    return {true, shifted, lines};
}

DisplayedFrame ShowFourChannels(const Bytes& samples)
{
    Bytes picture;
    for (size_t i = 0; i < samples.size(); ++i)
        if (i % 4 != 3)
            picture.push_back(samples[i]);
    return {true, picture, {}};
}

DisplayedFrame ShowSamples(const StoredFrame& frame, const Bytes& samples)
{
    std::vector<int64_t> integers;
    std::vector<double> numbers;
    const size_t sampleBytes = BytesPerPixel(frame.pixelType);
    const auto little = ByteOrder::LittleEndian;
    switch (frame.pixelType)
    {
    case PixelType::UInt4:
        return ShowNibbles(frame, samples);
    case PixelType::UInt8:
    case PixelType::RGB24:
        return ShowBytes(frame, samples);
    case PixelType::Int8:
        return ShowSignedBytes(frame, samples);
    case PixelType::RGBA32:
        return ShowFourChannels(samples);
    case PixelType::UInt16:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            integers.push_back(static_cast<int64_t>(NumberAt(samples, i, 2, frame.byteOrder)));
        return ShowIntegers(frame, integers, false);
    case PixelType::UInt32:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            integers.push_back(static_cast<int64_t>(NumberAt(samples, i, 4, little)));
        return ShowIntegers(frame, integers, false);
    case PixelType::Int16:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            integers.push_back(static_cast<int16_t>(NumberAt(samples, i, 2, frame.byteOrder)));
        return ShowIntegers(frame, integers, true);
    case PixelType::Int32:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            integers.push_back(static_cast<int32_t>(NumberAt(samples, i, 4, little)));
        return ShowIntegers(frame, integers, true);
    case PixelType::Float16:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            numbers.push_back(Half(NumberAt(samples, i, 2, frame.byteOrder)));
        return ShowNumbers(frame, numbers, true);
    case PixelType::Float32:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            numbers.push_back(Single(NumberAt(samples, i, 4, frame.byteOrder)));
        return ShowNumbers(frame, numbers, true);
    case PixelType::Double64:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            numbers.push_back(Double(NumberAt(samples, i, 8, little)));
        return ShowNumbers(frame, numbers, true);
    case PixelType::Complex64:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            numbers.push_back(Magnitude(Single(NumberAt(samples, i, 4, little)),
                                        Single(NumberAt(samples, i + 4, 4, little))));
        return ShowNumbers(frame, numbers, false);
    case PixelType::Complex128:
        for (size_t i = 0; i < samples.size(); i += sampleBytes)
            numbers.push_back(Magnitude(Double(NumberAt(samples, i, 8, little)),
                                        Double(NumberAt(samples, i + 8, 8, little))));
        return ShowNumbers(frame, numbers, false);
    case PixelType::Unknown:
        break;
    }
    return {};
}

} // namespace

DisplayedFrame ReferenceDisplay(const StoredFrame& frame)
{
    if (frame.width == 0 || frame.height == 0 || frame.width >= 65536 || frame.height >= 65536)
        return {false, {}, {"[Lumora] Invalid resolution"}};

    Lines lines;
    if (frame.byteOrder == ByteOrder::BigEndian)
        lines.emplace_back("[Lumora] Big endian byte ordering");
    if (BytesPerPixel(frame.pixelType) == 0)
        return {false, {}, lines};

    const std::optional<Bytes> samples = PackedSamples(frame);
    if (!samples)
    {
        lines.emplace_back("[Lumora] Failed to read the image data into memory");
        return {false, {}, lines};
    }
    DisplayedFrame displayed = ShowSamples(frame, *samples);
    displayed.lines.insert(displayed.lines.begin(), lines.begin(), lines.end());
    return displayed;
}
