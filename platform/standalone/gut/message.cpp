// SPDX-License-Identifier: MIT
#include "gut/message.h"

#include <array>
#include <cstdint>

#include "gut/message_handler.h"
#include "gut/post_office.h"

namespace Gut
{

namespace
{

/// The stand-alone platform's own choice: three words.
constexpr std::uint32_t TargettedMessageCode = 15;

std::array<std::uint32_t, 3> MakeWords(TargettedMessageType type, unsigned value)
{
    return {TargettedMessageCode, static_cast<std::uint32_t>(type), value};
}

} // namespace

Message::Message(const void* bytes, std::size_t size) : Message(bytes, size, nullptr) {}

Message::Message(const void* bytes, std::size_t size, const MessageHandler* target)
    : m_bytes(static_cast<const unsigned char*>(bytes),
              static_cast<const unsigned char*>(bytes) + size),
      m_target(target)
{
}

Message::~Message() = default;

TargettedMessage::TargettedMessage(const MessageHandler& target, TargettedMessageType type,
                                   unsigned int value)
    : Message(MakeWords(type, value).data(), 3 * sizeof(std::uint32_t), &target)
{
}

TargettedMessage::~TargettedMessage() = default;

MessageHandler::MessageHandler()
{
    Standalone::PostOffice::Get().Welcome(*this);
}

MessageHandler::~MessageHandler()
{
    EndMessages();
}

// Not const, though no member changes: the handler gets no messages any more.
// NOLINTNEXTLINE(readability-make-member-function-const)
void MessageHandler::EndMessages()
{
    Standalone::PostOffice::Get().Forget(*this);
}

} // namespace Gut
