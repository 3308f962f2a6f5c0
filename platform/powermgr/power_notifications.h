#pragma once

#include <windows.h>

namespace platform::powermgr {

// Writes a power notification to every queue that requested it: PBT_POWERSTATUSCHANGE after a
// change of the supply, PBT_RESUME after a suspend. A full queue loses the record, as on the
// device. Any thread, without locks.
void Notify(DWORD message);

}  // namespace platform::powermgr
