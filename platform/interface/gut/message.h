// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "platform_export.h"

namespace Gut
{

class MessageHandler;

/// A message of the application: bytes, of which the first four are its type, in the machine's
/// order. A value. Who reads a field looks at the size first.
class PLATFORM_EXPORT Message
{
public:
    Message(const void* bytes, std::size_t size);
    virtual ~Message();
    Message(const Message&) = default;
    Message& operator=(const Message&) = default;

    const unsigned char* Data() const { return m_bytes.data(); }
    std::size_t Size() const { return m_bytes.size(); }
    /// The only handler that is to get it; null when every filter is asked.
    const MessageHandler* GetTarget() const { return m_target; }

protected:
    Message(const void* bytes, std::size_t size, const MessageHandler* target);

private:
    std::vector<unsigned char> m_bytes;
    const MessageHandler* m_target = nullptr;
};

enum TargettedMessageType : unsigned int { TargettedMessageType_Default = 0 };

/// A message for one handler: three words, 15, the type and the value.
class PLATFORM_EXPORT TargettedMessage : public Message
{
public:
    /// @param target whose FilterMessage() gets it, unless it is destroyed before
    TargettedMessage(const MessageHandler& target, TargettedMessageType type, unsigned int value);
    ~TargettedMessage() override;
    TargettedMessage(const TargettedMessage&) = default;
    TargettedMessage& operator=(const TargettedMessage&) = default;
};

} // namespace Gut
