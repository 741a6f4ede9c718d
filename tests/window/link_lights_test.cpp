// SPDX-License-Identifier: MIT
#include "virtual-desk/link_lights.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <algorithm>

#include "virtual-desk/window_palette.h"
#include "window/window_bench.h"

namespace
{

class LinkLamps : public TestSupport::WindowBench
{
protected:
    LinkLamps() : WindowBench(MakeDesk()) {}

    /// How far the lightest and the darkest point of an image lie apart, 0 to 255.
    static int GetContrast(const QImage& image)
    {
        int least = 255;
        int most = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const int lightness = image.pixelColor(x, y).lightness();
                least = std::min(least, lightness);
                most = std::max(most, lightness);
            }
        return most - least;
    }
};

TEST_F(LinkLamps, ThatAreOffAreSeenInEveryPalette)
{
    for (const char* const name : {"light", "dark"}) {
        ASSERT_TRUE(VirtualDesk::UsePalette(name));
        VirtualDesk::LinkLights lights;
        lights.resize(lights.sizeHint());
        const QImage image = lights.grab().toImage();
        // Between the network's name and what the lamp says stands the lamp alone.
        const QFontMetrics metrics = lights.fontMetrics();
        const int left = std::max(metrics.horizontalAdvance("Console network"),
                                  metrics.horizontalAdvance("Fixture network")) +
                         12;
        EXPECT_GT(GetContrast(image.copy(left, 0, 12, metrics.height())), 80) << name;
    }
}

} // namespace
