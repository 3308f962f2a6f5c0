#pragma once

#include <windef.h>
#include <winerror.h>
#include <winnt.h>

#include "base/modules.h"
#include "user/classes.h"
#include "user/dialogs.h"
#include "user/images.h"
#include "user/keys.h"
#include "user/message_queue.h"
#include "user/messages.h"
#include "user/metrics.h"
#include "user/painting.h"
#include "user/rectangles.h"
#include "user/styles.h"
#include "user/window_functions.h"
