#pragma once
// A button of a window's button row, named as the code and the tests know it, that runs `clicked`.

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>
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

// A settings window: its fields above a row of Save, which runs `save`, and Exit.
template <typename Slot> void LayOutSettings(QDialog *window, QFormLayout *fields, Slot &&save)
{
    auto *buttons = new QDialogButtonBox(window);
    AddButton(buttons, "cmdSave", QStringLiteral("&Save"), std::forward<Slot>(save));
    AddExitButton(buttons, window);
    auto *layout = new QVBoxLayout(window);
    layout->addLayout(fields);
    layout->addWidget(buttons);
}
