// SPDX-License-Identifier: MIT
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <stdexcept>

#include "cd/cue_words.h"
#include "desk/cue_sheet.h"
#include "files/text_file.h"

namespace Desk
{

namespace
{

/// Length of a file in frames, whole ones: what is left over is filled up with silence.
std::optional<int> MeasureFile(const std::filesystem::path& path, int sectorBytes)
{
    if (!IsRegularFile(path))
        return std::nullopt;
    double frames = 0;
    if (sectorBytes != 0) {
        std::error_code error;
        const auto bytes = std::filesystem::file_size(path, error);
        if (error)
            return std::nullopt;
        frames = static_cast<double>(bytes) / sectorBytes;
    } else {
        SF_INFO info{};
        SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
        if (!file)
            return std::nullopt;
        sf_close(file);
        if (info.samplerate <= 0 || info.frames < 0)
            return std::nullopt;
        frames = static_cast<double>(info.frames) * CdFramesPerSecond / info.samplerate;
    }
    // The check for what fits on a disc comes later, with a number that can be counted with.
    return static_cast<int>(std::min(std::ceil(frames), 2.0 * CdMaximumFrames));
}

} // namespace

CdDisc ReadCueSheet(const std::string& path)
{
    const std::string name = "CUE sheet " + Quote(path);
    // A desk file may name a pipe, whose open would wait, or a device without an end.
    if (!IsRegularFile(path))
        throw std::runtime_error(name + " cannot be read");
    const std::string text = ReadTextFile(path, name);
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    try {
        return ParseCueSheet(text, [&folder](const std::string& wanted, int sectorBytes) {
            return MeasureFile(folder / wanted, sectorBytes);
        });
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(name + ", " + error.what());
    }
}

} // namespace Desk
