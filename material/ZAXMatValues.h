#ifndef ZAXMATVALUES_H
#define ZAXMATVALUES_H

// Private to the library: not installed, and free to change.

#include <QByteArray>
#include <QList>
#include <QSharedData>
#include <QVariant>

#include <vector>

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
    const QVariant& GetValue(std::size_t position) const;
    void SetValue(std::size_t position, const QVariant& value);

    /// The value of a pair; null when the pair is not there.
    const QVariant* Find(QByteArrayView extension, QByteArrayView property) const;
    /// Stores \a value, adding the pair, and its extension, if need be. False when the pair was not there.
    bool Insert(const QByteArray& extension, const QByteArray& property, const QVariant& value);
    /// Takes a pair out; its extension stays. A pair that is not there is ignored.
    void Remove(QByteArrayView extension, QByteArrayView property);

    /// The same pairs with values that ZAXMatIsSameValue() finds the same.
    bool operator==(const ZAXMatValues& other) const;

private:
    friend class ZAXMatValuesBuilder;
    class Data;

    std::size_t PositionOf(QByteArrayView extension, QByteArrayView property) const;

    QSharedDataPointer<Data> m_data;
};

/// Makes the values of one record after the other, from names that stand elsewhere for as long.
class ZAXMatValuesBuilder
{
public:
    /// Forgets what was added.
    void Clear();
    /// Adds a table, which replaces any of the same key that was added before.
    void AddExtension(QByteArrayView extension);
    /// Adds a value to that table, in the place of any that it has under this name.
    void AddValue(QByteArrayView property, QVariant value);
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
        QVariant value;
    };

    bool ArrangeItems(Table& table);
    bool IsOf(const ZAXMatSchema& schema) const;
    QSharedDataPointer<ZAXMatSchema> MakeSchema() const;
    QSharedDataPointer<ZAXMatSchema> FindSchema() const;

    std::vector<Table> m_tables;
    std::vector<Item> m_items;
};

#endif
