// SPDX-License-Identifier: MIT
#include "hardware/wing_mapper.h"

#include <algorithm>
#include <atomic>

#include "hardware/log_contexts.h"
#include "os/platform.h"
#include "source_site.h"
#include "widget/trackball_widget.h"
#include "widget/um_vex_next_wing.h"
#include "widget/vex4_top_box.h"
#include "widget/widget_factory.h"
#include "widget/widget_manager.h"
#include "wing_news.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "wing_mapper.cpp";
constexpr char FatalSite[] = HARDWARE_FATAL_SITE("wing_mapper.cpp");

/// Readers that the map's lock is made for.
constexpr unsigned ExpectedReaders = 10;
/// The master id of a button that belongs to none.
constexpr unsigned short NoMaster = 65535;
/// The kind of configuration event that tells of an expansion wing's displays.
constexpr int DisplayConfiguration = 8;

Os::Log::Context& LogContext()
{
    static Os::Log::Context context("WingMapper", &HardwareLogContext(), Os::Log::AllButTrace);
    return context;
}

bool StandsForDevice(const UmWidget& widget, const WidgetMapData& mapData)
{
    return WingNews::IsSame(widget.GetMapData(), mapData);
}

} // namespace

WingMapper::WingMapData::~WingMapData() = default;

WingMapper::WingMapper()
    : m_lock(ExpectedReaders), m_news(new WingNews), m_wingSignaller(&UmWing::WingReader, this),
      m_trackBallSignaller(&TrackballWidget::TrackballReader, this),
      m_buttonBarSignaller(&Vex4TopBox::Vex4TopBoxReader, this)
{
    LogContext(); // made here, it outlives this: the last wings are logged while the process ends
    m_wingSignaller.SetAutoReadRegister(true);
    m_trackBallSignaller.SetAutoReadRegister(true);
    m_buttonBarSignaller.SetAutoReadRegister(true);
}

WingMapper::~WingMapper() = default;

WingMapper& WingMapper::Get()
{
    static WingMapper instance;
    static std::atomic<bool> isInitialized{false};
    if (!isInitialized.exchange(true, std::memory_order_relaxed))
        HARDWARE_LOG(LogContext(), Os::Log::Note, "WingMapper initialized.");
    return instance;
}

void WingMapper::Begin()
{
    Get().connect_signaller();
}

void WingMapper::End()
{
    Get().disconnect_signaller();
}

UmWidget* WingMapper::get_wing(WidgetKey k)
{
    const Os::ReadKey hold(m_lock);
    const auto found = m_wings.find(k);
    return found == m_wings.end() ? nullptr : found->second.record->widget;
}

std::set<WidgetKey> WingMapper::connected_wings()
{
    const Os::ReadKey hold(m_lock);
    std::set<WidgetKey> keys;
    for (const auto& [key, entry] : m_wings)
        keys.insert(key);
    return keys;
}

// Blanks as they stand in the fatal texts.
// clang-format off
void WingMapper::connect_signaller()
{
    // Left over from an earlier Begin(), connections would bring everything twice, beginning with
    // the report of attached wings while the classes are registered.
    for (WidgetSignaller* const signaller :
         {&m_wingSignaller, &m_trackBallSignaller, &m_buttonBarSignaller})
        disconnect(signaller, nullptr, this, nullptr);
    m_watched.clear();
    {
        const Os::WriteKey hold(m_lock);
        m_news->Clear();
    }

    bool success = false;
    for (const GUID* const classId :
         {&GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE, &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI,
          &GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG, &GUID_DEVINTERFACE_QRTUMVNEXT_PETITE,
          &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING,
          &GUID_DEVINTERFACE_QRTUMEXPANSIONWING, &GUID_DEVINTERFACE_QRTUMPLAYBACKWING,
          &GUID_DEVINTERFACE_QRTUMPROGRAMMERWING})
        success |= m_wingSignaller.RegisterWidgetClass(classId);
    // Not quite the order of registration, on purpose: it is the order in which wings are announced.
    for (const GUID* const classId :
         {&GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE, &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI,
          &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING, &GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG,
          &GUID_DEVINTERFACE_QRTUMVNEXT_PETITE, &GUID_DEVINTERFACE_QRTUMEXPANSIONWING,
          &GUID_DEVINTERFACE_QRTUMPLAYBACKWING, &GUID_DEVINTERFACE_QRTUMPROGRAMMERWING})
        add_all(*classId);

    // Model 11 has its trackball also where the software does not run on the console itself.
    if (Os::Platform::IsConsole() || Os::Platform::GetKelProductType() == 11)
        connect_console_sections(success);

    // Connected last, on purpose: until here wings come from add_all() alone.
    OS_VERIFY(connect( &m_wingSignaller, SIGNAL( widgetAdded( const Hardware::WidgetMapData & ) ),
                       this, SLOT( wing_add( const Hardware::WidgetMapData & ) ),
                       Qt::DirectConnection ), FatalSite);
    OS_VERIFY(connect( &m_wingSignaller, SIGNAL( widgetRemoved( const Hardware::WidgetMapData & ) ),
                       this, SLOT( wing_remove( const Hardware::WidgetMapData & ) ),
                       Qt::DirectConnection ), FatalSite);
    OS_VERIFY(connect( &m_wingSignaller, SIGNAL( widgetRead( const Hardware::WidgetSignaller::Event & ) ),
                       this, SLOT( wing_read( const Hardware::WidgetSignaller::Event & ) ),
                       Qt::DirectConnection ), FatalSite);
    catch_up();

    if (success)
        HARDWARE_LOG(LogContext(), Os::Log::Note, "Connection complete");
    else
        HARDWARE_LOG(LogContext(), Os::Log::Error, "Unable to register widgets for callbacks");
}

