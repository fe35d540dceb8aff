#pragma once
// The records of one run (or of the saved data): field names, their value types and the rows, counted as they
// arrive.

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

namespace Engine {

class RecordStore
{
public:
    using Row = QList<QVariant>;

    void setFields(const QStringList &names, const QList<int> &valueTypes);
    void append(Row row);
    void clear();

    int count() const { return int(m_rows.size()); }
    const Row &row(int index) const { return m_rows[size_t(index)]; }
    const QStringList &fieldNames() const { return m_names; }
    // Value type codes (Codes.h) of the fields.
    const QList<int> &fieldTypes() const { return m_types; }
    // Index of a field by name, letters compared in any case; -1 when there is none.
    int fieldIndex(const QString &name) const;

    // The value type code that stands for a value read from a database.
    static int valueTypeOf(QMetaType type);
    // A text read back from a file, turned into the value of the field's type.
    static QVariant fromText(const QString &text, int valueType);
    // The text form of a value that fromText reads back.
    static QString toText(const QVariant &value);

private:
    QStringList m_names;
    QList<int> m_types;
    std::vector<Row> m_rows;
};

} // namespace Engine
