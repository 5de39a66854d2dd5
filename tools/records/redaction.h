// --redact: world wide names, serial numbers, NVMe qualified names, and the host's name where it
// was told, become pseudonyms. The same name gets the same pseudonym throughout a document, so that
// a reader still sees what belongs together.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "record.h"

namespace tools {

class Redactor {
  public:
    explicit Redactor(bool enabled) : enabled_(enabled) {}

    bool Enabled() const { return enabled_; }

    // The pseudonym of a secret ("wwn-1"), or the text itself when redaction is off.
    std::string Mask(Secret secret, const std::string& text);

    // Running text: names in any notation, "serial:...", "nqn...." and every secret met so far are
    // replaced.
    std::string Clean(std::string text);

  private:
    std::string Pseudonym(Secret secret, const std::string& text);

    const bool enabled_;
    std::mutex lock_;
    std::map<std::string, std::string, std::less<>> pseudonyms_;
    std::map<Secret, int> numbers_;
};

}  // namespace tools
