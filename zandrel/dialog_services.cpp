#include "dialog_services.h"

#include <QDir>
#include <QFileDialog>

namespace zandrel {
namespace {

std::optional<QString> RunFileDialog(QWidget* owner, const FileChooserRequest& request, QFileDialog::AcceptMode mode) {
  QFileDialog dialog(owner, request.title);
  dialog.setAcceptMode(mode);
  // Like the Windows chooser without "file must exist": a typed name is
  // returned as it is, and the run reports an input it cannot open.
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setNameFilters(request.nameFilters);
  dialog.setDefaultSuffix(request.defaultSuffix);
  dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.confirmOverwrite);
  if (!request.initialFileName.isEmpty()) dialog.selectFile(request.initialFileName);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  const QStringList chosen = dialog.selectedFiles();
  if (chosen.isEmpty()) return std::nullopt;
  return QDir::toNativeSeparators(chosen.constFirst());
}

// Windows reads "*.*" as every name, with or without a dot.
QString QtPattern(QStringView windowsPattern) {
  const QStringView pattern = windowsPattern.trimmed();
  return pattern == u"*.*" ? QStringLiteral("*") : pattern.toString();
}

// "Log Files (*.txt)" -> "Log Files": the patterns are written anew.
QStringView WithoutPatternNote(QStringView description) {
  const QStringView trimmed = description.trimmed();
  if (trimmed.endsWith(u')')) {
    const qsizetype open = trimmed.lastIndexOf(u'(');
    if (open > 0) return trimmed.first(open).trimmed();
  }
  return trimmed;
}

}  // namespace

std::optional<QString> QtDialogServices::ChooseFileToOpen(QWidget* owner, const FileChooserRequest& request) {
  return RunFileDialog(owner, request, QFileDialog::AcceptOpen);
}

std::optional<QString> QtDialogServices::ChooseFileToSave(QWidget* owner, const FileChooserRequest& request) {
  return RunFileDialog(owner, request, QFileDialog::AcceptSave);
}

void QtDialogServices::ShowMessage(QWidget* owner, const MessageRequest& request) {
  QMessageBox box(request.icon, request.caption, request.text, QMessageBox::Ok, owner);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

DialogServices& DefaultDialogServices() {
  static QtDialogServices services;
  return services;
}

QStringList NameFiltersFromFilterString(QStringView filter) {
  QStringList nameFilters;
  const auto parts = filter.split(u'|');
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    const QStringView description = parts[i];
    if (description.isEmpty()) break;  // "||" ends the list
    QStringList patterns;
    for (QStringView pattern : parts[i + 1].split(u';', Qt::SkipEmptyParts)) patterns << QtPattern(pattern);
    nameFilters << QStringLiteral("%1 (%2)").arg(WithoutPatternNote(description), patterns.join(u' '));
  }
  return nameFilters;
}

}  // namespace zandrel
