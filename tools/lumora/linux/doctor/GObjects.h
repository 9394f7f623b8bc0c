#pragma once

#include <memory>

#include <gio/gio.h>

namespace Lumora {

struct GObjectReleaser
{
    void operator()(void* object) const noexcept { g_object_unref(object); }
};

struct GMemoryReleaser
{
    void operator()(void* memory) const noexcept { g_free(memory); }
};

struct GKeyFileReleaser
{
    void operator()(GKeyFile* file) const noexcept { g_key_file_unref(file); }
};

struct GListReleaser
{
    void operator()(char** texts) const noexcept { g_strfreev(texts); }
};

template <class Type>
using GObjectPtr = std::unique_ptr<Type, GObjectReleaser>;

/// A text that GLib has allocated.
using GText = std::unique_ptr<char, GMemoryReleaser>;
using GTexts = std::unique_ptr<char*, GListReleaser>;
using GKeyFilePtr = std::unique_ptr<GKeyFile, GKeyFileReleaser>;

} // namespace Lumora
