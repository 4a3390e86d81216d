#include "ZAXMatValues.h"

#include <QMutex>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <utility>

/// Room for the values of several tables, given back with the last of them.
class ZAXMatValuesBlock : public QSharedData
{
public:
    /// What is larger would leave too much of a block unused.
    static constexpr std::size_t largest = 1024;

    /// The next \a size bytes, for something aligned as pointers are; null when there are not as many left.
    void* Take(std::size_t size)
    {
        if (size > m_room.size() - m_used)
            return nullptr;
        return m_room.data() + std::exchange(m_used, m_used + size);
    }

private:
    // A record that outlives its catalogue keeps a block, so they are not large.
    static constexpr std::size_t size = 16384;

    std::size_t m_used = 0;
    alignas(void*) std::array<std::byte, size - 2 * sizeof(std::size_t)> m_room;
};

/// The values of one table, which stand behind it in the same piece of memory: one for each name of its schema.
class ZAXMatValuesData : public QSharedData
{
public:
    using Schema = QSharedDataPointer<ZAXMatSchema>;
    using Block = QExplicitlySharedDataPointer<ZAXMatValuesBlock>;

    /// Values for all names of \a schema, moved from what \a take() gives for each, within \a block if there is one.
    template <typename Take>
    static ZAXMatValuesData* Make(const Schema& schema, Take take, Block* block = nullptr);
    static void operator delete(ZAXMatValuesData* data, std::destroying_delete_t);
    Q_DISABLE_COPY_MOVE(ZAXMatValuesData)
    ~ZAXMatValuesData() { std::ranges::destroy(Values()); }

    const Schema& GetSchema() const { return m_schema; }
    std::span<ZAXMatValue> Values() { return {reinterpret_cast<ZAXMatValue*>(this + 1), m_count}; }
    std::span<const ZAXMatValue> Values() const { return {reinterpret_cast<const ZAXMatValue*>(this + 1), m_count}; }

private:
    ZAXMatValuesData(const Schema& schema, const Block& block)
        : m_count(quint32(schema->properties.size())), m_schema(schema), m_block(block)
    {
    }

    const quint32 m_count;
    const Schema m_schema;
    /// Null for a piece of memory of its own.
    Block m_block;
};
static_assert(alignof(ZAXMatValuesData) >= alignof(ZAXMatValue));

template <typename Take>
ZAXMatValuesData* ZAXMatValuesData::Make(const Schema& schema, Take take, Block* block)
{
    const std::size_t size = sizeof(ZAXMatValuesData) + schema->properties.size() * sizeof(ZAXMatValue);
    void* place = nullptr;
    if (block && size <= ZAXMatValuesBlock::largest) {
        place = *block ? (*block)->Take(size) : nullptr;
        if (!place) {
            block->reset(new ZAXMatValuesBlock);
            place = (*block)->Take(size);
        }
    }
    auto* const data = place ? new (place) ZAXMatValuesData(schema, *block)
                             : new (::operator new(size)) ZAXMatValuesData(schema, Block());
    ZAXMatValue* value = data->Values().data();
    for (std::size_t i = 0; i < data->m_count; ++i, ++value)
        new (value) ZAXMatValue(take(i));
    return data;
}

void ZAXMatValuesData::operator delete(ZAXMatValuesData* data, std::destroying_delete_t)
{
    const Block block = std::move(data->m_block);
    data->~ZAXMatValuesData();
    if (!block)
        ::operator delete(data);
}

template <>
ZAXMatValuesData* QSharedDataPointer<ZAXMatValuesData>::clone()
{
    const ZAXMatValuesData& shared = *d;
    return ZAXMatValuesData::Make(shared.GetSchema(), [&](std::size_t i) { return shared.Values()[i]; });
}

