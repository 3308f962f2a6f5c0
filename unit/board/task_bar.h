#pragma once

namespace unit {

// The platform's task bar, an application of its own: a topmost window of class "HHTaskBar" along
// the bottom edge, below the place of the wizard's buttons. Hardware's thread.
void StartTaskBar();
void CloseTaskBar();

}  // namespace unit
