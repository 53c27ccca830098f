// The main dialog under test, shown, with its file choosers and message
// boxes answered from a script and every request recorded.
#pragma once
#include <QLineEdit>
#include <QTest>
#include <optional>
#include <vector>

#include "dialog_services.h"
#include "zandreldlg.h"

struct ShownDialog final : zandrel::DialogServices {
  using Answer = std::optional<QString>;
  using Request = zandrel::FileChooserRequest;
  Answer openAnswer, saveAnswer;
  std::vector<Request> choosers;
  std::vector<zandrel::MessageRequest> messages;
  CZandrelDlg dlg{nullptr, this};

  ShownDialog() { dlg.show(); }
  Answer ChooseFileToOpen(QWidget*, const Request& r) override { return choosers.push_back(r), openAnswer; }
  Answer ChooseFileToSave(QWidget*, const Request& r) override { return choosers.push_back(r), saveAnswer; }
  void ShowMessage(QWidget*, const zandrel::MessageRequest& request) override { messages.push_back(request); }
  QString Text(int id) const { return qobject_cast<QLineEdit*>(dlg.GetDlgItem(id))->text(); }
  void Type(int id, const QString& text) { QTest::keyClicks(dlg.GetDlgItem(id), text); }
  void Set(int id, const QString& text) { qobject_cast<QLineEdit*>(dlg.GetDlgItem(id))->setText(text); }
  void Click(int id) { QTest::mouseClick(dlg.GetDlgItem(id), Qt::LeftButton); }
};
