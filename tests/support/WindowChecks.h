#pragma once
// What a person would find wrong on looking at a window: a field without a label, a window or a caption
// cut short, and a Tab order that jumps against the reading order. Each finding is one line that names
// the control by its object name. And the addresses a window asks the desktop to open.

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>

class QWidget;

namespace TestSupport {

// Visible input fields that no visible label names as its buddy and that have no accessible name.
QStringList UnlabelledFields(const QWidget *window);
// A window smaller than its content, and captions narrower than their text.
QStringList ClippedControls(const QWidget *window);
// The visible controls that Tab reaches, in the order it reaches them, from the first in reading order.
QStringList TabChain(const QWidget *window);
// Each control Tab never reaches, and each step of the Tab chain that goes back up, or back left on the
// same line.
QStringList TabOrderFaults(const QWidget *window);
// All of the above.
QStringList WindowFaults(const QWidget *window);

// Takes the addresses of the given schemes that the desktop is asked to open, as a desktop program would.
class UrlReceiver : public QObject
{
    Q_OBJECT
public:
    explicit UrlReceiver(const QStringList &schemes = {QStringLiteral("file")});
    ~UrlReceiver() override;
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }

private:
    QStringList m_schemes;
};

} // namespace TestSupport
