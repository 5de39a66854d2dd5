// Zip files as every system opens them: deflated members with UTF-8 names, below 4 GiB.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace vxmgr {

enum class ZipOutcome : uint8_t { Good, NotWritten, TooLarge };

// The time that all members get, as people at the machine read it.
struct ZipTime {
    int year = 1980;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

class ZipWriter {
  public:
    // Takes the next bytes of the file; false when they cannot be written.
    using Sink = std::function<bool(std::span<const uint8_t> bytes)>;

    ZipWriter(const ZipTime& time, Sink sink);

    // name: a relative path with '/'.
    ZipOutcome Add(const std::string& name, std::span<const uint8_t> bytes);
    // The directory, behind the last member.
    ZipOutcome Finish();

    uint64_t Size() const { return size_; }  // of the file so far

  private:
    ZipOutcome Write(std::span<const uint8_t> bytes);

    const uint16_t time_;
    const uint16_t date_;
    const Sink sink_;
    uint64_t size_ = 0;
    std::vector<uint8_t> directory_;
    size_t members_ = 0;
};

}  // namespace vxmgr
