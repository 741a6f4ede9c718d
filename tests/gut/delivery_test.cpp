// SPDX-License-Identifier: MIT

// The way of a message: who gets it, on which thread, and who does not any more.

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <new>
#include <stdexcept>
#include <thread>

#include "gut/application.h"
#include "os/log.h"
#include "os/post.h"
#include "standalone/messages.h"
#include "support/log_capture.h"
#include "support/wait.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

typedef std::vector<std::string> Texts;

Gut::Message MakeMessage(unsigned char type)
{
    return {&type, 1};
}

/// Takes down what it gets as "NAME TYPE".
class Handler : public Gut::MessageHandler
{
public:
    Handler(std::string name, Texts& log, bool consumes = false)
        : m_name(std::move(name)), m_log(log), m_consumes(consumes)
    {
        GutConsoleApplication::Get()->InstallMessageFilter(this);
    }
    bool FilterMessage(const Gut::Message& message) override
    {
        m_log.push_back(m_name + " " + std::to_string(message.Data()[0]));
        if (action)
            action();
        return m_consumes;
    }
    std::function<void()> action;

private:
    const std::string m_name;
    Texts& m_log;
    const bool m_consumes;
};

/// Runs the application's loop until nothing is left to do.
void RunLoop()
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

/// An application for tests that need a loop.
class Application
{
    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};

public:
    QCoreApplication application{m_count, m_arguments};
};

} // namespace

TEST(MessageDelivery, AsksFiltersInTheirOrderUntilOneConsumes)
{
    Texts log;
    const Handler first("first", log);
    const Handler second("second", log, true);
    const Handler third("third", log);
    Os::Post(MakeMessage(1), 3);
    EXPECT_THAT(log, IsEmpty());
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("first 1", "second 1"));
}

TEST(MessageDelivery, AFilterInstalledTwiceKeepsItsPlace)
{
    Texts log;
    Handler first("first", log);
    const Handler second("second", log);
    GutConsoleApplication::Get()->InstallMessageFilter(&first);
    GutConsoleApplication::Get()->InstallMessageFilter(nullptr);
    Os::Post(MakeMessage(1), 3);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("first 1", "second 1"));
}

TEST(MessageDelivery, ATargetGetsItsMessageAlone)
{
    Texts log;
    const Handler filter("filter", log, true);
    Handler target("target", log);
    Os::Post(Gut::TargettedMessage(target, Gut::TargettedMessageType_Default, 0), 32);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("target 15"));
}

TEST(MessageDelivery, KeepsTheOrderOfPosting)
{
    Texts log;
    Handler filter("filter", log);
    for (unsigned char type = 0; type < 3; ++type)
        Os::Post(MakeMessage(type), 3);
    Os::Post(Gut::TargettedMessage(filter, Gut::TargettedMessageType_Default, 0), 32);
    Os::Post(MakeMessage(3), 3);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("filter 0", "filter 1", "filter 2", "filter 15", "filter 3"));
}

TEST(MessageDelivery, WhatAFilterPostsComesBehindWhatWaits)
{
    Texts log;
    Handler filter("filter", log);
    filter.action = [&] {
        filter.action = nullptr;
        Os::Post(MakeMessage(9), 3);
    };
    Os::Post(MakeMessage(1), 3);
    Os::Post(MakeMessage(2), 3);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("filter 1", "filter 2", "filter 9"));
}

TEST(MessageDelivery, RunsOnTheApplicationsThread)
{
    const Application application;
    Texts log;
    Handler filter("filter", log);
    std::thread::id thread;
    filter.action = [&] { thread = std::this_thread::get_id(); };
    std::thread([] { Os::Post(MakeMessage(1), 3); }).join();
    EXPECT_THAT(log, IsEmpty());
    RunLoop();
    EXPECT_THAT(log, ElementsAre("filter 1"));
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(MessageDelivery, RunsOnTheThreadThatAWakerWakes)
{
    const Application application;
    Texts log;
    Handler filter("filter", log);
    std::promise<std::thread::id> thread;
    filter.action = [&] { thread.set_value(std::this_thread::get_id()); };
    Os::Post(MakeMessage(1), 3); // the loop has been told of it, and leaves it alone now
    std::promise<void> woken;
    Standalone::SetMessageWaker([&woken] { woken.set_value(); });
    RunLoop();
    EXPECT_THAT(log, IsEmpty());
    std::thread messages([&woken] {
        woken.get_future().wait();
        Standalone::DeliverMessages();
    });
    EXPECT_EQ(thread.get_future().get(), messages.get_id());
    messages.join();
    // Back again.
    thread = {};
    Standalone::SetMessageWaker({});
    Os::Post(MakeMessage(2), 3);
    EXPECT_THAT(log, ElementsAre("filter 1"));
    RunLoop();
    EXPECT_THAT(log, ElementsAre("filter 1", "filter 2"));
    EXPECT_EQ(thread.get_future().get(), std::this_thread::get_id());
}

TEST(MessageDelivery, LeavesTheLoopToOthersHoweverMuchIsPosted)
{
    const Application application;
    Texts log;
    Handler filter("filter", log);
    bool hadTurn = false;
    std::size_t messagesBefore = 0;
    // One that never comes to an end by itself.
    filter.action = [] { Os::Post(MakeMessage(1), 3); };
    Os::Post(MakeMessage(1), 3);
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        hadTurn = true;
        messagesBefore = log.size();
        filter.action = nullptr;
        loop.quit();
    });
    loop.exec();
    EXPECT_TRUE(hadTurn);
    EXPECT_GE(messagesBefore, 1U);
}

