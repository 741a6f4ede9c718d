// SPDX-License-Identifier: MIT
#include "hardware/log_contexts.h"
#include "hardware/timecode/device_ltc.h"
#include "source_site.h"
#include "widget/ltc_widget.h"

namespace Hardware::Timecode
{

namespace
{

constexpr char SourceFile[] = "timecode/timecode_ltc.cpp";
constexpr char FatalSite[] = HARDWARE_FATAL_SITE("timecode/timecode_ltc.cpp");

Os::Log::Context& LogContext()
{
    static Os::Log::Context context("Ltc", &TimecodeLogContext(), Os::Log::AllButTrace);
    return context;
}

} // namespace

DeviceLtc::DeviceLtc(QObject* parent)
    : Device(TimecodeType_Ltc, parent), m_signaller(&LtcWidget::LtcReader, this)
{
    LogContext(); // made before whatever outlives this, which may log when it is destroyed
    m_signaller.SetAutoReadRegister(true);
}

DeviceLtc::~DeviceLtc()
{
    DeviceLtc::Disable();
}

bool DeviceLtc::Enable()
{
    if (enabled.load(std::memory_order_relaxed))
        return true;
    HARDWARE_LOG(LogContext(), Os::Log::Trace, "Enabling LTC timecode device");
    enabled.store(true, std::memory_order_relaxed);
    // Blanks as they stand in the fatal texts; the numbers are the sites' own.
    // clang-format off
    OS_VERIFY_AT(connect( &m_signaller, SIGNAL( widgetAdded( const Hardware::WidgetMapData & ) ),
                          this, SLOT( processAdd( const Hardware::WidgetMapData & ) ),
                          Qt::DirectConnection ), 58, FatalSite);
    OS_VERIFY_AT(connect( &m_signaller, SIGNAL( widgetRemoved( const Hardware::WidgetMapData & ) ),
                          this, SLOT( processRemove( const Hardware::WidgetMapData & ) ),
                          Qt::DirectConnection ), 64, FatalSite);
    OS_VERIFY_AT(connect( &m_signaller, SIGNAL( widgetRead( const Hardware::WidgetSignaller::Event & ) ),
                          this, SLOT( processTimecode( const Hardware::WidgetSignaller::Event & ) ),
                          Qt::DirectConnection ), 70, FatalSite);
    // clang-format on
    if (m_signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMLTCD))
        return true;
    Disable();
    return false;
}

bool DeviceLtc::Disable()
{
    if (!enabled.load(std::memory_order_relaxed))
        return true;
    // "input" here, "device" when enabling, on purpose.
    HARDWARE_LOG(LogContext(), Os::Log::Trace, "Disabling LTC timecode input");
    for (WidgetMapData& board : m_signaller.GetActiveWidgets()) {
        board.StopReader();
        board.Close();
        board.Open(); // left open, with no reader: the link lights still work the board
    }
    enabled.store(false, std::memory_order_relaxed);
    disconnect(&m_signaller, nullptr, this, nullptr);
    return m_signaller.UnregisterWidgetClass(&GUID_DEVINTERFACE_QRTUMLTCD);
}

bool DeviceLtc::IsEnabled() const
{
    return enabled.load(std::memory_order_relaxed);
}

bool DeviceLtc::IsActive() const
{
    return m_signaller.GetActiveWidgetCount() != 0;
}

WidgetMapData DeviceLtc::GetWidget(unsigned int index) const
{
    return m_signaller.GetWidget(static_cast<int>(index));
}

void DeviceLtc::processAdd(const Hardware::WidgetMapData& data)
{
    const int index = m_signaller.GetWidgetIndex(data);
    OS_TRAP_AT(index == -1, 143, FatalSite);
    emitDeviceAdded({this, static_cast<std::uint32_t>(index)});
}

void DeviceLtc::processRemove(const Hardware::WidgetMapData& data)
{
    const int index = m_signaller.GetWidgetIndex(data);
    OS_TRAP_AT(index == -1, 154, FatalSite);
    emitDeviceRemoved({this, static_cast<std::uint32_t>(index)});
}

void DeviceLtc::processTimecode(const Hardware::WidgetSignaller::Event& event)
{
    const auto* const timecode = dynamic_cast<const LtcWidget::TimecodeEvent*>(event.event);
    if (!timecode)
        return;
    const Frame frame(timecode->hours, timecode->minutes, timecode->seconds, timecode->frames,
                      timecode->dropFrame != 0);
    const int index = m_signaller.GetWidgetIndex(event.mapData);
    OS_TRAP_AT(index == -1, 180, FatalSite);
    emitFrameRead({this, static_cast<std::uint32_t>(index)}, frame);
}

} // namespace Hardware::Timecode
