#pragma once
// A horizontal strip of a page (a header, a record, a total line) that the page builder places whole.

#include "engine/page/PageModel.h"

#include <memory>

namespace Engine {

struct Band
{
    double height = 0;
    QList<PageText> texts; // boxes relative to the band's top
    QList<PageLine> lines;
    QList<PageBox> boxes;
    QList<PagePicture> pictures;
    bool newPage = false;      // starts a fresh page
    bool needsCaptions = true; // the column captions stand above it on its page
    bool keepWithNext = false; // goes to the next page together with the band after it
    // The height of the group that this header starts: the group goes to a fresh page when it does
    // not fit on this one but fits on a page of its own. 0: no such wish.
    double keepTogether = 0;
    int opensGroup = -1;  // the level of the group this header starts
    int closesGroup = -1; // the level of the group this band ends
    // The header again for the pages that continue its group.
    std::shared_ptr<const Band> continued;
    // What the group tree of a viewer shows for the group this header starts.
    QString anchor;
};

} // namespace Engine
