#include "vxmgr/views/top_board.h"

#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"

namespace vxmgr {
namespace {

constexpr size_t kMostEvents = 50;

std::string ClockText() {
    constexpr size_t kDate = sizeof "2026-01-31T" - 1;
    constexpr size_t kTime = sizeof "23:59:59" - 1;
    return FormatUtc(std::chrono::system_clock::now()).substr(kDate, kTime) + " UTC";
}

Tone TemperatureTone(SfpState state) {
    switch (state) {
        case SfpState::Normal:
            return Tone::Plain;
        case SfpState::LowAlarm:
        case SfpState::HighAlarm:
            return Tone::Bad;
        default:
            return Tone::Warning;
    }
}

}  // namespace

TopBoard::TopBoard(const std::vector<Port*>& ports, std::chrono::milliseconds patience)
    : patience_(patience) {
    for (const Port* port : ports) {
        places_.push_back({.port = *port, .status = port->answers ? HXMGT_SUCCESS : port->failure});
    }
}

void TopBoard::Asks(size_t place) {
    const std::lock_guard guard(lock_);
    places_[place].asked = Clock::now();
}

std::shared_ptr<Device> TopBoard::DeviceAt(size_t place) {
    const std::lock_guard guard(lock_);
    return places_[place].device;
}

void TopBoard::Put(size_t place, const TopReading& reading, const std::shared_ptr<Device>& device) {
    const std::lock_guard guard(lock_);
    Place& own = places_[place];
    const bool failed = reading.status != HXMGT_SUCCESS;
    if (failed && own.status != reading.status) {
        TellLocked(own.port, reading.query + ": " + StatusMessage(reading.status), Tone::Bad);
    } else if (!failed && (own.status != HXMGT_SUCCESS || own.silent)) {
        TellLocked(own.port, "answers again", Tone::Good);
    }
    own.device = device;
    own.asked.reset();
    own.silent = false;
    own.port = reading.port;
    own.status = reading.status;
    own.query = reading.query;
    own.temperature = reading.temperature;
    if (failed) {
        own.trend.Break();
    } else {
        own.trend.Take(reading.counters, reading.time);
    }
}

void TopBoard::Tell(const Port& port, const std::string& text, Tone tone) {
    const std::lock_guard guard(lock_);
    TellLocked(port, text, tone);
}

void TopBoard::TellLocked(const Port& port, const std::string& text, Tone tone) {
    events_.push_front({ClockText().substr(0, sizeof "23:59:59" - 1),
                        "port " + std::to_string(port.index) + ": " + text, tone});
    if (events_.size() > kMostEvents) {
        events_.pop_back();
    }
}

void TopBoard::LookForSilence(Place& place) {
    if (!place.silent && place.asked && Clock::now() - *place.asked >= patience_) {
        place.silent = true;
        place.trend.Break();
        TellLocked(place.port, "does not answer", Tone::Bad);
    }
}

TopPicture TopBoard::Picture(Redactor& names) {
    const std::lock_guard guard(lock_);
    TopPicture picture;
    picture.clock = ClockText();
    for (Place& place : places_) {
        LookForSilence(place);
        const Port& port = place.port;
        TopPort& shown = picture.ports.emplace_back();
        shown.index = port.index;
        shown.scsiPort = port.scsiPort;
        shown.adapter = names.Mask(Secret::Serial, port.Serial());
        if (const auto name = PortNameOf(port)) {
            shown.name = names.Mask(Secret::Wwn, name->Colons());
        }
        if (place.silent || place.status != HXMGT_SUCCESS) {
            shown.state = place.silent || place.status == HXMGT_TIMED_OUT ? "silent"
                          : place.status == kWentAway                     ? "gone"
                                                                          : "failed";
            shown.stateTone = Tone::Bad;
        } else {
            const Value state = StateValue(port);
            shown.state = state.Shown();
            shown.stateTone = state.ToneOf();
            const Value speed = port.port ? SpeedValue(port.port->currentSpeed) : Value();
            if (const auto* gigabits = std::get_if<uint64_t>(&speed.Content())) {
                shown.speed = std::to_string(*gigabits) + "G";
            }
            if (place.temperature) {
                shown.temperature = place.temperature->value;
                shown.temperatureTone = TemperatureTone(place.temperature->state);
            }
        }
        shown.trend = place.trend;
    }
    picture.events = events_;
    return picture;
}

HX_STATUS TopBoard::Failure(size_t place, std::string* query) {
    const std::lock_guard guard(lock_);
    LookForSilence(places_[place]);
    *query = places_[place].silent ? "the port does not answer" : places_[place].query;
    return places_[place].silent ? HX_STATUS{HXMGT_TIMED_OUT} : places_[place].status;
}

}  // namespace vxmgr
