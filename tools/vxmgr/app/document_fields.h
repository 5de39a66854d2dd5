// Members of a record as a document has them, from one table for both ways: what each is called,
// how it is written and how it is read.
#pragma once

#include <functional>
#include <limits>

#include "vxmgr/app/document.h"

namespace vxmgr {

template <class Record>
struct DocumentField {
    FieldRow<Record> written;
    std::function<void(const DocumentObject& object, Record& record)> read;
};
template <class Record>
using DocumentFields = std::vector<DocumentField<Record>>;

template <class Record, class Number>
DocumentField<Record> NumberField(const char* key, Number Record::*member, const char* about = "",
                                  uint64_t most = std::numeric_limits<Number>::max()) {
    return {{key, "", kInteger, member, about}, [=](const DocumentObject& object, Record& record) {
                record.*member = static_cast<Number>(object.Number(key, most));
            }};
}

template <class Record>
Fields<Record> WrittenFields(const DocumentFields<Record>& fields) {
    std::vector<FieldRow<Record>> rows;
    for (const DocumentField<Record>& field : fields) {
        rows.push_back(field.written);
    }
    return rows;
}

}  // namespace vxmgr
