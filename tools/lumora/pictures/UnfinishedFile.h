#pragma once

#include <string>

namespace Lumora {

/// A file under a name of its own while it is being written; deleted unless it is kept.
class UnfinishedFile
{
public:
    explicit UnfinishedFile(const std::wstring& finalPath);
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile();

    /// Gives the file its name; one that has it already is replaced. Throws a Failure.
    void Keep() const;

    const std::wstring path;

private:
    const std::wstring target;
};

} // namespace Lumora
