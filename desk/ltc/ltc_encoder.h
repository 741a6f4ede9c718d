// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "desk/ltc_generator.h"

struct LTCEncoder;

namespace Desk
{

/// Makes the samples of one frame after the other: the generator without its damages.
class LtcFrameEncoder
{
public:
    explicit LtcFrameEncoder(const LtcSettings& settings);
    ~LtcFrameEncoder();
    LtcFrameEncoder(const LtcFrameEncoder&) = delete;
    LtcFrameEncoder& operator=(const LtcFrameEncoder&) = delete;

    /// Appends the next frame, full scale; or what stands behind the last one, or, behind that,
    /// nothing.
    void Append(std::vector<float>& samples);
    /// Whether everything has been appended.
    bool IsAtEnd() const { return m_number > m_settings.frames; }

private:
    double GetSlowness() const;
    void SetFrame();
    void Encode(std::vector<float>& samples, int bytes, double slowness);

    const LtcSettings m_settings;
    const std::unique_ptr<LTCEncoder, void (*)(LTCEncoder*)> m_encoder;
    LtcTime m_time;
    unsigned m_number = 0; ///< frames so far
};

} // namespace Desk
