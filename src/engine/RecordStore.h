#pragma once
// The records of one run (or of the saved data): field names, their value types and the rows, counted as
// they arrive. Rows are kept in a compact form in blocks; beyond a bound the blocks go to a temporary
// file, so that memory does not grow with the number of rows.

#include <QList>
#include <QString>
#include <QStringList>
#include <QVarLengthArray>
#include <QVariant>
#include <optional>
#include <functional>
#include <memory>

namespace Engine {

// A row read in place from the store, without copying its values; valid during RecordStore::visit.
class RecordView
{
public:
    int size() const { return int(m_values.size()); }
    QVariant value(int index) const;
    // The value's text without a copy of it, when it is a text.
    std::optional<QStringView> text(int index) const;

private:
    friend class RecordStore;
    QVarLengthArray<const char *, 16> m_values;
};

class RecordStore
{
public:
    using Row = QList<QVariant>;

    // Bytes of rows kept in memory before the store spools to its file.
    static constexpr qint64 DefaultMemoryBound = 16 << 20;

    explicit RecordStore(qint64 memoryBound = DefaultMemoryBound);
    ~RecordStore();
    // A copy shares the rows written so far; appending to either one afterwards keeps them apart.
    RecordStore(const RecordStore &other);
    RecordStore &operator=(const RecordStore &other);

    void setFields(const QStringList &names, const QList<int> &valueTypes);
    // Raises EngineError when the temporary file cannot be written.
    void append(const Row &row);
    // A row of `width` values that `valueAt` gives one by one, without a list of them in between.
    void append(int width, const std::function<QVariant(int)> &valueAt);
    void clear();

    int count() const;
    Row row(int index) const;
    // Each of the rows in the given order, read in place: for exports that write every row once.
    void visit(const QList<int> &rows, const std::function<void(const RecordView &)> &visitor) const;
    const QStringList &fieldNames() const { return m_names; }
    // Value type codes (Codes.h) of the fields.
    const QList<int> &fieldTypes() const { return m_types; }
    // Index of a field by name, letters compared in any case; -1 when there is none.
    int fieldIndex(const QString &name) const;
    // True once rows have gone to the temporary file.
    bool spooled() const;

    // The value type code that stands for a value read from a database.
    static int valueTypeOf(QMetaType type);
    // A text read back from a file, turned into the value of the field's type.
    static QVariant fromText(const QString &text, int valueType);
    // The text form of a value that fromText reads back.
    static QString toText(const QVariant &value);

private:
    class Storage;
    void detach();

    qint64 m_memoryBound;
    QStringList m_names;
    QList<int> m_types;
    std::shared_ptr<Storage> m_storage;
};

} // namespace Engine
