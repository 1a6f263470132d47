// SPDX-License-Identifier: MIT
// Internal: the dialogs of the desktop host. Every dialog runs through runDialog, so that a test
// can answer the real dialog (fill in a file dialog, pick a printer) instead of a user; file
// questions and warnings are built here once for the runtime's panels and the host's own items.
#pragma once

#include <QDialog>
#include <QString>
#include <functional>

class QWidget;

namespace rvtools::shell {

// Runs `dialog` modally; QDialog::Accepted when it was confirmed.
int runDialog(QDialog& dialog);
// Replaces how dialogs run (a test answers them); an empty runner gives QDialog::exec back.
void setDialogRunner(std::function<int(QDialog&)> runner);

// An open or save question: the dialog's title, a note shown above the file list, the path
// proposed (a file name alone lies in the folder last chosen), the name filter ("Text files
// (*.txt)"; empty for all files) and the suffix added to a name typed without one.
struct FileQuestion {
  bool Save = false;
  QString Title;
  QString Note;
  QString ProposedPath;
  QString Filter;
  QString DefaultSuffix;
};

// Asks for a file with a file dialog; the chosen path, empty when the user cancels.
QString askForFile(QWidget* parent, const FileQuestion& question);
// Tells the user that something failed, in a warning that waits for OK.
void showWarning(QWidget* parent, const QString& title, const QString& text);

}  // namespace rvtools::shell
