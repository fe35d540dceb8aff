#include "NamedControls.h"

#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
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

QWidget *SideBySide(QWidget *parent, std::initializer_list<QWidget *> controls)
{
    auto *row = new QWidget(parent);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *control : controls)
        layout->addWidget(control);
    layout->addStretch();
    return row;
}
