// SPDX-License-Identifier: MIT
#include "console/session.h"

#include <stdexcept>
#include <utility>

#include "common/near_names.h"
#include "console/parts.h"
#include "console/script.h"
#include "console/verb.h"

namespace Console
{

namespace
{

const VerbTable& GetTable()
{
    static const VerbTable table = [] {
        VerbTable all;
        AddWingVerbs(all);
        AddMidiVerbs(all);
        AddTimecodeVerbs(all);
        AddCdVerbs(all);
        AddLightVerbs(all);
        AddDeskVerbs(all);
        return all;
    }();
    return table;
}

} // namespace

Session::Session(const Desk::DeskData& data, Tools::EventTaker take)
    : m_parts(new Parts(data, std::move(take)))
{
}

Session::~Session()
{
    Release();
}

bool Session::Mends(const std::string& command)
{
    const Words words = SplitWords(command);
    if (words.size() < 3 || !GetTable().free.contains(words.front()))
        return false;
    const std::string& verb = words[2];
    return verb == "resume" || verb == "unplug" || verb == "plug" ||
           (verb == "slow" && words.back() == "0");
}

void Session::Release()
{
    for (const Desk::SerialLineData& line : GetDesk().GetData().serialLines) {
        GetDesk().GetLine(line.device).SetDelay(0);
        GetDesk().GetLine(line.device).Resume();
    }
    if (Desk::CdDrive* const drive = GetDesk().GetCdDrive())
        drive->SetDelay(0);
}

void Session::Do(const std::string& command)
{
    Words words = SplitWords(command);
    if (words.empty())
        throw std::invalid_argument("there is no verb");
    words.front() = FindVerb(words.front());
    words = m_parts->names.Resolve(std::move(words));
    const auto act = GetTable().acts.find(words.front());
    if (act == GetTable().acts.end())
        throw std::invalid_argument("'" + words.front() + "' is a step of scripts, not a verb");
    std::unique_lock turn(m_parts->verbMutex, std::defer_lock);
    if (!GetTable().free.contains(words.front()))
        turn.lock();
    act->second(*m_parts, Words(words.begin() + 1, words.end()));
    m_parts->names.Note(words);
}

std::string Session::FindVerb(const std::string& word)
{
    Tools::Names verbs;
    for (const auto& [verb, act] : GetTable().acts)
        verbs.push_back(verb);
    for (const VerbHelp& help : GetScriptVerbs())
        verbs.push_back(help.usage.substr(0, help.usage.find(' ')));
    return Tools::ChooseName("verb", word, verbs);
}

std::string Session::FindPath(const std::string& path, const nlohmann::json& state) const
{
    return m_parts->names.FindPath(path, state);
}

const std::vector<VerbHelp>& Session::GetVerbs()
{
    return GetTable().help;
}

void Session::Tick()
{
    // Whoever ticks is not to wait for a verb that a device holds up.
    const std::unique_lock turn(m_parts->verbMutex, std::try_to_lock);
    if (!turn)
        return;
    for (const Desk::MidiPortData& port : GetDesk().GetData().midiPorts)
        m_parts->TakeSent(port.name, 0);
    const Desk::CdDrive* const drive = GetDesk().GetCdDrive();
    if (m_parts->cd && (!drive || drive->GetState().status != Desk::CdDrive::Status::Playing ||
                        !GetDesk().GetCondition("cd/plugged").empty()))
        m_parts->FollowCd(false);
}

Desk::VirtualDesk& Session::GetDesk()
{
    return m_parts->desk;
}

const Desk::VirtualDesk& Session::GetDesk() const
{
    return m_parts->desk;
}

std::map<std::string, TimecodeReading> Session::GetTimecode() const
{
    const std::lock_guard hold(m_parts->mutex);
    std::map<std::string, TimecodeReading> readings;
    for (const auto& [source, meter] : m_parts->meters)
        readings[source] = meter.Read(GetSeconds());
    return readings;
}

std::map<unsigned, SimulatorState> Session::GetSimulators() const
{
    const std::lock_guard hold(m_parts->mutex);
    return m_parts->simulators;
}

MidiState Session::GetMidi() const
{
    const std::lock_guard hold(m_parts->mutex);
    return m_parts->midiState;
}

bool Session::IsScreenSaverOn() const
{
    return m_parts->isScreenSaverOn;
}

double Session::GetSeconds() const
{
    return m_parts->GetSeconds();
}

} // namespace Console
