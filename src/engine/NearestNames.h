#pragma once
// The names most like a misspelt one, for messages that name what to fix.

#include <QStringList>

namespace Engine {

// Up to `count` of `names`, the closest to `wanted` first (letters compared in any case).
QStringList NearestNames(const QString &wanted, const QStringList &names, int count = 3);
// "; the nearest are: a, b, c", or nothing when there are no names.
QString NearestNamesNote(const QString &wanted, const QStringList &names);

} // namespace Engine
