#ifndef ZAXMATVALUES_H
#define ZAXMATVALUES_H

// Private to the library: not installed, and free to change.

#include "ZAXMatValue.h"

#include <QByteArray>
#include <QSharedData>

#include <array>
#include <vector>

class ZAXMatValuesBlock;
class ZAXMatValuesData;

/// The names of a table of values, in the order of their bytes. Records of one kind share theirs.
class ZAXMatSchema : public QSharedData
{
public:
    /// An extension key and where the names of its properties stand.
    struct Extension
    {
        QByteArray key;
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    std::vector<Extension> extensions;
    /// Those of all extensions, one after the other.
    std::vector<QByteArray> properties;
};

/// The values of a record, by extension key and property name: what a hash of hashes would be, at a tenth of its size.
/// Records hold a few values each, so a name is looked for one by one, and adding one moves those behind it.
///
/// Implicitly shared. A value is addressed by its position, from 0 up to GetSize(), once a name is found.
class ZAXMatValues
{
public:
    using Extension = ZAXMatSchema::Extension;
    using Extensions = std::vector<Extension>;

    ZAXMatValues();
    ZAXMatValues(const ZAXMatValues& other);
    ZAXMatValues(ZAXMatValues&& other) noexcept;
    ZAXMatValues& operator=(const ZAXMatValues& other);
    ZAXMatValues& operator=(ZAXMatValues&& other) noexcept;
    ~ZAXMatValues();

    /// The extensions, those without properties included.
    const Extensions& GetExtensions() const;
    /// The extension of that key; null when there is none.
    const Extension* FindExtension(QByteArrayView extension) const;
    const QByteArray& GetProperty(std::size_t position) const;
    const ZAXMatValue& GetValue(std::size_t position) const;
    void SetValue(std::size_t position, ZAXMatValue value);

    /// The value of a pair; null when the pair is not there.
    const ZAXMatValue* Find(QByteArrayView extension, QByteArrayView property) const;
    /// Stores \a value, adding the pair, and its extension, if need be. False when the pair was not there.
    bool Insert(const QByteArray& extension, const QByteArray& property, ZAXMatValue value);
    /// Takes a pair out; its extension stays. A pair that is not there is ignored.
    void Remove(QByteArrayView extension, QByteArrayView property);

    /// The same pairs with the same values.
    bool operator==(const ZAXMatValues& other) const;

private:
    friend class ZAXMatValueLocator;
    friend class ZAXMatValuesBuilder;

    std::size_t PositionOf(QByteArrayView extension, QByteArrayView property) const;

    QSharedDataPointer<ZAXMatValuesData> m_data;
};

/// Where the value of one pair stands, in record after record: those of the same schema have it at the same position.
class ZAXMatValueLocator
{
public:
    ZAXMatValueLocator(const QByteArray& extension, const QByteArray& property);

    /// As ZAXMatValues::Find().
    const ZAXMatValue* FindIn(const ZAXMatValues& values);

private:
    QByteArray m_extension;
    QByteArray m_property;
    /// That of the record before, which cannot change as long as it is held here.
    QSharedDataPointer<ZAXMatSchema> m_schema;
    std::size_t m_position = 0;
};

/// Makes the values of one record after the other, from names that stand elsewhere for as long.
///
/// Where there are many of the same schema, they stand in blocks, one behind the other as they are made: what looks at
/// all materials of a catalogue need not pass by their packagings.
class ZAXMatValuesBuilder
{
public:
    ZAXMatValuesBuilder();
    Q_DISABLE_COPY_MOVE(ZAXMatValuesBuilder)
    ~ZAXMatValuesBuilder();

    /// Forgets what was added.
    void Clear();
    /// Adds a table, which replaces any of the same key that was added before.
    void AddExtension(QByteArrayView extension);
    /// Adds a value to that table, in the place of any that it has under this name.
    void AddValue(QByteArrayView property, ZAXMatValue value);
    /// Adds all tables of \a values.
    void Add(const ZAXMatValues& values);

    /// Puts in order what was added. False when something of it was replaced.
    bool Arrange();
    /// What was added, as Arrange() left it; the values are moved out.
    ZAXMatValues Take();

private:
    struct Table
    {
        QByteArrayView key;
        std::size_t begin;
        std::size_t end;
    };
    struct Item
    {
        QByteArrayView property;
        ZAXMatValue value;
    };

    /// The values of one schema that were made last.
    struct Row
    {
        QSharedDataPointer<ZAXMatSchema> schema;
        int size = 0;
        QExplicitlySharedDataPointer<ZAXMatValuesBlock> block;
    };

    bool ArrangeItems(Table& table);
    bool IsOf(const ZAXMatSchema& schema) const;
    QSharedDataPointer<ZAXMatSchema> MakeSchema() const;
    QSharedDataPointer<ZAXMatSchema> FindSchema() const;
    Row& FindRow();

    std::vector<Table> m_tables;
    std::vector<Item> m_items;
    std::array<Row, 4> m_rows;
    std::size_t m_nextRow = 0;
};

#endif
