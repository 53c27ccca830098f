// Resource identifiers of the dialog application, shared by the C++ code and
// the Windows resource script (so: plain #defines only).
#ifndef ZANDREL_RESOURCE_H
#define ZANDREL_RESOURCE_H

#define IDD_ABOUTBOX 100
#define IDS_ABOUTBOX 101
#define IDD_ZANDREL_DIALOG 102
#define IDR_MAINFRAME 128

#define IDC_INPUT_PATH 1000
#define IDC_OUTPUT_PATH 1001
#define IDC_BROWSE_INPUT 1002
#define IDC_BROWSE_OUTPUT 1003
#define IDC_TRANSLATE 1004

// System-menu command of the About item; the low four bits are the system's.
#define IDM_ABOUTBOX 0x0010

#ifndef IDOK
#define IDOK 1
#endif
#ifndef IDCANCEL
#define IDCANCEL 2
#endif
#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

#endif  // ZANDREL_RESOURCE_H
