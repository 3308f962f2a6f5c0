#include "unit/line/line_tap.h"

#include <utility>

namespace unit {

LineTap::LineTap(std::shared_ptr<SerialLine> line, Listener listener)
    : line_(std::move(line)), listener_(std::move(listener)) {}

LineTap::~LineTap() {
    // Its reader calls this object.
    line_->Close();
}

void LineTap::SetPlugged(bool plugged) {
    const std::scoped_lock lock(mutex_);
    plugged_ = plugged;
}

DWORD LineTap::Open(Receiver receiver) {
    {
        const std::scoped_lock lock(mutex_);
        port_ = std::move(receiver);
    }
    const DWORD error = line_->Open([this](std::span<const std::uint8_t> bytes) { Arrive(bytes); });
    if (error != ERROR_SUCCESS) {
        const std::scoped_lock lock(mutex_);
        port_ = nullptr;
    }
    return error;
}

void LineTap::Close() {
    {
        const std::scoped_lock lock(mutex_);
        port_ = nullptr;
    }
    // Without the lock: the line's reader, which this waits for, may want it.
    line_->Close();
}

DWORD LineTap::ReadSettings(DCB& settings) {
    return line_->ReadSettings(settings);
}

DWORD LineTap::ApplySettings(const DCB& settings) {
    return line_->ApplySettings(settings);
}

void LineTap::Arrive(std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    if (!port_ || !plugged_)
        return;
    if (listener_)
        listener_(Direction::kToUnit, bytes);
    port_(bytes);
}

std::size_t LineTap::Transmit(std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    const std::size_t taken = plugged_ ? line_->Transmit(bytes) : bytes.size();
    if (listener_ && taken > 0)
        listener_(Direction::kToDvr, bytes.first(taken));
    return taken;
}

void LineTap::OnRoom(std::function<void()> room) {
    line_->OnRoom(std::move(room));
}

}  // namespace unit
