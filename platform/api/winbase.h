#pragma once

#include <windef.h>
#include <winerror.h>
#include <winnt.h>

#include "base/comm.h"
#include "base/files.h"
#include "base/modules.h"
#include "base/power_status.h"
#include "base/sync.h"
#include "base/text.h"
#include "base/threads.h"
