#pragma once

#include "formats/hdf/inside/HdfCandidate.h"
#include "formats/hdf/inside/HdfObject.h"

namespace Tav::Imaging::RawImage {

/// Goes through all datasets of a file, group by group in the order of their names. Only hard links count:
/// all others lead elsewhere, perhaps out of the file. It lives as long as the sandbox.
class HdfWalk
{
public:
    explicit HdfWalk(hid_t file);
    HdfWalk(const HdfWalk&) = delete;
    HdfWalk& operator=(const HdfWalk&) = delete;

    /// Goes to the next dataset; false when there are no more.
    [[nodiscard]] bool GoToNext();

    /// The dataset at hand: its full path, as spelled in the file, the path's length, and its own name and
    /// group.
    [[nodiscard]] const char* Path() const { return path; }
    [[nodiscard]] uint32_t PathLength() const { return pathLength; }
    [[nodiscard]] const char* Name() const { return name; }
    [[nodiscard]] hid_t Group() const;
    /// Whether "image" stands in the path, in any letter case.
    [[nodiscard]] bool IsCalledImage() const { return isCalledImage; }

private:
    struct Level;

    void Enter(hid_t parent, const char* group);
    void Leave();
    [[nodiscard]] bool IsNew(haddr_t address);

    /// The group at hand, which knows the one that it lies in; null at the end.
    Level* level = nullptr;
    uint32_t depth = 0;
    /// Addresses of the groups that have been walked, as tsearch keeps them.
    void* visited = nullptr;
    const char* name = nullptr;
    bool isCalledImage = false;
    uint32_t pathLength = 0;
    char path[longestHdfPath + 1] = {};
};

} // namespace Tav::Imaging::RawImage
