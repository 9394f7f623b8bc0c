// Files of the formats whose lengths and counts random bytes seldom make fit. The input says what the builder
// of such a file is asked for.

#include "OpenedFile.h"
#include "support/files/DmFile.h"
#include "support/files/EmiFile.h"
#include "support/files/SerFile.h"

#include <fuzzer/FuzzedDataProvider.h>

using namespace Tav::Imaging::RawImage;

namespace {

/// Some bytes, most often few.
Bytes SomeBytes(FuzzedDataProvider& input)
{
    return input.ConsumeBytes<uint8_t>(input.ConsumeIntegral<uint8_t>());
}

std::vector<uint32_t> SomeTypes(FuzzedDataProvider& input)
{
    std::vector<uint32_t> types(input.ConsumeIntegralInRange<size_t>(0, 4));
    for (uint32_t& type : types)
        type = input.ConsumeIntegralInRange<uint32_t>(0, 21);
    return types;
}

/// A number of array elements: few, any, or so many that their size wraps in 32 bits to that of few.
uint32_t SomeCount(FuzzedDataProvider& input)
{
    switch (input.ConsumeIntegralInRange(0, 2))
    {
    case 0:
        return input.ConsumeIntegral<uint8_t>();
    case 1:
        return input.ConsumeIntegral<uint32_t>();
    default:
        return 0x40000000U + input.ConsumeIntegral<uint8_t>();
    }
}

DmTags SomeTags(const DmLayout& layout, FuzzedDataProvider& input, uint32_t depth)
{
    constexpr uint32_t deepest = 6;
    DmTags tags{layout};
    while (input.remaining_bytes() > 0 && input.ConsumeBool())
    {
        const std::string label = input.PickValueInArray({"", "Data", "DataType", "Dimensions", "other"});
        const auto kind = input.ConsumeIntegralInRange(0, depth < deepest ? 8 : 6);
        if (kind == 0)
            tags.UInt32(label, input.ConsumeIntegral<uint32_t>());
        else if (kind == 1)
            tags.Value(label, input.ConsumeIntegralInRange<uint32_t>(0, 21), SomeBytes(input));
        else if (kind == 2)
            tags.String(label, std::u16string(input.ConsumeIntegral<uint8_t>(), u'x'));
        else if (kind == 3)
            tags.Struct(label, SomeTypes(input), SomeBytes(input));
        else if (kind == 4)
            tags.Array(label, input.ConsumeIntegralInRange<uint32_t>(0, 21), SomeCount(input),
                       SomeBytes(input));
        else if (kind == 5)
            tags.StructArray(label, SomeTypes(input), SomeCount(input), SomeBytes(input));
        else if (kind == 6)
            tags.ClaimCount(input.ConsumeIntegral<uint8_t>());
        else if (kind == 7)
            tags.Group(label, SomeTags(layout, input, depth + 1));
        else
        {
            const auto width = input.ConsumeIntegralInRange<uint32_t>(0, 16);
            const auto height = input.ConsumeIntegralInRange<uint32_t>(0, 16);
            Bytes samples = SomeBytes(input);
            const uint32_t count = 0x40000000U + static_cast<uint32_t>(samples.size() / 4);
            samples.resize(samples.size() / 4 * 4);
            tags.Image({.dataType = input.PickValueInArray<uint32_t>({1, 2, 3, 6, 7, 9, 10, 11, 23}),
                        .width = width,
                        .height = height,
                        .depth = input.ConsumeBool() ? std::optional{input.ConsumeIntegral<uint32_t>()}
                                                     : std::nullopt,
                        .elementType = DmType::uint32,
                        .elementCount = count,
                        .samples = std::move(samples)});
        }
    }
    return tags;
}

Bytes BuildDm(FuzzedDataProvider& input)
{
    const DmLayout layout{.version = input.ConsumeBool() ? 3U : 4U};
    return DmFile{layout}.Root(SomeTags(layout, input, 0)).Build();
}

Bytes BuildEmi(FuzzedDataProvider& input)
{
    EmiFile file;
    while (input.remaining_bytes() > 0)
    {
        const auto type = input.PickValueInArray<uint16_t>({16, 32, 48, 49, 50, 51, 52, 64, 65, 112, 0x1000});
        const auto length =
            input.ConsumeBool() ? std::optional{input.ConsumeIntegral<uint32_t>()} : std::nullopt;
        switch (input.ConsumeIntegralInRange(0, 4))
        {
        case 0:
            file.Blank();
            break;
        case 1:
            file.Fixed(type, input.ConsumeIntegralInRange<size_t>(0, 8));
            break;
        case 2:
            file.Sized(EmiFile::sizedText, input.PickValueInArray<uint16_t>({1810, 1}), SomeBytes(input),
                       length);
            break;
        case 3:
            file.Sized(input.ConsumeIntegralInRange<uint16_t>(0x2000, 0x3FFF), 1, SomeBytes(input), length);
            break;
        default: {
            const auto width = input.ConsumeIntegralInRange<uint16_t>(0, 16);
            const auto height = input.ConsumeIntegralInRange<uint16_t>(0, 16);
            const auto arrayType = static_cast<uint16_t>(0x2200 + input.ConsumeIntegralInRange(0, 22));
            Bytes samples(size_t{width} * height * input.ConsumeIntegralInRange<size_t>(0, 9));
            const Bytes some = SomeBytes(input);
            for (size_t i = 0; i < samples.size() && !some.empty(); ++i)
                samples[i] = some[i % some.size()];
            file.Array(arrayType, width, height, samples, length);
        }
        }
    }
    return file.Build();
}

Bytes BuildSer(FuzzedDataProvider& input)
{
    SerFile file;
    file.Version(input.PickValueInArray<uint16_t>({0x0210, 0x0211, 0x0220, 0x0230}));
    for (uint32_t element = 0; input.remaining_bytes() > 0; ++element)
    {
        if (input.ConsumeIntegralInRange(0, 9) == 0)
            file.ElementOffset(element, input.ConsumeIntegral<uint16_t>());
        const auto type = input.ConsumeIntegralInRange<uint16_t>(0, 11);
        const auto width = input.ConsumeIntegralInRange<uint32_t>(0, 16);
        const auto height = input.ConsumeIntegralInRange<uint32_t>(0, 16);
        file.Element({type, width, height, SomeBytes(input)});
    }
    return file.Build();
}

template <Bytes (*build)(FuzzedDataProvider&)>
void ReadBuiltPicture(std::span<const uint8_t> input)
{
    FuzzedDataProvider provider{input.data(), input.size()};
    OpenedFile{build(provider), readModeFrame}.RequireReferencePicture();
}

} // namespace

std::vector<Target> BuiltFileTargets()
{
    return {{"built_dm", ReadBuiltPicture<BuildDm>},
            {"built_emi", ReadBuiltPicture<BuildEmi>},
            {"built_ser", ReadBuiltPicture<BuildSer>}};
}
