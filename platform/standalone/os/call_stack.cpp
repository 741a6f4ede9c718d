// SPDX-License-Identifier: MIT
#include "os/call_stack.h"

#include <algorithm>
#include <boost/stacktrace/frame.hpp>
#include <boost/stacktrace/safe_dump_to.hpp>

#include "kel/text_base.h"
#include "os/thread.h"
#include "standalone/log_sink.h"

namespace Os
{

[[gnu::noinline]] CallStack CallStack::Capture(std::size_t skip)
{
    CallStack stack;
    // Boost stores one zero behind the last frame and counts it.
    const std::size_t stored = boost::stacktrace::safe_dump_to(
        skip + 1, stack.frames.data(), stack.frames.size() * sizeof(stack.frames[0]));
    const auto* const end = std::find(stack.frames.begin(),
                                      stack.frames.begin() + std::min(stored, stack.frames.size()),
                                      static_cast<const void*>(nullptr));
    stack.size = static_cast<std::size_t>(end - stack.frames.begin());
    return stack;
}

void Thread::GetCallStack(kel::text_base<char>& out)
{
    const CallStack stack = CallStack::Capture(1);
    out << Standalone::FormatCallStack(stack.frames.data(), stack.size);
}

} // namespace Os

namespace Standalone
{

std::string FormatCallStack(const void* const* stack, std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        const boost::stacktrace::frame frame(stack[i]);
        kel::text<char, 32> address;
        address << "0x" << kel::hex(reinterpret_cast<std::uintptr_t>(stack[i]));
        text.append(address.view());
        const std::string name = frame.name();
        if (!name.empty())
            text.append(" ").append(name);
        text.append("\n");
    }
    return text;
}

} // namespace Standalone
