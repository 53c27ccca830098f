// The main dialog, where the user names the trace log and the message file
// and starts the translation, and the About box.
#pragma once
#include <QDialog>
#include <QIcon>
#include <QString>

#include "translation.h"

class QLineEdit;

namespace velmora {
struct TranslationReport;
}

namespace zandrel {
class DialogServices;
}

class CAboutDlg : public QDialog {
  Q_OBJECT

 public:
  explicit CAboutDlg(QWidget* parent = nullptr);
};

class CZandrelDlg : public QDialog {
  Q_OBJECT

 public:
  // Without services the platform's file dialogs and message boxes are used.
  explicit CZandrelDlg(QWidget* parent = nullptr, zandrel::DialogServices* services = nullptr);
  ~CZandrelDlg() override;

  QWidget* GetDlgItem(int id) const;
  const QString& InputPath() const { return m_strInputPath; }
  const QString& OutputPath() const { return m_strOutputPath; }

  // true takes both fields' texts into the path members, false writes both
  // members into the fields.
  void UpdateData(bool saveAndValidate);

  // The run behind Translate, without its message box. It touches no widget,
  // only the link memory that this dialog keeps from one run to the next.
  velmora::TranslationOutcome Translate(const QString& inputPath, const QString& outputPath,
                                        velmora::TranslationReport* report = nullptr);

 protected:
  // Runs once, before the dialog is first shown; true puts the focus on the
  // first tab stop.
  virtual bool OnInitDialog();
  void DoDataExchange(bool saveAndValidate);

  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
#ifdef Q_OS_WIN
  bool nativeEvent(const QByteArray& eventType, void* message, qintptr* result) override;
#endif

 private:
  // True when the command was the About item.
  bool OnSysCommand(unsigned id);
  void OnBrowseInput();
  void OnBrowseOutput();
  void OnTranslate();
  void OnChangeOutputPath();
  QString FailureText(const velmora::TranslationReport& report) const;
  void AppendAboutItem(const QString& text);
  void FocusFirstTabStop();

  zandrel::DialogServices& m_services;
  QLineEdit* m_inputEdit = nullptr;
  QLineEdit* m_outputEdit = nullptr;
  QString m_strInputPath;
  QString m_strOutputPath;
  velmora::LinkMemory m_linkMemory;
  QIcon m_hIcon;
  bool m_initialized = false;
};
