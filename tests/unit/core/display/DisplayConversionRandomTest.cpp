#include "core/samples/Vectorised.h"
#include "support/RandomSeed.h"
#include "support/display/FrameReader.h"
#include "support/display/TypeName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <tuple>

using namespace Tav::Imaging::RawImage;

namespace {

constexpr FileType fileTypes[] = {FileType::Ser, FileType::Mrc, FileType::Mrc2014, FileType::Raw};

/// Makes frames whose samples are spread in the ways that lead the display range along its different paths.
class FrameMaker
{
public:
    explicit FrameMaker(uint32_t seed) : random(seed) {}

    StoredFrame Next(PixelType type)
    {
        StoredFrame size;
        ChooseSize(size);
        return Next(type, size.width, size.height);
    }

    StoredFrame Next(PixelType type, uint32_t width, uint32_t height)
    {
        StoredFrame frame;
        frame.pixelType = type;
        frame.width = width;
        frame.height = height;
        frame.byteOrder = Chance(3) ? ByteOrder::BigEndian : ByteOrder::LittleEndian;
        frame.flipVertical = Chance(3);
        frame.fileType = fileTypes[Below(std::size(fileTypes))];
        const size_t sampleCount = size_t{frame.width} * frame.height;
        frame.bytes = Samples(type, sampleCount, frame.byteOrder);
        if (Chance(4))
            ChooseStrides(frame);
        if (Chance(3))
            frame.bytes.resize(frame.bytes.size() + Below(40), 0x5A);
        return frame;
    }

private:
    /// A number from 0 to count - 1.
    uint64_t Below(uint64_t count) { return std::uniform_int_distribution<uint64_t>{0, count - 1}(random); }
    bool Chance(uint64_t oneIn) { return Below(oneIn) == 0; }

    void ChooseSize(StoredFrame& frame)
    {
        const auto length = [this](uint64_t most) { return static_cast<uint32_t>(1 + Below(most)); };
        switch (Below(4))
        {
        case 0:
            frame.width = 1;
            frame.height = length(300);
            break;
        case 1:
            frame.width = length(5000);
            frame.height = 1;
            break;
        default:
            frame.width = length(80);
            frame.height = length(80);
        }
    }

    void ChooseStrides(StoredFrame& frame)
    {
        const uint32_t sampleBytes = BytesPerPixel(frame.pixelType);
        switch (Below(3))
        {
        case 0: // columns first
            frame.xStride = frame.height * sampleBytes;
            frame.yStride = sampleBytes;
            break;
        case 1: // with gaps, so that the frame's end wraps to its start
            frame.xStride = sampleBytes + static_cast<uint32_t>(Below(5));
            frame.yStride = frame.width * frame.xStride + static_cast<uint32_t>(Below(9));
            break;
        default:
            frame.xStride = static_cast<uint32_t>(Below(0x100000000));
            frame.yStride = static_cast<uint32_t>(Below(0x100000000));
        }
    }

    /// One number of a spread: all alike, two kinds, close together, far apart, or a few far from the rest.
    int64_t Spread(uint64_t kind, int64_t center, int64_t reach, int64_t outlier)
    {
        const auto offset = [this](int64_t width) {
            return static_cast<int64_t>(Below(static_cast<uint64_t>(2 * width + 1))) - width;
        };
        switch (kind)
        {
        case 0:
            return center;
        case 1:
            return Chance(2) ? center : outlier;
        case 2:
            return center + offset(reach);
        case 3:
            return offset(int64_t{1} << 31);
        case 4:
            return Chance(200) ? outlier + offset(reach) : center + offset(reach);
        default:
            return Chance(25) ? outlier + offset(reach) : center + offset(reach);
        }
    }

