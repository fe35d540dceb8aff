#pragma once
// The HTML of the page model: document head and tail, one page's elements, text escaping.

#include "engine/page/PageModel.h"

namespace Engine::HtmlPageMarkup {

QString DocumentHead(const QString &title);
QString DocumentTail();
// One page as a block of the page's size holding its boxes and lines (SVG) and its texts.
QString PageBlock(const Page &page, const QSizeF &size);

} // namespace Engine::HtmlPageMarkup
