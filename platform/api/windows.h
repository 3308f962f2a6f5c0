#pragma once

// The Windows CE 6.0 API as far as this platform supplies it, in its Unicode form. What is not
// declared here is not there; nothing that is declared pretends to succeed.
#include <windef.h>

#include <winerror.h>
#include <winnt.h>

#include <winbase.h>
#include <wingdi.h>
#include <winuser.h>

#include <dbgapi.h>
#include <winioctl.h>
#include <winver.h>
