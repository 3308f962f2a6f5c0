#include "platform/device/tty_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

namespace platform::device {
namespace {

struct Rate {
    DWORD baud;
    speed_t speed;
};

constexpr Rate kRates[] = {
    {CBR_9600, B9600},     {CBR_19200, B19200}, {CBR_38400, B38400}, {CBR_57600, B57600},
    {CBR_115200, B115200}, {230400, B230400},   {460800, B460800},   {921600, B921600},
};

constexpr tcflag_t kSizes[] = {CS5, CS6, CS7, CS8};
constexpr BYTE kSmallestByte = 5;

DWORD LastErrorOf(int error) {
    switch (error) {
        case ENOENT:
        case ENODEV:
        case ENXIO:
            return ERROR_DEV_NOT_EXIST;
        case EACCES:
        case EPERM:
        case EBUSY:
            return ERROR_ACCESS_DENIED;
        default:
            return ERROR_GEN_FAILURE;
    }
}

tcflag_t ControlFlags(const DCB& settings) {
    tcflag_t flags = CLOCAL | CREAD | kSizes[settings.ByteSize - kSmallestByte];
    if (settings.StopBits == TWOSTOPBITS)
        flags |= CSTOPB;
    if (settings.Parity == ODDPARITY || settings.Parity == EVENPARITY)
        flags |= PARENB;
    if (settings.Parity == ODDPARITY)
        flags |= PARODD;
    if (settings.fOutxCtsFlow)
        flags |= CRTSCTS;
    return flags;
}

}  // namespace

TtyLine::TtyLine(std::string path, std::function<void(const std::string&)> problem)
    : path_(std::move(path)), problem_(std::move(problem)) {}

TtyLine::~TtyLine() {
    Close();
}

DWORD TtyLine::Refuse(const std::string& what, int error) {
    problem_(path_ + ": " + what + ": " + std::strerror(error));
    return LastErrorOf(error);
}

DWORD TtyLine::Open(Receiver receiver) {
    Close();
    const int tty = open(path_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (tty < 0)
        return Refuse("cannot open the serial device", errno);
    if (!isatty(tty)) {
        close(tty);
        return Refuse("not a serial device", ENOTTY);
    }
    // Raw from the first byte on, before anything echoes.
    termios raw{};
    tcgetattr(tty, &raw);
    cfmakeraw(&raw);
    if (tcsetattr(tty, TCSANOW, &raw) != 0 || ioctl(tty, TIOCEXCL) != 0) {
        const int error = errno;
        close(tty);
        return Refuse("cannot set up the serial device", error);
    }
    // What came before is nobody's.
    tcflush(tty, TCIFLUSH);
    const std::scoped_lock lock(mutex_);
    reader_event_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    wants_room_ = false;
    tty_ = tty;
    reader_ = std::thread(
        [this, tty, listener = std::move(receiver)] { ReadUntilClosed(tty, listener); });
    return ERROR_SUCCESS;
}

void TtyLine::ReadUntilClosed(int tty, const Receiver& receiver) {
    std::array<std::uint8_t, 4096> buffer;
    bool alive = true;
    for (;;) {
        std::unique_lock lock(mutex_);
        if (tty_ < 0)
            return;
        const short output = wants_room_ ? POLLOUT : 0;
        pollfd watched[] = {{reader_event_, POLLIN, 0},
                            {alive ? tty : -1, static_cast<short>(POLLIN | output), 0}};
        lock.unlock();
        if (poll(watched, std::size(watched), -1) < 0)
            continue;
        if (watched[0].revents != 0) {
            eventfd_t count = 0;
            eventfd_read(watched[0].fd, &count);
            continue;
        }
        if ((watched[1].revents & POLLOUT) != 0)
            TellRoom();
        if ((watched[1].revents & (POLLIN | POLLHUP | POLLERR)) == 0)
            continue;
        const ssize_t count = read(tty, buffer.data(), buffer.size());
        if (count > 0) {
            receiver({buffer.data(), static_cast<std::size_t>(count)});
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            alive = false;
            problem_(path_ + ": the serial device went away");
        }
    }
}

void TtyLine::TellRoom() {
    std::unique_lock lock(mutex_);
    wants_room_ = false;
    const std::function<void()> room = room_;
    lock.unlock();
    if (room)
        room();
}

void TtyLine::Close() {
    std::unique_lock lock(mutex_);
    const int tty = std::exchange(tty_, -1);
    if (tty < 0)
        return;
    eventfd_write(reader_event_, 1);
    lock.unlock();
    reader_.join();
    close(reader_event_);
    ioctl(tty, TIOCNXCL);
    close(tty);
}

DWORD TtyLine::ReadSettings(DCB& settings) {
    const std::scoped_lock lock(mutex_);
    termios state{};
    if (tcgetattr(tty_, &state) != 0)
        return LastErrorOf(errno);
    settings = {};
    settings.DCBlength = sizeof(DCB);
    settings.fBinary = TRUE;
    settings.fDtrControl = DTR_CONTROL_ENABLE;
    settings.fRtsControl = RTS_CONTROL_ENABLE;
    settings.BaudRate = CBR_9600;
    for (const Rate& rate : kRates)
        if (rate.speed == cfgetispeed(&state))
            settings.BaudRate = rate.baud;
    for (std::size_t index = 0; index < std::size(kSizes); ++index)
        if ((state.c_cflag & CSIZE) == kSizes[index])
            settings.ByteSize = static_cast<BYTE>(kSmallestByte + index);
    settings.StopBits = (state.c_cflag & CSTOPB) != 0 ? TWOSTOPBITS : ONESTOPBIT;
    if ((state.c_cflag & PARENB) != 0)
        settings.Parity = (state.c_cflag & PARODD) != 0 ? ODDPARITY : EVENPARITY;
    settings.fParity = settings.Parity != NOPARITY;
    settings.fOutxCtsFlow = (state.c_cflag & CRTSCTS) != 0;
    return ERROR_SUCCESS;
}

DWORD TtyLine::ApplySettings(const DCB& settings) {
    const std::scoped_lock lock(mutex_);
    termios state{};
    if (tcgetattr(tty_, &state) != 0)
        return LastErrorOf(errno);
    const Rate* chosen = nullptr;
    for (const Rate& rate : kRates)
        if (rate.baud == settings.BaudRate)
            chosen = &rate;
    if (!chosen || settings.Parity > EVENPARITY || settings.StopBits == ONE5STOPBITS)
        return ERROR_INVALID_PARAMETER;
    cfmakeraw(&state);
    state.c_cflag = ControlFlags(settings);
    cfsetspeed(&state, chosen->speed);
    return tcsetattr(tty_, TCSANOW, &state) == 0 ? ERROR_SUCCESS : LastErrorOf(errno);
}

std::size_t TtyLine::Transmit(std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    const ssize_t count = write(tty_, bytes.data(), bytes.size());
    if (count > 0)
        return static_cast<std::size_t>(count);
    // A device that is gone takes nothing: the writer's time-out ends the write.
    wants_room_ = true;
    eventfd_write(reader_event_, 1);
    return 0;
}

void TtyLine::OnRoom(std::function<void()> room) {
    const std::scoped_lock lock(mutex_);
    room_ = std::move(room);
}

}  // namespace platform::device
