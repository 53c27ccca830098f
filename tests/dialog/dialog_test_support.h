// Test doubles and helpers shared by the dialog's test programs.
#pragma once
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "zandrel/dialog_services.h"
#include "zandrel/zandreldlg.h"

// Answers the file choosers from a script and records every request.
class FakeDialogServices final : public zandrel::DialogServices {
 public:
  std::optional<QString> openAnswer;
  std::optional<QString> saveAnswer;
  std::vector<zandrel::FileChooserRequest> openRequests;
  std::vector<zandrel::FileChooserRequest> saveRequests;
  std::vector<zandrel::MessageRequest> messages;

  std::optional<QString> ChooseFileToOpen(QWidget*, const zandrel::FileChooserRequest& request) override {
    openRequests.push_back(request);
    return openAnswer;
  }
  std::optional<QString> ChooseFileToSave(QWidget*, const zandrel::FileChooserRequest& request) override {
    saveRequests.push_back(request);
    return saveAnswer;
  }
  void ShowMessage(QWidget*, const zandrel::MessageRequest& request) override { messages.push_back(request); }
};

inline QLineEdit* Edit(const CZandrelDlg& dlg, int id) { return qobject_cast<QLineEdit*>(dlg.GetDlgItem(id)); }
inline QPushButton* Button(const CZandrelDlg& dlg, int id) {
  return qobject_cast<QPushButton*>(dlg.GetDlgItem(id));
}

// Runs the action on the next modal window of type T once it is up, from
// inside that window's own event loop.
template <class T>
void OnNextModal(std::function<void(T*)> action, int attemptsLeft = 200) {
  QTimer::singleShot(10, [action, attemptsLeft] {
    if (auto* modal = qobject_cast<T*>(QApplication::activeModalWidget())) {
      action(modal);
    } else if (attemptsLeft > 0) {
      OnNextModal<T>(action, attemptsLeft - 1);
    }
  });
}
