#include <windows.h>

#include "platform/kernel/api_call.h"
#include "platform/window/screen.h"

using namespace platform;

// Windows have no captions, scroll bars or menus here: what measures those is 0.
int GetSystemMetrics(int index) {
    const kernel::ApiCall call("GetSystemMetrics");
    if (call.Fails())
        return 0;
    switch (index) {
        case SM_CXSCREEN:
        case SM_CXFULLSCREEN:
            return window::kScreenWidth;
        case SM_CYSCREEN:
        case SM_CYFULLSCREEN:
            return window::kScreenHeight;
        case SM_CXICON:
        case SM_CYICON:
        case SM_CXCURSOR:
        case SM_CYCURSOR:
            return 32;
        case SM_CXSMICON:
        case SM_CYSMICON:
            return 16;
        case SM_CXBORDER:
        case SM_CYBORDER:
            return 1;
        default:
            return 0;
    }
}
