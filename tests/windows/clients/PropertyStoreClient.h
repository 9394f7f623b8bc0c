#pragma once

#include "platform/ComPtr.h"

#include <windows.h>

#include <propsys.h>

#include <array>
#include <string>
#include <variant>

/// The keys that the property handler serves, in its order: horizontal size, vertical size, dimensions,
/// frame count, pixel format, creating application, bit depth, comment.
extern const std::array<PROPERTYKEY, 8> servedKeys;

/// A number, a text, or nothing when the store refuses to give a value.
using PropertyValue = std::variant<std::monostate, ULONG, std::wstring>;

/// A property store of Lumora.dll that has seen no stream yet.
[[nodiscard]] ComPtr<IPropertyStore> NewPropertyStore();

/// What the store answers to a stream.
HRESULT Initialize(const ComPtr<IPropertyStore>& store, IStream* stream, DWORD mode = STGM_READ);

/// The value for a key. A test failure for a success without a value, a refusal with one, or another type.
[[nodiscard]] PropertyValue ValueOf(const ComPtr<IPropertyStore>& store, const PROPERTYKEY& key);

/// The values for all keys that are served, in their order.
[[nodiscard]] std::array<PropertyValue, 8> ValuesOf(const ComPtr<IPropertyStore>& store);
