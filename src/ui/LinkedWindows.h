#pragma once
// Windows that the item editor opens but that are built elsewhere: the report viewer's preview. Each is
// reached through one opener; until its opener is connected, the menu entry that opens it stays disabled
// and says that it is not available yet.

#include <QString>

#include <functional>

class QAction;
class QMenu;
class QWidget;

namespace LinkedWindows {

enum class Link { Preview };

// What the item editor hands over: the window that opens it, and the item's ReportID and File.
struct Request
{
    QWidget *opener = nullptr;
    QString reportID;
    QString file;
};

using Opener = std::function<void(const Request &)>;

// Connects the window of `link`; an empty opener disconnects it. Menu entries made afterwards, and
// those refreshed by RefreshEntry, follow.
void Connect(Link link, Opener opener);
bool IsConnected(Link link);
// Opens the window of `link`; does nothing when it is not connected.
void Open(Link link, const Request &request);

// A menu entry for a linked window that runs `command` when chosen.
QAction *AddEntry(QMenu *menu, const char *name, const QString &caption, Link link,
                  std::function<void()> command);
// Enables the entry when its window is connected; otherwise disables it with the note.
void RefreshEntry(QAction *entry, Link link);

} // namespace LinkedWindows