namespace {

constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

bool IsSameName(QByteArrayView a, QByteArrayView b)
{
    return a.size() == b.size() && (a.isEmpty() || std::memcmp(a.data(), b.data(), std::size_t(a.size())) == 0);
}

bool IsNameBefore(QByteArrayView a, QByteArrayView b)
{
    const auto common = std::size_t(std::min(a.size(), b.size()));
    const int order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    return order != 0 ? order < 0 : a.size() < b.size();
}

/// Looked at one by one, most names differ in their length; only in a long table is it worth it to use the order.
template <typename Iterator, typename NameOf>
Iterator FindName(Iterator begin, Iterator end, QByteArrayView name, NameOf nameOf)
{
    constexpr int few = 16;
    if (end - begin <= few)
        return std::find_if(begin, end, [&](const auto& item) { return IsSameName(nameOf(item), name); });
    const auto found = std::lower_bound(
        begin, end, name, [&](const auto& item, QByteArrayView other) { return IsNameBefore(nameOf(item), other); });
    return found != end && IsSameName(nameOf(*found), name) ? found : end;
}

/// The items from \a begin on in the order of their names, with the last one of those of the same name alone. Returns
/// the new end.
template <typename Iterator, typename NameOf>
Iterator ArrangeNames(Iterator begin, Iterator end, NameOf nameOf)
{
    const auto isBefore = [&](const auto& a, const auto& b) { return IsNameBefore(nameOf(a), nameOf(b)); };
    const auto isNotBefore = [&](const auto& a, const auto& b) { return !isBefore(a, b); };
    if (std::adjacent_find(begin, end, isNotBefore) == end)
        return end;
    std::stable_sort(begin, end, isBefore);
    Iterator kept = begin;
    for (Iterator item = begin; item != end; ++item) {
        const Iterator next = std::next(item);
        if (next != end && IsSameName(nameOf(*item), nameOf(*next)))
            continue;
        if (kept != item)
            *kept = std::move(*item);
        ++kept;
    }
    return kept;
}

const auto keyOf = [](const auto& extension) { return QByteArrayView(extension.key); };
const auto nameOf = [](const QByteArray& property) { return QByteArrayView(property); };

/// The schemas that were made last, for records to come. Records are read in several threads.
class RecentSchemas
{
public:
    template <typename Predicate, typename Make>
    QSharedDataPointer<ZAXMatSchema> Find(Predicate isWanted, Make make)
    {
        const QMutexLocker locker(&m_mutex);
        const auto found = std::ranges::find_if(m_schemas, isWanted);
        if (found != m_schemas.end())
            return *found;
        m_next = (m_next + 1) % m_schemas.size();
        return m_schemas[m_next] = make();
    }

private:
    QMutex m_mutex;
    std::array<QSharedDataPointer<ZAXMatSchema>, 8> m_schemas;
    std::size_t m_next = 0;
};

RecentSchemas& Recent()
{
    static RecentSchemas schemas;
    return schemas;
}

} // namespace

ZAXMatValues::ZAXMatValues() = default;

ZAXMatValues::ZAXMatValues(const ZAXMatValues& other) = default;

ZAXMatValues::ZAXMatValues(ZAXMatValues&& other) noexcept = default;

ZAXMatValues& ZAXMatValues::operator=(const ZAXMatValues& other) = default;

ZAXMatValues& ZAXMatValues::operator=(ZAXMatValues&& other) noexcept = default;

ZAXMatValues::~ZAXMatValues() = default;

const ZAXMatValues::Extensions& ZAXMatValues::GetExtensions() const
{
    static const Extensions none;
    return m_data ? m_data->GetSchema()->extensions : none;
}

const ZAXMatValues::Extension* ZAXMatValues::FindExtension(QByteArrayView extension) const
{
    if (!m_data)
        return nullptr;
    const Extensions& extensions = m_data->GetSchema()->extensions;
    const auto found = FindName(extensions.begin(), extensions.end(), extension, keyOf);
    return found != extensions.end() ? &*found : nullptr;
}

const QByteArray& ZAXMatValues::GetProperty(std::size_t position) const
{
    return m_data->GetSchema()->properties[position];
}

const ZAXMatValue& ZAXMatValues::GetValue(std::size_t position) const
{
    return m_data->Values()[position];
}

void ZAXMatValues::SetValue(std::size_t position, ZAXMatValue value)
{
    m_data->Values()[position] = std::move(value);
}

std::size_t ZAXMatValues::PositionOf(QByteArrayView extension, QByteArrayView property) const
{
    const Extension* const table = FindExtension(extension);
    if (!table)
        return nowhere;
    const QByteArray* const names = m_data->GetSchema()->properties.data();
    const auto* const end = names + table->end;
    const auto* const found = FindName(names + table->begin, end, property, nameOf);
    return found != end ? std::size_t(found - names) : nowhere;
}

