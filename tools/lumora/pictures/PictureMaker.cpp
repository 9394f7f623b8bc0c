#include "lumora/pictures/PictureMaker.h"

#include "lumora/console/Failure.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/Paths.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PictureWriter.h"
#include "lumora/sheet/Montage.h"

#include <functional>

namespace Lumora {

namespace {

std::optional<Box> Square(std::optional<uint32_t> side)
{
    return side ? std::optional(Box{*side, *side}) : std::nullopt;
}

/// The number of a frame in the name of its picture. Most files have one frame, which needs none.
std::optional<uint32_t> NumberInName(const PictureOrder& order, uint32_t frame)
{
    const bool isOnlyPicture = order.isMontage || (frame == 0 && order.frames.SingleFrame());
    return isOnlyPicture ? std::nullopt : std::optional(frame);
}

std::wstring PictureName(const PictureOrder& order, std::optional<uint32_t> number)
{
    std::wstring name = order.target;
    if (number)
        name += L'-' + std::to_wstring(*number);
    if (order.isMontage)
        name += L"-montage";
    return name.append(order.format.Extension());
}

/// The pictures of one file.
class PictureMaker
{
public:
    PictureMaker(Imaging& wantedImaging, const std::wstring& sourcePath, const PictureOrder& pictureOrder,
                 std::vector<PictureReport>& pictureReports)
        : imaging(wantedImaging), source(sourcePath), order(pictureOrder), reports(pictureReports)
    {}

    void MakeAll()
    {
        if (order.isMontage)
            Make(FirstPictureName(order),
                 [this](const std::wstring& path) { return WriteMontage(imaging, File(), order, path); });
        else if (const std::optional<uint32_t> single = order.frames.SingleFrame())
            MakeFrame(*single);
        else
            MakeFrames();
    }

private:
    void MakeFrames()
    {
        const uint32_t count = File().FrameCount();
        std::optional<uint32_t> frame = order.frames.Next(0, count);
        if (!frame)
            throw NoFrames(count);
        for (; frame; frame = order.frames.Next(*frame + 1, count))
            MakeFrame(*frame);
    }

    void MakeFrame(uint32_t frame)
    {
        Make(PictureName(order, NumberInName(order, frame)), [this, frame](const std::wstring& path) {
            const std::unique_ptr<Picture> picture = File().Frame(frame, Square(order.longerSide));
            return WritePicture(imaging, *picture, path, order.format);
        });
    }

    void Make(const std::wstring& name, const std::function<Box(const std::wstring& path)>& write)
    {
        const std::wstring path = OpenablePath(name);
        const std::optional<Box> existing = order.skipsExisting ? UsablePicture(path) : std::nullopt;
        const Box size = existing ? *existing : write(path);
        reports.push_back({name, size.width, size.height, existing.has_value()});
    }

    /// The size of the picture that is there already. Nothing if it is older than the file, or damaged.
    std::optional<Box> UsablePicture(const std::wstring& path)
    {
        std::optional<Box> size;
        if (IsUpToDate(path, source) && !UnfinishedFile::WasLeftBehind(path))
            static_cast<void>(FailureOf([&] { size = SizeOfPicture(imaging, path); }));
        return size;
    }

    /// The file, opened when it is first needed.
    PictureFile& File()
    {
        if (!file)
            file.emplace(imaging, source);
        return *file;
    }

    Imaging& imaging;
    const std::wstring& source;
    const PictureOrder& order;
    std::vector<PictureReport>& reports;
    std::optional<PictureFile> file;
};

} // namespace

void MakePictures(Imaging& imaging, const std::wstring& path, const PictureOrder& order,
                  std::vector<PictureReport>& reports)
{
    PictureMaker(imaging, path, order, reports).MakeAll();
}

std::wstring FirstPictureName(const PictureOrder& order)
{
    return PictureName(order, NumberInName(order, order.frames.Next(0, UINT32_MAX).value_or(0)));
}

} // namespace Lumora
