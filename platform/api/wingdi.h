#pragma once

#include <windef.h>

#include "gdi/bitmaps.h"
#include "gdi/colors.h"
#include "gdi/device_contexts.h"
#include "gdi/fonts.h"
#include "gdi/objects.h"