void WingMapper::connect_console_sections(bool& success)
{
    const auto watch = [&](WidgetSignaller& signaller, const GUID& classId) {
        success |= signaller.RegisterWidgetClass(&classId);
    };
    const int productType = Os::Platform::GetKelProductType();
    switch (productType) {
    case 10:
    case 12:
    case 13:
    case 14:
        watch(m_wingSignaller, GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE);
        add_all(GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE);
        break;
    case 9:
        watch(m_wingSignaller, GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL);
        add_all(GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL);
        break;
    case 7:
    case 8:
        watch(m_wingSignaller, GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING);
        watch(m_wingSignaller, GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING);
        add_all(GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING);
        add_all(GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING);
        break;
    default:
        break;
    }
    if (productType == 7) {
        watch(m_buttonBarSignaller, GUID_DEVINTERFACE_QRTUMVEX4TOUCHD);
        add_all(GUID_DEVINTERFACE_QRTUMVEX4TOUCHD);
        OS_VERIFY(connect( &m_buttonBarSignaller, SIGNAL( widgetAdded( const Hardware::WidgetMapData & ) ),
                           this, SLOT( wing_add( const Hardware::WidgetMapData & ) ),
                           Qt::DirectConnection ), FatalSite);
        OS_VERIFY(connect( &m_buttonBarSignaller, SIGNAL( widgetRemoved( const Hardware::WidgetMapData & ) ),
                           this, SLOT( wing_remove( const Hardware::WidgetMapData & ) ),
                           Qt::DirectConnection ), FatalSite);
        OS_VERIFY(connect( &m_buttonBarSignaller, SIGNAL( widgetRead( const Hardware::WidgetSignaller::Event & ) ),
                           this, SLOT( wing_read( const Hardware::WidgetSignaller::Event & ) ),
                           Qt::DirectConnection ), FatalSite);
    }
    watch(m_trackBallSignaller, GUID_DEVINTERFACE_QRTUMTBALLD);
    add_all(GUID_DEVINTERFACE_QRTUMTBALLD);
    OS_VERIFY(connect( &m_trackBallSignaller, SIGNAL( widgetAdded( const Hardware::WidgetMapData & ) ),
                       this, SLOT( wing_add( const Hardware::WidgetMapData & ) ),
                       Qt::DirectConnection ), FatalSite);
    OS_VERIFY(connect( &m_trackBallSignaller, SIGNAL( widgetRemoved( const Hardware::WidgetMapData & ) ),
                       this, SLOT( wing_remove( const Hardware::WidgetMapData & ) ),
                       Qt::DirectConnection ), FatalSite);
    OS_VERIFY(connect( &m_trackBallSignaller, SIGNAL( widgetRead( const Hardware::WidgetSignaller::Event & ) ),
                       this, SLOT( wing_read( const Hardware::WidgetSignaller::Event & ) ),
                       Qt::DirectConnection ), FatalSite);
}
// clang-format on

