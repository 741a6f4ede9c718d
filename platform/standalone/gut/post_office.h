// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "gut/message_handler.h"
#include "os/log.h"
#include "standalone/messages.h"

namespace Standalone
{

/// Messages on their way, and who gets them.
class PostOffice
{
public:
    /// Never destroyed: handlers may be destroyed while the process ends.
    static PostOffice& Get();

    void SetObserver(PostObserver observer);
    /// Whom an event has messages delivered, on the application's thread. It outlives the
    /// application, so that anybody may post at any time.
    void SetReceiver(std::unique_ptr<QObject> receiver);
    /// Called in place of that event.
    void SetWaker(std::function<void()> waker);
    /// A handler was made: it may be sent messages.
    void Welcome(const Gut::MessageHandler& handler);
    void AddFilter(Gut::MessageHandler& handler);
    /// Forgets a handler; waits for a call to it that another thread makes.
    void Forget(const Gut::MessageHandler& handler);
    void Post(const Gut::Message& message, unsigned systemObject);
    /// Delivers what is waiting. True when more has come meanwhile.
    bool Deliver();
    /// The same for the application's event, unless a waker has been set since it was sent.
    void DeliverOnEvent();

private:
    /// A call that is running: of a handler, or of an observer.
    struct Call {
        const void* called = nullptr;
        std::thread::id thread;
    };
    class CallEnd;

    PostOffice();
    void Wake();
    void Observe(const Gut::Message& message, unsigned systemObject);
    void DeliverOne(const Gut::Message& message);
    bool Begin(const Gut::MessageHandler& handler);
    void End();
    void WaitForCalls(std::unique_lock<std::mutex>& hold, const void* called);

    Os::Log::Context m_log;
    std::mutex m_mutex;
    std::condition_variable m_returned;
    std::shared_ptr<const PostObserver> m_observer; // guarded by m_mutex, as all below; may be null
    std::unique_ptr<QObject> m_receiver;
    std::function<void()> m_waker;
    std::set<const Gut::MessageHandler*> m_handlers; // that live
    std::deque<Gut::Message> m_waiting;
    bool m_isOverflowing = false;
    std::vector<Gut::MessageHandler*> m_filters;
    std::vector<Call> m_calls; // of each thread, innermost last
};

} // namespace Standalone
