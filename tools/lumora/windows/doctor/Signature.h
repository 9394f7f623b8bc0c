#pragma once

#include <string>

namespace Lumora {

/// Whose signature a program has.
struct Signature
{
    /// The name in the certificate; empty if there is no signature, or none that can be read.
    std::wstring signer;
    /// Why Windows does not trust the signature; empty if it does, and if there is none.
    std::wstring doubt;

    /// As in "of NAME, but the certificate has expired", or "there is none".
    [[nodiscard]] std::wstring Words() const;
};

/// The signature in the file of a program, as Windows sees it. Nothing is fetched from the network.
[[nodiscard]] Signature SignatureOf(const std::wstring& path);

} // namespace Lumora
