#ifndef ZAXMATRECORDTABLE_H
#define ZAXMATRECORDTABLE_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"

#include <QByteArrayView>
#include <QHash>
#include <QList>

/// Records by key, one behind the other in the order in which their keys came: what goes through all of them, or looks
/// for one after the other, goes through memory in one direction. Only a removal puts the last one into the gap.
///
/// Whoever only lists the records of a file never looks one up, so the table of positions is made by the first look-up.
class ZAXMatRecordTable
{
public:
    using Records = QList<ZAXMatDefinition>;

    ZAXMatRecordTable() = default;
    Q_DISABLE_COPY_MOVE(ZAXMatRecordTable)
    ~ZAXMatRecordTable() = default;

    /// The keys, of which the first is that of the first record, and so on.
    const QList<QByteArray>& GetKeys() const { return m_keys; }
    const Records& GetRecords() const { return m_records; }
    /// The records, to be changed.
    Records::iterator begin() { return m_records.begin(); }
    Records::iterator end() { return m_records.end(); }

    /// The record under \a key; null when there is none. It stays at its address until the table changes.
    const ZAXMatDefinition* Find(const QByteArray& key) const;
    ZAXMatDefinition* Find(const QByteArray& key);
    /// The record under \a key, or one without anything.
    ZAXMatDefinition Value(const QByteArray& key) const;

    /// The record under \a key, which is made without anything if there is none.
    ZAXMatDefinition& operator[](const QByteArray& key);
    /// Stores \a record, in the place of any that stands under \a key, which need not be its own.
    void Insert(const QByteArray& key, const ZAXMatDefinition& record);
    /// Takes a record out; false when there is none.
    bool Remove(const QByteArray& key);
    void Reserve(qsizetype size);
    void Clear();
    void Swap(ZAXMatRecordTable& other) noexcept;

private:
    static constexpr qsizetype nowhere = -1;

    qsizetype PositionOf(const QByteArray& key) const;
    qsizetype LookUp(const QByteArray& key) const;

    QList<QByteArray> m_keys;
    Records m_records;
    bool m_areKeysAscending = true;
    /// By the bytes of the keys above: of all of them, or, as long as nobody has looked for one, of none.
    mutable QHash<QByteArrayView, qsizetype> m_positions;
    /// The position behind the one that was looked for last, and whether that one was expected.
    mutable qsizetype m_next = 0;
    mutable bool m_isInOrder = true;
};

#endif
