#pragma once
// A button of a window's button row, named as the code and the tests know it, that runs `clicked`.

#include <QDialogButtonBox>
#include <QPushButton>
#include <utility>

template <typename Slot>
QPushButton *AddButton(QDialogButtonBox *buttons, const char *name, const QString &caption, Slot &&clicked,
                       QDialogButtonBox::ButtonRole role = QDialogButtonBox::ActionRole)
{
    QPushButton *button = buttons->addButton(caption, role);
    button->setObjectName(QLatin1String(name));
    QObject::connect(button, &QPushButton::clicked, buttons, std::forward<Slot>(clicked));
    return button;
}
