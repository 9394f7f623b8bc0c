#include "lumora/pictures/Imaging.h"

namespace Lumora {

/// The decoder is a part of this program.
struct Imaging::Means
{};

Imaging::Imaging() = default;

Imaging::~Imaging() = default;

void Imaging::RequireDecoder() const {}

void Imaging::RequireProperties() const {}

} // namespace Lumora
