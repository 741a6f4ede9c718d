// SPDX-License-Identifier: MIT
// The anchors of the library and its modules.
#include "hardware/link_control.h"

#include <gtest/gtest.h>

#include "standalone/log_masks.h"
#include "support/log_capture.h"
#include "support/process_facts.h"
#include "xtti/type_reg.h"

namespace
{

TEST(LinkControl, DoesNothing)
{
    const TestSupport::LogCapture capture;
    const std::size_t types = xtti::registered_types().size();
    const std::size_t contexts = Standalone::ListLogContexts().size();
    const std::size_t threads = TestSupport::CountThreads();
    const std::size_t descriptors = TestSupport::CountDescriptors();

    Hardware_LinkControl();
    Timecode_LinkControl();
    Midi_LinkControl();

    EXPECT_TRUE(capture.GetLines().empty());
    EXPECT_EQ(xtti::registered_types().size(), types);
    EXPECT_EQ(Standalone::ListLogContexts().size(), contexts);
    EXPECT_EQ(TestSupport::CountThreads(), threads);
    EXPECT_EQ(TestSupport::CountDescriptors(), descriptors);
}

} // namespace
