#include "lumora/linux/doctor/FileManagers.h"

#include "lumora/linux/doctor/GObjects.h"

#include <optional>

namespace Lumora {

namespace {

constexpr uint64_t megabyte = 1'000'000;

struct SchemaReleaser
{
    void operator()(GSettingsSchema* schema) const noexcept { g_settings_schema_unref(schema); }
};

bool IsInstalled(const char* program)
{
    return GText(g_find_program_in_path(program)) != nullptr;
}

/// What GNOME's file manager is set to. Nothing if it is not here.
std::optional<FileManager> GnomeFiles(Diagnosis& diagnosis)
{
    constexpr const char* name = "org.gnome.nautilus.preferences";
    GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
    const std::unique_ptr<GSettingsSchema, SchemaReleaser> schema(
        source ? g_settings_schema_source_lookup(source, name, TRUE) : nullptr);
    if (!schema || !IsInstalled("nautilus"))
        return std::nullopt;
    const GObjectPtr<GSettings> settings(g_settings_new(name));
    // Versions differ in their keys, and asking for another one would end the program.
    constexpr const char* when = "show-image-thumbnails";
    constexpr const char* limit = "thumbnail-limit";
    if (!g_settings_schema_has_key(schema.get(), when) || !g_settings_schema_has_key(schema.get(), limit))
        return FileManager{L"GNOME Files", 0};
    if (std::string_view(GText(g_settings_get_string(settings.get(), when)).get()) == "never")
        diagnosis.Note(L"GNOME Files", L"is set to show no thumbnails",
                       L"GNOME Files shows no thumbnails at all; its preferences change that.");
    return FileManager{L"GNOME Files", g_settings_get_uint64(settings.get(), limit) * megabyte};
}

/// The first file of that name in the folders of settings, the user's own one first. Empty if there is none.
GKeyFilePtr Settings(const std::string& name)
{
    GKeyFilePtr settings(g_key_file_new());
    const auto load = [&](const std::string& folder) {
        return g_key_file_load_from_file(settings.get(), (folder + name).c_str(), G_KEY_FILE_NONE, nullptr);
    };
    bool isLoaded = load(g_get_user_config_dir());
    for (const char* const* folder = g_get_system_config_dirs(); *folder && !isLoaded; ++folder)
        isLoaded = load(*folder);
    return settings;
}

/// What the service is set to that makes thumbnails for Xfce and others. Nothing if it is not here.
std::optional<FileManager> Tumbler(Diagnosis& diagnosis)
{
    constexpr const char* group = "DesktopThumbnailer";
    constexpr const char* places[] = {"/usr/lib/x86_64-linux-gnu/tumbler-1/tumblerd",
                                      "/usr/libexec/tumbler-1/tumblerd", "/usr/lib/tumbler-1/tumblerd"};
    bool isThere = false;
    for (const char* const place : places)
        isThere = isThere || g_file_test(place, G_FILE_TEST_IS_EXECUTABLE);
    if (!isThere)
        return std::nullopt;
    FileManager tumbler = {L"Xfce's thumbnail service", 0};
    const GKeyFilePtr settings = Settings("/tumbler/tumbler.rc");
    if (g_key_file_get_boolean(settings.get(), group, "Disabled", nullptr))
        diagnosis.Note(L"Xfce's thumbnail service", L"is set to use no thumbnailers of others",
                       L"Xfce's thumbnail service asks no other thumbnailers; tumbler.rc changes that.");
    tumbler.limit = g_key_file_get_uint64(settings.get(), group, "MaxFileSize", nullptr);
    return tumbler;
}

std::wstring LimitText(uint64_t limit)
{
    return limit == 0 ? L"shows thumbnails of files of any size"
                      : L"shows thumbnails of files up to " + std::to_wstring(limit / megabyte) + L" MB";
}

} // namespace

std::vector<FileManager> CheckFileManagers(Diagnosis& diagnosis)
{
    std::vector<FileManager> managers;
    for (const auto find : {GnomeFiles, Tumbler})
    {
        if (std::optional<FileManager> manager = find(diagnosis))
            managers.push_back(std::move(*manager));
    }
    for (const FileManager& manager : managers)
        diagnosis.Ok(manager.name.c_str(), LimitText(manager.limit));
    if (managers.empty())
        diagnosis.Note(L"file managers", L"none is here that is known to show thumbnails by Lumora",
                       L"No file manager is here that is known to show thumbnails by Lumora.");
    return managers;
}

} // namespace Lumora
