#pragma once
// The program's other open windows, as the main window's window list and its return to the front see
// them.

#include <QList>

class QWidget;

// A message box or a popup is no form.
bool IsForm(const QWidget *window);
// The visible forms other than `main`, in the toolkit's order.
QList<QWidget *> OpenForms(const QWidget *main);
