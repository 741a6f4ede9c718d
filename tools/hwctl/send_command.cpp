// SPDX-License-Identifier: MIT
#include <cstdio>
#include <memory>

#include "common/hex.h"
#include "common/midi_sender.h"
#include "common/midi_text.h"
#include "common/near_names.h"
#include "common/port_name.h"
#include "hardware/midi/device.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/virtual_devices.h"

namespace Hwctl
{

namespace
{

typedef std::vector<std::uint8_t> Bytes;

struct Arguments {
    std::string port;
    std::vector<std::string> messages;
    bool buffer = false;
    bool noRunningStatus = false;
};

/// A device that remembers whether the last send went out, which SendShortMessage() does not tell.
class Sender : public Hardware::Midi::Device
{
public:
    bool SendBuffer(const unsigned char* data, unsigned int length) override
    {
        m_sent = Device::SendBuffer(data, length);
        return m_sent;
    }
    bool WasSent() const { return m_sent; }

private:
    bool m_sent = false;
};

/// Packs a whole short message, or throws.
unsigned Pack(const Bytes& bytes, const std::string& text)
{
    unsigned message = 0;
    for (std::size_t i = 0; i < bytes.size() && i < 3; ++i)
        message |= static_cast<unsigned>(bytes[i]) << 8 * i;
    bool whole = bytes[0] >= 0x80 && bytes[0] != 0xF0 &&
                 bytes.size() == Tools::GetShortMessageLength(message);
    for (std::size_t i = 1; i < bytes.size(); ++i)
        whole = whole && bytes[i] < 0x80;
    if (!whole)
        throw UsageError("'" + text +
                         "' is not a whole short message; use --buffer to send bytes as they are");
    return message;
}

/// System exclusive is a buffer by nature.
bool IsBuffer(const Arguments& arguments, const Bytes& bytes)
{
    return arguments.buffer || bytes.front() == 0xF0;
}

Bytes Parse(const Arguments& arguments, const std::string& text)
{
    const auto bytes = Tools::ParseHex(text);
    if (!bytes || bytes->empty())
        throw UsageError("'" + text + "' is not a list of bytes in hexadecimal");
    if (!IsBuffer(arguments, *bytes))
        Pack(*bytes, text);
    return *bytes;
}

void Send(Sender& device, Tools::MidiSender& sender, const Arguments& arguments)
{
    for (const std::string& text : arguments.messages) {
        const Bytes bytes = Parse(arguments, text);
        if (IsBuffer(arguments, bytes))
            sender.SendBuffer(bytes);
        else
            sender.SendShortMessage(Pack(bytes, text));
        if (!device.WasSent())
            throw CommandError("MIDI port '" + arguments.port + "' did not take '" + text + "'");
    }
}

int RunSend(const CommonOptions& options, const Arguments& arguments)
{
    for (const std::string& text : arguments.messages)
        Parse(arguments, text); // before the first one is sent
    const auto devices =
        options.useVirtual ? std::make_unique<VirtualDevices>(options.widgetFile) : nullptr;
    Tools::Names present;
    for (const std::wstring& name : Hardware::Midi::Device::GetOutputs())
        present.push_back(Tools::NarrowPortName(name));
    const std::wstring port =
        Tools::WidenPortName(Tools::ChooseName("MIDI port", arguments.port, present));

    Sender device;
    Tools::MidiSender sender(device);
    sender.EnableRunningStatus(!arguments.noRunningStatus);
    sender.SetOutput(port);
    sender.EnableTransmit(true);
    Send(device, sender, arguments);
    if (devices)
        std::printf("%s received %s\n", arguments.port.c_str(),
                    Tools::FormatHex(devices->GetPort(arguments.port).Receive(1000)).c_str());
    return ExitCode_Success;
}

} // namespace

void AddSendCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand("send", "Send MIDI messages");
    command->add_option("port", arguments->port, "MIDI port to send to")->required();
    command
        ->add_option("message", arguments->messages,
                     "Bytes of one message in hexadecimal, such as '90 3C 64' or F07F7F020101F7")
        ->required();
    command->add_flag("--buffer", arguments->buffer,
                      "Send the bytes as they are, even if they are no whole message");
    command->add_flag("--no-running-status", arguments->noRunningStatus,
                      "Send every status byte, even one that repeats");
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return RunSend(options, *arguments); };
    });
}

} // namespace Hwctl
