// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Standalone
{

/// Reads the whole of a regular file; a file that is missing has no content. Returns an empty text,
/// or why it cannot be read or cannot be light settings.
std::string ReadLightSettingsFile(const std::string& path, std::string& bytes);

/// Puts new content in place of a file's old one, in one step, and makes the folders above it where
/// they are missing. Returns an empty text, or why it failed; then the file is as it was.
std::string ReplaceLightSettingsFile(const std::string& path, const std::string& bytes);

/// Keeps other processes from changing the settings of a folder, until it is destroyed.
class LightSettingsLock
{
public:
    /// Waits for another holder, for two seconds at most. Makes the folder where it is missing.
    explicit LightSettingsLock(const std::string& path);
    ~LightSettingsLock();
    LightSettingsLock(const LightSettingsLock&) = delete;
    LightSettingsLock& operator=(const LightSettingsLock&) = delete;

    /// Why the lock is not held; empty if it is.
    const std::string& GetProblem() const { return m_problem; }

private:
    int m_descriptor = -1;
    std::string m_problem;
};

} // namespace Standalone
