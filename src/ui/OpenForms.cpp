#include "OpenForms.h"

#include <QApplication>
#include <QMessageBox>
#include <QWidget>

bool IsForm(const QWidget *window)
{
    return !qobject_cast<const QMessageBox *>(window) && window->windowType() != Qt::Popup &&
           window->windowType() != Qt::ToolTip;
}

QList<QWidget *> OpenForms(const QWidget *main)
{
    QList<QWidget *> forms;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window != main && window->isVisible() && IsForm(window))
            forms.append(window);
    }
    return forms;
}