    Bytes Samples(PixelType type, size_t count, ByteOrder order)
    {
        // The wider types are little-endian in every file.
        const bool narrow = BitsPerPixel(type) <= 16 || type == PixelType::Float32;
        ByteWriter writer{narrow ? order : ByteOrder::LittleEndian};
        if (Chance(5))
        {
            for (size_t i = 0; i < count * BytesPerPixel(type); ++i)
                writer.Put(static_cast<uint8_t>(Below(256)));
            return std::move(writer.bytes);
        }

        const uint64_t kind = Below(6);
        const auto center = static_cast<int64_t>(Below(0x100000000));
        const auto outlier = static_cast<int64_t>(Below(0x100000000));
        const auto reach = static_cast<int64_t>(uint64_t{1} << Below(24));
        const double unit = std::pow(10.0, static_cast<double>(Below(40)) - 25);
        const auto whole = [&] { return Spread(kind, center, reach, outlier); };
        const auto real = [&] { return static_cast<double>(whole()) * unit; };
        for (size_t i = 0; i < count; ++i)
        {
            switch (type)
            {
            case PixelType::UInt16:
            case PixelType::Int16:
            case PixelType::Float16:
                writer.Put(static_cast<uint16_t>(whole()));
                break;
            case PixelType::UInt32:
            case PixelType::Int32:
                writer.Put(static_cast<uint32_t>(whole()));
                break;
            case PixelType::Float32:
                writer.Put(static_cast<float>(real()));
                break;
            case PixelType::Double64:
                writer.Put(real());
                break;
            case PixelType::Complex64:
                writer.Put(static_cast<float>(real())).Put(static_cast<float>(real()));
                break;
            case PixelType::Complex128:
                writer.Put(real()).Put(real());
                break;
            default:
                for (uint32_t channel = 0; channel < BytesPerPixel(type); ++channel)
                    writer.Put(static_cast<uint8_t>(whole()));
            }
        }
        return std::move(writer.bytes);
    }

    std::mt19937_64 random;
};

/// A pixel type and the vectors that the loops are run with.
class RandomDisplayConversion : public testing::TestWithParam<std::tuple<uint32_t, Vectors>>
{
protected:
    void SetUp() override
    {
        if (!UseVectors(std::get<Vectors>(GetParam())))
            GTEST_SKIP() << "this processor has no such vectors";
    }

    ~RandomDisplayConversion() override { UseVectors(before); }

    const PixelType type = static_cast<PixelType>(std::get<uint32_t>(GetParam()));
    const Vectors before = VectorsInUse();
};

TEST_P(RandomDisplayConversion, GivesTheReferencePicture)
{
    FrameMaker maker{RandomSeed()};
    for (int i = 0; i < 120 && !HasFailure(); ++i)
    {
        SCOPED_TRACE(i);
        ExpectReferenceDisplay(maker.Next(type));
    }
}

// Where a vector ends and single samples follow.
TEST_P(RandomDisplayConversion, GivesTheReferencePictureOfEveryNumberOfSamples)
{
    FrameMaker maker{RandomSeed()};
    for (uint32_t count = 1; count <= 200 && !HasFailure(); ++count)
    {
        SCOPED_TRACE(count);
        ExpectReferenceDisplay(maker.Next(type, count, 1));
        ExpectReferenceDisplay(maker.Next(type, count, 3));
    }
}

// More samples than 16 bits have codes: these are counted in several tables and replaced through one.
TEST_P(RandomDisplayConversion, GivesTheReferencePictureOfManySamples)
{
    FrameMaker maker{RandomSeed()};
    for (int i = 0; i < 4 && !HasFailure(); ++i)
    {
        SCOPED_TRACE(i);
        ExpectReferenceDisplay(maker.Next(type, 331, 211));
    }
}

std::string ParameterName(const testing::TestParamInfo<std::tuple<uint32_t, Vectors>>& parameter)
{
    return TypeName(static_cast<PixelType>(std::get<uint32_t>(parameter.param))) +
           (std::get<Vectors>(parameter.param) == Vectors::Avx2 ? "_Avx2" : "_Baseline");
}

INSTANTIATE_TEST_SUITE_P(AllTypes, RandomDisplayConversion,
                         testing::Combine(testing::Range(1U, 15U),
                                          testing::Values(Vectors::Baseline, Vectors::Avx2)),
                         ParameterName);

} // namespace