TEST(MessageDelivery, WhatWasPostedBeforeTheApplicationIsDeliveredByItsLoop)
{
    Texts log;
    const Handler filter("filter", log);
    Os::Post(MakeMessage(1), 3);
    const Application application;
    EXPECT_THAT(log, IsEmpty());
    RunLoop();
    EXPECT_THAT(log, ElementsAre("filter 1"));
}

TEST(MessageDelivery, ADestroyedFilterIsNotAsked)
{
    Texts log;
    auto gone = std::make_unique<Handler>("gone", log);
    const Handler filter("filter", log);
    Os::Post(MakeMessage(1), 3);
    gone.reset();
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("filter 1"));
}

TEST(MessageDelivery, ADestroyedTargetsMessagesAreDropped)
{
    Texts log;
    const Handler filter("filter", log);
    auto gone = std::make_unique<Handler>("gone", log);
    Os::Post(Gut::TargettedMessage(*gone, Gut::TargettedMessageType_Default, 0), 32);
    Os::Post(MakeMessage(1), 3);
    gone.reset();
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("filter 1"));
}

TEST(MessageDelivery, WhatIsPostedToOneThatIsGoneIsDropped)
{
    Texts log;
    auto gone = std::make_unique<Handler>("gone", log);
    const Gut::TargettedMessage message(*gone, Gut::TargettedMessageType_Default, 0);
    gone.reset();
    Os::Post(message, 32); // by somebody who does not know yet
    Standalone::DeliverMessages();
    EXPECT_THAT(log, IsEmpty());
}

TEST(MessageDelivery, OutlivesTheApplication)
{
    Texts log;
    const Handler filter("filter", log);
    // Spoilt when it is gone, so that nobody can use it unnoticed.
    alignas(Application) std::array<unsigned char, sizeof(Application)> room{};
    auto* const application = new (room.data()) Application;
    Os::Post(MakeMessage(1), 3);
    application->~Application();
    room.fill(0xEE);
    Os::Post(MakeMessage(2), 3);
    EXPECT_THAT(log, IsEmpty());
    const Application next;
    RunLoop();
    EXPECT_THAT(log, ElementsAre("filter 1", "filter 2"));
}

TEST(MessageDelivery, AFilterMayDestroyTheNextOne)
{
    Texts log;
    Handler first("first", log);
    auto next = std::make_unique<Handler>("next", log);
    const Handler last("last", log);
    first.action = [&] { next.reset(); };
    Os::Post(MakeMessage(1), 3);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("first 1", "last 1"));
}

TEST(MessageDelivery, AFilterMayDestroyItself)
{
    class Passing : public Gut::MessageHandler
    {
    public:
        explicit Passing(Texts& log) : m_log(log)
        {
            GutConsoleApplication::Get()->InstallMessageFilter(this);
        }
        bool FilterMessage(const Gut::Message& /*message*/) override
        {
            m_log.emplace_back("gone");
            delete this; // its own call is not waited for
            return false;
        }

    private:
        Texts& m_log;
    };
    Texts log;
    new Passing(log);
    const Handler last("last", log);
    Os::Post(MakeMessage(1), 3);
    Os::Post(MakeMessage(2), 3);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("gone", "last 1", "last 2"));
}

