#include "vxmgr/update/update_result.h"

#include "vxmgr/app/values.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/targets/map_behind.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

constexpr const char* kWays[] = {"in_place", "staged"};
constexpr const char* kResets[] = {"none", "ports", "host"};

// Sentences: with more than a comma between them, for people.
Value Lines(const std::vector<std::string>& texts) {
    return texts.empty() ? Value::Texts({}) : Value::Texts(texts).Shown(TextsJoined(texts, "; "));
}

Value RegionOutcomeValue(const UpdateRegionResult& region) {
    constexpr Tone kTones[] = {Tone::Plain, Tone::Plain, Tone::Good, Tone::Bad, Tone::Warning};
    const auto place = static_cast<size_t>(region.outcome);
    return Value::Text(kRegionOutcomes[place]).In(kTones[place]);
}

Value AdapterOutcomeValue(const UpdateResult& result) {
    constexpr Tone kTones[] = {Tone::Plain,   Tone::Plain, Tone::Good,
                               Tone::Warning, Tone::Bad,   Tone::Bad};
    const auto place = static_cast<size_t>(result.outcome);
    return Value::Text(kAdapterOutcomes[place]).In(kTones[place]);
}

const Fields<UpdateRegionResult>& UpdateRegionFields() {
    using Region = UpdateRegionResult;
    static const Fields<Region> kFields = {
        {"region", "", kInteger, &Region::code},
        {"region_key", "Region", "REGION", kText,
         [](const Region& region) { return RegionKey(region.code); }},
        {"file", "File", "FILE", kText.OrNull(), &Region::file,
         "null: written along with the region before it"},
        {"content", "Content", kText.OrNull(), &Region::content},
        {"image_chips", "Image is for", kText.OrNull(), &Region::chips},
        {"running_version", "Running", "RUNNING", kText.OrNull(), &Region::running},
        {"stored_version", "Stored", "STORED", kText.OrNull(), &Region::stored},
        {"image_version", "Image", "IMAGE", kText.OrNull(), &Region::wanted},
        {"size", "Size", "SIZE", kInteger,
         [](const Region& region) {
             return Value::Number(region.size, "bytes")
                 .Shown(std::to_string(region.size / 1024) + " KiB");
         }},
        {"written_how", "Written", "WRITTEN", Choice(kWays),
         [](const Region& region) { return kWays[region.staged ? 1 : 0]; },
         "staged: the adapter checks the whole image before it takes effect, where it demands "
         "that"},
        {"power_fail_safe", "Power-fail safe", kFlag,
         [](const Region& region) { return region.unsafe.empty(); }},
        {"unsafe_because", "Unsafe because", kText.OrNull(), &Region::unsafe},
        {"reset", "Restart", "RESTART", Choice(kResets).OrNull(), &Region::reset,
         "what has to restart until it runs; null: nothing is written"},
        {"outcome", "Outcome", "OUTCOME", Choice(kRegionOutcomes), RegionOutcomeValue},
    };
    return kFields;
}

const Fields<UpdateResult>& UpdateFields() {
    using Result = UpdateResult;
    static const Fields<Result> kFields = {
        [](const Result& result) { return "Adapter " + result.serial; },
        {
            {"serial", "", kSerial.OrNull(), &Result::serial},
            {"adapter_serial", "Adapter", "ADAPTER", kSerial.OrNull(), &Result::serial},
            {"model", "Model", kText.OrNull(), &Result::model},
            {"chip", "Chip", kText.OrNull(), &Result::chip},
            {"ports", "Ports", kText, &Result::ports},
            {"volumes", "Behind them", FieldType{.quiet = true, .array = true},
             [](const Result& result) { return Lines(result.volumes); },
             "disks and volumes that the ports lead to"},
            {"warnings", "To weigh", FieldType{.quiet = true, .array = true},
             [](const Result& result) { return Lines(result.warnings); }},
            {"running_before", "Firmware before", "BEFORE", kText.OrNull(), &Result::before},
            {"running_after", "Firmware now", "NOW", kText.OrNull(), &Result::after,
             "null: nothing was written, or it is not known"},
            {"outcome", "Outcome", "OUTCOME", Choice(kAdapterOutcomes), AdapterOutcomeValue},
            {"estimated_seconds", "Takes about", Integer("s").OrNull(), &Result::seconds},
            {"command", "Command", kText.OrNull().Quiet(), &Result::command,
             "that does what was planned"},
            {"journal", "Journal", kText.OrNull().Quiet(), &Result::folder,
             "folder of the journal and the old contents"},
            {"status", "Status", kText.OrNull().Quiet(),
             [](const Result& result) { return StatusValue(result.status.value_or(0)); }},
            {"regions", "Regions", UpdateRegionFields(), &Result::regions, ListLayout::Table,
             "nothing to write"},
        }};
    return kFields;
}

}  // namespace

const Fields<UpdateResults>& UpdateResultFields() {
    static const auto kFields = ListOf<UpdateResults>("updates", "Updates", UpdateFields(),
                                                      ListLayout::Sections, "No adapters.");
    return kFields;
}

ExitCode ForEachAdapter(
    Invocation& invocation,
    const std::function<ExitCode(AdapterSession& session, UpdateResult& result)>& run) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const std::vector<const Adapter*> selected = SelectSomeAdapters(invocation, adapters);
    tools::GrowingResult<UpdateResults> results(invocation.Result(), UpdateResultFields());
    results.reserve(selected.size());
    FailureTally failed;
    for (const Adapter* adapter : selected) {
        UpdateResult& result = results.emplace_back();
        result.serial = adapter->First().Serial();
        ExitCode exit = ExitCode::Done;
        try {
            AdapterSession session = OpenAdapter(invocation, *adapter);
            result = ResultOf(session);
            exit = run(session, result);
        } catch (const CommandError& error) {
            if (result.outcome == AdapterOutcome::Planned) {
                result.outcome = AdapterOutcome::Refused;
            }
            if (selected.size() == 1) {
                throw;
            }
            invocation.Add(error.message);
            exit = error.exit;
        }
        if (exit == ExitCode::Done) {
            continue;
        }
        failed.Add(exit);
        if (!invocation.Given().Has("keep-going") && results.size() < selected.size()) {
            invocation.Warn("the adapters behind " + result.serial + " are left as they are",
                            "--keep-going goes on");
            return ExitCode::Partial;
        }
    }
    return failed.Of(selected.size());
}

UpdateResult ResultOf(const AdapterSession& session) {
    UpdateResult result;
    result.serial = session.serial;
    result.model = ModelOf(session.First());
    result.chip = ChipTextOf(session);
    result.before = RunningFirmware(session.First());
    for (const Port& port : session.ports) {
        result.ports += (result.ports.empty() ? "" : " ") + std::to_string(port.index);
        std::string behind;
        for (const std::string& line : DescribeVolumes(port)) {
            behind += (behind.empty() ? "" : " ") + line.substr(line.find_first_not_of(' '));
        }
        if (!behind.empty()) {
            result.volumes.push_back(behind);
        }
    }
    return result;
}

}  // namespace vxmgr
