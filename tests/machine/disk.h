// Files of a model's host, in memory; and every change of them in its order, so that a test can
// look at the disk as a host that was killed in between left it.
#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "model/storage/host_files.h"

namespace support {

class Disk {
  public:
    using Bytes = std::vector<uint8_t>;

    // A change, or, of a write, its first bytes.
    struct Change {
        enum { Create, Write, Rename, Erase } kind;
        std::string name;
        uint64_t offset = 0;
        Bytes bytes{};
        std::string newName{};
    };

    Disk() = default;
    // As it was after so many changes, and so many bytes of the next one.
    Disk(const std::vector<Change>& changes, size_t count, size_t bytes) {
        for (size_t at = 0; at < count; ++at) {
            Apply(changes[at]);
        }
        if (bytes != 0) {
            Change cut = changes[count];
            cut.bytes.resize(bytes);
            Apply(cut);
        }
        changes_.clear();
    }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    const vxemu::HostFiles* Files() { return &files_; }
    std::map<std::string, Bytes>& Content() { return content_; }
    const std::vector<Change>& Changes() const { return changes_; }
    size_t OpenFiles() const { return open_.size(); }

    bool full = false;  // nothing can be written
    bool noNewFiles = false;
    bool broken = false;  // nor read

  private:
    static Disk& Of(void* context) { return *static_cast<Disk*>(context); }
    static std::string& NameOf(void* file) { return *static_cast<std::string*>(file); }

    void Apply(const Change& change) {
        changes_.push_back(change);
        switch (change.kind) {
            case Change::Create:
                content_[change.name].clear();
                break;
            case Change::Write: {
                Bytes& file = content_[change.name];
                file.resize(std::max<size_t>(file.size(), change.offset + change.bytes.size()));
                std::copy(change.bytes.begin(), change.bytes.end(),
                          file.begin() + static_cast<ptrdiff_t>(change.offset));
                break;
            }
            case Change::Rename:
                content_[change.newName] = std::move(content_[change.name]);
                content_.erase(change.name);
                break;
            case Change::Erase:
                content_.erase(change.name);
                break;
        }
    }

    static vxemu::FileFound Open(void* context, const char* name, vxemu::FileOpening opening,
                                 void** file) {
        Disk& disk = Of(context);
        const bool fresh = opening == vxemu::FileOpening::Fresh;
        if (disk.broken || (fresh && (disk.full || disk.noNewFiles)) || disk.IsOpen(name)) {
            return vxemu::FileFound::Failed;
        }
        if (fresh) {
            disk.Apply({Change::Create, name});
        } else if (!disk.content_.contains(name)) {
            return vxemu::FileFound::NotThere;
        }
        *file = new std::string(name);
        disk.open_.insert(*file);
        return vxemu::FileFound::Opened;
    }
    static uint64_t Size(void* context, void* file) {
        return Of(context).content_[NameOf(file)].size();
    }
    static bool Read(void* context, void* file, uint64_t offset, void* bytes, uint32_t length) {
        const Bytes& content = Of(context).content_[NameOf(file)];
        if (Of(context).broken || offset > content.size() || length > content.size() - offset) {
            return false;
        }
        std::copy_n(content.begin() + static_cast<ptrdiff_t>(offset), length,
                    static_cast<uint8_t*>(bytes));
        return true;
    }
    static bool Write(void* context, void* file, uint64_t offset, const void* bytes,
                      uint32_t length) {
        if (Of(context).full) {
            return false;
        }
        const auto* const from = static_cast<const uint8_t*>(bytes);
        Of(context).Apply({Change::Write, NameOf(file), offset, Bytes(from, from + length)});
        return true;
    }
    static bool Replace(void* context, void* file, const char* name) {
        if (Of(context).full || Of(context).IsOpen(name)) {
            return false;
        }
        Of(context).Apply({Change::Rename, NameOf(file), 0, {}, name});
        NameOf(file) = name;
        return true;
    }
    static bool Erase(void* context, void* file) {
        if (Of(context).broken) {
            return false;
        }
        Of(context).Apply({Change::Erase, NameOf(file)});
        return true;
    }
    static void Close(void* context, void* file) {
        Of(context).open_.erase(file);
        delete &NameOf(file);
    }
    bool IsOpen(const std::string& name) const {
        return std::any_of(open_.begin(), open_.end(),
                           [&](void* file) { return NameOf(file) == name; });
    }

    std::map<std::string, Bytes> content_;
    std::vector<Change> changes_;
    std::set<void*> open_;
    const vxemu::HostFiles files_ = {this, Open, Size, Read, Write, Replace, Erase, Close};
};

}  // namespace support
