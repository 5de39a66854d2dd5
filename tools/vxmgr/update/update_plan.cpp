#include "vxmgr/update/update_plan.h"

#include <algorithm>

#include "vxmgr/app/files.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Severity;
using tools::Value;

constexpr uint64_t kMostImageBytes = 64u << 20;
constexpr uint8_t kErased = 0xFF;

struct PlaceRow {
    ImageKind kind;
    uint32_t (*region)(const FlashLayout& layout);
};
constexpr PlaceRow kPlaces[] = {
    {ImageKind::BootCode, BootRegionOf},
    {ImageKind::Firmware, [](const FlashLayout&) { return uint32_t{HX_REGION_FIRMWARE}; }},
};

const FlashRegion& RegionForImage(tools::Invocation& invocation, const FlashLayout& layout,
                                  const ImageInfo& image) {
    for (const PlaceRow& row : kPlaces) {
        if (row.kind != image.kind) {
            continue;
        }
        if (const FlashRegion* region = layout.Find(row.region(layout))) {
            return *region;
        }
        invocation.Fail(
            ExitCode::Refused,
            std::string("the adapter's flash has no region for ") + KindName(image.kind),
            "`flash layout` shows what it has");
    }
    invocation.Fail(
        ExitCode::Refused,
        std::string("the file is neither firmware nor boot code, but ") + KindName(image.kind),
        "`flash write` writes other data to a region that is named");
}

ImageTarget TargetOf(const AdapterSession& session, const UpdatePlan& plan) {
    ImageTarget target;
    target.region = plan.region.code;
    target.bytes = plan.region.size;
    if (session.First().chip) {
        target.vendorId = session.First().chip->vendorId;
        target.deviceId = session.First().chip->deviceId;
    }
    target.running = plan.running;
    target.stored = plan.stored;
    return target;
}

void ReadBefore(tools::Invocation& invocation, const AdapterSession& session, UpdatePlan& plan) {
    const HX_STATUS status = ReadRegion(session.Handle(), plan.layout, plan.region, &plan.before);
    if (status != HXMGT_SUCCESS) {
        invocation.Add({Severity::Warning,
                        "what the region holds cannot be read: " + StatusMessage(status),
                        {},
                        session.Object(),
                        status});
        return;
    }
    const ImageInfo stored = InspectImage(plan.before);
    // The version of damaged code says nothing.
    plan.stored = stored.problem.empty() ? stored.version : std::string();
}

}  // namespace

std::vector<uint8_t> LoadImage(tools::Invocation& invocation, const std::string& path) {
    const uint64_t size = FileSize(path);
    if (size > kMostImageBytes) {
        invocation.Fail(ExitCode::Refused, path + " is too large for an image: " + SizeText(size));
    }
    std::vector<uint8_t> bytes = LoadFile(invocation, path, static_cast<size_t>(size));
    if (bytes.empty()) {
        invocation.Fail(ExitCode::Refused, path + " is empty");
    }
    return bytes;
}

UpdatePlan PlanUpdate(tools::Invocation& invocation, const AdapterSession& session,
                      const UpdateGiven& given) {
    UpdatePlan plan;
    plan.file = given.file;
    plan.bytes = LoadImage(invocation, given.file);
    for (size_t i = 0; i < session.ports.size(); ++i) {
        const UpdateOutlook outlook =
            LookBeforeUpdate(invocation, session.ports[i], session.devices[i].Handle());
        plan.warnings.insert(plan.warnings.end(), outlook.warnings.begin(), outlook.warnings.end());
    }
    plan.layout = ReadFlashLayout(invocation, session.First(), session.Handle());
    plan.region = given.region.empty()
                      ? RegionForImage(invocation, plan.layout, InspectImage(plan.bytes))
                      : GivenRegion(invocation, plan.layout, given.region);
    if (given.pad && plan.bytes.size() < plan.region.size) {
        plan.bytes.resize(plan.region.size, kErased);
    }
    plan.image = InspectImage(plan.bytes);
    invocation.CheckStop();
    ReadBefore(invocation, session, plan);
    plan.same = plan.before == plan.bytes;
    plan.running = RunningVersion(session.First(), plan.region.code);
    plan.mayRestart = RestartsPorts(plan.region.code);
    plan.findings = CheckImage(plan.image, TargetOf(session, plan), given.leave);
    for (const Finding& finding : plan.findings) {
        if (!finding.refuses) {
            plan.warnings.push_back(finding.text);
        }
    }
    return plan;
}

ExitCode ReportFindings(tools::Invocation& invocation, const UpdatePlan& plan) {
    for (const Finding& finding : plan.findings) {
        invocation.Add({finding.refuses ? Severity::Error : Severity::Warning,
                        finding.text,
                        finding.hint,
                        {},
                        {}});
    }
    return FirstRefusal(plan.findings) != nullptr ? ExitCode::Refused : ExitCode::Done;
}

void AddPlan(tools::Record& result, const AdapterSession& session, const UpdatePlan& plan) {
    const auto& chip = session.First().chip;
    result.Add("serial", "Adapter", Value::Serial(session.Serial()));
    result.Add("chip", "Chip", chip ? Value::Text(ChipsText({chip->deviceId})) : Value());
    result.Add("region", "Region", Value::Number(plan.region.code));
    result.Add("region_key", "Region key", Value::Text(RegionKey(plan.region.code)));
    result.Add("region_name", "Region name", Value::Text(RegionName(plan.region.code)));
    result.Add("file", "File", Value::Text(plan.file));
    result.Add("size", "Size",
               Value::Number(plan.bytes.size(), "bytes").Shown(SizeText(plan.bytes.size())));
    result.Add("content", "Content",
               Value::Text(KindKey(plan.image.kind)).Shown(KindName(plan.image.kind)));
    result.Add("image_chips", "Image is for", Value::TextOrNull(ChipsText(plan.image.chips)));
    result.Add("image_version", "Image version", Value::TextOrNull(plan.image.version));
    result.Add("stored_version", "Stored version", Value::TextOrNull(plan.stored));
    result.Add("running_version", "Running version", Value::TextOrNull(plan.running));
    result.Add("same_content", "Stored already", Value::Flag(plan.same));
    result.Add("may_restart_ports", "May restart ports", Value::Flag(plan.mayRestart));
}

tools::Question QuestionAbout(const AdapterSession& session, const UpdatePlan& plan) {
    const auto shown = [](const std::string& version) {
        return version.empty() ? std::string("without a version") : version;
    };
    tools::Question question = QuestionAbout(
        session, "Write " + plan.file + " (" + KindName(plan.image.kind) + ", " +
                     shown(plan.image.version) + ") to region " + std::to_string(plan.region.code) +
                     ", " + RegionName(plan.region.code) + " (" + shown(plan.stored) + ").");
    question.lines.push_back(
        plan.mayRestart ? "The firmware of all its ports may restart: I/O through them stops then."
                        : "I/O goes on.");
    question.lines.push_back(
        "This is not safe from a power failure: half an image can leave the adapter unusable.");
    for (const std::string& warning : plan.warnings) {
        question.lines.push_back("Warning: " + warning);
    }
    return question;
}

}  // namespace vxmgr
