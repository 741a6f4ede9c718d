// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// A program with system_calls.cpp among its sources has the C library's calls for devices itself,
/// in front of the libraries'. They do what theirs do, and besides what they are told to here.
namespace TestSupport
{

/// Takes down the calls that the thread which made it makes on some device files. One at a time.
class SystemCalls
{
public:
    /// @param prefix what the paths of these files begin with
    explicit SystemCalls(std::string prefix);
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    /// Such as "open /dev/ttyS0", "tcflush in", "tcsetattr now", "write 8", "ioctl 530b", "map
    /// fe627000", "unmap 1": maps are numbered from 1.
    const std::vector<std::string>& GetCalls() const { return m_calls; }
    /// How many begin with @p name.
    int Count(const std::string& name) const;
    void Clear() { m_calls.clear(); }

    /// Lets the next calls that begin with @p name fail with these errno values, 0 for none, and
    /// not reach the system. An interrupted select() counts a second off its limit.
    void Fail(const std::string& name, const std::deque<int>& errors) { m_failures[name] = errors; }
    /// What is done before a call that begins with @p name.
    void Before(const std::string& name, std::function<void()> action)
    {
        m_actions[name] = std::move(action);
    }

    // The calls' end.
    bool IsWatched(const std::string& path) const { return path.starts_with(m_prefix); }
    bool IsWatched(int descriptor) const;
    bool Note(const std::string& call);
    void NoteOpen(int descriptor) { m_descriptors.push_back(descriptor); }
    void NoteClose(int descriptor);
    void NoteMap(void* page) { m_maps.push_back(page); }
    int FindMap(void* page) const;

private:
    const std::string m_prefix;
    std::vector<std::string> m_calls;
    std::map<std::string, std::deque<int>> m_failures;
    std::map<std::string, std::function<void()>> m_actions;
    std::vector<int> m_descriptors;
    std::vector<void*> m_maps;
};

} // namespace TestSupport