TEST(MessageDelivery, DestructionWaitsForACallOnAnotherThread)
{
    // The state outlives the handler that is waited for.
    struct State {
        std::promise<void> entered;
        std::promise<void> leave;
        std::atomic<bool> hasLeft{false};
    } state;
    class Slow : public Gut::MessageHandler
    {
    public:
        explicit Slow(State& state) : m_state(state) {}
        bool FilterMessage(const Gut::Message& /*message*/) override
        {
            State& kept = m_state;
            kept.entered.set_value();
            kept.leave.get_future().wait();
            kept.hasLeft = true;
            return true;
        }

    private:
        State& m_state;
    };
    auto slow = std::make_unique<Slow>(state);
    Os::Post(Gut::TargettedMessage(*slow, Gut::TargettedMessageType_Default, 0), 32);
    std::thread deliverer([] { Standalone::DeliverMessages(); });
    state.entered.get_future().wait();
    std::atomic<bool> isDestroyed{false};
    bool hadLeft = false;
    std::thread destroyer([&] {
        slow.reset();
        hadLeft = state.hasLeft;
        isDestroyed = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(isDestroyed);
    state.leave.set_value();
    destroyer.join();
    deliverer.join();
    EXPECT_TRUE(hadLeft);
}

TEST(MessageDelivery, AFilterThatThrowsCanBeDestroyedOnAnotherThread)
{
    Texts log;
    auto* const filter = new Handler("filter", log);
    filter->action = [] { throw std::runtime_error("no"); };
    Os::Post(MakeMessage(1), 3);
    EXPECT_THROW(Standalone::DeliverMessages(), std::runtime_error);
    const auto isGone = std::make_shared<std::atomic<bool>>(false);
    std::thread destroyer([filter, isGone] {
        delete filter;
        *isGone = true;
    });
    EXPECT_TRUE(TestSupport::WaitUntil([&isGone] { return isGone->load(); }));
    if (*isGone)
        destroyer.join();
    else
        destroyer.detach(); // it waits for ever
}

TEST(MessageDelivery, ATargetThatThrowsCanBeDestroyedOnAnotherThread)
{
    Texts log;
    auto* const target = new Handler("target", log);
    target->action = [] { throw std::runtime_error("no"); };
    Os::Post(Gut::TargettedMessage(*target, Gut::TargettedMessageType_Default, 0), 32);
    EXPECT_THROW(Standalone::DeliverMessages(), std::runtime_error);
    const auto isGone = std::make_shared<std::atomic<bool>>(false);
    std::thread destroyer([target, isGone] {
        delete target;
        *isGone = true;
    });
    EXPECT_TRUE(TestSupport::WaitUntil([&isGone] { return isGone->load(); }));
    if (*isGone)
        destroyer.join();
    else
        destroyer.detach(); // it waits for ever
}

TEST(MessageDelivery, MessagesBehindOneThatMadeAFilterThrowAreDelivered)
{
    Texts log;
    Handler filter("filter", log);
    filter.action = [&filter] {
        filter.action = nullptr;
        throw std::runtime_error("no");
    };
    Os::Post(MakeMessage(1), 3);
    Os::Post(MakeMessage(2), 3);
    EXPECT_THROW(Standalone::DeliverMessages(), std::runtime_error);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("filter 1", "filter 2"));
}

TEST(MessageDelivery, AHandlerThatEndedItsMessagesGetsNoFurtherOne)
{
    class Ending : public Handler
    {
    public:
        using Handler::EndMessages;
        using Handler::Handler;
    };
    Texts log;
    Ending ending("ending", log);
    const Handler filter("filter", log);
    Os::Post(Gut::TargettedMessage(ending, Gut::TargettedMessageType_Default, 0), 32);
    Os::Post(MakeMessage(1), 3);
    ending.EndMessages();
    Os::Post(Gut::TargettedMessage(ending, Gut::TargettedMessageType_Default, 0), 32);
    Standalone::DeliverMessages();
    EXPECT_THAT(log, ElementsAre("filter 1"));
}

TEST(MessageDelivery, MessagesBeyondTheLimitAreLostAndLoggedOnce)
{
    constexpr int Limit = 10000;
    const TestSupport::LogCapture capture;
    for (int i = 0; i < Limit; ++i)
        Os::Post(MakeMessage(1), 3);
    EXPECT_THAT(capture.GetTexts(), IsEmpty());
    for (int i = 0; i < 5; ++i)
        Os::Post(MakeMessage(2), 3);
    ASSERT_THAT(capture.GetTexts(),
                ElementsAre("Messages are lost: 10000 are waiting to be delivered"));
    EXPECT_EQ(capture.GetLines()[0].context, "Messages");
    EXPECT_EQ(capture.GetLines()[0].level, Os::Log::Error);
    Texts log;
    const Handler filter("filter", log);
    Standalone::DeliverMessages();
    EXPECT_EQ(log, Texts(Limit, "filter 1"));
    // All are delivered, so that the next overflow is news.
    for (int i = 0; i <= Limit; ++i)
        Os::Post(MakeMessage(3), 3);
    EXPECT_EQ(capture.GetTexts().size(), 2U);
    Standalone::DeliverMessages();
}

TEST(MessageDelivery, ReplacingAnObserverWaitsForItsCallOnAnotherThread)
{
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> hasLeft{false};
    Standalone::SetPostObserver([&](const Gut::Message&, unsigned) {
        entered.set_value();
        leave.get_future().wait();
        hasLeft = true;
    });
    std::thread poster([] { Os::Post(MakeMessage(1), 3); });
    entered.get_future().wait();
    std::atomic<bool> isReplaced{false};
    bool hadLeft = false;
    std::thread replacer([&] {
        Standalone::SetPostObserver({});
        hadLeft = hasLeft;
        isReplaced = true;
    });
    // Time for one that does not wait to return; one that waits needs none.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(isReplaced);
    leave.set_value();
    replacer.join();
    poster.join();
    EXPECT_TRUE(hadLeft);
}

TEST(MessageDelivery, AnObserverMayTakeItselfAway)
{
    int count = 0;
    Standalone::SetPostObserver([&count](const Gut::Message&, unsigned) {
        Standalone::SetPostObserver({});
        ++count;
    });
    Os::Post(MakeMessage(1), 3);
    Os::Post(MakeMessage(2), 3);
    EXPECT_EQ(count, 1);
}

TEST(MessageDelivery, AnObserverSeesEveryPostWithItsSystemObject)
{
    Texts seen;
    Standalone::SetPostObserver([&seen](const Gut::Message& message, unsigned systemObject) {
        seen.push_back(std::to_string(message.Data()[0]) + " to " + std::to_string(systemObject));
    });
    Os::Post(MakeMessage(1), 3);
    Os::Post(MakeMessage(2), 32);
    Standalone::SetPostObserver({});
    Os::Post(MakeMessage(3), 3);
    EXPECT_THAT(seen, ElementsAre("1 to 3", "2 to 32"));
}

TEST(MessageDelivery, HandlersMayComeAndGoWhileMessagesArePosted)
{
    // So few that those for handlers do not wait behind too many.
    constexpr int MostWaiting = 20;
    std::atomic<bool> isOver{false};
    std::atomic<int> waiting{0};
    Texts ignored;
    Handler counter("counter", ignored);
    counter.action = [&] {
        ignored.clear();
        --waiting;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&] {
            while (!isOver) {
                if (waiting < MostWaiting) {
                    ++waiting;
                    Os::Post(MakeMessage(1), 3);
                } else {
                    std::this_thread::yield();
                }
            }
        });
    std::thread deliverer([&] {
        while (!isOver)
            Standalone::DeliverMessages();
    });
    for (int i = 0; i < 500; ++i) {
        Texts log;
        const Handler* const handler = new Handler("", log);
        Os::Post(Gut::TargettedMessage(*handler, Gut::TargettedMessageType_Default, 0), 32);
        // Taken off the list on the thread that calls it: nothing else is allowed.
        std::promise<void> isGone;
        class Undertaker : public Gut::MessageHandler
        {
        public:
            Undertaker(const Handler* handler, std::promise<void>& isGone)
                : m_handler(handler), m_isGone(isGone)
            {
            }
            bool FilterMessage(const Gut::Message& /*message*/) override
            {
                delete m_handler;
                m_isGone.set_value();
                return true;
            }

        private:
            const Handler* m_handler;
            std::promise<void>& m_isGone;
        } undertaker(handler, isGone);
        Os::Post(Gut::TargettedMessage(undertaker, Gut::TargettedMessageType_Default, 0), 32);
        isGone.get_future().wait();
    }
    isOver = true;
    for (std::thread& thread : threads)
        thread.join();
    deliverer.join();
}

TEST(GutApplication, IsThePrimaryInstanceUntilToldOtherwise)
{
    EXPECT_EQ(GutApplication::Get()->GetId(), 0);
    EXPECT_EQ(GutApplication::Get(), GutApplication::Get());
    Standalone::SetApplicationId(2);
    EXPECT_EQ(GutApplication::Get()->GetId(), 2);
}
