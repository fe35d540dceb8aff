#include "NamedControls.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>

QLineEdit *NamedLine(QWidget *parent, const char *name)
{
    auto *line = new QLineEdit(parent);
    line->setObjectName(QLatin1String(name));
    return line;
}

QComboBox *NamedList(QWidget *parent, const char *name, const QStringList &choices)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QLatin1String(name));
    list->addItems(choices);
    return list;
}

QDateEdit *NamedDatePicker(QWidget *parent, const char *name)
{
    auto *picker = new QDateEdit(parent);
    picker->setObjectName(QLatin1String(name));
    picker->setCalendarPopup(true);
    picker->setLocale(QLocale::c());
    picker->setDisplayFormat(QStringLiteral("dd-MMM-yyyy"));
    return picker;
}

void SelectOrAdd(QComboBox *list, const QString &text)
{
    if (text.isEmpty())
        return list->setCurrentIndex(-1);
    if (list->findText(text) < 0)
        list->addItem(text);
    list->setCurrentIndex(list->findText(text));
}
