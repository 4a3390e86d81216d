#include "ZAXMatRecordTable.h"

#include <utility>

qsizetype ZAXMatRecordTable::PositionOf(const QByteArray& key) const
{
    // A key that was listed is shared with the list: it is told without its bytes, as long as they come in order.
    const bool isNext = m_isInOrder && m_next < m_keys.size() && m_keys.at(m_next).constData() == key.constData() &&
                        m_keys.at(m_next).size() == key.size();
    const qsizetype position = isNext ? m_next : LookUp(key);
    m_isInOrder = position == m_next;
    m_next = position + 1;
    return position;
}

qsizetype ZAXMatRecordTable::LookUp(const QByteArray& key) const
{
    if (m_positions.size() != m_keys.size()) {
        m_positions.clear();
        m_positions.reserve(m_keys.size());
        for (qsizetype i = 0; i < m_keys.size(); ++i)
            m_positions.insert(m_keys.at(i), i);
    }
    return m_positions.value(key, nowhere);
}

const ZAXMatDefinition* ZAXMatRecordTable::Find(const QByteArray& key) const
{
    const qsizetype position = PositionOf(key);
    return position != nowhere ? &m_records.at(position) : nullptr;
}

ZAXMatDefinition* ZAXMatRecordTable::Find(const QByteArray& key)
{
    return const_cast<ZAXMatDefinition*>(std::as_const(*this).Find(key));
}

ZAXMatDefinition ZAXMatRecordTable::Value(const QByteArray& key) const
{
    const ZAXMatDefinition* const record = Find(key);
    return record ? *record : ZAXMatDefinition();
}

ZAXMatDefinition& ZAXMatRecordTable::operator[](const QByteArray& key)
{
    if (!Find(key))
        Insert(key, ZAXMatDefinition());
    return *Find(key);
}

void ZAXMatRecordTable::Insert(const QByteArray& key, const ZAXMatDefinition& record)
{
    const bool isBehindAll = m_areKeysAscending && (m_keys.isEmpty() || m_keys.constLast() < key);
    if (ZAXMatDefinition* const stored = isBehindAll ? nullptr : Find(key)) {
        *stored = record;
        return;
    }
    // What may not be had comes first: a failure leaves the table as it was.
    m_records.append(record);
    try {
        m_keys.append(key);
    } catch (...) {
        m_records.removeLast();
        throw;
    }
    m_areKeysAscending = isBehindAll;
    if (!m_positions.isEmpty())
        m_positions.insert(m_keys.constLast(), m_keys.size() - 1);
}

bool ZAXMatRecordTable::Remove(const QByteArray& key)
{
    const qsizetype position = PositionOf(key);
    if (position == nowhere)
        return false;
    const qsizetype last = m_keys.size() - 1;
    m_areKeysAscending &= position == last;
    m_positions.remove(m_keys.at(position));
    if (position != last) {
        if (!m_positions.isEmpty())
            m_positions[m_keys.at(last)] = position;
        m_keys.swapItemsAt(position, last);
        m_records.swapItemsAt(position, last);
    }
    m_keys.removeLast();
    m_records.removeLast();
    return true;
}

void ZAXMatRecordTable::Reserve(qsizetype size)
{
    m_keys.reserve(size);
    m_records.reserve(size);
}

void ZAXMatRecordTable::Clear()
{
    m_positions.clear();
    m_keys.clear();
    m_records.clear();
    m_areKeysAscending = true;
}

void ZAXMatRecordTable::Swap(ZAXMatRecordTable& other) noexcept
{
    m_keys.swap(other.m_keys);
    m_records.swap(other.m_records);
    m_positions.swap(other.m_positions);
    std::swap(m_areKeysAscending, other.m_areKeysAscending);
    std::swap(m_next, other.m_next);
    std::swap(m_isInOrder, other.m_isInOrder);
}
