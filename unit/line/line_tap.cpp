#include "unit/line/line_tap.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/scheduler.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

// On their way in one direction, as a fault holds them back; more are lost.
constexpr std::size_t kMostWaiting = std::size_t{256} * 1024;

}  // namespace

LineTap::LineTap(std::shared_ptr<SerialLine> line, std::shared_ptr<LineFaults> faults,
                 Listener listener)
    : line_(std::move(line)), faults_(std::move(faults)), listener_(std::move(listener)) {
    line_->OnRoom([this] { Room(); });
}

LineTap::~LineTap() {
    // Its reader calls this object.
    line_->Close();
}

void LineTap::SetPlugged(bool plugged) {
    const std::scoped_lock lock(mutex_);
    plugged_ = plugged;
    if (!plugged)
        Forget();
}

void LineTap::Inject(Direction direction, std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    if (!port_ || !plugged_)
        return;
    Queue(WayOf(direction), CellsOf(bytes, false));
    Release(WayOf(direction));
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
        Forget();
    }
    // Without the lock: the line's reader, which this waits for, may want it.
    line_->Close();
}

// Everything that is on its way.
void LineTap::Forget() {
    full_ = false;
    for (Way* way : {&to_unit_, &to_dvr_}) {
        way->cutter.GiveUp();
        way->waiting.clear();
        way->waiting_bytes = 0;
        way->last_due = {};
    }
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
    if (!IsFree(to_unit_)) {
        Pass(to_unit_, bytes);
        return;
    }
    if (listener_)
        listener_(Direction::kToUnit, bytes);
    port_(bytes);
}

// Nothing delays or changes what comes now.
bool LineTap::IsFree(const Way& way) const {
    return way.waiting.empty() && way.cutter.held().empty() && !faults_->Concern(way.direction);
}

std::size_t LineTap::Transmit(std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    std::size_t taken = bytes.size();
    if (full_)
        return 0;
    const bool free = IsFree(to_dvr_);
    // The port itself waits for room when nothing is in between.
    if (plugged_ && free)
        taken = line_->Transmit(bytes);
    if (listener_ && taken > 0)
        listener_(Direction::kToDvr, bytes.first(taken));
    if (plugged_ && !free)
        Pass(to_dvr_, bytes);
    return taken;
}

void LineTap::OnRoom(std::function<void()> room) {
    const std::scoped_lock lock(mutex_);
    room_ = std::move(room);
}

void LineTap::Room() {
    std::function<void()> room;
    {
        const std::scoped_lock lock(mutex_);
        full_ = false;
        Release(to_dvr_);
        if (!full_)
            room = room_;
    }
    if (room)
        room();
}

void LineTap::Pass(Way& way, std::span<const std::uint8_t> bytes) {
    way.last_arrival = kernel::Now();
    if (faults_->WantFrames(way.direction)) {
        for (const std::uint8_t byte : bytes)
            if (const auto cut = way.cutter.Take(byte))
                PassCut(way, cut->bytes, cut->kind == Cut::Kind::kFrame);
    } else {
        PassCut(way, way.cutter.GiveUp(), false);
        PassCut(way, bytes, false);
    }
    Release(way);
}

void LineTap::PassCut(Way& way, std::span<const std::uint8_t> bytes, bool frame) {
    if (!bytes.empty())
        Queue(way, faults_->Apply(way.direction, bytes, frame));
}

void LineTap::Queue(Way& way, const Cells& cells) {
    for (const Cell& cell : cells) {
        if (way.waiting_bytes == kMostWaiting)
            return;
        ++way.waiting_bytes;
        const kernel::Time due = std::max(way.last_due, kernel::Now() + cell.delay) + cell.pause;
        if (way.waiting.empty() || way.waiting.back().due != due)
            way.waiting.push_back({due, {}});
        way.waiting.back().bytes.push_back(cell.value);
        way.last_due = due;
    }
}

void LineTap::Release(Way& way) {
    while (!way.waiting.empty() && way.waiting.front().due <= kernel::Now()) {
        if (!Deliver(way, way.waiting.front()))
            return;
        way.waiting.pop_front();
    }
    LookAgain(way);
}

// False when the line is full before the end of the piece.
bool LineTap::Deliver(Way& way, Piece& piece) {
    if (way.direction == Direction::kToUnit) {
        if (listener_)
            listener_(Direction::kToUnit, piece.bytes);
        way.waiting_bytes -= piece.bytes.size();
        port_(piece.bytes);
        return true;
    }
    while (!full_ && !piece.bytes.empty()) {
        const std::size_t taken = line_->Transmit(piece.bytes);
        way.waiting_bytes -= taken;
        piece.bytes.erase(piece.bytes.begin(),
                          piece.bytes.begin() + static_cast<std::ptrdiff_t>(taken));
        full_ = taken == 0;
    }
    return !full_;
}

// Sees to it that the hardware comes by when something is due.
void LineTap::LookAgain(Way& way) {
    kernel::Time due = way.waiting.empty() ? kernel::kNever : way.waiting.front().due;
    if (!way.cutter.held().empty())
        due = std::min(due, way.last_arrival + kLongestGap);
    if (due >= way.alarm)
        return;
    way.alarm = due;
    kernel::At(due, [weak = weak_from_this(), direction = way.direction, due] {
        const auto self = weak.lock();
        if (!self)
            return;
        const std::scoped_lock lock(self->mutex_);
        Way& woken = self->WayOf(direction);
        if (woken.alarm == due)
            woken.alarm = kernel::kNever;
        if (!woken.cutter.held().empty() && kernel::Now() - woken.last_arrival >= kLongestGap)
            self->PassCut(woken, woken.cutter.GiveUp(), false);
        self->Release(woken);
    });
}

}  // namespace unit
