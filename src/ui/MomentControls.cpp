#include "MomentControls.h"
#include "NamedControls.h"

#include "core/DayDate.h"

#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>

namespace {

QComboBox *NumberList(QWidget *parent, const char *name, int count)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QLatin1String(name));
    for (int number = 0; number < count; ++number)
        list->addItem(QString::number(number));
    return list;
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
    row->addWidget(Hour);
    row->addWidget(Minute);
    return row;
}
