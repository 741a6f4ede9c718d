// SPDX-License-Identifier: MIT
#include "hardware/console_light_fading.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "gut/application.h"
#include "hardware/console_light_things.h"
#include "hardware/log_contexts.h"
#include "hardware/wing_mapper.h"
#include "message_mapper.h"
#include "os/platform.h"
#include "os/post.h"
#include "source_site.h"
#include "widget/wings.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "console_light_fading.cpp";
// With a blank at its end, by which reports from the field know it.
constexpr char FatalSite[] = HARDWARE_FATAL_SITE("console_light_fading.cpp") " ";

constexpr unsigned StepMilliseconds = 50;
constexpr uires16 Full = 0x00640000;

// Messages, and where their fields stand.
constexpr std::uint32_t KeyMessage = 11;
constexpr std::size_t KeyCodeOffset = 6;
constexpr std::uint16_t WorkLightKey = 473;
constexpr std::uint32_t LightMessage = 22;
constexpr std::size_t SubtypeOffset = 4;
constexpr std::size_t FlagsOffset = 8;
constexpr std::uint32_t Subtype_ApplyAtOnce = 11;
constexpr std::uint32_t Subtype_ApplyWithFades = 12;
constexpr std::uint32_t Subtype_WorkLightToggled = 13;
constexpr unsigned char SettingsChanged = 1;
constexpr unsigned ApplicationObject = 3;

// The drawer's switch on the desk playback section.
constexpr unsigned short DrawerPart = 75;
constexpr unsigned short DrawerMaster = 0;

/// Set on the thread that steps the fades.
thread_local bool t_isFadingThread = false;

Os::Log::Context& LogContext()
{
    static Os::Log::Context context("LightFading", &HardwareLogContext(), Os::Log::AllButTrace);
    return context;
}

/// A field of a message, in the machine's byte order; none where the message ends before it does.
template <class Field> std::optional<Field> Read(const Gut::Message& message, std::size_t offset)
{
    Field field{};
    if (message.Size() < offset + sizeof field)
        return std::nullopt;
    std::memcpy(&field, message.Data() + offset, sizeof field);
    return field;
}

/// Brings a light to what the user has set, and keeps that as its preference.
void SetWithPreference(ConsoleLightId id, uires16 level)
{
    ConsoleLights::Get().set(id, level);
    ConsoleLights::Get().set_preference(id, level);
}

void SetDeskLights()
{
    const bool isBlue = MessageMapper::IsDesklightBlue();
    ConsoleLights::Get().set(isBlue ? BlueDeskLight : WhiteDeskLight,
                             MessageMapper::GetDesklightLevel());
    ConsoleLights::Get().set(isBlue ? WhiteDeskLight : BlueDeskLight, 0);
}

/// What settings of any kind end with: levels that never fade.
void SetLedsAndLcds()
{
    ConsoleLights::Get().set(WingLeds, MessageMapper::GetLedLevel());
    ConsoleLights::Get().set(ProgrammerWingLeds, MessageMapper::GetLedLevel());
    ConsoleLights::Get().set(Lcds, MessageMapper::GetLcdLevel());
}

void Connect(ConsoleLightFading& confade, ConsoleLights& conlts, ConsoleThings& conthgs)
{
    // Blanks as they stand in the fatal texts; the numbers are the sites' own.
    // clang-format off
    OS_VERIFY_AT(QObject::connect( &conlts, SIGNAL(level_change( ConsoleLightId, uires16 )),
                                   &conthgs, SLOT(change_level( ConsoleLightId, uires16 )), Qt::DirectConnection ),
                 57, FatalSite);
    OS_VERIFY_AT(QObject::connect( &confade, SIGNAL(fade_light( ConsoleLightId, uires16 )),
                                   &conlts, SLOT(set( ConsoleLightId, uires16 )), Qt::DirectConnection ),
                 63, FatalSite);
    OS_VERIFY_AT(QObject::connect( &confade, SIGNAL(sleep_wing( bool )),
                                   &conthgs, SLOT(wing_sleep( bool )), Qt::DirectConnection ),
                 69, FatalSite);
    // clang-format on
}

/// Has the thread end before anything that it works is destroyed at the process's exit. Left to its
/// destructor it would end after the lights, which are made later than the object and so go first.
void EndThreadAtExit()
{
    // Made now and not by the first fade that needs it, since then it would go before the thread.
    if (Os::Platform::IsConsole())
        ConsoleThings::GetBacklight();
    std::atexit([] { ConsoleLightFading::Get().end_thread(); });
}

} // namespace

ConsoleLightFading::ConsoleLightFading()
{
    LogContext(); // made here, so that it outlives the object
}

ConsoleLightFading::~ConsoleLightFading()
{
    // Not left to the base: what a message sets is gone by then.
    EndMessages();
    // Where there was no start, nothing has ended the thread yet.
    end_thread();
}

