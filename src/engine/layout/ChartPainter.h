#pragma once
// Draws a chart of a group's summaries into a picture: bars side by side or stacked, lines, or a pie,
// with its title, the axis labels and a legend.

#include "engine/ReportDefinition.h"

namespace Engine {

struct ChartData
{
    QString title;
    QStringList categories;      // along the axis, or the slices of a pie
    QStringList series;          // in the legend; one unnamed series when empty
    QList<QList<double>> values; // by series, then category
};

// A picture of `size` points, drawn finer so that it prints sharp.
QImage PaintChart(const ChartData &data, ChartType type, const QSizeF &size);

} // namespace Engine
