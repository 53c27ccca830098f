#include "zandrel.h"

int main(int argc, char** argv) {
  CZandrelApp app(argc, argv);
  return app.InitInstance() ? CZandrelApp::exec() : 0;
}