ConsoleLightFading& ConsoleLightFading::Get()
{
    static ConsoleLightFading instance;
    static const bool isInitialized = [] {
        instance.init();
        return true;
    }();
    static_cast<void>(isInitialized);
    return instance;
}

void ConsoleLightFading::Begin()
{
    if (GutApplication::Get()->GetId() != 0)
        return;
    HARDWARE_LOG(LogContext(), Os::Log::Note, "Desk light fading initialized.");
    ConsoleLightFading& confade = ConsoleLightFading::Get();
    ConsoleLights& conlts = ConsoleLights::Get();
    ConsoleThings& conthgs = ConsoleThings::Get();
    // Once: a second connection would bring everything twice.
    if (!confade.m_isConnected.exchange(true)) {
        Connect(confade, conlts, conthgs);
        EndThreadAtExit();
    }
    confade.init_thread();
    confade.set(WhiteDeskLight, conlts.get(WhiteDeskLight), Full, 3000);
    confade.set(BlueDeskLight, conlts.get(BlueDeskLight), 0, 6000);
    // From and to what they are: sends the levels to the lights once.
    for (const ConsoleLightId id : {KeyboardDrawerLight, WorkLight, CenterBacklight})
        confade.set(id, conlts.get(id), conlts.get(id), 100);
    confade.activate();
}

void ConsoleLightFading::End()
{
    if (GutApplication::Get()->GetId() != 0)
        return;
    constexpr ConsoleLightId PutOut[] = {WhiteDeskLight, WorkLight, BlueDeskLight,
                                         KeyboardDrawerLight};
    ConsoleLights& lights = ConsoleLights::Get();
    ConsoleLightFading& fading = Get();
    fading.reset();
    std::array<unsigned, ConsoleLightCount> steps{};
    for (const ConsoleLightId id : PutOut) {
        steps[id] = fading.m_steps[id];
        lights.set(id, 0);
    }
    fading.end_thread();
    // A step that was on its way came later and has lit it again.
    for (const ConsoleLightId id : PutOut)
        if (fading.m_steps[id] != steps[id])
            lights.set(id, 0);
}

void ConsoleLightFading::init()
{
    m_keyboardDrawerOpen = false;
    for (const WidgetKey key : WingMapper::Get().connected_wings())
        if (const auto* const wing =
                dynamic_cast<Vex4DeskPlayback*>(WingMapper::Get().get_wing(key))) {
            m_keyboardDrawerOpen = wing->GetStateOf(DrawerPart, DrawerMaster) == 0;
            break;
        }
    m_fades = std::vector<FadeActivity>(ConsoleLightCount);
    m_stopRequested = false;
    GutConsoleApplication::Get()->InstallMessageFilter(this);
}

void ConsoleLightFading::init_thread()
{
    // One from before ends first: with the request taken back it would never.
    end_thread();
    m_stopRequested = false;
    m_thread =
        std::make_unique<Os::Thread>(&ConsoleLightFading::Run, this, "ConsoleLightFadingThread", 0,
                                     Os::Thread::DefaultSlice, Os::Thread::DefaultStack);
}

void ConsoleLightFading::end_thread()
{
    m_stopRequested = true;
    activate();
    m_thread.reset();
}

void ConsoleLightFading::set(ConsoleLightId id, uires16 from, uires16 to, unsigned int duration_ms)
{
    FadeActivity& fade = m_fades[id];
    if (fade.elapsed < fade.duration) {
        // Never idle in between, so that the thread does not go to sleep over it.
        fade.elapsed = 0;
        fade.from = from;
        fade.to = to;
        fade.duration = duration_ms;
        return;
    }
    fade.duration = 0;
    fade.from = from;
    fade.to = to;
    fade.elapsed = 0;
    fade.duration = duration_ms; // last: from here it runs
}

void ConsoleLightFading::reset()
{
    for (FadeActivity& fade : m_fades)
        fade.duration = 0;
}

/// Behind reset(): waits for the step that may be on its way, so that what is set now stays. Not
/// without end, since a slot may hold the step up, and not for itself.
void ConsoleLightFading::AwaitPass() const
{
    constexpr unsigned LookMilliseconds = 2;
    constexpr unsigned MostLooks = 1000;
    for (unsigned looks = 0; m_isStepping && !t_isFadingThread && looks < MostLooks; ++looks)
        Os::Thread::Sleep(LookMilliseconds);
}

void ConsoleLightFading::activate()
{
    m_wake.Set();
}

