#pragma once
// The compact byte form of record values that the record store keeps and spools.

#include <QByteArray>
#include <QList>
#include <QVarLengthArray>
#include <QVariant>
#include <optional>
#include <functional>

namespace Engine::RecordCodec {

// Appends the row to `out`: its number of values, then each value.
void Encode(const QList<QVariant> &row, QByteArray &out);
// The same for a row of `width` values that `valueAt` gives one by one.
void Encode(int width, const std::function<QVariant(int)> &valueAt, QByteArray &out);
// Reads the row at `at`, which moves past it.
QList<QVariant> Decode(const char *&at);
// Where each value of the row at `at` starts; `at` moves past the row.
void Locate(const char *&at, QVarLengthArray<const char *, 16> &values);
// The value that starts at `at`.
QVariant ValueAt(const char *at);
// The text that starts at `at`, without a copy; nothing when the value there is not a text.
std::optional<QStringView> TextAt(const char *at);

} // namespace Engine::RecordCodec
