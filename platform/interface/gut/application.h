// SPDX-License-Identifier: MIT
#pragma once

#include "gut/message_handler.h"

/// The application that the library runs in. Any thread may call.
class PLATFORM_EXPORT GutApplication
{
public:
    /// Never destroyed.
    static GutApplication* Get();
    /// Number of this instance of the application, 0 for the primary one.
    int GetId() const;

private:
    GutApplication() = default;
};

/// The application's end of messages.
class PLATFORM_EXPORT GutConsoleApplication
{
public:
    /// Never destroyed.
    static GutConsoleApplication* Get();
    /// Asks @p handler about every message from now on, behind the filters that are installed
    /// already. One that is installed keeps its place. Until its destruction. Any thread.
    void InstallMessageFilter(Gut::MessageHandler* handler);

private:
    GutConsoleApplication() = default;
};
