#pragma once

namespace Lumora {

/// For whom a registration is made.
enum class Scope
{
    Machine,
    User,
};

} // namespace Lumora
