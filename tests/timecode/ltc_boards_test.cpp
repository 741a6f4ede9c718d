// SPDX-License-Identifier: MIT

// What the LTC device does to its boards, call by call. This program has the record's operations of
// its own, which stand before the platform's and do what those do.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "hardware/timecode/device_ltc.h"
#include "widget/widget_map_data.h"

using Hardware::Timecode::DeviceLtc;

namespace
{

std::vector<std::string>& Calls()
{
    static std::vector<std::string> calls;
    return calls;
}

bool CallReal(const char* name, const char* symbol, Hardware::WidgetMapData* record)
{
    const std::wstring& path = record->GetDevicePath();
    Calls().push_back(name + std::string(" ") + std::string(path.begin(), path.end()));
    typedef bool Operation(Hardware::WidgetMapData*);
    return reinterpret_cast<Operation*>(dlsym(RTLD_NEXT, symbol))(record);
}

} // namespace

namespace Hardware
{

bool WidgetMapData::StopReader()
{
    return CallReal("stop", "_ZN8Hardware13WidgetMapData10StopReaderEv", this);
}

bool WidgetMapData::Close()
{
    return CallReal("close", "_ZN8Hardware13WidgetMapData5CloseEv", this);
}

bool WidgetMapData::Open()
{
    return CallReal("open", "_ZN8Hardware13WidgetMapData4OpenEv", this);
}

} // namespace Hardware

TEST(TimecodeLtcBoards, DisablingStopsClosesAndOpensEachInTheSignallersOrder)
{
    Desk::WidgetBus bus;
    // Attached in another order than that of their places.
    bus.Add({"LtcWidget", 1, L"b"});
    bus.Add({"LtcWidget", 2, L"c"});
    bus.Add({"LtcWidget", 3, L"a"});
    DeviceLtc device(nullptr);
    ASSERT_TRUE(device.Enable());
    std::vector<std::string> expected;
    for (unsigned index = 0; index < 3; ++index) {
        const std::wstring& path = device.GetWidget(index).GetDevicePath();
        for (const char* const call : {"stop ", "close ", "open "})
            expected.push_back(call + std::string(path.begin(), path.end()));
    }
    Calls().clear();
    EXPECT_TRUE(device.Disable());
    EXPECT_EQ(Calls(), expected);
    EXPECT_EQ(Calls().size(), 9U);
}
