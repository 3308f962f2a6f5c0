#pragma once

// Names of the program's resources; read by the resource compiler too.
#define IDR_MAINFRAME 128
#define IDD_NOTIFY 130
#define IDB_CLOSE 202
#define IDB_BUTTON 203
