#pragma once

#include <string>

namespace Lumora {

/// A file that has a temporary name while it is being written. It is deleted unless it is kept.
class UnfinishedFile
{
public:
    explicit UnfinishedFile(const std::wstring& finalPath);
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile();

    /// Gives the file its final name and replaces a file of that name. Throws a Failure.
    void Keep() const;

    const std::wstring path;

private:
    const std::wstring target;
};

} // namespace Lumora
