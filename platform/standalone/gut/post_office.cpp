// SPDX-License-Identifier: MIT
#include "gut/post_office.h"

#include <QCoreApplication>
#include <QEvent>
#include <algorithm>
#include <utility>

#include "gut/application.h"
#include "os/post.h"

namespace Standalone
{

namespace
{

constexpr char SourceFile[] = "gut/post_office.cpp";

/// Messages that may wait for somebody to deliver them. Far beyond what a busy application leaves
/// waiting, and little memory.
constexpr std::size_t WaitingLimit = 10000;

/// Lives on the application's thread; an event to it has messages delivered there.
class Receiver : public QObject
{
public:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        PostOffice::Get().DeliverOnEvent();
        return true;
    }
};

void TakeApplication()
{
    PostOffice::Get().SetReceiver(std::make_unique<Receiver>());
}

// As soon as there is an application, which may have been made before or after the library came.
Q_COREAPP_STARTUP_FUNCTION(TakeApplication)

} // namespace

/// Ends the innermost call of this thread, also one that is left by an exception.
class PostOffice::CallEnd
{
public:
    explicit CallEnd(PostOffice& office) : m_office(office) {}
    ~CallEnd() { m_office.End(); }
    CallEnd(const CallEnd&) = delete;
    CallEnd& operator=(const CallEnd&) = delete;

private:
    PostOffice& m_office;
};

PostOffice::PostOffice() : m_log("Messages", nullptr, Os::Log::AllButTrace) {}

PostOffice& PostOffice::Get()
{
    static auto* const office = new PostOffice;
    return *office;
}

void PostOffice::SetReceiver(std::unique_ptr<QObject> receiver)
{
    const std::lock_guard hold(m_mutex);
    m_receiver = std::move(receiver);
    if (!m_waiting.empty()) // posted before there was one
        Wake();
}

void PostOffice::SetWaker(std::function<void()> waker)
{
    const std::lock_guard hold(m_mutex);
    m_waker = std::move(waker);
    if (!m_waiting.empty())
        Wake();
}

/// Has what is waiting delivered; without anybody to do it, it waits. The caller holds the lock, so
/// that neither goes meanwhile.
void PostOffice::Wake()
{
    if (m_waker)
        m_waker();
    else if (m_receiver)
        QCoreApplication::postEvent(m_receiver.get(), new QEvent(QEvent::User));
}

void PostOffice::Welcome(const Gut::MessageHandler& handler)
{
    const std::lock_guard hold(m_mutex);
    m_handlers.insert(&handler);
}

void PostOffice::SetObserver(PostObserver observer)
{
    auto next = observer ? std::make_shared<const PostObserver>(std::move(observer)) : nullptr;
    std::unique_lock hold(m_mutex);
    const auto before = std::exchange(m_observer, std::move(next));
    WaitForCalls(hold, before.get());
}

void PostOffice::AddFilter(Gut::MessageHandler& handler)
{
    const std::lock_guard hold(m_mutex);
    if (std::find(m_filters.begin(), m_filters.end(), &handler) == m_filters.end())
        m_filters.push_back(&handler);
}

void PostOffice::Forget(const Gut::MessageHandler& handler)
{
    std::unique_lock hold(m_mutex);
    m_handlers.erase(&handler);
    std::erase(m_filters, &handler);
    std::erase_if(m_waiting, [&handler](const Gut::Message& message) {
        return message.GetTarget() == &handler;
    });
    WaitForCalls(hold, &handler);
}

/// Waits for calls of one that other threads are in.
void PostOffice::WaitForCalls(std::unique_lock<std::mutex>& hold, const void* called)
{
    m_returned.wait(hold, [this, called] {
        return std::none_of(m_calls.begin(), m_calls.end(), [called](const Call& call) {
            return call.called == called && call.thread != std::this_thread::get_id();
        });
    });
}

