#include "limits/growth/GrowthCases.h"
#include "support/files/BinFile.h"
#include "support/files/DmFile.h"
#include "support/files/EmiFile.h"
#include "support/files/Hdf5File.h"
#include "support/files/LatticeFile.h"
#include "support/files/MrcFile.h"
#include "support/files/NpyFile.h"
#include "support/files/RawFile.h"
#include "support/files/SerFile.h"

namespace {

constexpr uint32_t columns = 1000;
constexpr size_t smallest = 256;

/// Files with one frame of 16-bit samples, of more and more rows.
GrowthCase Rows(const std::string& format, std::function<Bytes(uint32_t rows, Bytes samples)> build)
{
    return {format, "rows", smallest, [build = std::move(build)](size_t rows) {
                return build(static_cast<uint32_t>(rows), VariedBytes(rows * columns * 2));
            }};
}

} // namespace

Bytes VariedBytes(size_t count)
{
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(static_cast<uint32_t>(i) * 2654435761U >> 24);
    return bytes;
}

std::vector<GrowthCase> FrameGrowth()
{
    return {
        Rows("MRC",
             [](uint32_t rows, Bytes samples) {
                 return MrcFile().Size(columns, rows, 1).Mode(6).Samples(std::move(samples)).Build();
             }),
        Rows("DM",
             [](uint32_t rows, Bytes samples) {
                 const DmLayout layout;
                 DmTags tags{layout};
                 tags.Image({.dataType = 10,
                             .width = columns,
                             .height = rows,
                             .elementType = DmType::uint16,
                             .elementCount = columns * rows,
                             .samples = std::move(samples)});
                 return DmFile{layout}.Root(tags).Build();
             }),
        Rows("SER",
             [](uint32_t rows, Bytes samples) {
                 return SerFile().Element({2, columns, rows, std::move(samples)}).Build();
             }),
        Rows("EMI",
             [](uint32_t rows, Bytes samples) {
                 return EmiFile().Array(0x2206, columns, static_cast<uint16_t>(rows), samples).Build();
             }),
        Rows("NPY",
             [](uint32_t rows, Bytes samples) {
                 return NpyFile()
                     .Descr("<u2")
                     .Shape("(" + std::to_string(rows) + ", " + std::to_string(columns) + ")")
                     .Samples(std::move(samples))
                     .Build();
             }),
        Rows("RAW",
             [](uint32_t rows, Bytes samples) {
                 return RawFile()
                     .Size(columns, rows)
                     .Samples(16, RawFile::Unsigned, std::move(samples))
                     .Build();
             }),
        Rows("RAW with strides",
             [](uint32_t rows, Bytes samples) {
                 return RawFile()
                     .Size(columns, rows)
                     .Samples(16, RawFile::Unsigned, std::move(samples))
                     .Strides(rows * 2, 2)
                     .Build();
             }),
        Rows("BIN",
             [](uint32_t rows, Bytes samples) {
                 return BinFile().Size(columns, rows).Samples(2, std::move(samples)).Build();
             }),
        Rows("Lattice",
             [](uint32_t rows, Bytes samples) {
                 return LatticeFile()
                     .Size(columns, rows, 1)
                     .Type("ushort")
                     .Samples(std::move(samples))
                     .Build();
             }),
        Rows("HDF5",
             [](uint32_t rows, const Bytes& samples) {
                 return Hdf5File().DataSet("/image", H5T_STD_U16LE, {rows, columns}, samples).Build();
             }),
    };
}
