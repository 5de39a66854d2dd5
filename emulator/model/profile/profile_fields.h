// The table of a profile's values: name, place and permitted range. Validation, the JSON form and
// changes to a running adapter all go by it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "model/profile/profile.h"

namespace vxemu {

enum class FieldScope : uint8_t { Adapter, Port, Target, Lun };

enum class FieldKind : uint8_t {
    Text,    // zero-terminated within its size
    Number,  // little-endian
    Code,    // a number that reads better in hexadecimal
    Choice,  // a number with a name for each value
    Flag,    // 0 or 1
    Bytes,   // as they stand
};

struct FieldChoice {
    uint32_t value;
    const char* name;
};

struct Field {
    const char* name;
    FieldScope scope;
    FieldKind kind;
    uint16_t offset;  // in the record of its scope
    uint16_t size;
    uint64_t maximum;            // Number and Code
    const FieldChoice* choices;  // Choice; ends with a null name
    bool settable;               // while the adapters run
};

struct FieldTable {
    const Field* rows;
    uint32_t count;

    const Field* begin() const { return rows; }
    const Field* end() const { return rows + count; }
};
FieldTable ProfileFields();

// The row of that name, or null. The name need not be terminated within its length.
const Field* FindField(FieldScope scope, const char* name, size_t nameLength);

// Whether bytes (field.size of them) are a value that the field may have.
bool FieldValueValid(const Field& field, const uint8_t* bytes);

// The first field of a record whose value it may not have; null when all are right.
const Field* FindBadField(FieldScope scope, const void* record);

// The value of a field of up to eight bytes.
uint64_t FieldNumber(const Field& field, const uint8_t* bytes);

}  // namespace vxemu
