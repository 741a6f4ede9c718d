// SPDX-License-Identifier: MIT
#pragma once

#include "gut/message.h"

namespace Gut
{

/// Gets messages on the application's thread: those for itself, and all others once it is installed
/// as a filter.
class PLATFORM_EXPORT MessageHandler
{
public:
    MessageHandler();
    /// Takes it off the list of filters and drops messages for it. A call that is running on the
    /// application's thread is waited for; destroy it there, or where no call can be running, since
    /// by now the derived class is gone.
    virtual ~MessageHandler();
    MessageHandler(const MessageHandler&) = delete;
    MessageHandler& operator=(const MessageHandler&) = delete;

    /// @return true when the message is consumed: no filter behind this one gets it
    virtual bool FilterMessage(const Message& message) = 0;
};

} // namespace Gut
