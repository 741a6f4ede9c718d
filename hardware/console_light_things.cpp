// SPDX-License-Identifier: MIT
#include "hardware/console_light_things.h"

#include <algorithm>
#include <memory>

#include "hardware/abstract_backlight_factory.h"
#include "os/platform.h"
#include "source_site.h"
#include "widget/expansion_wing.h"
#include "widget/um_vex_next_wing.h"
#include "widget/widget_factory.h"
#include "widget/wings.h"

namespace Hardware
{

namespace
{

// With a blank at its end, by which reports from the field know it.
constexpr char FatalSite[] = HARDWARE_FATAL_SITE("console_light_things.cpp") " ";
constexpr unsigned NoWingLine = 147;

/// Readers that the list's lock is made for.
constexpr unsigned ExpectedReaders = 10;

/// Classes that may have lights, in the order in which they are registered.
const GUID* const WingClasses[] = {&GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING,
                                   &GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING,
                                   &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING,
                                   &GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL,
                                   &GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE,
                                   &GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG,
                                   &GUID_DEVINTERFACE_QRTUMVNEXT_PETITE,
                                   &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI,
                                   &GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE,
                                   &GUID_DEVINTERFACE_QRTUMPROGRAMMERWING,
                                   &GUID_DEVINTERFACE_QRTUMPLAYBACKWING,
                                   &GUID_DEVINTERFACE_QRTUMEXPANSIONWING};

bool IsSameWing(const WidgetMapData& one, const WidgetMapData& other)
{
    return one.GetClassId() == other.GetClassId() && one.GetDevicePath() == other.GetDevicePath();
}

std::unique_ptr<UmWidget> MakeWidget(const WidgetMapData& data)
{
    unsigned long key = 0;
    return std::unique_ptr<UmWidget>(WidgetFactory::Get().Create(data, key));
}

} // namespace

ConsoleThings::ConsoleThings() : m_lock(ExpectedReaders)
{
    ConsoleLights::Get(); // made here, so that it outlives the object: wings that come ask it
}

ConsoleThings::~ConsoleThings() = default;

ConsoleThings& ConsoleThings::Get()
{
    static ConsoleThings instance;
    static const bool isInitialized = [] {
        instance.init();
        return true;
    }();
    static_cast<void>(isInitialized);
    return instance;
}

void ConsoleThings::init()
{
    m_hasVentLight = Os::Platform::IsVentLightSupported();
    m_hasBlueDesklights = Os::Platform::AreBlueDesklightsSupported();
    m_hasWorklights = Os::Platform::AreWorklightsSupported();
    m_hasWhiteDesklights = Os::Platform::AreWhiteDesklightsSupported();
    m_isConsole = Os::Platform::IsConsole();
    // Blanks as they stand in the fatal texts.
    // clang-format off
    OS_VERIFY(connect( &m_signaller, SIGNAL(widgetAdded( const Hardware::WidgetMapData & )),
                       this, SLOT(wing_added( const Hardware::WidgetMapData & )), Qt::DirectConnection ), FatalSite);
    OS_VERIFY(connect( &m_signaller, SIGNAL(widgetRemoved( const Hardware::WidgetMapData & )),
                       this, SLOT(wing_removed( const Hardware::WidgetMapData & )), Qt::DirectConnection ), FatalSite);
    // clang-format on
    for (const GUID* const classId : WingClasses)
        m_signaller.RegisterWidgetClass(classId);
}

AbstractBacklight& ConsoleThings::GetBacklight()
{
    static AbstractBacklight* const controller = AbstractBacklightFactory::GetBacklightController();
    return *controller;
}

void ConsoleThings::wing_added(const WidgetMapData& data)
{
    wing_removed(data); // one that is told twice is listed once
    {
        const Os::WriteKey hold(m_lock);
        m_wings.push_back(data);
    }
    const std::unique_ptr<UmWidget> widget = MakeWidget(data);
    auto* const pw = dynamic_cast<UmWing*>(widget.get());
    OS_TRAP_AT(!pw, NoWingLine, FatalSite);
    PushLevels(*pw);
}

/// The levels of the moment, for a wing that was attached.
void ConsoleThings::PushLevels(UmWing& wing)
{
    const auto push = [&wing, this](ConsoleLightId id) {
        // Until it is the level of the moment: the wing is on the list by now, and a level that
        // another thread sets meanwhile may have reached it before the older one from here.
        for (uires16 level = ConsoleLights::Get().get_scaled(id), latest = 0;; level = latest) {
            set_level(wing, id, level);
            latest = ConsoleLights::Get().get_scaled(id);
            if (latest == level)
                return;
        }
    };
    if (m_hasBlueDesklights)
        push(BlueDeskLight);
    if (m_hasWhiteDesklights)
        push(WhiteDeskLight);
    if (m_hasWorklights)
        push(WorkLight);
    if (m_hasVentLight)
        push(VentLight);
    push(WingLeds);
    // Neither the displays nor the drawer's light, on purpose: they come with their next change.
    if (dynamic_cast<Vex4DeskProgrammer*>(&wing)) {
        push(DeskProgrammerDimmer6);
        push(DeskProgrammerDimmer7);
        push(DeskProgrammerDimmer8);
    } else if (dynamic_cast<ProgrammerWing*>(&wing)) {
        push(ProgrammerWingLeds);
    }
}

void ConsoleThings::wing_removed(const WidgetMapData& data)
{
    const Os::WriteKey hold(m_lock);
    const auto found =
        std::find_if(m_wings.begin(), m_wings.end(),
                     [&data](const WidgetMapData& wing) { return IsSameWing(wing, data); });
    if (found != m_wings.end())
        m_wings.erase(found);
}

void ConsoleThings::change_level(ConsoleLightId id, uires16 level)
{
    if (id <= CenterBacklight) {
        if (m_isConsole)
            set_level(id, level);
        return;
    }
    const Os::ReadKey hold(m_lock);
    for (const WidgetMapData& data : m_wings) {
        // None for a wing that was pulled out meanwhile.
        const std::unique_ptr<UmWidget> widget = MakeWidget(data);
        if (auto* const wing = dynamic_cast<UmWing*>(widget.get()))
            set_level(*wing, id, level);
    }
}

void ConsoleThings::wing_sleep(bool sleep)
{
    const Os::ReadKey hold(m_lock);
    for (const WidgetMapData& data : m_wings)
        if (data.GetClassId() == &GUID_DEVINTERFACE_QRTUMEXPANSIONWING)
            ExpansionWing(data).SetSleep(sleep);
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): the header says why
void ConsoleThings::set_level(ConsoleLightId id, uires16 level)
{
    switch (id) {
    case LeftBacklight:
        GetBacklight().SetLeftBacklight(level);
        break;
    case RightBacklight:
        GetBacklight().SetRightBacklight(level);
        break;
    case CenterBacklight:
        GetBacklight().SetCenterBacklight(level);
        break;
    default:
        break;
    }
}

// One line for each light: a table, as code.
// NOLINTNEXTLINE(readability-function-cognitive-complexity,readability-make-member-function-const)
void ConsoleThings::set_level(UmWing& wing, ConsoleLightId id, uires16 value)
{
    const auto byte = static_cast<unsigned char>(value >> 8U & 0xFFU);
    const auto dim = [&wing, byte](UmWing::DimmerIndex channel) { wing.SetDimmer(channel, byte); };
    // The work light and the drawer's light share a channel and divide the wings between them.
    const bool isDeskProgrammer = dynamic_cast<Vex4DeskProgrammer*>(&wing) != nullptr;
    switch (id) {
    case WingLeds:
        dim(UmWing::DimmerIndex_Leds);
        break;
    case Lcds:
        if (auto* const next = dynamic_cast<UmVexNextWing*>(&wing))
            next->SetAllLcdBrightness(byte);
        break;
    case KeyboardDrawerLight:
        if (m_hasWorklights && isDeskProgrammer)
            dim(UmWing::DimmerIndex_WorkLight);
        break;
    case VentLight:
        if (m_hasVentLight)
            dim(UmWing::DimmerIndex_VentLight);
        break;
    case WorkLight:
        if (m_hasWorklights && !isDeskProgrammer)
            dim(UmWing::DimmerIndex_WorkLight);
        break;
    case BlueDeskLight:
        if (m_hasBlueDesklights)
            dim(UmWing::DimmerIndex_BlueDeskLight);
        break;
    case WhiteDeskLight:
        if (m_hasWhiteDesklights)
            dim(UmWing::DimmerIndex_WhiteDeskLight);
        break;
    case ProgrammerWingLeds:
        if (dynamic_cast<ProgrammerWing*>(&wing))
            dim(UmWing::DimmerIndex_ProgrammerLeds);
        break;
    case DeskProgrammerDimmer6:
        if (isDeskProgrammer)
            dim(UmWing::DimmerIndex_DeskProgrammer6);
        break;
    case DeskProgrammerDimmer7:
        if (isDeskProgrammer)
            dim(UmWing::DimmerIndex_DeskProgrammer7);
        break;
    case DeskProgrammerDimmer8:
        if (isDeskProgrammer)
            dim(UmWing::DimmerIndex_DeskProgrammer8);
        break;
    default:
        break;
    }
}

} // namespace Hardware
