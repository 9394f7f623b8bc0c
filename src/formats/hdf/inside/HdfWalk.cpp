#include "formats/hdf/inside/HdfWalk.h"

#include "formats/hdf/inside/HdfNames.h"

#include <hdf5.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <search.h>

namespace Tav::Imaging::RawImage {

namespace {

bool ContainsImageWord(const char* name)
{
    for (; *name; ++name)
    {
        size_t same = 0;
        while (hdfImageWord[same] && tolower(static_cast<unsigned char>(name[same])) == hdfImageWord[same])
            ++same;
        if (!hdfImageWord[same])
            return true;
    }
    return false;
}

int CompareAddresses(const void* a, const void* b)
{
    const haddr_t left = *static_cast<const haddr_t*>(a);
    const haddr_t right = *static_cast<const haddr_t*>(b);
    return left < right ? -1 : left > right ? 1 : 0;
}

} // namespace

/// A group that is being walked.
struct HdfWalk::Level
{
    Level(hid_t identifier, Level* outer, uint32_t length, bool isImage)
        : group(identifier), parent(outer), pathLength(length), isCalledImage(isImage)
    {
        H5Literate1(identifier, H5_INDEX_NAME, H5_ITER_INC, nullptr, Collect, this);
    }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { free(names); }

    static herr_t Collect(hid_t, const char* link, const H5L_info1_t* info, void* target)
    {
        // A name with a slash or of a dot alone would be taken for a path.
        if (info->type == H5L_TYPE_HARD && link[0] != '\0' && strcmp(link, ".") != 0)
            static_cast<Level*>(target)->Add(link);
        return 0;
    }

    void Add(const char* link)
    {
        const size_t length = strnlen(link, longestHdfText);
        if (memchr(link, '/', length))
            return;
        if (end + length + 1 > room)
        {
            room = 2 * (end + length + 1);
            char* const moved = static_cast<char*>(realloc(names, room));
            // What has no memory left comes to its end here.
            if (!moved)
                __builtin_trap();
            names = moved;
        }
        memcpy(names + end, link, length);
        names[end + length] = '\0';
        end += length + 1;
    }

    /// The next name; null behind the last one.
    const char* Next()
    {
        if (next == end)
            return nullptr;
        const char* const text = names + next;
        next += strlen(text) + 1;
        return text;
    }

    HdfGroup group;
    Level* parent;
    /// The length of the group's path.
    uint32_t pathLength;
    bool isCalledImage;
    /// One behind the other, each with its zero byte.
    char* names = nullptr;
    size_t room = 0;
    size_t end = 0;
    size_t next = 0;
};

HdfWalk::HdfWalk(hid_t file)
{
    Enter(file, "/");
}

hid_t HdfWalk::Group() const
{
    return level->group.id;
}

bool HdfWalk::GoToNext()
{
    while (level)
    {
        pathLength = level->pathLength;
        name = level->Next();
        if (!name)
        {
            Leave();
            continue;
        }
        H5O_info1_t info;
        if (H5Oget_info_by_name2(level->group.id, name, &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0)
            continue;
        path[pathLength++] = '/';
        const size_t length = strlen(name);
        memcpy(path + pathLength, name, length + 1);
        pathLength += static_cast<uint32_t>(length);
        isCalledImage = level->isCalledImage || ContainsImageWord(name);
        if (info.type == H5O_TYPE_DATASET)
            return true;
        // Hard links can make circles.
        if (info.type == H5O_TYPE_GROUP && depth < deepestHdfGroup && IsNew(info.addr))
            Enter(level->group.id, name);
    }
    return false;
}

void HdfWalk::Enter(hid_t parent, const char* group)
{
    const hid_t identifier = H5Gopen2(parent, group, H5P_DEFAULT);
    if (identifier < 0)
        return;
    level = new Level{identifier, level, pathLength, isCalledImage};
    ++depth;
}

void HdfWalk::Leave()
{
    Level* const left = level;
    level = left->parent;
    --depth;
    delete left;
}

bool HdfWalk::IsNew(haddr_t address)
{
    auto* const key = static_cast<haddr_t*>(malloc(sizeof(haddr_t)));
    *key = address;
    return *static_cast<haddr_t**>(tsearch(key, &visited, CompareAddresses)) == key;
}

} // namespace Tav::Imaging::RawImage
