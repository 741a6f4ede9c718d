// SPDX-License-Identifier: MIT
#include "common/port_name.h"

#include <gtest/gtest.h>

namespace
{

TEST(PortName, GoesToTheLibraryAndBackByteForByte)
{
    std::string name;
    for (int byte = 1; byte < 256; ++byte)
        name.push_back(static_cast<char>(byte));
    EXPECT_EQ(Tools::NarrowPortName(Tools::WidenPortName(name)), name);
}

TEST(PortName, HasSignedCharactersInTheLibrary)
{
    EXPECT_EQ(Tools::WidenPortName("a\xC3"), (std::wstring{L'a', static_cast<wchar_t>(-61)}));
}

} // namespace
