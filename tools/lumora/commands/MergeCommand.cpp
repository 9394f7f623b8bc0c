#include "lumora/commands/MergeCommand.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Interruption.h"
#include "lumora/files/FileSource.h"
#include "lumora/files/Paths.h"
#include "lumora/pictures/UnfinishedText.h"
#include "lumora/shards/ShardFile.h"
#include "lumora/sheet/GalleryParts.h"
#include "lumora/sheet/GalleryWriter.h"

#include <memory>
#include <string>
#include <vector>

namespace Lumora {

namespace {

/// All shards of a run in their order.
using Shards = std::vector<std::unique_ptr<ShardFile>>;

/// Throws a Failure unless both shards are of the same run.
void RequireSameRun(const ShardFile& first, const ShardFile& second)
{
    const std::wstring both = first.Source().name + L" and " + second.Source().name;
    if (first.IsPage() != second.IsPage())
        throw Failure{both + L" are not of the same kind"};
    if (first.Mark().shard.count != second.Mark().shard.count)
        throw Failure{both + L" are shards " + first.Mark().shard.Text() + L" and " +
                      second.Mark().shard.Text()};
    if (!first.Mark().IsOfSameList(second.Mark()))
        throw Failure{both + L" are of different lists, of " + std::to_wstring(first.Mark().files) +
                      L" and " + std::to_wstring(second.Mark().files) + L" files"};
}

void RequireAll(const Shards& shards)
{
    std::wstring missing;
    for (size_t index = 0; index < shards.size(); ++index)
    {
        if (!shards[index])
            missing += (missing.empty() ? L"" : L", ") + std::to_wstring(index + 1) + L'/' +
                       std::to_wstring(shards.size());
    }
    if (!missing.empty())
        throw Failure{L"these shards are missing: " + missing};
}

Shards Open(const std::vector<std::wstring>& paths)
{
    const FileList list = AllFilesOf({paths, nullptr, nullptr});
    for (const SourceFile& missing : list.failures)
        throw Failure{missing.name + L": " + *missing.failure};
    Shards shards;
    const ShardFile* first = nullptr;
    for (const SourceFile& file : list.files)
    {
        auto opened = std::make_unique<ShardFile>(file);
        if (!first)
        {
            first = opened.get();
            shards.resize(first->Mark().shard.count);
        }
        RequireSameRun(*first, *opened);
        std::unique_ptr<ShardFile>& place = shards[opened->Mark().shard.number - 1];
        if (place)
            throw Failure{place->Source().name + L" and " + file.name + L" are the same shard, " +
                          place->Mark().shard.Text()};
        place = std::move(opened);
    }
    RequireAll(shards);
    return shards;
}

/// The name of the whole. It is none of the shards, and a page is where its pictures are.
std::wstring TargetOf(const CommandLine& line, const Shards& shards)
{
    const SourceFile& first = shards.front()->Source();
    const bool isPage = shards.front()->IsPage();
    const std::wstring usual =
        isPage ? JoinPath(ParentFolder(first.name), L"index.html") : std::wstring(L"merged.jsonl");
    std::wstring target = line.output.value_or(usual);
    for (const auto& shard : shards)
    {
        const SourceFile& source = shard->Source();
        const std::wstring full = FullPath(target);
        const std::wstring fullSource = FullPath(source.name);
        if (AreSameName(full, fullSource))
            throw Failure{target + L" is one of the shards; -o names another file"};
        if (isPage && !AreSameName(ParentFolder(full), ParentFolder(fullSource)))
            throw Failure{target + L" would not be in the folder of " + source.name +
                          L", whose pictures it shows"};
    }
    return target;
}

std::string HeadOf(const Shards& shards)
{
    std::string head = shards.front()->Head();
    for (size_t index = 1; index < shards.size(); ++index)
    {
        if (shards[index]->Head() != head)
            throw Failure{shards.front()->Source().name + L" and " + shards[index]->Source().name +
                          L" are pages with different titles or sizes of pictures"};
    }
    return head;
}

void Merge(const Shards& shards, UnfinishedText& whole)
{
    const bool isPage = shards.front()->IsPage();
    bool isEmpty = true;
    whole.Write(HeadOf(shards));
    for (uint32_t index = 0; index < shards.front()->Mark().files; ++index)
    {
        if (Interruption::IsWanted())
            throw Failure{L"stopped"};
        const std::string file = shards[index % shards.size()]->Next();
        whole.Write(file);
        isEmpty = isEmpty && file.empty();
    }
    for (const auto& shard : shards)
        shard->RequireEnd();
    if (isPage && isEmpty)
        throw Failure{noFilesForSheet};
    if (isPage)
        whole.Write(galleryParts.tail);
    whole.Keep();
}

} // namespace

int RunMerge(const CommandLine& line, Console& console)
{
    const Interruption interruption;
    const Shards shards = Open(line.paths);
    const std::wstring target = TargetOf(line, shards);
    UnfinishedText whole(OpenablePath(target),
                         shards.front()->IsPage() ? GallerySignature() : ShardFile::lineBegin);
    Merge(shards, whole);
    console.Print(target + L'\n');
    return 0;
}

} // namespace Lumora
