#include "MomentControls.h"
#include "NamedControls.h"

#include "core/DayDate.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>

namespace {

QComboBox *NumberList(QWidget *parent, const char *name, int count)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QLatin1String(name));
    for (int number = 0; number < count; ++number)
        list->addItem(QString::number(number));
    return list;
}

QLabel *Caption(const QString &text, QWidget *field)
{
    auto *label = new QLabel(text, field->parentWidget());
    label->setBuddy(field);
    return label;
}

} // namespace

MomentControls::MomentControls(QWidget *parent, const char *dateName, const char *hourName,
                               const char *minuteName)
    : Date(NamedDatePicker(parent, dateName)), Hour(NumberList(parent, hourName, 24)),
      Minute(NumberList(parent, minuteName, 60))
{
}

void MomentControls::Show(const DayHourMinute &moment)
{
    Date->setDate(DayDate::ToDate(moment.Day));
    Hour->setCurrentIndex(moment.Hour);
    Minute->setCurrentIndex(moment.Minute);
}

DayHourMinute MomentControls::Picked() const
{
    return {DayDate::FromDate(Date->date()), Hour->currentIndex(), Minute->currentIndex()};
}

void MomentControls::SetEnabled(bool enabled)
{
    Date->setEnabled(enabled);
    Hour->setEnabled(enabled);
    Minute->setEnabled(enabled);
}

QHBoxLayout *MomentControls::Row() const
{
    auto *row = new QHBoxLayout;
    row->addWidget(Date);
    row->addWidget(Caption(QStringLiteral("at"), Hour));
    row->addWidget(Hour);
    row->addWidget(Caption(QStringLiteral(":"), Minute));
    row->addWidget(Minute);
    row->addStretch();
    return row;
}

void MomentControls::AddRow(QFormLayout *form, const QString &caption) const
{
    form->addRow(Caption(caption, Date), Row());
}

void MomentControls::AddRow(QFormLayout *form, QAbstractButton *caption) const
{
    Date->setAccessibleName(caption->text().remove(QLatin1Char('&')));
    form->addRow(caption, Row());
}
