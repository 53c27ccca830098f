#include "zandrel.h"

#include "dialog_template.h"
#include "velmora_version.h"
#include "zandreldlg.h"

CZandrelApp::CZandrelApp(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName(QStringLiteral("zandrel"));
  setApplicationVersion(QStringLiteral(VELMORA_VERSION));
  setWindowIcon(zandrel::ApplicationIcon());
}

CZandrelApp::~CZandrelApp() = default;

bool CZandrelApp::InitInstance() {
  CZandrelDlg dlg;
  dlg.exec();  // OK and Cancel both end the program
  return false;
}
