#pragma once

// The program's resources. The resource compiler reads this header too.
#define IDR_MAINFRAME 128
#define IDD_NOTIFY 130
#define IDB_CLOSE 202
#define IDB_BUTTON 203
