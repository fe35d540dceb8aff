#include "engine/NearestNames.h"

#include <algorithm>
#include <vector>

namespace Engine {

namespace {

// The number of letters to insert, delete or change to turn one name into the other.
int EditDistance(const QString &a, const QString &b)
{
    std::vector<int> row(size_t(b.size()) + 1);
    for (size_t j = 0; j < row.size(); ++j)
        row[j] = int(j);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = int(i);
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const int above = row[size_t(j)];
            const int change = a[i - 1] == b[j - 1] ? 0 : 1;
            row[size_t(j)] = std::min({above + 1, row[size_t(j - 1)] + 1, diagonal + change});
            diagonal = above;
        }
    }
    return row.back();
}

} // namespace

QStringList NearestNames(const QString &wanted, const QStringList &names, int count)
{
    std::vector<std::pair<int, QString>> ranked;
    for (const QString &name : names)
        ranked.emplace_back(EditDistance(wanted.toLower(), name.toLower()), name);
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    QStringList nearest;
    for (const auto &[distance, name] : ranked) {
        if (nearest.size() < count && !nearest.contains(name))
            nearest.append(name);
    }
    return nearest;
}

QString NearestNamesNote(const QString &wanted, const QStringList &names)
{
    const QStringList nearest = NearestNames(wanted, names);
    return nearest.isEmpty() ? QString()
                             : QStringLiteral("; the nearest are: ") + nearest.join(QStringLiteral(", "));
}

} // namespace Engine
