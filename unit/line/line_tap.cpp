#include "unit/line/line_tap.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/scheduler.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

// Bytes of one direction that faults delay; more are lost.
constexpr std::size_t kMaxWaiting = std::size_t{256} * 1024;

}  // namespace

LineTap::LineTap(std::shared_ptr<SerialLine> line, std::shared_ptr<LineFaults> faults,
                 Observer observer)
    : line_(std::move(line)), faults_(std::move(faults)), observer_(std::move(observer)) {
    line_->OnWritable([this] { Writable(); });
}

LineTap::~LineTap() {
    // The line's reader calls this object.
    line_->Close();
}

void LineTap::SetPlugged(bool plugged) {
    const std::scoped_lock lock(mutex_);
    plugged_ = plugged;
    if (!plugged)
        DropWaiting();
}

void LineTap::Inject(Direction direction, std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    if (!port_ || !plugged_)
        return;
    Queue(ChannelOf(direction), SlotsOf(bytes, false));
    Release(ChannelOf(direction));
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
        DropWaiting();
    }
    // Without the lock: Close waits for the line's reader, which may wait for the lock.
    line_->Close();
}

void LineTap::DropWaiting() {
    full_ = false;
    for (Channel* channel : {&to_unit_, &to_dvr_}) {
        channel->splitter.GiveUp();
        channel->waiting.clear();
        channel->waiting_bytes = 0;
        channel->last_due = {};
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
    if (kernel::ClockPaused() || !IsFree(to_unit_)) {
        Pass(to_unit_, bytes);
        return;
    }
    if (observer_)
        observer_(Direction::kToUnit, bytes);
    port_(bytes);
}

// True when nothing delays or changes the bytes that come now.
bool LineTap::IsFree(const Channel& channel) const {
    return channel.waiting.empty() && channel.splitter.held().empty() &&
           !faults_->ApplyTo(channel.direction);
}

std::size_t LineTap::Transmit(std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    std::size_t taken = bytes.size();
    if (full_)
        return 0;
    const bool free = IsFree(to_dvr_);
    // The port waits until the line is writable; the tap does so only for bytes that it holds.
    if (plugged_ && free)
        taken = line_->Transmit(bytes);
    if (observer_ && taken > 0)
        observer_(Direction::kToDvr, bytes.first(taken));
    if (plugged_ && !free)
        Pass(to_dvr_, bytes);
    return taken;
}

void LineTap::OnWritable(std::function<void()> on_writable) {
    const std::scoped_lock lock(mutex_);
    on_writable_ = std::move(on_writable);
}

void LineTap::Writable() {
    std::function<void()> on_writable;
    {
        const std::scoped_lock lock(mutex_);
        full_ = false;
        Release(to_dvr_);
        if (!full_)
            on_writable = on_writable_;
    }
    if (on_writable)
        on_writable();
}

void LineTap::Pass(Channel& channel, std::span<const std::uint8_t> bytes) {
    channel.last_arrival = kernel::Now();
    if (faults_->NeedFrames(channel.direction)) {
        for (const std::uint8_t byte : bytes)
            if (const auto segment = channel.splitter.Take(byte))
                PassSegment(channel, segment->bytes, segment->kind == Segment::Kind::kFrame);
    } else {
        PassSegment(channel, channel.splitter.GiveUp(), false);
        PassSegment(channel, bytes, false);
    }
    Release(channel);
}

void LineTap::PassSegment(Channel& channel, std::span<const std::uint8_t> bytes, bool frame) {
    if (!bytes.empty())
        Queue(channel, faults_->Apply(channel.direction, bytes, frame));
}

void LineTap::Queue(Channel& channel, const ByteSlots& slots) {
    // What a real line brings while the unit's clock is paused waits until it runs.
    const kernel::Time now =
        kernel::Now() + (kernel::ClockPaused() ? kernel::Duration(1) : kernel::Duration(0));
    for (const ByteSlot& slot : slots) {
        if (channel.waiting_bytes == kMaxWaiting)
            return;
        ++channel.waiting_bytes;
        const kernel::Time due = std::max(channel.last_due, now + slot.delay) + slot.pause;
        if (channel.waiting.empty() || channel.waiting.back().due != due)
            channel.waiting.push_back({due, {}});
        channel.waiting.back().bytes.push_back(slot.value);
        channel.last_due = due;
    }
}

void LineTap::Release(Channel& channel) {
    while (!channel.waiting.empty() && channel.waiting.front().due <= kernel::Now()) {
        if (!Deliver(channel, channel.waiting.front()))
            return;
        channel.waiting.pop_front();
    }
    ScheduleCheck(channel);
}

// False when the line is full before the end of the chunk.
bool LineTap::Deliver(Channel& channel, Chunk& chunk) {
    if (channel.direction == Direction::kToUnit) {
        if (observer_)
            observer_(Direction::kToUnit, chunk.bytes);
        channel.waiting_bytes -= chunk.bytes.size();
        port_(chunk.bytes);
        return true;
    }
    while (!full_ && !chunk.bytes.empty()) {
        const std::size_t taken = line_->Transmit(chunk.bytes);
        channel.waiting_bytes -= taken;
        chunk.bytes.erase(chunk.bytes.begin(),
                          chunk.bytes.begin() + static_cast<std::ptrdiff_t>(taken));
        full_ = taken == 0;
    }
    return !full_;
}

// Schedules a check for when something is due.
void LineTap::ScheduleCheck(Channel& channel) {
    kernel::Time due = channel.waiting.empty() ? kernel::kNever : channel.waiting.front().due;
    if (!channel.splitter.held().empty())
        due = std::min(due, channel.last_arrival + kMaxGapInFrame);
    if (due >= channel.alarm)
        return;
    channel.alarm = due;
    kernel::At(due, [weak = weak_from_this(), direction = channel.direction, due] {
        const auto self = weak.lock();
        if (!self)
            return;
        const std::scoped_lock lock(self->mutex_);
        Channel& woken = self->ChannelOf(direction);
        if (woken.alarm == due)
            woken.alarm = kernel::kNever;
        if (!woken.splitter.held().empty() && kernel::Now() - woken.last_arrival >= kMaxGapInFrame)
            self->PassSegment(woken, woken.splitter.GiveUp(), false);
        self->Release(woken);
    });
}

}  // namespace unit
