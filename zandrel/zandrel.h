// The application object: runs the main dialog, and the program ends with it.
#pragma once
#include <QApplication>

class CZandrelApp : public QApplication {
  Q_OBJECT

 public:
  CZandrelApp(int& argc, char** argv);
  ~CZandrelApp() override;

  // Runs the main dialog modally until the user ends it. Returns false: the
  // program ends rather than entering an event loop of its own.
  virtual bool InitInstance();
};
