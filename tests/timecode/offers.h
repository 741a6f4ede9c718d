// SPDX-License-Identifier: MIT
#pragma once

namespace TestSupport
{

/// True; names a member or function by a cast to its exact type, which compiles only when the class
/// offers just that.
template <auto Member> inline constexpr bool Offers = true;

} // namespace TestSupport
