// SPDX-License-Identifier: MIT
#include "standalone/log_masks.h"

#include <charconv>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include "os/log_tree.h"

namespace Standalone
{

namespace
{

/// A mask in decimal or, after "0x", in hexadecimal; 0 to 31.
std::optional<unsigned> ParseMask(std::string_view text)
{
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    unsigned mask = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), mask, base);
    if (error != std::errc() || end != text.data() + text.size() || mask > Os::Log::AllLevels)
        return std::nullopt;
    return mask;
}

unsigned GetEffectiveMask(const Os::Log::Context& context)
{
    unsigned mask = context.GetMask();
    for (const auto* above = context.GetParent(); above; above = above->GetParent())
        mask &= above->GetMask();
    return mask;
}

} // namespace

void SetLogMask(const std::string& path, unsigned mask)
{
    auto& tree = Os::Log::Tree::Get();
    // Held throughout, so that the context cannot go between being found and being changed.
    const std::lock_guard hold(tree.mutex);
    tree.masks[path] = mask;
    if (Os::Log::Context* const context = Os::Log::Context::Find(path.c_str()))
        context->SetMask(mask);
}

void ForgetLogMasks()
{
    auto& tree = Os::Log::Tree::Get();
    const std::lock_guard hold(tree.mutex);
    tree.masks.clear();
}

std::string ApplyLogMasks(const std::string& list)
{
    std::vector<std::pair<std::string, unsigned>> masks;
    std::istringstream items(list);
    for (std::string item; std::getline(items, item, ',');) {
        const std::size_t equals = item.find('=');
        if (equals == std::string::npos || equals == 0)
            return "'" + item + "' is not of the form PATH=MASK";
        const auto mask = ParseMask(std::string_view(item).substr(equals + 1));
        if (!mask)
            return "'" + item + "' has no mask from 0 to 31";
        masks.emplace_back(item.substr(0, equals), *mask);
    }
    for (const auto& [path, mask] : masks)
        SetLogMask(path, mask);
    return {};
}

std::vector<LogContextInfo> ListLogContexts()
{
    auto& tree = Os::Log::Tree::Get();
    const std::lock_guard hold(tree.mutex);
    std::vector<LogContextInfo> list;
    for (const Os::Log::Context* const context : tree.contexts)
        list.push_back({context->GetPath(), context->GetMask(), GetEffectiveMask(*context)});
    return list;
}

} // namespace Standalone
