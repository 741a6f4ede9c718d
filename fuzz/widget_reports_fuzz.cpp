// SPDX-License-Identifier: MIT

// Reports of widgets: decoded, compared with a table that knows nothing of the decoder, and sent
// through the widget driver, the wing mapper and the timecode device.
//
// The input is a row of reports, each behind two bytes: the device, and the number of bytes.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "hardware/timecode/device_ltc.h"
#include "hardware/wing_mapper.h"
#include "standalone/log_sink.h"
#include "standalone/platform_settings.h"
#include "standalone/widget_transport.h"
#include "standalone/wing_table.h"

namespace
{

namespace Report = Standalone::Report;

typedef std::span<const std::uint8_t> Span;

void Require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

/// The fields of a report after its code: a digit for a number of so many bytes, 'b' and 'w' for a
/// list of bytes and of words.
typedef std::map<int, const char*> Layouts;
const Layouts InputLayouts{{0x01, "21"}, {0x02, "24"}, {0x03, "24"},   {0x04, "24"},
                           {0x05, "44"}, {0x06, "21"}, {0x07, "44"},   {0x08, "44b"},
                           {0x09, "44"}, {0x0A, "41"}, {0x0B, "11111"}};
const Layouts OutputLayouts{{0x81, "21"}, {0x82, "1"}, {0x83, "11"}, {0x84, "21"}, {0x85, "24"},
                            {0x86, "21"}, {0x87, "1"}, {0x88, "2w"}, {0x89, "21"}, {0x8A, "4"},
                            {0x8B, "1"},  {0x8C, "1"}, {0x8D, ""},   {0x8E, "bw"}, {0x8F, "1111"}};

/// Whether a report has exactly the length that its code asks for.
bool Fits(const Layouts& layouts, Span bytes)
{
    const auto layout = bytes.empty() ? layouts.end() : layouts.find(bytes[0]);
    if (layout == layouts.end())
        return false;
    std::size_t place = 1;
    for (const char* field = layout->second; *field != 0; ++field) {
        if (*field != 'b' && *field != 'w') {
            place += static_cast<std::size_t>(*field - '0');
            continue;
        }
        if (bytes.size() < place + 2)
            return false;
        const std::size_t count = bytes[place] + 256U * bytes[place + 1];
        place += 2 + count * (*field == 'b' ? 1U : 4U);
    }
    return place == bytes.size();
}

void CheckCodec(Span bytes)
{
    const auto input = Report::DecodeInput(bytes);
    Require(input.has_value() == Fits(InputLayouts, bytes), "an input report is misjudged");
    const auto output = Report::DecodeOutput(bytes);
    Require(output.has_value() == Fits(OutputLayouts, bytes), "an output report is misjudged");
    if (input)
        Require(std::ranges::equal(Report::Encode(*input), bytes), "an input report has changed");
    if (output)
        Require(std::ranges::equal(Report::Encode(*output), bytes), "an output report has changed");
}

/// One device of each class, which take everything.
class AllDevices : public Standalone::WidgetTransport
{
public:
    void SetObserver(Standalone::WidgetObserver* observer) override { m_observer = observer; }
    std::vector<Standalone::WidgetDescription> Enumerate() override
    {
        std::vector<Standalone::WidgetDescription> devices;
        for (const Hardware::WingModel& model : Standalone::GetWingModels())
            devices.push_back({model.classId, GetPath(devices.size()),
                               static_cast<std::uint16_t>(devices.size())});
        return devices;
    }
    std::unique_ptr<Standalone::WidgetConnection> Open(const std::wstring& /*path*/) override
    {
        class Connection : public Standalone::WidgetConnection
        {
            bool Write(const Report::Bytes& /*report*/) override { return true; }
        };
        return std::make_unique<Connection>();
    }

    void Send(std::size_t device, Span report)
    {
        m_observer->Received(GetPath(device % Standalone::GetWingModels().size()),
                             {report.begin(), report.end()});
    }

private:
    static std::wstring GetPath(std::size_t device) { return L"port" + std::to_wstring(device); }

    Standalone::WidgetObserver* m_observer = nullptr;
};

/// The devices, and who listens to them.
class Bench
{
public:
    Bench()
    {
        Standalone::SetLogSink(nullptr);
        constexpr int ModelWithAllSections = 7;
        Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(ModelWithAllSections));
        Standalone::SetWidgetTransport(m_devices);
        Hardware::WingMapper::Begin();
        m_ltc.Enable();
    }
    ~Bench()
    {
        m_ltc.Disable();
        Hardware::WingMapper::End();
        Standalone::SetWidgetTransport(nullptr);
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    AllDevices& GetDevices() { return *m_devices; }

private:
    const std::shared_ptr<AllDevices> m_devices = std::make_shared<AllDevices>();
    Hardware::Timecode::DeviceLtc m_ltc{nullptr};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    static Bench bench;
    Span rest(data, size);
    while (rest.size() >= 2) {
        const std::size_t device = rest[0];
        const std::size_t length = std::min<std::size_t>(rest[1], rest.size() - 2);
        const Span report = rest.subspan(2, length);
        rest = rest.subspan(2 + length);
        CheckCodec(report);
        bench.GetDevices().Send(device, report);
    }
    Standalone::FlushWidgetDriver();
    return 0;
}
