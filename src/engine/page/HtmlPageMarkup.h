#pragma once
// The HTML of the page model: document head and tail, and each page as a table of its rows of text
// over a drawing of its lines and boxes, styled by classes declared as they first occur.

#include "engine/page/PageModel.h"

#include <QHash>

namespace Engine::HtmlPageMarkup {

// The classes of one HTML file: a class for each look of a cell and each height of a row.
class StyleSheet
{
public:
    // `paddingRight`, `paddingBottom`: the room between the text's box and the end and foot of its cell.
    QString cellClass(const PageText &text, double paddingRight, double paddingBottom);
    QString rowClass(double height);
    // A picture as the source of an <img>, its PNG in the page; a picture on every page is encoded once.
    QString pictureSource(const QImage &image);
    // The classes made since the last call, as a <style> element; empty when there are none.
    QString takeNew();

private:
    QString classFor(const QString &declaration, QChar prefix);

    QHash<QString, QString> m_names; // declaration: class name
    QString m_new;
    QHash<qint64, QString> m_pictures; // by the image's cache key
};

QString DocumentHead(const QString &title);
QString DocumentTail();
// One page as a block of the page's size.
QString PageBlock(const Page &page, const QSizeF &size, StyleSheet &styles);

} // namespace Engine::HtmlPageMarkup