unsigned int ConsoleLightFading::Run(void* /*argument*/)
{
    t_isFadingThread = true;
    const bool isConsole = Os::Platform::IsConsole();
    while (!Get().m_stopRequested) {
        const bool isAnyRunning = Get().StepAll(isConsole);
        // Reset before the look at the request: a wake that comes in between is not lost.
        Get().m_wake.Reset();
        if (Get().m_stopRequested)
            break;
        if (isAnyRunning)
            Get().m_wake.Wait(StepMilliseconds);
        else
            Get().m_wake.Wait();
    }
    return 0;
}

/// One step of every fade that runs. True when there was one.
bool ConsoleLightFading::StepAll(bool isConsole)
{
    bool isAnyRunning = false;
    m_isStepping = true; // before a fade is looked at, so that AwaitPass() misses none
    for (unsigned id = 0; id < ConsoleLightCount; ++id) {
        // Only a console has backlights; fades of others' stay as they are.
        if (id > CenterBacklight || isConsole)
            isAnyRunning = Step(static_cast<ConsoleLightId>(id)) || isAnyRunning;
    }
    m_isStepping = false;
    return isAnyRunning;
}

bool ConsoleLightFading::Step(ConsoleLightId id)
{
    FadeActivity& fade = m_fades[id];
    // Copies: another thread may reset the fade at any moment.
    const unsigned duration = fade.duration;
    const unsigned elapsed = fade.elapsed;
    if (elapsed >= duration)
        return false;
    const auto fraction = static_cast<int>(UDivUIRes16(elapsed, duration));
    const uires16 from = fade.from;
    const auto difference = static_cast<int>(fade.to - from);
    const uires16 level = from + static_cast<uires16>(SMulSIRes16(difference, fraction));
    fade.elapsed += StepMilliseconds;
    // The target itself is never told, on purpose: the last step falls short of it.
    Q_EMIT fade_light(id, level);
    ++m_steps[id];
    return true;
}

void ConsoleLightFading::Fade(ConsoleLightId id, uires16 to, unsigned int duration_ms)
{
    set(id, ConsoleLights::Get().get(id), to, duration_ms);
    activate();
}

void ConsoleLightFading::FadeWhereDifferent(ConsoleLightId id, uires16 to, unsigned int duration_ms)
{
    if (ConsoleLights::Get().get(id) != to)
        Fade(id, to, duration_ms);
}

bool ConsoleLightFading::IsDrawerLit() const
{
    return MessageMapper::IsKeyboardDrawerEnabled() && m_keyboardDrawerOpen;
}

bool ConsoleLightFading::FilterMessage(const Gut::Message& message)
{
    const auto type = Read<std::uint32_t>(message, 0);
    if (type == KeyMessage)
        return Read<std::uint16_t>(message, KeyCodeOffset) == WorkLightKey && ToggleWorkLight();
    if (type != LightMessage)
        return false;
    const auto subtype = Read<std::uint32_t>(message, SubtypeOffset);
    if (subtype == Subtype_ApplyAtOnce) {
        ApplyAtOnce();
    } else if (subtype == Subtype_ApplyWithFades) {
        const auto flags = Read<unsigned char>(message, FlagsOffset);
        if (flags && (*flags & SettingsChanged) != 0)
            ApplyWithFades();
    } else {
        return false;
    }
    SetLedsAndLcds();
    return true;
}

/// Always true: the key is consumed.
bool ConsoleLightFading::ToggleWorkLight()
{
    MessageMapper::SetWorklightOn(!MessageMapper::GetWorklightOn());
    const uires16 level = MessageMapper::GetWorklightCurrentLevel();
    ConsoleLights::Get().set(WorkLight, level);
    ConsoleLights::Get().set(KeyboardDrawerLight,
                             IsDrawerLit() ? MessageMapper::GetKeyboardDrawerLevel() : level);
    const std::uint32_t words[] = {LightMessage, Subtype_WorkLightToggled, 0};
    Os::Post(Gut::Message(words, sizeof words), ApplicationObject);
    return true;
}

void ConsoleLightFading::ApplyAtOnce()
{
    ConsoleLights& lights = ConsoleLights::Get();
    lights.set(LeftBacklight, MessageMapper::GetBacklightLeft());
    lights.set(RightBacklight, MessageMapper::GetBacklightRight());
    lights.set(CenterBacklight, MessageMapper::GetBacklightCenter());
    SetDeskLights();
    const uires16 workLevel = MessageMapper::GetWorklightCurrentLevel();
    if (Os::Platform::AreWorklightsSupported())
        SetWithPreference(WorkLight, workLevel);
    if (Os::Platform::IsVentLightSupported())
        SetWithPreference(VentLight, MessageMapper::GetVentlightLevel());
    if (Os::Platform::IsIlluminatedKeyboardDrawerSupported()) {
        const uires16 drawerLevel = MessageMapper::GetKeyboardDrawerLevel();
        lights.set_preference_state(KeyboardDrawerLight, MessageMapper::IsKeyboardDrawerEnabled());
        lights.set_preference(KeyboardDrawerLight, drawerLevel);
        lights.set(KeyboardDrawerLight, IsDrawerLit() ? drawerLevel : workLevel);
    } else {
        SetWithPreference(KeyboardDrawerLight, workLevel);
    }
}

