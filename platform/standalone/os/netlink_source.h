// SPDX-License-Identifier: MIT
#pragma once

#include "standalone/network_source.h"

namespace Standalone
{

/// The kernel's adapters, in the network namespace of the calling thread.
class NetlinkSource final : public NetworkSource
{
public:
    std::optional<std::vector<AdapterLink>> Enumerate() override;
    AdapterFacts Read(const std::wstring& name) override;
    std::unique_ptr<AdapterNews> Subscribe() override;
};

} // namespace Standalone
