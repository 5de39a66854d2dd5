#include "vxmgr/update/update_journal.h"

#include <algorithm>
#include <set>

#include "common/json_document.h"
#include "vxmgr/app/document_fields.h"

namespace vxmgr {
namespace {

constexpr const char* kJournalName[] = {"vxmgr.update"};
constexpr int kJournalVersions[] = {1};
constexpr uint64_t kMostRegionBytes = 256u << 20;
constexpr uint64_t kMostRate = uint64_t{1} << 48;
constexpr size_t kHashDigits = 64;

template <class Record>
DocumentField<Record> TextField(const char* key, std::string Record::*member,
                                const char* about = "") {
    return {{key, "", kText, member, about}, [=](const DocumentObject& object, Record& record) {
                record.*member = object.Text(key);
            }};
}

template <class Record, class Choice, size_t count>
DocumentField<Record> ChoiceField(const char* key, Choice Record::*member,
                                  const char* const (&names)[count]) {
    return {{key, "", tools::Choice(names),
             [member, &names](const Record& record) {
                 return names[static_cast<size_t>(record.*member)];
             }},
            [=, &names](const DocumentObject& object, Record& record) {
                const std::string text = object.Text(key);
                const auto* const found = std::find(std::begin(names), std::end(names), text);
                if (found == std::end(names)) {
                    object.Fail(key, "\"" + text + "\" is not known");
                }
                record.*member = static_cast<Choice>(found - names);
            }};
}

DocumentField<JournalRegion> HashField(const char* key, std::string JournalRegion::*member,
                                       const char* about) {
    return {{key, "", kText, member, about},
            [=](const DocumentObject& object, JournalRegion& region) {
                region.*member = object.Text(key);
                std::vector<uint8_t> bytes;
                const size_t digits = (region.*member).size();
                if (digits != 0 && (digits != kHashDigits || !ParseHex(region.*member, &bytes))) {
                    object.Fail(key, "is no SHA-256 of 64 hexadecimal digits");
                }
            }};
}

const DocumentFields<JournalRegion>& StoredRegion() {
    using Region = JournalRegion;
    static const DocumentFields<Region> kRows = {
        NumberField("region", &Region::code, "code of the region", UINT16_MAX),
        NumberField("size", &Region::size, "bytes", kMostRegionBytes),
        TextField("image", &Region::image, "file; empty: written along with another region"),
        TextField("version_before", &Region::before),
        TextField("version_after", &Region::after),
        HashField("old_sha256", &Region::oldHash, "of region-CODE.old; empty: there is none"),
        HashField("new_sha256", &Region::newHash, "of region-CODE.new; empty: there is none"),
        ChoiceField("step", &Region::step, kRegionSteps),
        NumberField("reached", &Region::reached, "bytes that had been written", kMostRegionBytes),
    };
    return kRows;
}

const DocumentFields<UpdateJournal>& StoredHead() {
    using Journal = UpdateJournal;
    static const DocumentFields<Journal> kRows = {
        ChoiceField("kind", &Journal::kind, kUpdateKinds),
        ChoiceField("phase", &Journal::phase, kUpdatePhases),
        TextField("serial", &Journal::serial),
        TextField("model", &Journal::model),
        TextField("chip", &Journal::chip, "PCI device ID"),
        TextField("started", &Journal::started, "UTC"),
        TextField("changed", &Journal::changed, "UTC"),
        TextField("user", &Journal::user),
        NumberField("process", &Journal::process, "ID", UINT32_MAX),
        TextField("process_start", &Journal::processStart, "when that began, in 100 ns since 1601"),
        TextField("tool", &Journal::tool, "version"),
        TextField("library", &Journal::library, "version"),
        TextField("outcome", &Journal::outcome, "empty until it has ended"),
        TextField("backup", &Journal::backup, "folder of the contents; empty: this one"),
        NumberField("write_rate", &Journal::writeRate, "bytes a second; 0: not known", kMostRate),
    };
    return kRows;
}

const Fields<JournalRegion>& RegionFields() {
    static const Fields<JournalRegion> kFields = WrittenFields(StoredRegion());
    return kFields;
}

const Fields<UpdateJournal>& JournalFields() {
    static const Fields<UpdateJournal> kHead = WrittenFields(StoredHead());
    static const FieldType version{.base = FieldType::Base::Integer, .numbers = kJournalVersions};
    static const Fields<UpdateJournal> kFields = {
        {"document", "", Choice(kJournalName), [](const UpdateJournal&) { return *kJournalName; }},
        {"version", "", version, [](const UpdateJournal&) { return kJournalVersions[0]; }},
        {kHead, [](const UpdateJournal& journal) { return &journal; }},
        {"regions", "", RegionFields(), &UpdateJournal::regions},
    };
    return kFields;
}

template <class Record>
void ReadFields(const DocumentObject& object, const DocumentFields<Record>& fields,
                Record& record) {
    for (const DocumentField<Record>& field : fields) {
        field.read(object, record);
    }
}

}  // namespace

Shape JournalShape() {
    return JournalFields().ShapeOfAll();
}

std::string JournalDocument(const UpdateJournal& journal) {
    return tools::RecordDocument(JournalFields().Make(journal));
}

UpdateJournal ReadJournal(std::string_view text) {
    const DocumentObject document(text);
    if (const std::string name = document.Text("document"); name != *kJournalName) {
        document.Fail("document", "\"" + name + "\" is not \"" + *kJournalName + "\"");
    }
    if (document.Number("version", UINT32_MAX) != static_cast<uint64_t>(kJournalVersions[0])) {
        document.Fail("version", "is not known; 1 is");
    }
    document.Close(JournalShape());
    UpdateJournal journal;
    ReadFields(document, StoredHead(), journal);
    std::set<uint32_t> codes;
    const Shape known = RegionFields().ShapeOfAll();
    for (const DocumentObject& object : document.Objects("regions")) {
        object.Close(known);
        JournalRegion& region = journal.regions.emplace_back();
        ReadFields(object, StoredRegion(), region);
        if (!codes.insert(region.code).second) {
            object.Fail("region", std::to_string(region.code) + " stands twice");
        }
    }
    return journal;
}

}  // namespace vxmgr
