#pragma once

namespace unit {

// The task bar, an application of its own: a topmost window of class "HHTaskBar" along the bottom
// edge, below the wizard's buttons. Host thread.
void StartTaskBar();
void CloseTaskBar();

}  // namespace unit
