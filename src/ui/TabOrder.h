#pragma once
// The order in which Tab walks a window's fields, set explicitly in reading order.

#include <QWidget>
#include <initializer_list>

inline void SetTabOrder(std::initializer_list<QWidget *> fields)
{
    QWidget *before = nullptr;
    for (QWidget *field : fields) {
        if (before)
            QWidget::setTabOrder(before, field);
        before = field;
    }
}
