#include "limits/growth/GrowthCases.h"
#include "support/files/EmiFile.h"
#include "support/files/MrcFile.h"
#include "support/files/NpyFile.h"
#include "support/files/SerFile.h"

namespace {

constexpr size_t many = (1 << 13) + 2;

Bytes SerElements(uint16_t version, size_t count)
{
    SerFile file;
    file.Version(version);
    for (size_t i = 0; i < count; ++i)
        file.Element(2, 2, VariedBytes(4));
    return file.Build();
}

/// A number of items, each added by `add`, and behind them an image.
template <typename Add>
GrowthCase EmiItems(const std::string& things, Add add, int64_t memoryPerByte = 4)
{
    const auto build = [add](size_t count) {
        EmiFile file;
        for (size_t i = 0; i < count; ++i)
            add(file);
        return file.Bytes(3, 3, nine).Build();
    };
    return {"EMI", things, many, build, memoryPerByte};
}

// Wide characters have 4 bytes here and 2 on Windows, where 4 bytes of memory are enough.
constexpr int64_t memoryPerTextByte = 7;

} // namespace

std::vector<GrowthCase> SeriesGrowth()
{
    return {
        {"MRC", "sections", many,
         [](size_t count) {
             return MrcFile()
                 .Size(2, 2, static_cast<uint32_t>(count))
                 .Samples(VariedBytes(4 * count))
                 .Build();
         }},
        {"MRC", "bytes of the extended header", many,
         [](size_t count) {
             return MrcFile()
                 .Size(2, 2, 1)
                 .ExtendedHeader("SERI", Bytes(count))
                 .Samples({1, 2, 3, 4})
                 .Build();
         }},
        {"SER", "short offsets", many, [](size_t count) { return SerElements(0x0210, count); }},
        {"SER", "long offsets", many, [](size_t count) { return SerElements(0x0220, count); }},
        EmiItems("blanks", [](EmiFile& file) { file.Blank(); }),
        EmiItems("items", [](EmiFile& file) { file.Fixed(16, 1); }),
        EmiItems("blocks", [](EmiFile& file) { file.Sized(0x2001, 1, nine); }),
        EmiItems("texts", [](EmiFile& file) { file.Text(1, "text"); }),
        EmiItems(
            "version texts", [](EmiFile& file) { file.VersionText(std::string(32, 'v')); },
            memoryPerTextByte),
        EmiItems("images", [](EmiFile& file) { file.Bytes(3, 3, nine); }),
        EmiItems("images without samples", [](EmiFile& file) { file.Array(0x2214, 1, 1, {}); }),
        EmiItems("arrays that are not read", [](EmiFile& file) { file.Array(0x2212, 3, 3, nine); }),
        {"NPY", "frames", 1024,
         [](size_t count) {
             return NpyFile()
                 .Shape("(" + std::to_string(count) + ", 8, 9)")
                 .Samples(VariedBytes(8 * 9 * count))
                 .Build();
         }},
        {"NPY", "bytes of the header", many / 4,
         [](size_t count) {
             return NpyFile().HeaderLength(static_cast<uint16_t>(count)).Samples({1}).Build();
         }},
    };
}
