#include "vxmgr/bindings/store_difference.h"

#include "vxmgr/app/document.h"
#include "vxmgr/bindings/lunmask_luns.h"
#include "vxmgr/bindings/store_blocks.h"

namespace vxmgr {
namespace {

constexpr char kAdded[] = "added";
constexpr char kRemoved[] = "removed";
constexpr char kChanged[] = "changed";

struct NamedPart {
    const char* name;
    std::string value;
};

std::vector<NamedPart> PartsOf(const HX_TARGET_ENTRY& entry) {
    return {
        {"node name", Wwn::Of(entry.nodeName).Colons()},
        {"port id", Hex(PortIdOf(entry.portId), 6)},
        {"bus:target", std::to_string(entry.bus) + ":" + std::to_string(entry.target)},
        {"target number", std::to_string(entry.targetNumber)},
        {"flags", Hex(entry.bindingFlags, 2)},
        {"LUN base", std::to_string(entry.lunBase)},
    };
}

std::vector<NamedPart> PartsOf(const HX_LUN_RECORD& record) {
    const std::string masked = LunsText(MaskedOf(record));
    return {{"node name", Wwn::Of(record.nodeName).Colons()},
            {"masked LUNs", masked.empty() ? "none" : masked}};
}

template <class Row>
std::string Described(const Row& row) {
    return TextsJoined(PartsOf(row), ", ", [](const NamedPart& part) {
        return std::string(part.name) + " " + part.value;
    });
}

template <class Row>
std::string Compared(const Row& before, const Row& after) {
    const std::vector<NamedPart> old = PartsOf(before);
    const std::vector<NamedPart> now = PartsOf(after);
    std::string text;
    for (size_t i = 0; i < old.size(); ++i) {
        if (old[i].value != now[i].value) {
            text += (text.empty() ? "" : ", ") + std::string(old[i].name) + " " + old[i].value +
                    " -> " + now[i].value;
        }
    }
    return text.empty() ? "bytes without a name" : text;
}

template <class Row>
DifferenceRow Difference(const char* action, const Row& row, std::string what) {
    return {action, Wwn::Of(row.portName), Wwn::Of(row.nodeName), std::move(what)};
}

template <class Block>
std::vector<DifferenceRow> Compare(const Block& before, const Block& after) {
    std::vector<DifferenceRow> rows;
    for (const auto& row : RowsOf(before)) {
        if (!IsFree(row) && FindRow(after, Wwn::Of(row.portName)) == nullptr) {
            rows.push_back(Difference(kRemoved, row, Described(row)));
        }
    }
    for (const auto& row : RowsOf(after)) {
        if (IsFree(row)) {
            continue;
        }
        const auto* old = FindRow(before, Wwn::Of(row.portName));
        if (old == nullptr) {
            rows.push_back(Difference(kAdded, row, Described(row)));
        } else if (!SameBytes(*old, row)) {
            rows.push_back(Difference(kChanged, row, Compared(*old, row)));
        }
    }
    return rows;
}

}  // namespace

std::vector<DifferenceRow> DifferencesOf(const HX_TARGET_DATA& before,
                                         const HX_TARGET_DATA& after) {
    return Compare(before, after);
}

std::vector<DifferenceRow> DifferencesOf(const HX_LUN_DATA& before, const HX_LUN_DATA& after) {
    return Compare(before, after);
}

constexpr const char* kActions[] = {kAdded, kRemoved, kChanged};
const Fields<DifferenceRow> kDifferenceFields = {
    {"action", "Action", "ACTION", Choice(kActions), &DifferenceRow::action},
    {"target_wwn", "Target", "TARGET", kWwn, &DifferenceRow::target},
    {"node_wwn", "Node name", kWwn, &DifferenceRow::node},
    {"what", "What", "WHAT", kText.OrNull(), &DifferenceRow::what},
};

}  // namespace vxmgr
