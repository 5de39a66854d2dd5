// Documents that the manager takes back: what is taken is what its own document gives again.
#include <cstdint>
#include <cstring>
#include <string_view>

#include "require.h"
#include "vxmgr/bindings/store_documents.h"
#include "vxmgr/update/update_journal.h"

namespace {

using namespace vxmgr;

template <class Block>
void TakeBlock(std::string_view text, DocumentPort (*read)(std::string_view text, Block* block),
               std::string (*write)(const DocumentPort& port, const Block& block)) {
    static Block block;
    static Block again;
    try {
        const DocumentPort port = read(text, &block);
        read(write(port, block), &again);
        Require(std::memcmp(&block, &again, sizeof block) == 0);
    } catch (const DocumentError& error) {
        Require(!error.text.empty());
    }
}

void TakeJournal(std::string_view text) {
    try {
        const std::string document = JournalDocument(ReadJournal(text));
        Require(JournalDocument(ReadJournal(document)) == document);
    } catch (const DocumentError& error) {
        Require(!error.text.empty());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    TakeBlock(text, ReadBindDocument, BindDocument);
    TakeBlock(text, ReadLunMaskDocument, LunMaskDocument);
    TakeJournal(text);
    return 0;
}
