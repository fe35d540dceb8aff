#include "LinkedWindows.h"

#include <QAction>
#include <QMenu>

#include <array>

namespace LinkedWindows {

namespace {

// One opener for each link, for the whole program: the windows behind them are one of each per process.
std::array<Opener, 1> &Openers()
{
    static std::array<Opener, 1> openers;
    return openers;
}

Opener &OpenerOf(Link link)
{
    return Openers().at(size_t(link));
}

} // namespace

void Connect(Link link, Opener opener)
{
    OpenerOf(link) = std::move(opener);
}

bool IsConnected(Link link)
{
    return bool(OpenerOf(link));
}

void Open(Link link, const Request &request)
{
    if (const Opener &opener = OpenerOf(link))
        opener(request);
}

QAction *AddEntry(QMenu *menu, const char *name, const QString &caption, Link link,
                  std::function<void()> command)
{
    QAction *entry = menu->addAction(caption);
    entry->setObjectName(QLatin1String(name));
    QObject::connect(entry, &QAction::triggered, menu, std::move(command));
    // A disabled entry says why in its tip.
    menu->setToolTipsVisible(true);
    RefreshEntry(entry, link);
    return entry;
}

void RefreshEntry(QAction *entry, Link link)
{
    const bool connected = IsConnected(link);
    entry->setEnabled(connected);
    const QString note = connected ? QString()
                                   : entry->text().remove(QLatin1Char('&')) +
                                         QStringLiteral(" is not available yet in this version");
    entry->setToolTip(connected ? entry->text().remove(QLatin1Char('&')) : note);
    entry->setStatusTip(note);
}

} // namespace LinkedWindows
