#include "vxmgr/app/library.h"

#include "common/text.h"

namespace vxmgr {
namespace {

// A program that was killed while it opened an adapter leaves the library's mutex abandoned, which
// costs the next open of anybody a failure, once.
HX_STATUS OpenOnceMore(uint32_t index, uint32_t* handle) {
    const HX_STATUS status = HXOpenDevice(index, handle);
    return status == HXMGT_MUTEX_NOT_RESERVED ? HXOpenDevice(index, handle) : status;
}

}  // namespace

std::string LibraryVersion() {
    char text[64] = {};
    HXGetVersion(text, sizeof text);
    return tools::Split(text, ' ').front();
}

std::string StatusMessage(uint32_t status) {
    std::string text = HXGetErrorString(status);
    text = tools::FieldText(text.c_str(), text.size());
    while (!text.empty() && (text.back() == '?' || text.back() == '.' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

Device& Device::operator=(Device&& other) noexcept {
    if (this != &other) {
        Close();
        handle_ = std::exchange(other.handle_, 0);
    }
    return *this;
}

HX_STATUS Device::Open(uint32_t index, const std::string& tracePath) {
    Close();
    uint32_t handle = 0;
    HX_STATUS status = OpenOnceMore(index, &handle);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    handle_ = handle;
    if (!tracePath.empty()) {
        status = HXEnableDebugTrace(&handle, tracePath.c_str(), 1);
    }
    return status;
}

void Device::Close() {
    if (handle_ != 0) {
        HXCloseDevice(static_cast<int32_t>(std::exchange(handle_, 0)));
    }
}

}  // namespace vxmgr
