// SPDX-License-Identifier: MIT

// Messages as values.

#include "gut/message.h"

#include <gmock/gmock.h>

#include <array>
#include <cstring>

#include "gut/message_handler.h"

namespace
{

using testing::ElementsAre;
using testing::ElementsAreArray;

class Handler : public Gut::MessageHandler
{
public:
    bool FilterMessage(const Gut::Message& /*message*/) override { return true; }
};

std::vector<unsigned char> BytesOf(const Gut::Message& message)
{
    return {message.Data(), message.Data() + message.Size()};
}

} // namespace

TEST(Message, HoldsACopyOfItsBytes)
{
    std::array<unsigned char, 5> bytes{1, 2, 3, 0, 255};
    const Gut::Message message(bytes.data(), bytes.size());
    bytes[0] = 9;
    EXPECT_THAT(BytesOf(message), ElementsAre(1, 2, 3, 0, 255));
    EXPECT_EQ(message.GetTarget(), nullptr);
}

TEST(Message, MayBeEmpty)
{
    EXPECT_EQ(Gut::Message(nullptr, 0).Size(), 0U);
}

TEST(Message, IsCopiedWithItsTarget)
{
    const Handler handler;
    Gut::Message copy(nullptr, 0);
    copy = Gut::TargettedMessage(handler, Gut::TargettedMessageType_Default, 7);
    EXPECT_EQ(copy.GetTarget(), &handler);
    EXPECT_EQ(copy.Size(), 12U);
}

TEST(TargettedMessage, IsThreeWords)
{
    const Handler handler;
    const Gut::TargettedMessage message(handler, Gut::TargettedMessageType_Default, 0xA1B2C3D4);
    const std::array<std::uint32_t, 3> words{15, 0, 0xA1B2C3D4};
    std::array<unsigned char, 12> bytes{};
    std::memcpy(bytes.data(), words.data(), bytes.size());
    EXPECT_THAT(BytesOf(message), ElementsAreArray(bytes));
    EXPECT_EQ(message.GetTarget(), &handler);
}
