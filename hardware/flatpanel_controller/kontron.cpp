// SPDX-License-Identifier: MIT
#include "hardware/flatpanel_controller/kontron.h"

#include <array>

#include "hardware/flatpanel_controller/serial.h"
#include "hardware/log_contexts.h"
#include "source_site.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "flatpanel_controller/kontron.cpp";

constexpr char DefaultDevice[] = "/dev/ttyS0";
constexpr unsigned DefaultBaudRate = 57600;

constexpr unsigned char StartByte = 0xBB;

enum Command : unsigned char {
    Command_Reset = 0x00,
    Command_ReadAdjuster = 0x0A,
    Command_SetAdjuster = 0x0B,
    Command_CallAction = 0x16
};

constexpr unsigned char BacklightUnit = 0;
constexpr unsigned char BacklightAdjuster = 5;

Os::Log::Context& GetLogContext()
{
    static Os::Log::Context context("Kontron", &HardwareLogContext(), Os::Log::AllButTrace);
    return context;
}

/// A packet from the bytes between the start byte and the checksum.
template <class... Byte> std::array<unsigned char, sizeof...(Byte) + 2> MakePacket(Byte... byte)
{
    return {StartByte, byte..., static_cast<unsigned char>((byte + ...))};
}

} // namespace

Kontron::Kontron() : Kontron(DefaultDevice, DefaultBaudRate) {}

Kontron::Kontron(const std::string& device, unsigned int baud) : m_port(new Serial(device.c_str()))
{
    GetLogContext(); // made here, so that it outlives the object
    // A port that cannot be opened makes every write fail, and says so itself.
    m_port->Open(static_cast<int>(baud), Serial::parity_none, Serial::flowcontrol_none);
}

Kontron::~Kontron() = default;

int Kontron::CallAction(unsigned char unit, unsigned char action)
{
    // The length is 0 though an action follows: what the controller expects.
    constexpr unsigned char Length = 0;
    auto packet = MakePacket(unit, Command_CallAction, Length, action);
    Send(packet);
    return 0;
}

int Kontron::ReadAdjuster(unsigned char unit, unsigned char adjuster, unsigned int /*ignored*/)
{
    constexpr unsigned char Length = 2;
    constexpr unsigned char Zero = 0;
    auto packet = MakePacket(unit, Command_ReadAdjuster, Length, adjuster, Zero);
    Send(packet);
    return 0;
}

int Kontron::SetAdjuster(unsigned char unit, unsigned char adjuster, unsigned int value)
{
    constexpr unsigned char Length = 3;
    // The value's high byte is always 0.
    constexpr unsigned char High = 0;
    auto packet = MakePacket(unit, Command_SetAdjuster, Length, adjuster, High,
                             static_cast<unsigned char>(value));
    Send(packet);
    return 0;
}

void Kontron::Reset(unsigned char unit)
{
    constexpr unsigned char Length = 0;
    auto packet = MakePacket(unit, Command_Reset, Length);
    Send(packet);
}

int Kontron::SetBacklightLevel(unsigned int level)
{
    return SetAdjuster(BacklightUnit, BacklightAdjuster, level);
}

unsigned int Kontron::GetBacklightLevel()
{
    return 0;
}

std::string Kontron::PacketToString(const unsigned char* packet, int length)
{
    constexpr char Digits[] = "0123456789ABCDEF";
    std::string text;
    for (int i = 0; i < length; ++i) {
        text += Digits[packet[i] >> 4U];
        text += Digits[packet[i] & 0xFU];
        text += ' ';
    }
    return text;
}

void Kontron::Send(std::span<unsigned char> packet)
{
    HARDWARE_LOG(GetLogContext(), Os::Log::Trace,
                 "Packet " << PacketToString(packet.data(), static_cast<int>(packet.size())));
    m_port->Write(packet.data(), packet.size());
}

} // namespace Hardware
