// Where the fields of the wizard are that the virtual unit reads when it runs the image. The
// linker's map has the place of these numbers; nothing in the image uses them.
#include <cstddef>
#include <cstdint>

#include "wizard/MainFrm.h"

#pragma clang diagnostic ignored "-Winvalid-offsetof"

extern "C" const std::uint32_t kWizardLayout[] = {
    offsetof(CMainFrame, m_nStep), offsetof(CMainFrame, m_byUpdatePercent),
    offsetof(CMainFrame, m_byBinVersion), offsetof(CMainFrame, m_byRunningState),
    offsetof(CMainFrame, m_szDvrVersion)};
