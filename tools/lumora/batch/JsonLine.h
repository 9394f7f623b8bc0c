#pragma once

#include "lumora/batch/FileReport.h"
#include "lumora/console/JsonWriter.h"
#include "lumora/files/FileSource.h"

#include <string>

namespace Lumora {

/// All that is known of a file as one line of JSON Lines; docs/json-lines.md describes it. With the pictures
/// that were written, if there could be any.
[[nodiscard]] std::wstring JsonLine(const SourceFile& file, const FileReport& report, bool withTargets);

/// Writes each property as a member of the open object; null for one that the file does not have.
void WriteProperties(JsonWriter& json, const FileProperties& properties);

} // namespace Lumora
