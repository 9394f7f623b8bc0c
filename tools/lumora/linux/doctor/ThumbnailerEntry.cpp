#include "lumora/linux/doctor/ThumbnailerEntry.h"

#include "lumora/files/NameText.h"
#include "lumora/linux/doctor/GObjects.h"

#include <optional>

#include <unistd.h>

namespace Lumora {

namespace {

constexpr const char* group = "Thumbnailer Entry";
constexpr std::string_view entryName = "thumbnailers/lumora.thumbnailer";
constexpr const wchar_t* install = L"The package of Lumora brings it.";

/// The folders in which desktops look, the most important one first.
std::vector<std::string> DataFolders()
{
    std::vector<std::string> folders = {g_get_user_data_dir()};
    for (const char* const* folder = g_get_system_data_dirs(); *folder; ++folder)
        folders.emplace_back(*folder);
    return folders;
}

/// The first file of that name in these folders.
std::optional<std::string> FindData(const std::string& name)
{
    for (const std::string& folder : DataFolders())
    {
        std::string path = folder;
        path += (folder.ends_with('/') ? "" : "/") + name;
        if (g_file_test(path.c_str(), G_FILE_TEST_IS_REGULAR))
            return path;
    }
    return std::nullopt;
}

/// How the database is made that belongs to the folder of data with the entry in this file.
std::wstring MakeDatabase(std::string_view entryFile)
{
    const std::string folder(entryFile.substr(0, entryFile.size() - entryName.size()));
    return (access(folder.c_str(), W_OK) == 0 ? L"Run \"" : L"As root, run \"") +
           TextOfName("update-mime-database " + folder + "mime") + L"\".";
}

/// The types of the entry that the desktop's database does not have.
std::vector<std::wstring> UnknownTypes(const ThumbnailerEntry& entry)
{
    std::vector<std::wstring> unknown;
    for (const std::string& type : entry.types)
    {
        if (!FindData("mime/" + type + ".xml"))
            unknown.push_back(TextOfName(type));
    }
    return unknown;
}

/// The program, if it is where the desktop looks.
GText ProgramOf(GKeyFile& file)
{
    const GText name(g_key_file_get_string(&file, group, "TryExec", nullptr));
    return GText(name ? g_find_program_in_path(name.get()) : nullptr);
}

void ReadTypes(GKeyFile& file, ThumbnailerEntry& entry)
{
    const GTexts types(g_key_file_get_string_list(&file, group, "MimeType", nullptr, nullptr));
    for (char** type = types.get(); type && *type; ++type)
        entry.types.emplace_back(*type);
}

} // namespace

ThumbnailerEntry CheckThumbnailer(Diagnosis& diagnosis)
{
    ThumbnailerEntry entry;
    const std::optional<std::string> path = FindData(std::string(entryName));
    if (!path)
    {
        diagnosis.Problem(Cause::NoThumbnailer, L"thumbnailer", L"lumora.thumbnailer is in no folder of data",
                          std::wstring(L"The desktop does not know Lumora's thumbnailer. ") + install);
        return entry;
    }
    const GKeyFilePtr file(g_key_file_new());
    g_key_file_load_from_file(file.get(), path->c_str(), G_KEY_FILE_NONE, nullptr);
    ReadTypes(*file, entry);
    const GText program = ProgramOf(*file);
    if (!program)
    {
        diagnosis.Problem(Cause::NoThumbnailer, L"thumbnailer",
                          TextOfName(*path) + L" names a program that is not there",
                          std::wstring(L"The thumbnailer's program is missing. ") + install);
        return entry;
    }
    entry.isUsable = true;
    diagnosis.Ok(L"thumbnailer", TextOfName(*path) + L" names " + TextOfName(program.get()));

    if (const std::vector<std::wstring> unknown = UnknownTypes(entry); !unknown.empty())
        diagnosis.Problem(Cause::KindsOfFiles, L"kinds of files", FirstOf(unknown) + L" not in the database",
                          L"The desktop does not know the kinds of files. " + MakeDatabase(*path));
    else
        diagnosis.Ok(L"kinds of files",
                     std::to_wstring(entry.types.size()) + L" types are in the desktop's database");
    return entry;
}

} // namespace Lumora