void WingMapper::disconnect_signaller()
{
    {
        const Os::WriteKey hold(m_lock);
        m_wings.clear();
        m_news->Clear();
    }
    for (const GUID* const classId :
         {&GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE, &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI,
          &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING, &GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG,
          &GUID_DEVINTERFACE_QRTUMVNEXT_PETITE, &GUID_DEVINTERFACE_QRTUMEXPANSIONWING,
          &GUID_DEVINTERFACE_QRTUMPLAYBACKWING, &GUID_DEVINTERFACE_QRTUMPROGRAMMERWING})
        m_wingSignaller.UnregisterWidgetClass(classId);

    // Not the mirror of what was registered, on purpose: models 13 and 14 take the default branch,
    // and model 11 without a console unregisters nothing.
    if (Os::Platform::IsConsole()) {
        const int productType = Os::Platform::GetKelProductType();
        switch (productType) {
        case 9:
            m_wingSignaller.UnregisterWidgetClass(&GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL);
            break;
        case 10:
        case 12:
            m_wingSignaller.UnregisterWidgetClass(&GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE);
            break;
        default:
            m_wingSignaller.UnregisterWidgetClass(&GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING);
            m_wingSignaller.UnregisterWidgetClass(&GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING);
            if (productType == 7)
                m_buttonBarSignaller.UnregisterWidgetClass(&GUID_DEVINTERFACE_QRTUMVEX4TOUCHD);
            break;
        }
        m_trackBallSignaller.UnregisterWidgetClass(&GUID_DEVINTERFACE_QRTUMTBALLD);
    }
    HARDWARE_LOG(LogContext(), Os::Log::Note, "Disconnection complete");
}

void WingMapper::add_all(const GUID& classId)
{
    m_watched.push_back(&classId);
    for (const WidgetMapData& mapData : WidgetManager::GetClassMapData(classId)) {
        {
            const Os::WriteKey hold(m_lock);
            m_news->AddListed(mapData);
        }
        make_wing(mapData);
    }
}

std::vector<WidgetMapData> WingMapper::list_watched() const
{
    std::vector<WidgetMapData> listed;
    for (const GUID* const classId : m_watched)
        for (const WidgetMapData& mapData : WidgetManager::GetClassMapData(*classId))
            listed.push_back(mapData);
    return listed;
}

/// Makes up for what came and went after its class was listed and before the signals were
/// connected.
void WingMapper::catch_up()
{
    std::vector<WidgetMapData> known;
    {
        const Os::WriteKey hold(m_lock);
        m_news->HoldBack();
        known = m_news->GetDevices();
    }
    const std::vector<WidgetMapData> listed = list_watched();
    const auto isWatched = [this](const WidgetMapData& mapData) {
        return std::find(m_watched.begin(), m_watched.end(), mapData.GetClassId()) !=
               m_watched.end();
    };
    for (const WidgetMapData& mapData : known)
        if (isWatched(mapData) && !WingNews::Contains(listed, mapData))
            drop_wing(mapData, &StandsForDevice);
    std::vector<WidgetMapData> added;
    for (const WidgetMapData& mapData : listed) {
        {
            const Os::WriteKey hold(m_lock);
            if (!m_news->AddCaughtUp(mapData))
                continue;
        }
        make_wing(mapData);
        added.push_back(mapData);
    }
    if (!added.empty()) {
        // When one of them went before it was in the map, the report of that did not find it.
        const std::vector<WidgetMapData> still = list_watched();
        for (const WidgetMapData& mapData : added)
            if (!WingNews::Contains(still, mapData))
                drop_wing(mapData, &StandsForDevice);
    }
    announce_held_back();
}

void WingMapper::announce_held_back()
{
    while (true) {
        WingNews::Announcements announcements;
        {
            const Os::WriteKey hold(m_lock);
            announcements = m_news->Take();
        }
        if (announcements.empty())
            return;
        for (const auto& [key, isPresent] : announcements)
            announce(key, isPresent);
    }
}

void WingMapper::announce(WidgetKey key, bool isPresent)
{
    if (isPresent)
        HARDWARE_LOG(LogContext(), Os::Log::Note, "Wing found " << key);
    else
        HARDWARE_LOG(LogContext(), Os::Log::Note, "Wing removed " << key);
    Q_EMIT wing_change(key, isPresent);
}

void WingMapper::wing_add(const Hardware::WidgetMapData& mapData)
{
    {
        const Os::WriteKey hold(m_lock);
        if (!m_news->AddReported(mapData))
            return;
    }
    make_wing(mapData);
}

void WingMapper::make_wing(const WidgetMapData& mapData)
{
    unsigned long number = 0;
    // Kept and announced even when the factory makes nothing: the device is there.
    std::shared_ptr<UmWidget> widget(WidgetFactory::Get().Create(mapData, number));
    const auto key = static_cast<WidgetKey>(number);
    {
        const Os::WriteKey hold(m_lock);
        Entry& entry = m_wings[key];
        if (entry.record)
            entry.record->widget = widget.get();
        else
            entry.record = std::make_unique<WingMapData>(widget.get());
        entry.widget = std::move(widget);
        if (m_news->Hold(key, true))
            return;
    }
    announce(key, true);
}