const ZAXMatValue* ZAXMatValues::Find(QByteArrayView extension, QByteArrayView property) const
{
    const std::size_t position = PositionOf(extension, property);
    return position != nowhere ? &m_data->Values()[position] : nullptr;
}

bool ZAXMatValues::Insert(const QByteArray& extension, const QByteArray& property, ZAXMatValue value)
{
    if (const std::size_t position = PositionOf(extension, property); position != nowhere) {
        SetValue(position, std::move(value));
        return true;
    }
    QSharedDataPointer<ZAXMatSchema> schema(m_data ? std::as_const(m_data)->GetSchema()
                                                   : ZAXMatValuesData::Schema(new ZAXMatSchema));
    auto table = std::ranges::lower_bound(schema->extensions, QByteArrayView(extension), IsNameBefore, keyOf);
    if (table == schema->extensions.end() || table->key != extension) {
        const std::size_t at = table == schema->extensions.end() ? schema->properties.size() : table->begin;
        table = schema->extensions.insert(table, {extension, at, at});
    }
    const auto names = schema->properties.begin();
    const auto name =
        std::lower_bound(names + std::ptrdiff_t(table->begin), names + std::ptrdiff_t(table->end), property,
                         [](const QByteArray& a, const QByteArray& b) { return IsNameBefore(a, b); });
    const auto position = std::size_t(name - names);
    schema->properties.insert(name, property);
    ++table->end;
    for (auto later = std::next(table); later != schema->extensions.end(); ++later) {
        ++later->begin;
        ++later->end;
    }
    m_data = ZAXMatValuesData::Make(
        schema, [&](std::size_t i) { return i == position ? value : GetValue(i < position ? i : i - 1); });
    return false;
}

void ZAXMatValues::Remove(QByteArrayView extension, QByteArrayView property)
{
    const std::size_t position = PositionOf(extension, property);
    if (position == nowhere)
        return;
    QSharedDataPointer<ZAXMatSchema> schema(std::as_const(m_data)->GetSchema());
    schema->properties.erase(schema->properties.begin() + std::ptrdiff_t(position));
    for (Extension& table : schema->extensions) {
        table.begin -= table.begin > position ? 1 : 0;
        table.end -= table.end > position ? 1 : 0;
    }
    m_data = ZAXMatValuesData::Make(schema, [&](std::size_t i) { return GetValue(i < position ? i : i + 1); });
}

bool ZAXMatValues::operator==(const ZAXMatValues& other) const
{
    if (m_data == other.m_data)
        return true;
    const auto isSameExtension = [](const Extension& a, const Extension& b) {
        return a.end == b.end && IsSameName(a.key, b.key);
    };
    if (!std::ranges::equal(GetExtensions(), other.GetExtensions(), isSameExtension))
        return false;
    if (!m_data || !other.m_data)
        return true;
    const bool isSameSchema = m_data->GetSchema() == other.m_data->GetSchema() ||
                              std::ranges::equal(m_data->GetSchema()->properties, other.m_data->GetSchema()->properties,
                                                 IsSameName, nameOf, nameOf);
    const auto isSame = [](const ZAXMatValue& a, const ZAXMatValue& b) { return a.IsSame(b); };
    return isSameSchema && std::ranges::equal(m_data->Values(), other.m_data->Values(), isSame);
}

ZAXMatValueLocator::ZAXMatValueLocator(const QByteArray& extension, const QByteArray& property)
    : m_extension(extension), m_property(property)
{
}

const ZAXMatValue* ZAXMatValueLocator::FindIn(const ZAXMatValues& values)
{
    if (!values.m_data)
        return nullptr;
    if (m_schema.constData() != values.m_data->GetSchema().constData()) {
        m_schema = values.m_data->GetSchema();
        m_position = values.PositionOf(m_extension, m_property);
    }
    return m_position != nowhere ? &values.GetValue(m_position) : nullptr;
}

ZAXMatValuesBuilder::ZAXMatValuesBuilder() = default;

ZAXMatValuesBuilder::~ZAXMatValuesBuilder() = default;

void ZAXMatValuesBuilder::Clear()
{
    m_tables.clear();
    m_items.clear();
}

