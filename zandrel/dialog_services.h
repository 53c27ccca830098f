// The modal windows the main dialog opens for the user: the two file
// choosers and the outcome's message box. Behind an interface so that tests
// answer them without a user.
#pragma once
#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>

class QWidget;

namespace zandrel {

struct FileChooserRequest {
  QString title;
  QStringList nameFilters;  // Qt form: "Description (*.a *.b)"
  QString defaultSuffix;    // added when the chosen name has none
  QString initialFileName;
  bool confirmOverwrite = false;
};

struct MessageRequest {
  QString text;  // "\n" breaks the line
  QString caption;
  QMessageBox::Icon icon = QMessageBox::NoIcon;
};

class DialogServices {
 public:
  virtual ~DialogServices() = default;
  // The chosen file's full path, or nothing when the user cancels.
  virtual std::optional<QString> ChooseFileToOpen(QWidget* owner, const FileChooserRequest& request) = 0;
  virtual std::optional<QString> ChooseFileToSave(QWidget* owner, const FileChooserRequest& request) = 0;
  // A modal message box with the single OK button; returns once it is closed.
  virtual void ShowMessage(QWidget* owner, const MessageRequest& request) = 0;
};

// The platform's file dialogs and message boxes.
class QtDialogServices final : public DialogServices {
 public:
  std::optional<QString> ChooseFileToOpen(QWidget* owner, const FileChooserRequest& request) override;
  std::optional<QString> ChooseFileToSave(QWidget* owner, const FileChooserRequest& request) override;
  void ShowMessage(QWidget* owner, const MessageRequest& request) override;
};

DialogServices& DefaultDialogServices();

// Turns a Windows chooser filter, "Description|pattern;pattern|...||", into
// Qt name filters.
QStringList NameFiltersFromFilterString(QStringView filter);

}  // namespace zandrel
