// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace TestSupport
{

/// Network adapters to test with: made of software, or the kernel's own, in a network namespace of
/// the test's. The calling thread enters it, so a kernel's bench is made before other threads.
class NetworkBench
{
public:
    virtual ~NetworkBench();

    /// An adapter whose link is up; for the kernel one end of a pair.
    virtual void Add(const std::string& name) = 0;
    virtual void SetUp(const std::string& name) = 0;
    virtual void SetDown(const std::string& name) = 0;
    virtual void Remove(const std::string& name) = 0;
    virtual void Rename(const std::string& name, const std::string& newName) = 0;
    /// Down and up again.
    virtual void Flap(const std::string& name, unsigned count) = 0;
    virtual const char* GetName() const = 0;
};

std::unique_ptr<NetworkBench> MakeVirtualBench();

/// What only the kernel can do.
class KernelBench : public NetworkBench
{
public:
    /// Takes the far end's link away and brings it back, as a cable that is pulled.
    virtual void Pull(const std::string& name) = 0;
    virtual void Plug(const std::string& name) = 0;
    /// A bridge, and adapters that join and leave it.
    virtual void AddBridge(const std::string& name) = 0;
    virtual void Join(const std::string& name, const std::string& bridge) = 0;
    virtual void Leave(const std::string& name) = 0;
    virtual void SetLength(const std::string& name, unsigned bytes) = 0;
    /// An adapter whose link and speed the program makes up; false where the kernel has none.
    virtual bool AddTap(const std::string& name) = 0;
    virtual void SetTapSpeed(const std::string& name, std::uint32_t megabits) = 0;
};

/// Null, with the reason in @p reason, where the kernel grants no namespace.
std::unique_ptr<KernelBench> MakeKernelBench(std::string& reason);
/// The kernel's or a virtual one.
std::unique_ptr<NetworkBench> MakeBench(bool ofKernel, std::string& reason);

} // namespace TestSupport
