#include "lumora/files/FileLock.h"

namespace Lumora {

FileLock::FileLock(const std::wstring&) : handle(0) {}

FileLock::~FileLock() = default;

} // namespace Lumora
