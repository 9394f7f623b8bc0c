#pragma once

#include <gtest/gtest.h>

/// COM runs, and Lumora.dll beside this program is registered for the machine, while the tests do. A
/// registration of the same DLL that was there before stays.
class RegisteredLumora : public testing::Environment
{
public:
    void SetUp() override;
    void TearDown() override;

private:
    bool wasRegistered = false;
};
