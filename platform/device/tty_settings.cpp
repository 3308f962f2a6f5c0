#include "platform/device/tty_settings.h"

namespace platform::device {

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

std::optional<serial::Settings> SettingsOf(const DCB& record) {
    if (record.Parity > EVENPARITY || record.StopBits == ONE5STOPBITS)
        return std::nullopt;
    return serial::Settings{record.BaudRate, record.ByteSize, static_cast<Parity>(record.Parity),
                            record.StopBits == TWOSTOPBITS ? 2U : 1U, record.fOutxCtsFlow != 0};
}

}  // namespace platform::device
