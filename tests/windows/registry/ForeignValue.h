#pragma once

#include "registration/RegistryKey.h"

#include <optional>
#include <string>

/// A value that somebody else has set, while this lives.
class ForeignValue
{
public:
    ForeignValue(Lumora::RegistryKey key, std::wstring name, const Lumora::RegistryValue& value);
    ForeignValue(const ForeignValue&) = delete;
    ForeignValue& operator=(const ForeignValue&) = delete;
    ~ForeignValue();

private:
    Lumora::RegistryKey key;
    std::wstring name;
    std::optional<Lumora::RegistryValue> before;
};