void WingMapper::wing_remove(const Hardware::WidgetMapData& mapData)
{
    drop_wing(mapData, [](const UmWidget& widget, const WidgetMapData& removed) {
        return widget.IsMapDataEqual(removed);
    });
}

void WingMapper::drop_wing(const WidgetMapData& mapData, Match isOf)
{
    WidgetKey key = 0;
    {
        const Os::WriteKey hold(m_lock);
        m_news->Remove(mapData);
        const auto found = std::find_if(m_wings.begin(), m_wings.end(), [&](const auto& entry) {
            const UmWidget* const widget = entry.second.record->widget;
            return widget && isOf(*widget, mapData);
        });
        if (found == m_wings.end())
            return;
        // The entry stays until End(), on purpose: connected_wings() lists every key once seen.
        found->second.record->widget = nullptr;
        found->second.widget.reset();
        key = found->first;
        if (key == NoWidgetKey || m_news->Hold(key, false))
            return;
    }
    announce(key, false);
}

void WingMapper::wing_read(const Hardware::WidgetSignaller::Event& event)
{
    WidgetKey key = NoWidgetKey;
    std::shared_ptr<UmWidget> widget;
    {
        const Os::ReadKey hold(m_lock);
        const auto found = std::find_if(m_wings.begin(), m_wings.end(), [&](const auto& entry) {
            const UmWidget* const candidate = entry.second.record->widget;
            return candidate && candidate->IsMapDataEqual(event.mapData);
        });
        if (found != m_wings.end()) {
            key = found->first;
            widget = found->second.widget;
        }
    }
    if (widget && key != NoWidgetKey)
        emitReadEvent(key, *widget, event.event);
}

void WingMapper::emitReadEvent(WidgetKey k, UmWidget& widget, const UmWidget::Event* event)
{
    auto* const wing = dynamic_cast<UmWing*>(&widget);
    if (const auto* const button = dynamic_cast<const UmWing::ButtonEvent*>(event)) {
        if (!wing)
            return;
        const auto def = wing->GetButtonMapDef(button->index);
        Q_EMIT button_press(k, def.first, def.second, button->pressed != 0);
    } else if (const auto* const bar = dynamic_cast<const Vex4TopBox::ButtonEvent*>(event)) {
        const auto key = static_cast<unsigned short>(Vex4TopBox::GetKey(bar->button) & 0xFFFF);
        Q_EMIT button_press(k, key, NoMaster, bar->pressed != 0);
    } else if (const auto* const fader = dynamic_cast<const UmWing::FaderEvent*>(event)) {
        Q_EMIT fader_move(k, fader->index, fader->value);
    } else if (const auto* const motor =
                   dynamic_cast<const UmVexNextWing::MotorizedFaderEvent*>(event)) {
        Q_EMIT fader_motor_move(k, motor->index, motor->value);
    } else if (const auto* const encoder = dynamic_cast<const UmWing::EncoderEvent*>(event)) {
        if (wing)
            Q_EMIT encoder_move(k, wing->GetEncoderMapDef(encoder->index).first, encoder->delta);
    } else if (const auto* const ball = dynamic_cast<const UmWing::TrackballEvent*>(event)) {
        Q_EMIT trackball_move(k, ball->dx, ball->dy, 0);
    } else if (const auto* const axis =
                   dynamic_cast<const TrackballWidget::TrackballEvent*>(event)) {
        // An axis beyond the third still signals, with no movement, on purpose.
        Q_EMIT trackball_move(k, axis->axis == 0 ? axis->value : 0,
                              axis->axis == 1 ? axis->value : 0, axis->axis == 2 ? axis->value : 0);
    } else if (const auto* const led = dynamic_cast<const UmWing::LedEvent*>(event)) {
        Q_EMIT led_change(k, led->index, led->state);
    } else if (const auto* const drawer =
                   dynamic_cast<const UmVexNextWing::KeyboardDrawerEvent*>(event)) {
        Q_EMIT keyboard_change(k, drawer->first, drawer->second);
    } else if (const auto* const setup = dynamic_cast<const UmWing::ConfigurationEvent*>(event)) {
        emitConfiguration(k, widget, setup->kind);
    } else {
        HARDWARE_LOG(LogContext(), Os::Log::Trace, "Event without signal");
    }
}

void WingMapper::emitConfiguration(WidgetKey k, UmWidget& widget, int kind)
{
    const auto* const wing = dynamic_cast<ExpansionWing*>(&widget);
    if (kind != DisplayConfiguration || !wing)
        return;
    _QRT_XWING_CONFIGURATION configuration{};
    wing->GetConfiguration(&configuration);
    Q_EMIT xwing_config(k, configuration);
}

} // namespace Hardware
