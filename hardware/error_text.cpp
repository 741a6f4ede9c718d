// SPDX-License-Identifier: MIT
#include "error_text.h"

#include <array>
#include <cstring>

namespace Hardware
{

std::string GetErrorText(int error)
{
    std::array<char, 128> room{};
    // The GNU form: it returns the text, which need not be in the room offered.
    return strerror_r(error, room.data(), room.size());
}

} // namespace Hardware
