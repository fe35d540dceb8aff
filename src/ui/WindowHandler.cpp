#include "WindowHandler.h"

#include "core/QorloError.h"
#include "scheduler/Prompter.h"

#include <QTextStream>

bool RunHandler(Prompter &prompter, const std::function<void()> &handler)
{
    try {
        handler();
        return true;
    } catch (const QorloError &error) {
        QTextStream(stderr) << error.runTimeText() << Qt::endl;
        prompter.ShowMessage(QStringLiteral("QorloMANAGER"), error.runTimeText(), Prompter::Icon::Critical);
        return false;
    }
}
