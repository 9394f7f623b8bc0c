#pragma once

#include "lumora/pictures/FileProperties.h"
#include "platform/Platform.h"

#include <string>

namespace Lumora {

/// A value that is freed when it is no longer needed.
class ClearedVariant
{
public:
    ClearedVariant() noexcept { PropVariantInit(&variant); }
    ClearedVariant(const ClearedVariant&) = delete;
    ClearedVariant& operator=(const ClearedVariant&) = delete;
    ~ClearedVariant() { PropVariantClear(&variant); }

    /// The number or text, or nothing.
    [[nodiscard]] PropertyValue Value() const
    {
        if (variant.vt == VT_UI4)
            return uint32_t{variant.ulVal};
        if (variant.vt == VT_LPWSTR)
            return std::wstring(variant.pwszVal);
        return {};
    }

    PROPVARIANT variant;
};

} // namespace Lumora
