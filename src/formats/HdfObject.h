#pragma once

#include <H5Ipublic.h>
#include <H5public.h>

namespace Tav::Imaging::RawImage {

/// Owns one identifier of the HDF5 library and closes it at its end; a negative one stands for nothing.
class HdfObject
{
public:
    HdfObject(const HdfObject&) = delete;
    HdfObject& operator=(const HdfObject&) = delete;
    virtual ~HdfObject() = default;

    [[nodiscard]] bool IsOpen() const noexcept { return id >= 0; }

    const hid_t id;

protected:
    explicit HdfObject(hid_t identifier) noexcept : id(identifier) {}

    /// Closes what is open with the library's function for it.
    void Close(herr_t (*close)(hid_t)) const noexcept;
};

class HdfFile final : public HdfObject
{
public:
    explicit HdfFile(hid_t identifier) noexcept : HdfObject(identifier) {}
    ~HdfFile() override;
};

class HdfGroup final : public HdfObject
{
public:
    explicit HdfGroup(hid_t identifier) noexcept : HdfObject(identifier) {}
    ~HdfGroup() override;
};

class HdfDataSet final : public HdfObject
{
public:
    explicit HdfDataSet(hid_t identifier) noexcept : HdfObject(identifier) {}
    ~HdfDataSet() override;
};

class HdfDataType final : public HdfObject
{
public:
    explicit HdfDataType(hid_t identifier) noexcept : HdfObject(identifier) {}
    ~HdfDataType() override;
};

class HdfDataSpace final : public HdfObject
{
public:
    explicit HdfDataSpace(hid_t identifier) noexcept : HdfObject(identifier) {}
    ~HdfDataSpace() override;
};

class HdfAttribute final : public HdfObject
{
public:
    explicit HdfAttribute(hid_t identifier) noexcept : HdfObject(identifier) {}
    ~HdfAttribute() override;
};

class HdfPropertyList final : public HdfObject
{
public:
    explicit HdfPropertyList(hid_t identifier) noexcept : HdfObject(identifier) {}
    ~HdfPropertyList() override;
};

} // namespace Tav::Imaging::RawImage
