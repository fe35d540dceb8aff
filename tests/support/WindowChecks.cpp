#include "WindowChecks.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

#include <algorithm>

namespace TestSupport {

namespace {

QString NameOf(const QWidget *widget)
{
    return widget->objectName().isEmpty() ? QString::fromLatin1(widget->metaObject()->className())
                                          : widget->objectName();
}

// The parts of a composite control (the line of a combo box or a date field, an open cell editor) are
// not controls of their own.
bool IsPart(const QWidget *widget)
{
    for (const QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
        if (qobject_cast<const QComboBox *>(parent) || qobject_cast<const QAbstractSpinBox *>(parent) ||
            qobject_cast<const QAbstractItemView *>(parent))
            return true;
    }
    return false;
}

bool IsField(const QWidget *widget)
{
    return qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QPlainTextEdit *>(widget) ||
           qobject_cast<const QTextEdit *>(widget);
}

QList<QWidget *> VisibleControls(const QWidget *window)
{
    QList<QWidget *> controls;
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        if (widget->isVisibleTo(window) && !IsPart(widget))
            controls.append(widget);
    }
    return controls;
}

QRect Place(const QWidget *window, const QWidget *widget)
{
    return QRect(widget->mapTo(window, QPoint(0, 0)), widget->size());
}

// Tab passes over a control that hands its focus to another, as a tab strip does to its bar.
bool ReachedByTab(const QWidget *window, const QWidget *widget)
{
    return widget != window && widget->isVisibleTo(window) && widget->isEnabled() &&
           (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy() && !IsPart(widget) &&
           window->isAncestorOf(widget);
}

// `after` stands before `before` in reading order: wholly above it and not in a column to its right,
// or on the same line and wholly to its left.
bool GoesBack(const QRect &before, const QRect &after)
{
    const bool above = after.bottom() < before.top();
    const bool rightColumn = after.left() > before.right();
    const bool sameLine = after.top() <= before.bottom() && before.top() <= after.bottom();
    return (above && !rightColumn) || (sameLine && after.right() < before.left());
}

// The controls Tab reaches, from the one a reader starts at: the nearest the top left.
QList<const QWidget *> Chain(const QWidget *window)
{
    QList<const QWidget *> chain;
    for (const QWidget *widget = window->nextInFocusChain(); widget != window;
         widget = widget->nextInFocusChain()) {
        if (ReachedByTab(window, widget) && !chain.contains(widget))
            chain.append(widget);
    }
    const auto first =
        std::min_element(chain.cbegin(), chain.cend(), [window](const QWidget *a, const QWidget *b) {
            const QRect pa = Place(window, a);
            const QRect pb = Place(window, b);
            return std::pair(pa.top(), pa.left()) < std::pair(pb.top(), pb.left());
        });
    if (first != chain.cend())
        std::rotate(chain.begin(), chain.begin() + (first - chain.cbegin()), chain.end());
    return chain;
}

} // namespace

QStringList UnlabelledFields(const QWidget *window)
{
    const QList<QWidget *> controls = VisibleControls(window);
    QList<const QWidget *> buddies;
    for (const QWidget *control : controls) {
        if (const auto *label = qobject_cast<const QLabel *>(control); label && label->buddy())
            buddies.append(label->buddy());
    }
    QStringList faults;
    for (const QWidget *control : controls) {
        if (IsField(control) && !buddies.contains(control) && control->accessibleName().isEmpty())
            faults.append(NameOf(control) + QStringLiteral(": field without a label"));
    }
    return faults;
}

QStringList ClippedControls(const QWidget *window)
{
    QStringList faults;
    const QSize content = window->minimumSizeHint();
    if (window->width() < content.width() || window->height() < content.height())
        faults.append(QStringLiteral("%1: window %2x%3 is smaller than its content %4x%5")
                          .arg(NameOf(window))
                          .arg(window->width())
                          .arg(window->height())
                          .arg(content.width())
                          .arg(content.height()));
    for (const QWidget *control : VisibleControls(window)) {
        const auto *label = qobject_cast<const QLabel *>(control);
        const bool caption = (label && !label->wordWrap() && !label->text().isEmpty()) ||
                             qobject_cast<const QAbstractButton *>(control);
        if (caption && control->width() < control->minimumSizeHint().width())
            faults.append(NameOf(control) + QStringLiteral(": caption cut short"));
        const auto *list = qobject_cast<const QComboBox *>(control);
        if (list && !list->isEditable() && control->width() < control->sizeHint().width())
            faults.append(NameOf(control) + QStringLiteral(": choice cut short"));
    }
    return faults;
}

QStringList TabChain(const QWidget *window)
{
    QStringList names;
    for (const QWidget *widget : Chain(window))
        names.append(NameOf(widget));
    return names;
}

QStringList TabOrderFaults(const QWidget *window)
{
    const QList<const QWidget *> chain = Chain(window);
    QStringList faults;
    for (const QWidget *control : VisibleControls(window)) {
        if (ReachedByTab(window, control) && !chain.contains(control))
            faults.append(NameOf(control) + QStringLiteral(": Tab never reaches it"));
    }
    for (qsizetype step = 1; step < chain.size(); ++step) {
        if (GoesBack(Place(window, chain.at(step - 1)), Place(window, chain.at(step))))
            faults.append(NameOf(chain.at(step - 1)) + QStringLiteral(" -> ") + NameOf(chain.at(step)) +
                          QStringLiteral(": Tab goes back against the reading order"));
    }
    return faults;
}

QStringList WindowFaults(const QWidget *window)
{
    return UnlabelledFields(window) + ClippedControls(window) + TabOrderFaults(window);
}

UrlReceiver::UrlReceiver(const QStringList &schemes) : m_schemes(schemes)
{
    for (const QString &scheme : m_schemes)
        QDesktopServices::setUrlHandler(scheme, this, "open");
}

UrlReceiver::~UrlReceiver()
{
    for (const QString &scheme : m_schemes)
        QDesktopServices::unsetUrlHandler(scheme);
}

} // namespace TestSupport
