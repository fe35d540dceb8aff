#pragma once
// The order in which Tab walks a window's fields, set explicitly in reading order.

#include <QList>
#include <QWidget>

inline void SetTabOrder(const QList<QWidget *> &fields)
{
    QWidget *before = nullptr;
    for (QWidget *field : fields) {
        if (before)
            QWidget::setTabOrder(before, field);
        before = field;
    }
}
