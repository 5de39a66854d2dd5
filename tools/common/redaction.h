// --redact: world wide names and serial numbers become pseudonyms. The same name gets the same
// pseudonym throughout a document, so that a reader still sees what belongs together.
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

    // Running text: names in any notation, "serial:..." and every secret met so far are replaced.
    std::string Clean(std::string text);

  private:
    std::string Pseudonym(Secret secret, const std::string& text);

    const bool enabled_;
    std::mutex lock_;
    std::map<std::string, std::string, std::less<>> pseudonyms_;
    int wwns_ = 0;
    int serials_ = 0;
};

}  // namespace tools
