#pragma once
// Controls made with the object names the code and the tests know them by.

#include <QString>
#include <QStringList>

#include <initializer_list>

class QComboBox;
class QDateEdit;
class QLineEdit;
class QWidget;

QLineEdit *NamedLine(QWidget *parent, const char *name);
QComboBox *NamedList(QWidget *parent, const char *name, const QStringList &choices);
// A date control that shows "DD-Mon-YYYY" with English month names, as the schedule writes dates.
QDateEdit *NamedDatePicker(QWidget *parent, const char *name);
// Selects the entry with that text, added at the end first when the list lacks it, so that a stored
// value the list does not offer is shown and kept. An empty text selects nothing.
void SelectOrAdd(QComboBox *list, const QString &text);
// A row of controls side by side, left-aligned, as one field of a form.
QWidget *SideBySide(QWidget *parent, std::initializer_list<QWidget *> controls);
