#include "thumbnailer/PngFile.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumora {

namespace {

struct FileCloser
{
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// A new file beside the one with this path, which is deleted unless it is kept.
class UnfinishedFile
{
public:
    explicit UnfinishedFile(const std::string& finalPath) : target(finalPath), path(finalPath + ".XXXXXX")
    {
        std::error_code none;
        if (const auto there = std::filesystem::status(target, none);
            std::filesystem::exists(there) && !std::filesystem::is_regular_file(there))
            throw std::runtime_error("cannot write " + target + ": it is no file");
        const int descriptor = mkostemp(path.data(), O_CLOEXEC);
        if (descriptor < 0)
            throw std::system_error(errno, std::generic_category(), "cannot write " + target);
        file.reset(fdopen(descriptor, "wb"));
        if (!file)
            throw std::system_error(errno, std::generic_category(), "cannot write " + target);
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile()
    {
        if (!path.empty())
            unlink(path.c_str());
    }

    void Keep()
    {
        if (IsWaitedFor())
            Fill();
        else
            Rename();
    }

    File file;

private:
    /// Whether somebody has made an empty file for the picture.
    [[nodiscard]] bool IsWaitedFor() const
    {
        std::error_code none;
        return std::filesystem::file_size(target, none) == 0;
    }

    /// Xfce's service keeps the file that it has made open, and would not see another one of that name.
    void Fill()
    {
        const bool isWritten = std::fclose(file.release()) == 0;
        std::error_code error(isWritten ? 0 : errno, std::generic_category());
        if (!error)
            std::filesystem::copy_file(path, target, std::filesystem::copy_options::overwrite_existing,
                                       error);
        if (error)
        {
            std::error_code none;
            std::filesystem::resize_file(target, 0, none);
            throw std::system_error(error, "cannot write " + target);
        }
    }

    void Rename()
    {
        // Others could not read it otherwise: a temporary file is its owner's alone.
        const mode_t mask = umask(0);
        umask(mask);
        const bool isWritten =
            fchmod(fileno(file.get()), 0666 & ~mask) == 0 && std::fclose(file.release()) == 0;
        if (!isWritten || std::rename(path.c_str(), target.c_str()) != 0)
            throw std::system_error(errno, std::generic_category(), "cannot write " + target);
        path.clear();
    }

    const std::string target;
    std::string path;
};

} // namespace

void WritePng(const std::string& path, const Picture& picture, const PngTexts& texts)
{
    UnfinishedFile unfinished(path);
    PngEncoder encoder(unfinished.file.get(), {picture.width, picture.height}, picture.channels, texts);
    std::vector<uint8_t> bytes(picture.RowBytes());
    for (uint32_t row = 0; row < picture.height; ++row)
    {
        picture.CopyRow(row, bytes.data());
        encoder.WriteRow(bytes.data());
    }
    encoder.Finish();
    unfinished.Keep();
}

} // namespace Lumora
