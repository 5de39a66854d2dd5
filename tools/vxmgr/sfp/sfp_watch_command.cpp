// sfp watch.
#include <chrono>
#include <deque>

#include "common/text.h"
#include "vxmgr/app/side_by_side.h"
#include "vxmgr/sfp/commands.h"
#include "vxmgr/sfp/sfp_port.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr uint64_t kUsualInterval = 5;
constexpr uint64_t kLongestInterval = 86400;
constexpr int kMostFailures = 3;  // of a port, one after the other

constexpr Argument kWatchArguments[] = {
    {.name = "--interval",
     .kind = ArgumentKind::Number,
     .valueName = "S",
     .help = "seconds between readings (5)",
     .least = 1,
     .most = kLongestInterval},
    {.name = "--count",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "end after N readings of each port",
     .least = 1},
};

struct Watched {
    const Port& port;
    std::shared_ptr<Device> device;  // shared with a thread that may be left behind
    SfpIdentity identity;
    int failures = 0;

    bool IsLive() const { return failures < kMostFailures; }
};

Value MilliwattValue(const SfpReadings& readings, SfpQuantity quantity) {
    return ReadingValue(quantity, readings.Of(quantity).value);
}

Record ReadingsRow(const Port& port, const SfpReadings& readings, const std::string& time) {
    const std::string trouble = TroubleText(readings);
    const auto value = [&](SfpQuantity quantity) { return MilliwattValue(readings, quantity); };
    const auto power = [&](SfpQuantity quantity) {
        return DecibelValue(readings.Of(quantity).value);
    };
    Record row;
    row.Add("time", "Time", Value::Text(time), "TIME", time.size());
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("adapter_serial", "Adapter", Value::Serial(port.Serial()), "ADAPTER", 14);
    row.Add("temperature_c", "Temperature", value(SfpQuantity::Temperature), "TEMP.", 9);
    row.Add("voltage_v", "Supply voltage", value(SfpQuantity::Voltage), "SUPPLY", 8);
    row.Add("bias_ma", "Laser bias", value(SfpQuantity::Bias), "BIAS", 9);
    row.Add("tx_power_mw", "Sent power", value(SfpQuantity::SentPower));
    row.Add("tx_power_dbm", "Sent power", power(SfpQuantity::SentPower), "TX POWER", 10);
    row.Add("rx_power_mw", "Received power", value(SfpQuantity::ReceivedPower));
    row.Add("rx_power_dbm", "Received power", power(SfpQuantity::ReceivedPower), "RX POWER", 10);
    row.Add("trouble", "Trouble",
            Value::Text(trouble)
                .Shown(trouble.empty() ? "none" : trouble)
                .In(trouble.empty() ? tools::Tone::Plain : tools::Tone::Warning),
            "TROUBLE");
    return row;
}

class Watcher {
  public:
    explicit Watcher(tools::Invocation& invocation)
        : invocation_(invocation),
          interval_(invocation.Given().Number("interval").value_or(kUsualInterval)),
          count_(invocation.Given().Number("count")) {}

    // Ports without diagnostics are left out, with a word.
    ExitCode Start(std::vector<Port>& ports) {
        return ForEachSfpModule(
            invocation_, ports,
            [&](const Port& port, Device& device, const SfpModule& module, std::string*) {
                if (!module.Reachable()) {
                    invocation_.Note("port " + std::to_string(port.index) +
                                     " is left out: its transceiver has no diagnostics");
                } else {
                    watched_.push_back(
                        {port, std::make_shared<Device>(std::move(device)), module.identity});
                }
                return HX_STATUS{HXMGT_SUCCESS};
            });
    }

    ExitCode Run(ExitCode started) {
        if (watched_.empty()) {
            invocation_.Result().AddList("readings", "Readings", tools::ListLayout::Table,
                                         ReadingsRow(Port(), {}, {}), "", {});
            return started != ExitCode::Done ? started : ExitCode::NotSupported;
        }
        invocation_.Progress("watching " + std::to_string(watched_.size()) +
                             " transceivers; Ctrl-C ends");
        invocation_.BeginStream("readings", "Readings",
                                ReadingsRow(Port(), {}, tools::FormatUtc({})), "");
        for (uint64_t turn = 0; CountLive() != 0; ++turn) {
            if (turn != 0) {
                invocation_.Sleep(std::chrono::seconds(interval_));
            }
            ReadAll();
            if (count_ && turn + 1 == *count_) {
                break;
            }
        }
        const size_t live = CountLive();
        return live == watched_.size() ? started : live != 0 ? ExitCode::Partial : exit_;
    }

  private:
    struct Answer {
        HX_STATUS status = HXMGT_SUCCESS;
        SfpDiagnostics page{};
    };

    void ReadAll() {
        std::vector<Watched*> live;
        std::vector<PortQuestion<Answer>> questions;
        for (Watched& one : watched_) {
            if (one.IsLive()) {
                live.push_back(&one);
                questions.push_back(
                    {one.port.Name(), [device = one.device](PortTask&, Answer& answer) {
                         answer.status = ReadSfp(
                             device->Handle(), kSfpPages[1], 0,
                             {reinterpret_cast<uint8_t*>(&answer.page), sizeof answer.page});
                     }});
            }
        }
        const auto answers = AskSideBySide(invocation_, std::move(questions));
        for (size_t i = 0; i < live.size(); ++i) {
            Take(*live[i], answers[i]);
        }
    }

    void Take(Watched& one, const std::optional<Answer>& answer) {
        if (answer && answer->status == HXMGT_SUCCESS) {
            one.failures = 0;
            const std::string time = tools::FormatUtc(std::chrono::system_clock::now());
            invocation_.Stream(
                ReadingsRow(one.port, ReadDiagnostics(one.identity, answer->page), time));
            return;
        }
        // A thread still waits for a port that does not answer: it is not asked again.
        one.failures = answer ? one.failures + 1 : kMostFailures;
        if (!one.IsLive()) {
            exit_ = invocation_.Report(answer ? answer->status : HX_STATUS{HXMGT_TIMED_OUT},
                                       "the transceiver is no longer watched", one.port.Object());
        }
    }

    size_t CountLive() const {
        size_t live = 0;
        for (const Watched& one : watched_) {
            live += one.IsLive() ? 1 : 0;
        }
        return live;
    }

    tools::Invocation& invocation_;
    const uint64_t interval_;
    const std::optional<uint64_t> count_;
    std::deque<Watched> watched_;
    ExitCode exit_ = ExitCode::Done;
};

ExitCode SfpWatch(tools::Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    Watcher watcher(invocation);
    const ExitCode started = watcher.Start(ports);
    return watcher.Run(started);
}

}  // namespace

tools::CommandRows SfpWatchCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "sfp watch",
            .risk = tools::Risk::Reads,
            .help = "print measured values as they come",
            .schema = "sfp.watch",
            .arguments = kWatchArguments,
            .run = SfpWatch,
            .example = "sfp watch --interval 10 --count 3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
