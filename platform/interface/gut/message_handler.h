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
    /// Ends its messages. A derived class whose FilterMessage() uses its members, and that may be
    /// destroyed on another thread than the application's, ends them itself, first thing in its
    /// destructor: here they are gone.
    virtual ~MessageHandler();
    MessageHandler(const MessageHandler&) = delete;
    MessageHandler& operator=(const MessageHandler&) = delete;

    /// @return true when the message is consumed: no filter behind this one gets it
    virtual bool FilterMessage(const Message& message) = 0;

protected:
    /// Takes it off the list of filters, drops messages for it, and waits for a call that is
    /// running on another thread: hold no lock that the call takes. None is made afterwards.
    void EndMessages();
};

} // namespace Gut
