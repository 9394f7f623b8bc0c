#pragma once

#include <memory>

namespace Lumora {

/// What this system needs to read files and to write pictures, for the thread that has made it. Whatever
/// fails throws a Failure.
class Imaging
{
public:
    Imaging();
    Imaging(const Imaging&) = delete;
    Imaging& operator=(const Imaging&) = delete;
    ~Imaging();

    /// Fails when no file could be shown, because Lumora is not registered with the system.
    void RequireDecoder() const;

    /// Fails when no file's properties could be read, for the same reason.
    void RequireProperties() const;

    struct Means;
    const std::unique_ptr<Means> means;
};

} // namespace Lumora
