#pragma once

#include <utility>

/// Owns one reference to a COM object, or nothing.
template <typename Interface>
class ComPtr
{
public:
    ComPtr() noexcept = default;
    ComPtr(const ComPtr& other) noexcept : ComPtr(Share(other.object)) {}
    ComPtr(ComPtr&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    ~ComPtr() { Reset(); }

    ComPtr& operator=(ComPtr other) noexcept
    {
        std::swap(object, other.object);
        return *this;
    }

    /// A holder with a reference of its own beside the caller's.
    [[nodiscard]] static ComPtr Share(Interface* object) noexcept
    {
        if (object)
            object->AddRef();
        return Adopt(object);
    }

    /// A holder that takes over the caller's reference.
    [[nodiscard]] static ComPtr Adopt(Interface* object) noexcept
    {
        ComPtr holder;
        holder.object = object;
        return holder;
    }

    void Reset() noexcept
    {
        if (Interface* released = std::exchange(object, nullptr))
            released->Release();
    }

    /// Gives the reference to the caller.
    [[nodiscard]] Interface* Detach() noexcept { return std::exchange(object, nullptr); }

    /// Where a COM call stores a new reference; what was held is released first.
    [[nodiscard]] Interface** Put() noexcept
    {
        Reset();
        return &object;
    }

    [[nodiscard]] void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

    [[nodiscard]] Interface* Get() const noexcept { return object; }
    Interface* operator->() const noexcept { return object; }
    explicit operator bool() const noexcept { return object != nullptr; }

private:
    Interface* object = nullptr;
};
