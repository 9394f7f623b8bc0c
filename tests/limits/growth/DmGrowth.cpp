#include "limits/growth/GrowthCases.h"
#include "support/files/DmFile.h"

namespace {

constexpr uint32_t imageEdge = 100;
constexpr uint32_t imageSamples = imageEdge * imageEdge;

/// Tags, and behind them one image of which the file holds all samples.
Bytes WithImage(const DmLayout& layout, DmTags tags)
{
    tags.Image({.dataType = 6,
                .width = imageEdge,
                .height = imageEdge,
                .elementCount = imageSamples,
                .samples = VariedBytes(imageSamples)});
    return DmFile{layout}.Root(tags).Build();
}

/// A number of equal tags, each made by `add`, and one image.
template <typename Add>
std::function<Bytes(size_t)> ManyTags(const DmLayout& layout, Add add)
{
    return [layout, add](size_t count) {
        DmTags tags{layout};
        for (size_t i = 0; i < count; ++i)
            add(tags);
        return WithImage(layout, std::move(tags));
    };
}

std::vector<GrowthCase> CasesOf(const std::string& format, const DmLayout& layout)
{
    constexpr size_t many = (1 << 12) + 2;
    const DmTags empty{layout};
    std::vector<GrowthCase> cases;
    const auto tags = [&](const std::string& things, auto add) {
        cases.push_back({format, things, many, ManyTags(layout, add)});
    };
    tags("groups", [empty](DmTags& group) { group.Group("g", empty); });
    tags("labels", [](DmTags& group) { group.Value("l", DmType::none, {}); });
    tags("numbers", [](DmTags& group) { group.UInt32("", 1); });
    tags("labelled numbers", [](DmTags& group) { group.UInt32("n", 1); });
    tags("data types", [](DmTags& group) { group.UInt32("DataType", 2); });
    tags("dimensions", [empty](DmTags& group) { group.Group("Dimensions", empty); });
    tags("texts", [](DmTags& group) { group.String("t", u"text"); });
    // An element of this type takes no bytes, so an array can have any number of them.
    tags("arrays", [](DmTags& group) { group.Array("", DmType::none, imageSamples, {}); });
    tags("long labels", [](DmTags& group) { group.Value(std::string(100, 'l'), DmType::none, {}); });
    tags("structs", [](DmTags& group) { group.Struct("s", {DmType::byte, DmType::byte}, {1, 2}); });
    tags("images", [](DmTags& group) {
        group.Image({.dataType = 6,
                     .width = imageEdge,
                     .height = imageEdge,
                     .elementType = DmType::none,
                     .elementCount = imageSamples});
    });
    cases.push_back({format, "fields", many, [layout](size_t count) {
                         DmTags group{layout};
                         group.Struct("s", std::vector<uint32_t>(count, DmType::byte), Bytes(count));
                         return WithImage(layout, std::move(group));
                     }});
    return cases;
}

} // namespace

std::vector<GrowthCase> DmGrowth()
{
    std::vector<GrowthCase> cases = CasesOf("DM3", {.version = 3});
    for (GrowthCase& growth : CasesOf("DM4", {.version = 4}))
        cases.push_back(std::move(growth));
    return cases;
}
