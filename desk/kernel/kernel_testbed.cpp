// SPDX-License-Identifier: MIT
#include "desk/kernel_testbed.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

#include "desk/preload.h"
#include "kernel/testbed_private.h"

namespace Desk
{

namespace
{

template <class Function> Function* Find(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

} // namespace

KernelTestbed::KernelTestbed() : m_private(new Private{})
{
    if (!IsPreloaded())
        throw std::runtime_error("virtual kernel devices need the preloaded libraries");
    m_private->testbed = umockdev_testbed_new();
    gchar* const root = umockdev_testbed_get_root_dir(m_private->testbed);
    m_private->root = root;
    g_free(root);
    m_private->addDevice = Find<DeskAddDevice>("desk_add_device");
    m_private->setFaults = Find<DeskSetFaults>("desk_set_faults");
    m_private->removeDevice = Find<DeskRemoveDevice>("desk_remove_device");
    m_private->releaseDevice = Find<DeskReleaseDevice>("desk_release_device");
    m_private->getUse = Find<DeskGetUse>("desk_get_use");
    m_private->hideMachine = Find<DeskHideMachine>("desk_hide_machine");
    m_private->refuseMap = Find<DeskRefuseMap>("desk_refuse_map");
    m_private->setLine = Find<DeskSetLine>("desk_set_line");
    m_private->getLine = Find<DeskGetLine>("desk_get_line");
    m_private->limitLine = Find<DeskLimitLine>("desk_limit_line");
    m_private->stallLine = Find<DeskStallLine>("desk_stall_line");
    m_private->resumeLine = Find<DeskResumeLine>("desk_resume_line");
    m_private->setPages = Find<DeskSetPages>("desk_set_pages");
    std::filesystem::create_directories(GetPathOf("/dev"));
    m_private->hideMachine(m_private->root.c_str());
}

KernelTestbed::~KernelTestbed()
{
    g_object_unref(m_private->testbed);
}

std::string KernelTestbed::GetPathOf(const std::string& path) const
{
    return m_private->root + path;
}

} // namespace Desk