void ConsoleLightFading::ApplyWithFades()
{
    ConsoleLights& lights = ConsoleLights::Get();
    if (const uires16 level = MessageMapper::GetBacklightLeft();
        level != lights.get(LeftBacklight)) {
        // Only the left one keeps it as a preference, on purpose.
        lights.set_preference(LeftBacklight, level);
        Fade(LeftBacklight, level, 5000);
    }
    FadeWhereDifferent(RightBacklight, MessageMapper::GetBacklightRight(), 5000);
    FadeWhereDifferent(CenterBacklight, MessageMapper::GetBacklightCenter(), 5000);
    FadeDeskLights();
    // The vent light and the work light are compared with the preference, not with the level.
    const uires16 ventLevel = MessageMapper::GetVentlightLevel();
    if (Os::Platform::IsVentLightSupported() && ventLevel != lights.get_preference(VentLight)) {
        lights.set_preference(VentLight, ventLevel);
        Fade(VentLight, ventLevel, 3000);
    }
    if (Os::Platform::AreWorklightsSupported())
        FadeWorkLights();
}

void ConsoleLightFading::FadeDeskLights()
{
    const bool isBlue = MessageMapper::IsDesklightBlue();
    FadeWhereDifferent(isBlue ? BlueDeskLight : WhiteDeskLight, MessageMapper::GetDesklightLevel(),
                       3000);
    FadeWhereDifferent(isBlue ? WhiteDeskLight : BlueDeskLight, 0, 5000);
}

void ConsoleLightFading::FadeWorkLights()
{
    ConsoleLights& lights = ConsoleLights::Get();
    const bool hasDrawerLight = Os::Platform::IsIlluminatedKeyboardDrawerSupported();
    const uires16 workLevel = MessageMapper::GetWorklightCurrentLevel();
    if (workLevel != lights.get_preference(WorkLight)) {
        lights.set_preference(WorkLight, workLevel);
        Fade(WorkLight, workLevel, 3000);
        if (!hasDrawerLight) {
            lights.set_preference(KeyboardDrawerLight, workLevel);
            Fade(KeyboardDrawerLight, workLevel, 3000);
        }
    }
    if (!hasDrawerLight)
        return;
    const uires16 drawerLevel = MessageMapper::GetKeyboardDrawerLevel();
    lights.set_preference(KeyboardDrawerLight, drawerLevel);
    lights.set_preference_state(KeyboardDrawerLight, MessageMapper::IsKeyboardDrawerEnabled());
    FadeWhereDifferent(KeyboardDrawerLight, IsDrawerLit() ? drawerLevel : workLevel, 3000);
}

void ConsoleLightFading::save_screen_reset()
{
    reset();
    AwaitPass();
    ConsoleLights& lights = ConsoleLights::Get();
    if (Os::Platform::IsConsole())
        lights.set(CenterBacklight, MessageMapper::GetBacklightCenter());
    SetDeskLights();
    // Whether there are such lights is not asked here, unlike where settings are applied.
    const uires16 workLevel = MessageMapper::GetWorklightCurrentLevel();
    SetWithPreference(WorkLight, workLevel);
    lights.set(KeyboardDrawerLight,
               IsDrawerLit() ? MessageMapper::GetKeyboardDrawerLevel() : workLevel);
    SetWithPreference(VentLight, MessageMapper::GetVentlightLevel());
    Q_EMIT sleep_wing(false);
}

void ConsoleLightFading::save_screen_activate()
{
    ConsoleLights& lights = ConsoleLights::Get();
    // The left and right display stay lit.
    if (Os::Platform::IsConsole())
        set(CenterBacklight, lights.get(CenterBacklight), 0, 3000);
    set(WhiteDeskLight, lights.get(WhiteDeskLight), 0, 3000);
    // In blue, on purpose, whatever colour the user chose.
    set(BlueDeskLight, lights.get(BlueDeskLight), MessageMapper::GetDesklightLevel(), 3000);
    activate();
    Q_EMIT sleep_wing(true);
}

void ConsoleLightFading::keyboard_changed(unsigned long /*wing*/, int /*drawer*/, int state)
{
    m_keyboardDrawerOpen = state == 0;
    ConsoleLights& lights = ConsoleLights::Get();
    const bool isLit = state == 0 && lights.get_preference_state(KeyboardDrawerLight);
    Fade(KeyboardDrawerLight, lights.get_preference(isLit ? KeyboardDrawerLight : WorkLight), 3000);
}

} // namespace Hardware
