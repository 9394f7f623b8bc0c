#include "lumora/commands/RenderCommand.h"

#include "lumora/files/FileLoop.h"
#include "lumora/files/OutputNames.h"
#include "lumora/pictures/ImagingFactory.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PngWriter.h"
#include "platform/ComPtr.h"

#include <windows.h>

#include <wincodec.h>

namespace Lumora {

namespace {

class Renderer
{
public:
    Renderer(ComPtr<IWICImagingFactory> wicFactory, const FileList& sources, const CommandLine& commandLine,
             Console& userConsole)
        : factory(std::move(wicFactory)), names(commandLine.outputFolder, sources.files), line(commandLine),
          console(userConsole)
    {}

    void Render(const SourceFile& file)
    {
        const PictureFile picture(*factory.Get(), file.path);
        if (line.frame)
        {
            RenderFrame(file, picture, *line.frame, *line.frame == 0 ? std::nullopt : line.frame);
            return;
        }
        const uint32_t count = picture.FrameCount();
        for (uint32_t frame = 0; frame < count; ++frame)
            RenderFrame(file, picture, frame, frame);
    }

private:
    void RenderFrame(const SourceFile& file, const PictureFile& picture, uint32_t frame,
                     std::optional<uint32_t> numberInName)
    {
        const ComPtr<IWICBitmapSource> pixels = picture.Frame(frame, line.longerSide);
        const std::wstring name = names.Claim(file, numberInName);
        WritePng(*factory.Get(), *pixels.Get(), OpenablePath(name));
        console.Print(name + L'\n');
    }

    ComPtr<IWICImagingFactory> factory;
    OutputNames names;
    const CommandLine& line;
    Console& console;
};

} // namespace

int RunRender(const CommandLine& line, Console& console)
{
    ComPtr<IWICImagingFactory> factory = MakeImagingFactory();
    const FileList list = FindFiles(line.paths, FolderRule::ReadableToo, console);
    Renderer renderer(std::move(factory), list, line, console);
    return ForEachFile(list, line, console, [&renderer](const SourceFile& file) { renderer.Render(file); });
}

} // namespace Lumora
