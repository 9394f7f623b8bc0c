#pragma once

#include "registration/Registration.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/tool/ToolRun.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// The tests find the machine's registration complete and none of the user's, and leave it so.
class ToolDoctor : public testing::Test
{
protected:
    void TearDown() override
    {
        ASSERT_FALSE(Lumora::Unregister(Lumora::Scope::User).failure);
        ASSERT_FALSE(Lumora::Register(Lumora::Scope::Machine, LumoraModule::File().wstring()).failure);
    }

    [[nodiscard]] ToolRun Run(const std::vector<std::wstring>& arguments) const
    {
        std::vector<std::wstring> all = {L"doctor"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return {all, folder.Path()};
    }

    /// How many values are registered.
    static std::string Entries(Lumora::Scope scope)
    {
        return std::to_string(Lumora::RegistryEntries(scope, {}).size()) + " entries";
    }

    /// The path of a file as the program writes it.
    static std::string Shown(const std::filesystem::path& path) { return path.string(); }

    TemporaryFolder folder;
};
