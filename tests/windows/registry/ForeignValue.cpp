#include "windows/registry/ForeignValue.h"

#include <gtest/gtest.h>

ForeignValue::ForeignValue(Lumora::RegistryKey valueKey, std::wstring valueName,
                           const Lumora::RegistryValue& value)
    : key(std::move(valueKey)), name(std::move(valueName))
{
    EXPECT_EQ(key.Read(name, before), ERROR_SUCCESS);
    EXPECT_EQ(key.Write(name, value), ERROR_SUCCESS);
}

ForeignValue::~ForeignValue()
{
    EXPECT_EQ(before ? key.Write(name, *before) : key.DeleteValue(name), ERROR_SUCCESS);
    EXPECT_EQ(key.DeleteWhileEmpty(), ERROR_SUCCESS);
}
