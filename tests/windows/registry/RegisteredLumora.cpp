#include "windows/registry/RegisteredLumora.h"

#include "registration/Registration.h"
#include "windows/clients/LumoraModule.h"

#include <objbase.h>

void RegisteredLumora::SetUp()
{
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    const std::wstring dllPath = LumoraModule::File().wstring();
    wasRegistered = Lumora::CheckRegistration(Lumora::Scope::Machine, dllPath).IsComplete();
    ASSERT_FALSE(Lumora::Register(Lumora::Scope::Machine, dllPath).failure);
}

void RegisteredLumora::TearDown()
{
    if (wasRegistered)
        return;
    EXPECT_FALSE(Lumora::Unregister(Lumora::Scope::Machine).failure);
}
