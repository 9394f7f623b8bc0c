#include "limits/growth/GrowthCases.h"
#include "support/files/LatticeFile.h"

namespace {

std::string Repeated(size_t count, const std::string& text)
{
    std::string texts;
    for (size_t i = 0; i < count; ++i)
        texts += text;
    return texts;
}

/// A header with something in it, and a volume.
Bytes WithBlock(const std::string& lines)
{
    return LatticeFile().Size(2, 2, 1).Block(lines).Samples({1, 2, 3, 4}).Build();
}

/// A count whose fourfold, with texts of this length, is a little shorter than the longest header.
size_t CountOf(size_t textBytes)
{
    return 0xFF00 / textBytes;
}

GrowthCase Repeating(const std::string& things, const std::string& before, const std::string& text,
                     const std::string& after)
{
    return {"Lattice", things, CountOf(text.size()),
            [=](size_t count) { return WithBlock(before + Repeated(count, text) + after); }};
}

} // namespace

std::vector<GrowthCase> LatticeGrowth()
{
    return {
        Repeating("empty lines", "", "\n", "end"),
        Repeating("lines", "", "a\n", "end"),
        Repeating("type lines of no type", "", "Lattice x\n", "end"),
        Repeating("characters of a line", "", "x", ""),
        Repeating("spaces of a line", "x", " ", "x"),
        Repeating("opened sections", "", "{", ""),
        Repeating("closed sections", "{{", "}{", ""),
        Repeating("sections", "", "Parameters {}\n", "end"),
        Repeating("equal parameters", "Parameters {\n", "a 1\n", "}"),
        Repeating("pieces of a value", "Parameters {\na ", "\", ", "\n}"),
        {"Lattice", "parameters", CountOf(10),
         [](size_t count) {
             std::string lines = "Parameters {\n";
             for (size_t i = 0; i < count; ++i)
                 lines += "p" + std::to_string(100000 + i) + " 1\n";
             return WithBlock(lines + "}");
         }},
        {"Lattice", "items of a data reference", CountOf(1),
         [](size_t count) {
             return LatticeFile()
                 .TypeLine("Lattice { byte Data } @1(" + std::string(count, ',') + ")")
                 .Samples({1})
                 .Build();
         }},
        {"Lattice", "slices", 0x4000,
         [](size_t count) {
             return LatticeFile()
                 .Size(4, 4, static_cast<uint32_t>(count))
                 .Samples(VariedBytes(16 * count))
                 .Build();
         }},
    };
}
