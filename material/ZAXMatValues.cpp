#include "ZAXMatValues.h"

#include "ZAXMatValueEquality.h"

#include <QMutex>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <utility>

class ZAXMatValues::Data : public QSharedData
{
public:
    explicit Data(const QSharedDataPointer<ZAXMatSchema>& schema) : schema(schema) {}

    QSharedDataPointer<ZAXMatSchema> schema;
    std::vector<QVariant> values;
};

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
    return m_data ? std::as_const(m_data->schema)->extensions : none;
}

const ZAXMatValues::Extension* ZAXMatValues::FindExtension(QByteArrayView extension) const
{
    if (!m_data)
        return nullptr;
    const Extensions& extensions = m_data->schema->extensions;
    const auto found = FindName(extensions.begin(), extensions.end(), extension, keyOf);
    return found != extensions.end() ? &*found : nullptr;
}

const QByteArray& ZAXMatValues::GetProperty(std::size_t position) const
{
    return std::as_const(m_data->schema)->properties[position];
}

const QVariant& ZAXMatValues::GetValue(std::size_t position) const
{
    return m_data->values[position];
}

void ZAXMatValues::SetValue(std::size_t position, const QVariant& value)
{
    m_data->values[position] = value;
}

std::size_t ZAXMatValues::PositionOf(QByteArrayView extension, QByteArrayView property) const
{
    const Extension* const table = FindExtension(extension);
    if (!table)
        return nowhere;
    const QByteArray* const names = m_data->schema->properties.data();
    const auto* const end = names + table->end;
    const auto* const found = FindName(names + table->begin, end, property, nameOf);
    return found != end ? std::size_t(found - names) : nowhere;
}

const QVariant* ZAXMatValues::Find(QByteArrayView extension, QByteArrayView property) const
{
    const std::size_t position = PositionOf(extension, property);
    return position != nowhere ? &m_data->values[position] : nullptr;
}

bool ZAXMatValues::Insert(const QByteArray& extension, const QByteArray& property, const QVariant& value)
{
    if (!m_data)
        m_data = new Data(QSharedDataPointer<ZAXMatSchema>(new ZAXMatSchema));
    if (const std::size_t position = PositionOf(extension, property); position != nowhere) {
        m_data->values[position] = value;
        return true;
    }
    Data& data = *m_data;
    ZAXMatSchema& schema = *data.schema;
    auto table = std::ranges::lower_bound(schema.extensions, QByteArrayView(extension), IsNameBefore, keyOf);
    if (table == schema.extensions.end() || table->key != extension) {
        const std::size_t at = table == schema.extensions.end() ? schema.properties.size() : table->begin;
        table = schema.extensions.insert(table, {extension, at, at});
    }
    const auto names = schema.properties.begin();
    const auto name =
        std::lower_bound(names + std::ptrdiff_t(table->begin), names + std::ptrdiff_t(table->end), property,
                         [](const QByteArray& a, const QByteArray& b) { return IsNameBefore(a, b); });
    data.values.insert(data.values.begin() + (name - names), value);
    schema.properties.insert(name, property);
    ++table->end;
    for (auto later = std::next(table); later != schema.extensions.end(); ++later) {
        ++later->begin;
        ++later->end;
    }
    return false;
}

void ZAXMatValues::Remove(QByteArrayView extension, QByteArrayView property)
{
    const std::size_t position = std::as_const(*this).PositionOf(extension, property);
    if (position == nowhere)
        return;
    Data& data = *m_data;
    ZAXMatSchema& schema = *data.schema;
    data.values.erase(data.values.begin() + std::ptrdiff_t(position));
    schema.properties.erase(schema.properties.begin() + std::ptrdiff_t(position));
    for (Extension& table : schema.extensions) {
        table.begin -= table.begin > position ? 1 : 0;
        table.end -= table.end > position ? 1 : 0;
    }
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
    const bool isSameSchema =
        m_data->schema == other.m_data->schema ||
        std::ranges::equal(m_data->schema->properties, other.m_data->schema->properties, IsSameName, nameOf, nameOf);
    return isSameSchema && std::ranges::equal(m_data->values, other.m_data->values, ZAXMatIsSameValue);
}

void ZAXMatValuesBuilder::Clear()
{
    m_tables.clear();
    m_items.clear();
}

void ZAXMatValuesBuilder::AddExtension(QByteArrayView extension)
{
    m_tables.push_back({extension, m_items.size(), m_items.size()});
}

void ZAXMatValuesBuilder::AddValue(QByteArrayView property, QVariant value)
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

ZAXMatValues ZAXMatValuesBuilder::Take()
{
    ZAXMatValues values;
    if (m_tables.empty())
        return values;
    values.m_data = new ZAXMatValues::Data(FindSchema());
    values.m_data->values.reserve(std::as_const(values.m_data->schema)->properties.size());
    for (const Table& table : m_tables) {
        for (std::size_t i = table.begin; i < table.end; ++i)
            values.m_data->values.push_back(std::move(m_items[i].value));
    }
    Clear();
    return values;
}
