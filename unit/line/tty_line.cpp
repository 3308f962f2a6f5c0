#include "unit/line/tty_line.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <utility>

namespace unit {
namespace {

constexpr int kReopenMilliseconds = std::chrono::milliseconds(serial::kReopenInterval).count();

using serial::Parity;
static_assert(static_cast<int>(Parity::kNone) == NOPARITY &&
              static_cast<int>(Parity::kOdd) == ODDPARITY &&
              static_cast<int>(Parity::kEven) == EVENPARITY);

DCB RecordOf(const serial::Settings& settings) {
    DCB record{};
    record.DCBlength = sizeof(DCB);
    record.fBinary = TRUE;
    record.fDtrControl = DTR_CONTROL_ENABLE;
    record.fRtsControl = RTS_CONTROL_ENABLE;
    record.BaudRate = settings.baud != 0 ? settings.baud : CBR_9600;
    record.ByteSize = static_cast<BYTE>(settings.data_bits);
    record.StopBits = settings.stop_bits == 2 ? TWOSTOPBITS : ONESTOPBIT;
    record.Parity = static_cast<BYTE>(settings.parity);
    record.fParity = settings.parity != Parity::kNone;
    record.fOutxCtsFlow = settings.hardware_flow;
    return record;
}

// Empty for settings that a terminal device of the host does not have.
std::optional<serial::Settings> SettingsOf(const DCB& record) {
    if (record.Parity > EVENPARITY || record.StopBits == ONE5STOPBITS)
        return std::nullopt;
    return serial::Settings{record.BaudRate, record.ByteSize, static_cast<Parity>(record.Parity),
                            record.StopBits == TWOSTOPBITS ? 2U : 1U, record.fOutxCtsFlow != 0};
}

DWORD LastErrorOf(int error) {
    switch (error) {
        case 0:
            return ERROR_SUCCESS;
        case ENOENT:
        case ENODEV:
        case ENXIO:
            return ERROR_DEV_NOT_EXIST;
        case EACCES:
        case EPERM:
        case EBUSY:
            return ERROR_ACCESS_DENIED;
        case EINVAL:
            return ERROR_INVALID_PARAMETER;
        default:
            return ERROR_GEN_FAILURE;
    }
}

}  // namespace

TtyLine::TtyLine(std::string path, std::function<void(const std::string&)> problem)
    : path_(std::move(path)), problem_(std::move(problem)) {}

TtyLine::~TtyLine() {
    Close();
}

DWORD TtyLine::Open(Receiver receiver) {
    Close();
    serial::Tty tty;
    std::string problem;
    int error = tty.Open(path_, problem);
    if (error != 0) {
        problem_(problem);
        return LastErrorOf(error);
    }
    const std::scoped_lock lock(mutex_);
    error = tty.Read(settings_);
    if (error != 0)
        return LastErrorOf(error);
    tty_ = std::move(tty);
    reader_event_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    wants_writable_ = false;
    open_ = true;
    reader_ = std::thread([this, listener = std::move(receiver)] { ReadUntilClosed(listener); });
    return ERROR_SUCCESS;
}

void TtyLine::ReadUntilClosed(const Receiver& receiver) {
    std::array<std::uint8_t, 4096> buffer;
    for (;;) {
        std::unique_lock lock(mutex_);
        if (!open_)
            return;
        const int tty = tty_.descriptor();
        const short output = wants_writable_ ? POLLOUT : 0;
        lock.unlock();
        // poll ignores a negative descriptor.
        pollfd watched[] = {{reader_event_, POLLIN, 0},
                            {tty, static_cast<short>(POLLIN | output), 0}};
        if (poll(watched, std::size(watched), tty < 0 ? kReopenMilliseconds : -1) < 0)
            continue;
        if (watched[0].revents != 0) {
            eventfd_t count = 0;
            eventfd_read(watched[0].fd, &count);
            continue;
        }
        if (tty < 0) {
            TryReopen();
            continue;
        }
        if ((watched[1].revents & POLLOUT) != 0)
            ReportWritable();
        if ((watched[1].revents & (POLLIN | POLLHUP | POLLERR | POLLNVAL)) == 0)
            continue;
        // Without the lock: only this thread closes the device.
        const std::optional<std::size_t> count = tty_.Receive(buffer);
        if (!count)
            CloseLostDevice();
        else if (*count > 0)
            receiver({buffer.data(), *count});
    }
}

void TtyLine::CloseLostDevice() {
    {
        const std::scoped_lock lock(mutex_);
        tty_.Close();
    }
    problem_(tty_.WentAwayText());
}

void TtyLine::TryReopen() {
    serial::Tty found;
    std::string problem;
    if (found.Open(path_, problem) != 0)
        return;
    problem.clear();
    {
        const std::scoped_lock lock(mutex_);
        found.Apply(settings_, problem);
        tty_ = std::move(found);
    }
    problem_(tty_.IsBackText());
    if (!problem.empty())
        problem_(problem);
    ReportWritable();
}

void TtyLine::ReportWritable() {
    std::unique_lock lock(mutex_);
    wants_writable_ = false;
    const std::function<void()> on_writable = on_writable_;
    lock.unlock();
    if (on_writable)
        on_writable();
}

void TtyLine::Close() {
    std::unique_lock lock(mutex_);
    if (!std::exchange(open_, false))
        return;
    eventfd_write(reader_event_, 1);
    lock.unlock();
    reader_.join();
    close(reader_event_);
    tty_.Close();
}

DWORD TtyLine::ReadSettings(DCB& settings) {
    const std::scoped_lock lock(mutex_);
    if (tty_.IsOpen())
        if (const int error = tty_.Read(settings_); error != 0)
            return LastErrorOf(error);
    settings = RecordOf(settings_);
    return ERROR_SUCCESS;
}

DWORD TtyLine::ApplySettings(const DCB& settings) {
    const std::optional<serial::Settings> wanted = SettingsOf(settings);
    if (!wanted)
        return ERROR_INVALID_PARAMETER;
    int error = 0;
    std::string problem;
    {
        const std::scoped_lock lock(mutex_);
        if (tty_.IsOpen())
            error = tty_.Apply(*wanted, problem);
        if (error == 0)
            settings_ = *wanted;
    }
    if (!problem.empty())
        problem_(problem);
    return LastErrorOf(error);
}

std::size_t TtyLine::Transmit(std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    if (tty_.IsOpen()) {
        const ssize_t count = write(tty_.descriptor(), bytes.data(), bytes.size());
        if (count > 0)
            return static_cast<std::size_t>(count);
        eventfd_write(reader_event_, 1);
    }
    // While the device is away, the writer waits for its time-out.
    wants_writable_ = true;
    return 0;
}

void TtyLine::OnWritable(std::function<void()> on_writable) {
    const std::scoped_lock lock(mutex_);
    on_writable_ = std::move(on_writable);
}

}  // namespace unit
