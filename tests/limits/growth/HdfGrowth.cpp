#include "limits/growth/GrowthCases.h"
#include "support/files/Hdf5File.h"

namespace {

constexpr hsize_t edge = 32;

/// A file with one image, to which `add` adds something.
template <typename Add>
GrowthCase WithImage(const std::string& things, size_t count, Add add)
{
    return {"HDF5", things, count, [add](size_t number) {
                Hdf5File file;
                file.AnyDataSet("/image", H5T_STD_U16LE, {edge, edge});
                add(file, number);
                return file.Build();
            }};
}

GrowthCase TextOf(const std::string& things, const std::string& line)
{
    return WithImage(things, 0x4000, [line](Hdf5File& file, size_t count) {
        std::string text;
        for (size_t i = 0; i < count; ++i)
            text += line;
        file.Strings("/Version", {text}).Strings("/Info", {text});
    });
}

} // namespace

std::vector<GrowthCase> HdfGrowth()
{
    return {
        WithImage("images", 200,
                  [](Hdf5File& file, size_t count) {
                      for (size_t i = 0; i < count; ++i)
                          file.AnyDataSet("/image" + std::to_string(i), H5T_STD_U16LE, {edge, edge});
                  }),
        WithImage("empty datasets", 200,
                  [](Hdf5File& file, size_t count) {
                      for (size_t i = 0; i < count; ++i)
                          file.DataSet("/d" + std::to_string(i), H5T_STD_U16LE, {2}, {},
                                       {.isWritten = false});
                  }),
        WithImage("groups", 200,
                  [](Hdf5File& file, size_t count) {
                      for (size_t i = 0; i < count; ++i)
                          file.Group("/g" + std::to_string(i));
                  }),
        WithImage("links", 400,
                  [](Hdf5File& file, size_t count) {
                      for (size_t i = 0; i < count; ++i)
                          file.HardLink("/image", "/l" + std::to_string(i));
                  }),
        WithImage("attributes", 200,
                  [](Hdf5File& file, size_t count) {
                      for (size_t i = 0; i < count; ++i)
                          file.Text("/image", "a" + std::to_string(i), "text");
                  }),
        WithImage("frames", 50,
                  [](Hdf5File& file, size_t count) {
                      file.AnyDataSet("/image series", H5T_STD_U16LE, {edge, edge, count});
                  }),
        WithImage("chunks", 200,
                  [](Hdf5File& file, size_t count) {
                      file.AnyDataSet("/image in chunks", H5T_STD_U16LE, {edge, count}, {.chunk = {edge, 1}});
                  }),
        WithImage("texts", 200,
                  [](Hdf5File& file, size_t count) {
                      file.Strings("/Version", std::vector<std::string>(count, "text"));
                  }),
        TextOf("lines of a text", "\"a\": \"b\"\n"),
        TextOf("colons of a text", ":"),
        TextOf("quotes of a text", "\""),
    };
}
