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

namespace platform::device {
namespace {

struct Rate {
    DWORD baud;
    speed_t speed;
};

constexpr Rate kRates[] = {
    {CBR_9600, B9600},     {CBR_19200, B19200},   {CBR_38400, B38400}, {CBR_57600, B57600},
    {CBR_115200, B115200}, {230400, B230400},     {460800, B460800},   {921600, B921600},
};

constexpr tcflag_t kSizes[] = {CS5, CS6, CS7, CS8};
constexpr BYTE kSmallestByte = 5;

DWORD LastErrorOf(int error) {
    switch (error) {
        case ENOENT:
        case ENODEV:
        case ENXIO: return ERROR_DEV_NOT_EXIST;
        case EACCES:
        case EPERM:
        case EBUSY: return ERROR_ACCESS_DENIED;
        default: return ERROR_GEN_FAILURE;
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
    stop_event_ = eventfd(0, EFD_CLOEXEC);
    tty_ = tty;
    reader_ = std::thread(
        [this, tty, listener = std::move(receiver)] { ReadUntilClosed(tty, listener); });
    return ERROR_SUCCESS;
}

void TtyLine::ReadUntilClosed(int tty, const Receiver& receiver) {
    std::array<std::uint8_t, 4096> buffer;
    bool alive = true;
    for (;;) {
        const short output = wants_room_ ? POLLOUT : 0;
        pollfd watched[] = {{stop_event_, POLLIN, 0},
                            {alive ? tty : -1, static_cast<short>(POLLIN | output), 0}};
        // The time-out bounds how long a writer that filled the line waits to be noticed.
        if (poll(watched, std::size(watched), wants_room_ ? 1 : 20) < 0 && errno != EINTR)
            return;
        if (watched[0].revents != 0)
            return;
        if ((watched[1].revents & POLLOUT) != 0 && wants_room_.exchange(false)) {
            std::unique_lock lock(mutex_);
            const std::function<void()> room = room_;
            lock.unlock();
            if (room)
                room();
        }
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

void TtyLine::Close() {
    const int tty = tty_.exchange(-1);
    if (tty < 0)
        return;
    const std::uint64_t one = 1;
    static_cast<void>(write(stop_event_, &one, sizeof one));
    reader_.join();
    close(stop_event_);
    close(tty);
}

DWORD TtyLine::ReadSettings(DCB& settings) {
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
    const ssize_t count = write(tty_, bytes.data(), bytes.size());
    if (count > 0)
        return static_cast<std::size_t>(count);
    // A device that is gone takes nothing: the writer's time-out ends the write.
    wants_room_ = true;
    return 0;
}

void TtyLine::OnRoom(std::function<void()> room) {
    const std::unique_lock lock(mutex_);
    room_ = std::move(room);
}

}  // namespace platform::device
