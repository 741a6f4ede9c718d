// SPDX-License-Identifier: MIT
#include "gut/light_settings_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QSaveFile>
#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>

namespace Standalone
{

namespace
{

// Far more than settings need: what is larger is something else.
constexpr std::size_t MostBytes = 1U << 20U;

constexpr std::chrono::milliseconds LockPatience(2000);
constexpr std::chrono::milliseconds LockPause(2);

constexpr char NotRegular[] = "it is not a regular file";

std::string GetReason(int error)
{
    return std::generic_category().message(error);
}

/// Closes what was opened.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor()
    {
        if (m_number != -1)
            close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return m_number; }

private:
    const int m_number;
};

std::string ReadAll(int descriptor, std::string& bytes)
{
    std::array<char, 4096> part{};
    while (bytes.size() <= MostBytes) {
        const ssize_t count = read(descriptor, part.data(), part.size());
        if (count == 0)
            return {};
        if (count > 0)
            bytes.append(part.data(), static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return GetReason(errno);
    }
    return "it is larger than a megabyte";
}

std::string MakeFolder(const std::string& path)
{
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
    return error ? error.message() : std::string();
}

} // namespace

std::string ReadLightSettingsFile(const std::string& path, std::string& bytes)
{
    bytes.clear();
    // Asked before it is opened, which makes some devices act.
    struct stat status {
    };
    if (stat(path.c_str(), &status) != 0)
        return errno == ENOENT || errno == ENOTDIR ? std::string() : GetReason(errno);
    if (!S_ISREG(status.st_mode))
        return NotRegular;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (file.Get() == -1)
        return GetReason(errno);
    if (fstat(file.Get(), &status) != 0)
        return GetReason(errno);
    if (!S_ISREG(status.st_mode)) // another one by now
        return NotRegular;
    return ReadAll(file.Get(), bytes);
}

std::string ReplaceLightSettingsFile(const std::string& path, const std::string& bytes)
{
    if (std::string problem = MakeFolder(path); !problem.empty())
        return problem;
    QSaveFile file(QString::fromStdString(path));
    if (file.open(QIODevice::WriteOnly) &&
        file.write(bytes.data(), static_cast<qint64>(bytes.size())) ==
            static_cast<qint64>(bytes.size()) &&
        file.commit())
        return {};
    return file.errorString().toStdString();
}

LightSettingsLock::LightSettingsLock(const std::string& path) : m_problem(MakeFolder(path))
{
    if (!m_problem.empty())
        return;
    // The folder's lock, which needs no file of its own and ends with the process.
    const std::string folder = std::filesystem::path(path).parent_path();
    m_descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_descriptor == -1) {
        m_problem = GetReason(errno);
        return;
    }
    const auto end = std::chrono::steady_clock::now() + LockPatience;
    while (flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        // A file system without locks for folders: a change that may be lost is better than none.
        if (errno != EWOULDBLOCK && errno != EINTR)
            return;
        if (std::chrono::steady_clock::now() >= end) {
            m_problem = "another process keeps the folder locked";
            return;
        }
        std::this_thread::sleep_for(LockPause);
    }
}

LightSettingsLock::~LightSettingsLock()
{
    if (m_descriptor != -1)
        close(m_descriptor);
}

} // namespace Standalone
