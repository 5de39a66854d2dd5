// The JSON forms: the envelope that ends every command, and the row lines of jsonl.
#pragma once

#include <string>
#include <vector>

#include "message.h"
#include "records/fields.h"
#include "records/record.h"

namespace tools {

class Redactor;

// Everything the envelope says.
struct Envelope {
    std::string schema;   // "vxmgr.port.list"
    std::string tool;     // version of the tool
    std::string library;  // version of the library; empty when the tool uses none
    std::vector<std::string> argv;
    const Record* result = nullptr;  // null when the command did not get to a result
    std::vector<Message> messages;
    bool changed = false;
    std::vector<Pending> pending;
    ExitCode exit = ExitCode::Done;
};

inline constexpr int kSchemaMajor = 1;
inline constexpr int kSchemaMinor = 0;

// The fields of the envelope and of what stands in it.
Shape EnvelopeShape();

// A record by itself, with nothing masked.
std::string RecordDocument(const Record& record);

// One document on one line.
std::string EnvelopeLine(const Envelope& envelope, Redactor& redactor);

// One document, indented, with a line end.
std::string EnvelopeDocument(const Envelope& envelope, Redactor& redactor);

// One line for jsonl. rows tells how many row lines came before; when the result was a list that
// went out as rows, it is null, and what else it holds is in `header`.
std::string EnvelopeLine(const Envelope& envelope, size_t rows, Redactor& redactor);

// {"schema": ..., "row": {...}}, one line. With the values that the result has beside the list, in
// `header`, so that each line tells all that concerns it.
std::string RowLine(const std::string& schema, const Record& row, const Record& result,
                    Redactor& redactor);

}  // namespace tools
