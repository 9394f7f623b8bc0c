#pragma once

#include <H5Apublic.h>
#include <H5Dpublic.h>
#include <H5Fpublic.h>
#include <H5Gpublic.h>
#include <H5Ppublic.h>
#include <H5Spublic.h>
#include <H5Tpublic.h>

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
};

/// An owner that differs from the others in the library's function that closes.
template <herr_t (*close)(hid_t)>
class HdfOwner final : public HdfObject
{
public:
    explicit HdfOwner(hid_t identifier) noexcept : HdfObject(identifier) {}
    HdfOwner(const HdfOwner&) = delete;
    HdfOwner& operator=(const HdfOwner&) = delete;
    ~HdfOwner() override
    {
        if (IsOpen())
            close(id);
    }
};

using HdfFile = HdfOwner<H5Fclose>;
using HdfGroup = HdfOwner<H5Gclose>;
using HdfDataSet = HdfOwner<H5Dclose>;
using HdfDataType = HdfOwner<H5Tclose>;
using HdfDataSpace = HdfOwner<H5Sclose>;
using HdfAttribute = HdfOwner<H5Aclose>;
using HdfPropertyList = HdfOwner<H5Pclose>;

} // namespace Tav::Imaging::RawImage
