// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "desk/kernel_testbed.h"
#include "desk/midi_port.h"
#include "desk/sequencer.h"

namespace TestSupport
{

/// A test bed with a sequencer that has no ports yet.
class VirtualMidi : public testing::Test
{
protected:
    Desk::KernelTestbed m_testbed;
    Desk::Sequencer m_sequencer{m_testbed};
};

} // namespace TestSupport
