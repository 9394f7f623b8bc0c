#include "lumora/doctor/SystemChecks.h"

#include "lumora/doctor/OpeningChecks.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/NameText.h"
#include "lumora/linux/doctor/FileManagers.h"
#include "lumora/linux/doctor/GObjects.h"
#include "lumora/linux/doctor/ThumbnailerEntry.h"
#include "lumora/linux/files/FileHandle.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace Lumora {

const wchar_t* const SystemChecks::allIsWell = L"All is well: the desktop finds Lumora.";
const wchar_t* const SystemChecks::allFilesAreWell =
    L"All is well: the desktop finds Lumora, and Lumora opens what was named. A folder that was open before "
    L"may need to be opened again.";

struct SystemChecks::Means
{
    Imaging imaging;
    ThumbnailerEntry thumbnailer;
    std::vector<FileManager> managers;
};

namespace {

/// What the desktop takes the file for.
std::string TypeOf(GFile& file)
{
    const GObjectPtr<GFileInfo> info(g_file_query_info(&file, G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                                       G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    const char* const type = info ? g_file_info_get_content_type(info.get()) : nullptr;
    return type ? type : "";
}

void CheckType(GFile& file, const SourceFile& source, const ThumbnailerEntry& thumbnailer,
               Diagnosis& diagnosis)
{
    const std::string type = TypeOf(file);
    const std::wstring text = TextOfName(type);
    if (std::ranges::find(thumbnailer.types, type) != thumbnailer.types.end())
        diagnosis.Ok(L"kind of file", text + L" has thumbnails by Lumora");
    else
        diagnosis.Problem(Cause::Extension, L"kind of file", L"the desktop takes the file for " + text,
                          source.name + L": the desktop takes the file for " + text +
                              L", and asks another program for a thumbnail. Another name may help.");
}

/// Whether a file manager has noted that there is no thumbnail, since the file was last changed.
bool HasFailedBefore(GFile& file, const SourceFile& source)
{
    const GText uri(g_file_get_uri(&file));
    const GText name(g_compute_checksum_for_string(G_CHECKSUM_MD5, uri.get(), -1));
    std::error_code error;
    const std::filesystem::path failures =
        std::filesystem::path(g_get_user_cache_dir()) / "thumbnails" / "fail";
    for (std::filesystem::directory_iterator program(failures, error), end; program != end && !error;
         program.increment(error))
    {
        const std::filesystem::path noted = program->path() / (std::string(name.get()) + ".png");
        if (std::filesystem::exists(noted, error) && IsUpToDate(TextOfName(noted.native()), source.path))
            return true;
    }
    return false;
}

} // namespace

SystemChecks::SystemChecks(const CommandLine&, Diagnosis& diagnosis) : means(std::make_unique<Means>())
{
    means->thumbnailer = CheckThumbnailer(diagnosis);
    means->managers = CheckFileManagers(diagnosis);
}

SystemChecks::~SystemChecks() = default;

void SystemChecks::CheckFile(const SourceFile& file, Diagnosis& diagnosis) const
{
    const GObjectPtr<GFile> opened(g_file_new_for_path(BytesOfName(file.path).c_str()));
    if (means->thumbnailer.isUsable)
        CheckType(*opened, file, means->thumbnailer, diagnosis);
    if (HasFailedBefore(*opened, file))
        diagnosis.Problem(Cause::FailedBefore, L"thumbnail", L"a file manager has noted that there is none",
                          L"A file manager remembers that there was no thumbnail, and does not try again. "
                          L"Remove the folder thumbnails/fail in the folder .cache.");
    const uint64_t size = FileSize(file.path).value_or(0);
    for (const FileManager& manager : means->managers)
    {
        if (manager.limit != 0 && size > manager.limit)
            diagnosis.Note(L"size", L"larger than " + manager.name + L" shows thumbnails of");
    }
    CheckOpening(means->imaging, file, diagnosis);
}

} // namespace Lumora
