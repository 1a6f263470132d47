// SPDX-License-Identifier: MIT
// The dialogs of the desktop host: one way to run them, the file dialog of every open and save
// question, and warnings. The folder of the last chosen file is where the next question starts.
#include "shell/dialogs.hpp"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace rvtools::shell {
namespace {

std::function<int(QDialog&)>& dialogRunner() {
  static auto* runner = new std::function<int(QDialog&)>;
  return *runner;
}

QString& lastFolder() {
  static auto* folder = new QString(QDir::homePath());
  return *folder;
}

QString proposedPath(const QString& path) {
  if (path.isEmpty()) return lastFolder();
  if (QFileInfo(path).isAbsolute()) return path;
  return QDir(lastFolder()).filePath(path);
}

}  // namespace

int runDialog(QDialog& dialog) {
  if (dialogRunner()) return dialogRunner()(dialog);
  return dialog.exec();
}

void setDialogRunner(std::function<int(QDialog&)> runner) {
  dialogRunner() = std::move(runner);
}

QString askForFile(QWidget* parent, const FileQuestion& question) {
  QFileDialog dialog(parent, question.Title, proposedPath(question.ProposedPath), question.Filter);
  dialog.setAcceptMode(question.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(question.Save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(question.DefaultSuffix);
  if (!question.Note.isEmpty()) dialog.setLabelText(QFileDialog::LookIn, question.Note);
  if (runDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  const QString path = dialog.selectedFiles().first();
  lastFolder() = QFileInfo(path).absolutePath();
  return path;
}

void showWarning(QWidget* parent, const QString& title, const QString& text) {
  QMessageBox warning(QMessageBox::Warning, title, text, QMessageBox::Ok, parent);
  runDialog(warning);
}

}  // namespace rvtools::shell
