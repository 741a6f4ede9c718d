// SPDX-License-Identifier: MIT
#include "common/line_text.h"

#include <array>
#include <utility>

namespace Tools
{

namespace
{

constexpr std::array<std::pair<int, speed_t>, 11> Speeds{{{300, B300},
                                                          {1200, B1200},
                                                          {2400, B2400},
                                                          {4800, B4800},
                                                          {9600, B9600},
                                                          {19200, B19200},
                                                          {38400, B38400},
                                                          {57600, B57600},
                                                          {115200, B115200},
                                                          {230400, B230400},
                                                          {460800, B460800}}};

std::string Describe(const std::string& speed, const std::string& parity, const std::string& flow)
{
    return speed + ", parity " + parity + ", flow control " + flow;
}

std::string DescribeSpeed(speed_t parameter)
{
    for (const auto& [baud, speed] : Speeds)
        if (speed == parameter)
            return std::to_string(baud) + " baud";
    return "another speed";
}

} // namespace

const std::vector<int>& GetLineSpeeds()
{
    static const std::vector<int> list = [] {
        std::vector<int> bauds;
        bauds.reserve(Speeds.size());
        for (const auto& [baud, speed] : Speeds)
            bauds.push_back(baud);
        return bauds;
    }();
    return list;
}

std::string DescribeLine(int baud, const std::string& parity, const std::string& flow)
{
    return Describe(std::to_string(baud) + " baud", parity, flow);
}

std::string DescribeLine(const termios& settings)
{
    const bool hasParity = (settings.c_cflag & PARENB) != 0;
    const char* const parity = !hasParity                         ? "none"
                               : (settings.c_cflag & PARODD) != 0 ? "odd"
                                                                  : "even";
    const char* const flow = (settings.c_cflag & CRTSCTS) != 0          ? "rtscts"
                             : (settings.c_iflag & (IXON | IXOFF)) != 0 ? "xonxoff"
                                                                        : "none";
    return Describe(DescribeSpeed(cfgetospeed(&settings)), parity, flow);
}

} // namespace Tools
