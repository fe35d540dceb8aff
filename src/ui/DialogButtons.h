#pragma once
// A button of a window's button row, named as the code and the tests know it, that runs `clicked`.

#include <QDialog>
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

// Exit: closes the window and keeps nothing of what was changed in it.
inline QPushButton *AddExitButton(QDialogButtonBox *buttons, QDialog *window)
{
    return AddButton(
        buttons, "cmdExit", QStringLiteral("E&xit"), [window] { window->reject(); },
        QDialogButtonBox::RejectRole);
}
