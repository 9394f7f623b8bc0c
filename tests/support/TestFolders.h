#pragma once

#include <filesystem>
#include <string_view>

// Where the files are that the tests read. The list test-folders.txt beside the program tells it, so that the
// programs also run in another folder, and on another machine, than those they were built in. Each line has a
// name and a folder, which may be relative to the program's own.

/// The folder of that name: "source" for the source tree; "hdf", "mrc" and "npy" for files by independent
/// writers; "real" for files by instruments, which is empty if there are none. Throws std::runtime_error if
/// the list does not have the name.
[[nodiscard]] std::filesystem::path TestFolder(std::string_view name);
