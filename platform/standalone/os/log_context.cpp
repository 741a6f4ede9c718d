// SPDX-License-Identifier: MIT
#include <algorithm>

#include "os/call_stack.h"
#include "os/log.h"
#include "os/log_sink_holder.h"
#include "os/log_tree.h"

namespace Os::Log
{

Tree& Tree::Get()
{
    static Tree& tree = *new Tree;
    return tree;
}

Context::Context(const char* name, Context* parent, unsigned mask)
    : m_name(name), m_parent(parent), m_path(parent ? parent->m_path + '/' + name : name),
      m_mask(mask), m_effectiveMask(0)
{
    Tree& tree = Tree::Get();
    const std::lock_guard hold(tree.mutex);
    const auto kept = tree.masks.find(m_path);
    if (kept != tree.masks.end())
        m_mask.store(kept->second, std::memory_order_relaxed);
    tree.contexts.push_back(this);
    if (m_parent)
        m_parent->m_children.push_back(this);
    UpdateEffectiveMask();
}

Context::~Context()
{
    Tree& tree = Tree::Get();
    const std::lock_guard hold(tree.mutex);
    std::erase(tree.contexts, this);
    if (m_parent)
        std::erase(m_parent->m_children, this);
    // Children should have gone first; one that has not becomes a root rather than dangle.
    for (Context* const child : m_children) {
        child->m_parent = nullptr;
        child->UpdateEffectiveMask();
    }
}

void Context::SetMask(unsigned mask)
{
    const std::lock_guard hold(Tree::Get().mutex);
    m_mask.store(mask, std::memory_order_relaxed);
    UpdateEffectiveMask();
}

/// Recombines this context and all below it. The caller holds the tree's lock.
void Context::UpdateEffectiveMask()
{
    const unsigned above =
        m_parent ? m_parent->m_effectiveMask.load(std::memory_order_relaxed) : ~0U;
    m_effectiveMask.store(m_mask.load(std::memory_order_relaxed) & above,
                          std::memory_order_relaxed);
    for (Context* const child : m_children)
        child->UpdateEffectiveMask();
}

void Context::Write(unsigned level, const char* file, const char* function, unsigned line,
                    const kel::text_base<char>& text)
{
    if (!IsEnabled(level))
        return;
    const std::shared_ptr<Standalone::LogSink> sink = GetLogSink();
    if (!sink)
        return;
    const CallStack stack = CallStack::Capture(1);
    sink->Write(
        {m_path, level, file, function, line, text.view(), stack.frames.data(), stack.size});
}

Context* Context::Find(const char* path)
{
    Tree& tree = Tree::Get();
    const std::lock_guard hold(tree.mutex);
    const auto found =
        std::find_if(tree.contexts.begin(), tree.contexts.end(),
                     [path](const Context* context) { return context->m_path == path; });
    return found == tree.contexts.end() ? nullptr : *found;
}

} // namespace Os::Log
