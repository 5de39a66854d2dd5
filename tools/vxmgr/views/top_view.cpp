#include "vxmgr/views/top_view.h"

#include <algorithm>

namespace vxmgr {
namespace {

constexpr size_t kLongestFilter = 64;

struct SortKey {
    char32_t key;
    TopColumn column;
};
constexpr SortKey kSortKeys[] = {
    {'n', TopColumn::Port},    {'s', TopColumn::State},  {'t', TopColumn::TxBytes},
    {'r', TopColumn::RxBytes}, {'e', TopColumn::Errors}, {'c', TopColumn::Temperature},
    {'a', TopColumn::Adapter},
};

// Of these the largest are looked for.
bool IsQuantity(TopColumn column) {
    return column >= TopColumn::TxBytes;
}

double QuantityOf(const TopPort& port, TopColumn column) {
    constexpr double kUnknown = -1000;
    const PortRates& rates = port.trend.Rates();
    const auto number = [](const std::optional<uint64_t>& rate) {
        return rate ? static_cast<double>(*rate) : kUnknown;
    };
    switch (column) {
        case TopColumn::TxBytes:
            return number(rates.txBytes);
        case TopColumn::RxBytes:
            return number(rates.rxBytes);
        case TopColumn::TxFrames:
            return number(rates.txFrames);
        case TopColumn::RxFrames:
            return number(rates.rxFrames);
        case TopColumn::Traffic:
            return number(rates.txBytes) + number(rates.rxBytes);
        case TopColumn::Errors:
            return static_cast<double>(port.trend.Errors());
        case TopColumn::NewErrors:
            return static_cast<double>(port.trend.NewErrors());
        case TopColumn::Temperature:
            return port.temperature.value_or(kUnknown);
        case TopColumn::ScsiPort:
            return port.scsiPort ? *port.scsiPort : kUnknown;
        default:
            return port.index;
    }
}

const std::string* WordOf(const TopPort& port, TopColumn column) {
    switch (column) {
        case TopColumn::Adapter:
            return &port.adapter;
        case TopColumn::Name:
            return &port.name;
        case TopColumn::State:
            return &port.state;
        case TopColumn::Speed:
            return &port.speed;
        default:
            return nullptr;
    }
}

bool IsBefore(const TopPort& left, const TopPort& right, TopColumn column) {
    if (const std::string* text = WordOf(left, column)) {
        return *text < *WordOf(right, column);
    }
    return QuantityOf(left, column) < QuantityOf(right, column);
}

void AppendCharacter(char32_t character, std::string& text) {
    if (character < 0x80) {
        text += static_cast<char>(character);
        return;
    }
    const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr unsigned kLeads[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(kLeads[more] | (character >> (6 * more)));
    for (int shift = 6 * (more - 1); shift >= 0; shift -= 6) {
        text += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    }
}

void DropCharacter(std::string& text) {
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) {
        text.pop_back();
    }
    if (!text.empty()) {
        text.pop_back();
    }
}

}  // namespace

bool TopView::Press(const ScreenKey& key) {
    using enum ScreenKey::Kind;
    if (typing_) {
        PressWhileTyping(key);
        return true;
    }
    const auto step = [&](int by) {
        const int columns = static_cast<int>(kTopColumns);
        SortBy(static_cast<TopColumn>((static_cast<int>(sortedBy_) + by + columns) % columns));
    };
    switch (key.kind) {
        case Escape:
            return false;
        case Left:
            step(-1);
            break;
        case Right:
            step(1);
            break;
        case Up:
            scroll_ -= scroll_ != 0 ? 1 : 0;
            break;
        case Down:
            ++scroll_;
            break;
        case PageUp:
            scroll_ -= std::min(scroll_, page_);
            break;
        case PageDown:
            scroll_ += page_;
            break;
        case Home:
            scroll_ = 0;
            break;
        case End:
            scroll_ = SIZE_MAX / 2;
            break;
        case Character:
            if (key.character == 'q' || key.character == 'Q') {
                return false;
            }
            PressCommand(key.character);
            break;
        default:
            break;
    }
    return true;
}

void TopView::PressCommand(char32_t character) {
    switch (character) {
        case 'p':
        case ' ':
            paused_ = !paused_;
            return;
        case 'o':
            reversed_ = !reversed_;
            return;
        case '/':
        case 'f':
            typing_ = true;
            typed_ = filter_;
            return;
        case '?':
        case 'h':
            showsHelp_ = !showsHelp_;
            return;
        default:
            break;
    }
    const auto sort = std::ranges::find(kSortKeys, character, &SortKey::key);
    if (sort != std::end(kSortKeys)) {
        SortBy(sort->column);
    }
}

void TopView::PressWhileTyping(const ScreenKey& key) {
    using enum ScreenKey::Kind;
    switch (key.kind) {
        case Character:
            if (typed_.size() < kLongestFilter) {
                AppendCharacter(key.character, typed_);
            }
            break;
        case Backspace:
            DropCharacter(typed_);
            break;
        case Enter:
            filter_ = typed_;
            typing_ = false;
            scroll_ = 0;
            break;
        case Escape:
            typing_ = false;
            break;
        default:
            break;
    }
}

void TopView::SortBy(TopColumn column) {
    sortedBy_ = column;
    reversed_ = IsQuantity(column);
    scroll_ = 0;
}

std::vector<const TopPort*> TopView::Select(const TopPicture& picture) const {
    std::vector<const TopPort*> ports;
    const std::string wanted = Lowercase(Filter());
    for (const TopPort& port : picture.ports) {
        const std::string scsi = port.scsiPort ? "scsi:" + std::to_string(*port.scsiPort) : "";
        const std::string all = Lowercase("index:" + std::to_string(port.index) + " " + scsi + " " +
                                          port.adapter + " " + port.name + " " + port.state);
        if (all.find(wanted) != std::string::npos) {
            ports.push_back(&port);
        }
    }
    std::ranges::stable_sort(ports, [&](const TopPort* left, const TopPort* right) {
        return reversed_ ? IsBefore(*right, *left, sortedBy_) : IsBefore(*left, *right, sortedBy_);
    });
    return ports;
}

size_t TopView::ScrollTo(size_t ports, size_t rows) {
    page_ = std::max<size_t>(rows, 1);
    scroll_ = std::min(scroll_, ports > rows ? ports - rows : 0);
    return scroll_;
}

}  // namespace vxmgr