void ZAXMatValuesBuilder::AddExtension(QByteArrayView extension)
{
    m_tables.push_back({extension, m_items.size(), m_items.size()});
}

void ZAXMatValuesBuilder::AddValue(QByteArrayView property, ZAXMatValue value)
{
    m_items.push_back({property, std::move(value)});
    m_tables.back().end = m_items.size();
}

void ZAXMatValuesBuilder::Add(const ZAXMatValues& values)
{
    for (const ZAXMatValues::Extension& extension : values.GetExtensions()) {
        AddExtension(extension.key);
        for (std::size_t i = extension.begin; i < extension.end; ++i)
            AddValue(values.GetProperty(i), values.GetValue(i));
    }
}

bool ZAXMatValuesBuilder::ArrangeItems(Table& table)
{
    const auto begin = m_items.begin() + std::ptrdiff_t(table.begin);
    const auto end = m_items.begin() + std::ptrdiff_t(table.end);
    const auto newEnd = ArrangeNames(begin, end, [](const Item& item) { return item.property; });
    table.end = std::size_t(newEnd - m_items.begin());
    return newEnd == end;
}

bool ZAXMatValuesBuilder::Arrange()
{
    const auto end = ArrangeNames(m_tables.begin(), m_tables.end(), keyOf);
    bool isUnique = end == m_tables.end();
    m_tables.erase(end, m_tables.end());
    for (Table& table : m_tables)
        isUnique &= ArrangeItems(table);
    return isUnique;
}

bool ZAXMatValuesBuilder::IsOf(const ZAXMatSchema& schema) const
{
    const auto isSameTable = [&](const Table& table, const ZAXMatSchema::Extension& extension) {
        const auto* const names = schema.properties.data() + extension.begin;
        return table.end - table.begin == extension.end - extension.begin && IsSameName(table.key, extension.key) &&
               std::equal(m_items.begin() + std::ptrdiff_t(table.begin), m_items.begin() + std::ptrdiff_t(table.end),
                          names,
                          [](const Item& item, const QByteArray& name) { return IsSameName(item.property, name); });
    };
    return std::ranges::equal(m_tables, schema.extensions, isSameTable);
}

QSharedDataPointer<ZAXMatSchema> ZAXMatValuesBuilder::MakeSchema() const
{
    QSharedDataPointer<ZAXMatSchema> schema(new ZAXMatSchema);
    for (const Table& table : m_tables) {
        const std::size_t begin = schema->properties.size();
        for (std::size_t i = table.begin; i < table.end; ++i)
            schema->properties.push_back(m_items[i].property.toByteArray());
        schema->extensions.push_back({table.key.toByteArray(), begin, schema->properties.size()});
    }
    return schema;
}

QSharedDataPointer<ZAXMatSchema> ZAXMatValuesBuilder::FindSchema() const
{
    return Recent().Find([this](const QSharedDataPointer<ZAXMatSchema>& schema) { return schema && IsOf(*schema); },
                         [this] { return MakeSchema(); });
}

/// The row of values that what was added belongs to.
ZAXMatValuesBuilder::Row& ZAXMatValuesBuilder::FindRow()
{
    const auto row = std::ranges::find_if(m_rows, [this](const Row& row) {
        const ZAXMatSchema* const schema = row.schema.constData();
        return schema && IsOf(*schema);
    });
    if (row != m_rows.end())
        return *row;
    m_nextRow = (m_nextRow + 1) % m_rows.size();
    return m_rows[m_nextRow] = Row{FindSchema(), 0, {}};
}

ZAXMatValues ZAXMatValuesBuilder::Take()
{
    ZAXMatValues values;
    if (m_tables.empty())
        return values;
    Row& row = FindRow();
    auto table = m_tables.begin();
    std::size_t item = table->begin;
    const auto take = [&](std::size_t) {
        // Behind the items of a table there may be others that were replaced.
        while (item == table->end)
            item = (++table)->begin;
        return std::move(m_items[item++].value);
    };
    // A few are not worth a block.
    constexpr int few = 16;
    row.size = std::min(row.size + 1, few);
    values.m_data = ZAXMatValuesData::Make(row.schema, take, row.size == few ? &row.block : nullptr);
    Clear();
    return values;
}
