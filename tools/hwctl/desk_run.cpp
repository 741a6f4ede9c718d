// SPDX-License-Identifier: MIT
#include "hwctl/desk_run.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <stdexcept>
#include <utility>

#include "common/stop_signals.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_setup.h"

namespace Hwctl
{

namespace
{

/// Lines of the log as events. A line ends where its text breaks.
class ScreenLog : public Standalone::LogSink
{
public:
    typedef std::function<void(std::string source, std::string text)> Taker;

    explicit ScreenLog(Taker take) : m_take(std::move(take)) {}

    void Write(const Standalone::LogRecord& record) override
    {
        if (!IsForTerminal(record))
            return;
        m_take("log " + record.context,
               std::string(Standalone::GetLevelName(record.level)) + ": " +
                   std::string(record.text.substr(0, record.text.find('\n'))));
    }

private:
    const Taker m_take;
};

} // namespace

DeskRun::DeskRun(const Desk::DeskData& data, const DeskRunOptions& options)
    : m_options(options), m_printer(options.json, stdout),
      m_lines(options.lines.begin(), options.lines.end())
{
    if (!m_options.readsInput)
        m_lines.insert(m_lines.end(), m_options.lastLines.begin(), m_options.lastLines.end());
    Tools::EventTaker take;
    if (!m_options.isQuiet)
        take = [this](Tools::MonitorEvent event) {
            m_queue.Post([this, event = std::move(event)] { Show(event); });
        };
    m_session = std::make_unique<Console::Session>(data, std::move(take));
    m_runner = std::make_unique<Console::Runner>(
        *m_session,
        [this](const std::string&, const std::string& error) {
            m_queue.Post([this, error] { TakeDone(error); });
        },
        [this](const std::string& text) {
            m_queue.Post([this, text] { Show({m_session->GetSeconds(), "show", "show", text}); });
        });
    m_endTimer.setSingleShot(true);
    QObject::connect(&m_endTimer, &QTimer::timeout, &m_loop, &QEventLoop::quit);
}

DeskRun::~DeskRun()
{
    m_runner.reset();
    m_session.reset();
    m_queue.Drain();
}

int DeskRun::Run()
{
    const Tools::StopSignals signals([this] { m_loop.quit(); });
    if (m_options.isLive)
        BeginScreen();
    if (m_options.readsInput) {
        m_inputNotifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
        QObject::connect(m_inputNotifier.get(), &QSocketNotifier::activated, &m_loop,
                         [this] { ReadInput(); });
    }
    QTimer::singleShot(0, &m_loop, [this] { DoNext(); });
    m_loop.exec();
    m_queue.Drain();
    m_isOver = true;
    if (m_screen)
        EndScreen();
    if (m_inputNotifier) // what was to come behind the input
        m_lines.insert(m_lines.end(), m_options.lastLines.begin(), m_options.lastLines.end());
    if (!m_hasFailed && (m_isBusy || !m_lines.empty())) {
        if (!m_isBusy)
            m_current = m_lines.front();
        m_error = m_current.place + ": " + m_current.text + ": interrupted\n";
        m_hasFailed = true;
    }
    // Before the runner's end, which lets stuck devices go.
    const nlohmann::json state = m_options.state ? m_session->GetState() : nlohmann::json();
    m_runner.reset();
    if (m_options.state && !m_hasFailed)
        PrintState(state);
    if (m_hasFailed)
        std::fprintf(stderr, "hwctl: %s", m_error.c_str());
    return m_hasFailed ? ExitCode_Failure : ExitCode_Success;
}

void DeskRun::BeginScreen()
{
    constexpr int DrawMilliseconds = 100;
    m_screen = std::make_unique<DeskScreen>(stdout);
    QObject::connect(&m_drawTimer, &QTimer::timeout, &m_loop,
                     [this] { m_screen->Draw(m_session->GetState()); });
    m_drawTimer.start(DrawMilliseconds);
    if (m_options.logsToScreen)
        m_logSink = Standalone::SetLogSink(
            std::make_shared<ScreenLog>([this](std::string source, std::string text) {
                m_queue.Post([this, source = std::move(source), text = std::move(text)] {
                    Show({m_session->GetSeconds(), source, "log", text});
                });
            }));
}

void DeskRun::EndScreen()
{
    m_drawTimer.stop();
    if (m_options.logsToScreen)
        Standalone::SetLogSink(std::exchange(m_logSink, nullptr));
    m_screen->Draw(m_session->GetState());
    m_screen.reset();
}

void DeskRun::DoNext()
{
    if (m_isBusy || m_hasFailed || m_isOver)
        return;
    if (m_lines.empty()) {
        if (!m_inputNotifier)
            End();
        return;
    }
    m_current = std::move(m_lines.front());
    m_lines.pop_front();
    m_isBusy = true;
    m_runner->Do(m_current.text);
}

void DeskRun::TakeDone(const std::string& error)
{
    if (m_isOver)
        return; // interrupted
    m_isBusy = false;
    if (!error.empty()) {
        m_error = m_current.place + ": " + m_current.text + ": " + error + "\n";
        m_hasFailed = true;
        m_loop.quit();
        return;
    }
    DoNext();
}

void DeskRun::Show(Tools::MonitorEvent event)
{
    if (m_isOver)
        return; // what the end brings about
    if (m_screen)
        m_screen->Take(std::move(event));
    else
        m_printer.Print(event);
}

/// Takes what has come of standard input; its end ends the run as the last line does.
void DeskRun::ReadInput()
{
    std::array<char, 4096> piece{};
    const ssize_t length = read(STDIN_FILENO, piece.data(), piece.size());
    if (length < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (length > 0)
        m_input.append(piece.data(), static_cast<std::size_t>(length));
    else if (!m_input.empty())
        m_input += '\n';
    for (std::size_t end = 0; (end = m_input.find('\n')) != std::string::npos;) {
        ++m_inputLine;
        for (const Console::ScriptLine& line : Console::ParseDeskScript(m_input.substr(0, end)))
            m_lines.push_back({line.text, "input:" + std::to_string(m_inputLine)});
        m_input.erase(0, end + 1);
    }
    if (length <= 0) {
        m_inputNotifier.release()->deleteLater(); // it is what calls this
        m_lines.insert(m_lines.end(), m_options.lastLines.begin(), m_options.lastLines.end());
    }
    DoNext();
}

void DeskRun::End()
{
    if (m_options.isEndless)
        return;
    constexpr double MillisecondsPerSecond = 1000;
    m_endTimer.start(static_cast<int>(m_options.seconds.value_or(0) * MillisecondsPerSecond));
}

void DeskRun::PrintState(const nlohmann::json& state)
{
    const nlohmann::json* part = &state;
    try {
        if (!m_options.state->empty())
            part = Console::FindInState(state, m_session->FindPath(*m_options.state, state));
    } catch (const std::invalid_argument& error) {
        m_error = std::string("--state: ") + error.what() + "\n";
        m_hasFailed = true;
        return;
    }
    std::printf("%s\n",
                part ? part->dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str()
                     : "null");
}

} // namespace Hwctl