void PostOffice::Post(const Gut::Message& message, unsigned systemObject)
{
    Observe(message, systemObject);
    bool isNews = false;
    {
        const std::lock_guard hold(m_mutex);
        // For one that is gone or going: whoever posts may not know yet.
        if (message.GetTarget() && !m_handlers.contains(message.GetTarget()))
            return;
        // An overflow lasts until half of them are delivered, so that one line reports it.
        m_isOverflowing = m_isOverflowing && m_waiting.size() > WaitingLimit / 2;
        if (m_waiting.size() < WaitingLimit) {
            m_waiting.push_back(message);
            Wake();
        } else {
            isNews = !std::exchange(m_isOverflowing, true);
        }
    }
    if (isNews)
        OS_LOG(m_log, Os::Log::Error, SourceFile,
               "Messages are lost: " << WaitingLimit << " are waiting to be delivered");
}

void PostOffice::Observe(const Gut::Message& message, unsigned systemObject)
{
    std::shared_ptr<const PostObserver> observer;
    {
        const std::lock_guard hold(m_mutex);
        observer = m_observer;
        if (!observer)
            return;
        m_calls.push_back({observer.get(), std::this_thread::get_id()});
    }
    const CallEnd end(*this);
    (*observer)(message, systemObject);
}

bool PostOffice::Deliver()
{
    std::unique_lock hold(m_mutex);
    // No more than that: what is posted meanwhile does not hold the thread.
    for (std::size_t count = m_waiting.size(); count > 0 && !m_waiting.empty(); --count) {
        const Gut::Message message = m_waiting.front();
        m_waiting.pop_front();
        if (const Gut::MessageHandler* const target = message.GetTarget()) {
            // In one go with the taking: until then its destruction drops the message.
            m_calls.push_back({target, std::this_thread::get_id()});
            hold.unlock();
            const CallEnd end(*this);
            const_cast<Gut::MessageHandler*>(target)->FilterMessage(message);
        } else {
            hold.unlock();
            DeliverOne(message);
        }
        hold.lock();
    }
    return !m_waiting.empty();
}

void PostOffice::DeliverOnEvent()
{
    {
        const std::lock_guard hold(m_mutex);
        if (m_waker)
            return;
    }
    Deliver();
}

/// Asks one filter after the other until one consumes it.
void PostOffice::DeliverOne(const Gut::Message& message)
{
    std::vector<Gut::MessageHandler*> filters;
    {
        const std::lock_guard hold(m_mutex);
        filters = m_filters;
    }
    for (Gut::MessageHandler* const filter : filters) {
        if (!Begin(*filter))
            continue;
        const CallEnd end(*this);
        if (filter->FilterMessage(message))
            return;
    }
}

/// Begins a call of a filter, unless it is gone.
bool PostOffice::Begin(const Gut::MessageHandler& handler)
{
    const std::lock_guard hold(m_mutex);
    if (std::find(m_filters.begin(), m_filters.end(), &handler) == m_filters.end())
        return false;
    m_calls.push_back({&handler, std::this_thread::get_id()});
    return true;
}

void PostOffice::End()
{
    {
        const std::lock_guard hold(m_mutex);
        // The innermost of this thread: messages may be delivered while one is being handled.
        const auto call = std::find_if(m_calls.rbegin(), m_calls.rend(), [](const Call& each) {
            return each.thread == std::this_thread::get_id();
        });
        m_calls.erase(std::next(call).base());
    }
    m_returned.notify_all();
}

void SetPostObserver(PostObserver observer)
{
    PostOffice::Get().SetObserver(std::move(observer));
}

void SetMessageWaker(std::function<void()> waker)
{
    PostOffice::Get().SetWaker(std::move(waker));
}

void DeliverMessages()
{
    while (PostOffice::Get().Deliver()) {
    }
}

} // namespace Standalone

namespace Os
{

void Post(const Gut::Message& message, unsigned int systemObject)
{
    Standalone::PostOffice::Get().Post(message, systemObject);
}

} // namespace Os
