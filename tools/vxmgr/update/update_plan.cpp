#include "vxmgr/update/update_plan.h"

#include <algorithm>
#include <chrono>

#include "vxmgr/app/files.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/update/update_messages.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

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

const FlashRegion& RegionForImage(Invocation& invocation, const FlashLayout& layout,
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

ImageTarget TargetOf(const UpdatePlan& plan) {
    const auto& chip = plan.session->First().chip;
    return {plan.region.code,
            plan.region.size,
            chip ? chip->vendorId : uint16_t{0},
            chip ? chip->deviceId : uint16_t{0},
            plan.running,
            plan.stored};
}

void ReadBefore(Invocation& invocation, UpdatePlan& plan) {
    using Clock = std::chrono::steady_clock;
    const AdapterSession& session = *plan.session;
    const auto start = Clock::now();
    const HX_STATUS status = ReadRegion(session.Handle(), plan.layout, plan.region, &plan.before);
    plan.readSeconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (status != HXMGT_SUCCESS) {
        WarnAbout(invocation, session.Object(),
                  "what the region holds cannot be read: " + StatusMessage(status), status);
        return;
    }
    const ImageInfo stored = InspectImage(plan.before);
    // The version of damaged code says nothing.
    plan.stored = stored.problem.empty() ? stored.version : std::string();
}

}  // namespace

std::vector<uint8_t> ReadImage(Invocation& invocation, const std::string& path) {
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

UpdatePlan PlanUpdate(Invocation& invocation, const AdapterSession& session,
                      const std::vector<UpdateOutlook>& outlooks, const UpdateGiven& given) {
    UpdatePlan plan;
    plan.session = &session;
    plan.file = given.file;
    plan.bytes = ReadImage(invocation, given.file);
    for (const UpdateOutlook& outlook : outlooks) {
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
    ReadBefore(invocation, plan);
    plan.same = plan.before == plan.bytes;
    plan.running = RunningVersion(session.First(), plan.region.code);
    plan.mayRestart = RestartsPorts(plan.region.code);
    plan.findings = CheckImage(plan.image, TargetOf(plan), given.leave);
    for (const Finding& finding : plan.findings) {
        if (!finding.refuses) {
            plan.warnings.push_back(finding.text);
        }
    }
    return plan;
}

ExitCode ReportFindings(Invocation& invocation, const UpdatePlan& plan) {
    for (const Finding& finding : plan.findings) {
        finding.refuses ? Complain(invocation, {}, finding.text, finding.hint)
                        : invocation.Warn(finding.text, finding.hint);
    }
    return FirstRefusal(plan.findings) != nullptr ? ExitCode::Refused : ExitCode::Done;
}

const Fields<UpdatePlan> kPlanFields = {
    {kSessionFields, &UpdatePlan::session},
    {"chip", "Chip", kText.OrNull(),
     [](const UpdatePlan& plan) {
         const auto& chip = plan.session->First().chip;
         return chip ? ChipsText({chip->deviceId}) : std::string();
     },
     "PCI device ID"},
    {"region", "Region", kInteger, [](const UpdatePlan& plan) { return plan.region.code; }},
    {"region_key", "Region key", kText, [](const UpdatePlan& plan) { return plan.region.Key(); }},
    {"region_name", "Region name", kText,
     [](const UpdatePlan& plan) { return plan.region.Name(); }},
    {"file", "File", kText, &UpdatePlan::file},
    {"size", "Size", kInteger, [](const UpdatePlan& plan) { return SizeValue(plan.bytes.size()); },
     "bytes, filled up when --pad was given"},
    {"content", "Content", Choice(kImageKinds),
     [](const UpdatePlan& plan) { return KindValue(plan.image.kind); }},
    {"image_chips", "Image is for", kText.OrNull(),
     [](const UpdatePlan& plan) { return ChipsText(plan.image.chips); },
     "PCI device IDs that the image is for, with blanks between them; null: it does not tell"},
    {"image_version", "Image version", kText.OrNull(),
     [](const UpdatePlan& plan) { return plan.image.version; }},
    {"stored_version", "Stored version", kText.OrNull(), &UpdatePlan::stored,
     "of what the region holds; null when that is damaged or has none"},
    {"running_version", "Running version", kText.OrNull(), &UpdatePlan::running,
     "of what was started from the region"},
    {"same_content", "Stored already", kFlag, &UpdatePlan::same,
     "the region holds these bytes already"},
    {"may_restart_ports", "May restart ports", kFlag, &UpdatePlan::mayRestart,
     "the firmware of all ports of the adapter may restart with the update"},
};

Question QuestionAbout(const UpdatePlan& plan) {
    const auto shown = [](const std::string& version) {
        return version.empty() ? std::string("without a version") : version;
    };
    Question question =
        QuestionAbout(*plan.session, "Write " + plan.file + " (" + KindName(plan.image.kind) +
                                         ", " + shown(plan.image.version) + ") to region " +
                                         std::to_string(plan.region.code) + ", " +
                                         plan.region.Name() + " (" + shown(plan.stored) + ").");
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
