// SPDX-License-Identifier: MIT
#include "files/text_file.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace Desk
{

std::string ReadTextFile(const std::string& path, const std::string& what)
{
    std::error_code ignored;
    std::ifstream in(path, std::ios::binary);
    // A directory opens, and reads as nothing.
    if (!in || std::filesystem::is_directory(path, ignored))
        throw std::runtime_error(what + " cannot be read");
    std::string text(LongestTextFile + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    if (text.size() > LongestTextFile)
        throw std::runtime_error(what + " is longer than " + std::to_string(LongestTextFile) +
                                 " bytes");
    return text;
}

bool IsRegularFile(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored);
}

} // namespace Desk
