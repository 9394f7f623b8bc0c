// The fuzzer's entry points. The program has many targets, and runs the one that its argument --target=NAME
// names: the fuzzer leaves arguments with two dashes to its targets.

#include "Target.h"

#include <cstdio>
#include <string_view>

namespace {

std::vector<Target> AllTargets()
{
    std::vector<Target> all;
    for (const auto& targets : {FileTargets, BuiltFileTargets, FrameTargets, CopyTargets, PropertyTargets,
                                IdentificationTargets, TextTargets})
    {
        for (Target& target : targets())
            all.push_back(std::move(target));
    }
    return all;
}

Target& Chosen()
{
    static Target target;
    return target;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(const int* count, char*** arguments)
{
    constexpr std::string_view option = "--target=";
    for (const std::string_view argument : std::span(*arguments, static_cast<size_t>(*count)))
    {
        for (Target& target : AllTargets())
        {
            if (argument.starts_with(option) && argument.substr(option.size()) == target.name)
                Chosen() = std::move(target);
        }
    }
    if (Chosen().run)
        return 0;
    std::fputs("--target=NAME must name one of these:\n", stderr);
    for (const Target& target : AllTargets())
        std::fprintf(stderr, "%s\n", target.name.c_str());
    std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Chosen().run({data, size});
    return 0;
}
