// SPDX-License-Identifier: MIT
#include "desk/ltc_player.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace Desk
{

namespace
{

/// Audio that is read at once, as a part of a second: less than a frame.
constexpr unsigned BlocksPerSecond = 100;

} // namespace

struct LtcPlayer::Private {
    Private(std::unique_ptr<AudioSource> itsSource, FrameTaker itsOnFrame, LossTaker itsOnLoss,
            LtcPace itsPace)
        : source(std::move(itsSource)), onFrame(std::move(itsOnFrame)),
          onLoss(std::move(itsOnLoss)), pace(itsPace), decoder(source->GetSampleRate())
    {
    }

    void Run();
    void Play();
    void Say(const LtcResult& result);
    bool WaitFor(std::int64_t position);

    const std::unique_ptr<AudioSource> source;
    const FrameTaker onFrame;
    const LossTaker onLoss;
    const LtcPace pace;
    LtcDecoder decoder;
    std::chrono::steady_clock::time_point start;

    std::mutex mutex;
    std::condition_variable changed;
    bool stopped = false; // guarded by mutex, as all below
    bool ended = false;

    std::mutex joinMutex; ///< one thread joins, others wait for it
    std::thread thread;
};

/// Waits until all before this sample has been played; false when stopped.
bool LtcPlayer::Private::WaitFor(std::int64_t position)
{
    std::unique_lock hold(mutex);
    if (pace == LtcPace_AsFastAsPossible)
        return !stopped;
    const std::chrono::duration<double> played(static_cast<double>(position) /
                                               source->GetSampleRate());
    const auto due = start + std::chrono::duration_cast<std::chrono::nanoseconds>(played);
    return !changed.wait_until(hold, due, [this] { return stopped; });
}

void LtcPlayer::Private::Say(const LtcResult& result)
{
    if (!WaitFor(std::visit([](const auto& what) { return what.lastSample; }, result) + 1))
        return;
    if (const auto* const frame = std::get_if<LtcFrame>(&result)) {
        if (onFrame)
            onFrame(*frame);
    } else if (onLoss) {
        onLoss(std::get<LtcLoss>(result));
    }
}

void LtcPlayer::Private::Play()
{
    std::vector<float> samples(source->GetSampleRate() / BlocksPerSecond);
    std::int64_t position = 0;
    const LtcTaker say = [this](const LtcResult& result) { Say(result); };
    if (!WaitFor(position))
        return;
    start = std::chrono::steady_clock::now();
    for (AudioBlock block; !block.end && WaitFor(position);) {
        block = source->Read(samples);
        if (block.discontinuity)
            decoder.Discontinuity();
        decoder.Feed(std::span(samples).first(block.samples), position, say);
        position += static_cast<std::int64_t>(block.samples);
    }
    decoder.Finish(say);
}

void LtcPlayer::Private::Run()
{
    Play();
    const std::lock_guard hold(mutex);
    ended = true;
    changed.notify_all();
}

LtcPlayer::LtcPlayer(std::unique_ptr<AudioSource> source, FrameTaker onFrame, LossTaker onLoss,
                     LtcPace pace)
    : m_private(
          std::make_unique<Private>(std::move(source), std::move(onFrame), std::move(onLoss), pace))
{
    const std::lock_guard hold(m_private->mutex); // until a taker may ask which thread it is on
    m_private->thread = std::thread([this] { m_private->Run(); });
}

LtcPlayer::~LtcPlayer()
{
    Stop();
}

void LtcPlayer::Stop()
{
    {
        const std::lock_guard hold(m_private->mutex);
        m_private->stopped = true;
        m_private->changed.notify_all();
    }
    m_private->source->Stop();
    if (m_private->thread.get_id() == std::this_thread::get_id())
        return;
    const std::lock_guard hold(m_private->joinMutex);
    if (m_private->thread.joinable())
        m_private->thread.join();
}

bool LtcPlayer::WaitEnd(std::chrono::milliseconds timeout)
{
    std::unique_lock hold(m_private->mutex);
    return m_private->changed.wait_for(hold, timeout, [this] { return m_private->ended; });
}

} // namespace Desk
