#include "ZAXMatValue.h"

#include "ZAXMatValueEquality.h"

namespace {

/// What a QVariant of the very type \a T holds.
template <typename T>
const T& ContentOf(const QVariant& value)
{
    return *static_cast<const T*>(value.constData());
}

} // namespace

ZAXMatValue::ZAXMatValue(const QVariant& value)
{
    const int type = value.typeId();
    if (type == QMetaType::UnknownType)
        return;
    if (type == QMetaType::Nullptr) {
        m_kind = Null;
        return;
    }
    // A QVariant may have a type and yet no value.
    if (type == QMetaType::Bool && !value.isNull()) {
        *this = ZAXMatValue(ContentOf<bool>(value));
    } else if (type == QMetaType::LongLong && !value.isNull()) {
        *this = ZAXMatValue(ContentOf<qlonglong>(value));
    } else if (type == QMetaType::Double && !value.isNull()) {
        *this = ZAXMatValue(ContentOf<double>(value));
    } else {
        m_content.shared = new Shared(value);
        m_content.shared->ref.ref();
        m_kind = type == QMetaType::QString ? Text : Other;
    }
}

QVariant ZAXMatValue::ToVariant() const
{
    switch (m_kind) {
    case Invalid:
        break;
    case Null:
        return QVariant::fromValue(nullptr);
    case Boolean:
        return QVariant(m_content.integer != 0);
    case Integer:
        return QVariant(m_content.integer);
    case Number:
        return QVariant(m_content.number);
    case Text:
    case Other:
        return m_content.shared->value;
    }
    return {};
}

std::optional<qlonglong> ZAXMatValue::ToInteger() const
{
    return m_kind == Integer ? std::optional(m_content.integer) : std::nullopt;
}

const QString& ZAXMatValue::GetText() const
{
    return ContentOf<QString>(m_content.shared->value);
}

bool ZAXMatValue::IsSame(const ZAXMatValue& other) const
{
    if (m_kind == Number && other.m_kind == Number)
        return m_content.number == other.m_content.number;
    if (m_kind == Text && other.m_kind == Text)
        return m_content.shared == other.m_content.shared || GetText() == other.GetText();
    return ZAXMatIsSameValue(ToVariant(), other.ToVariant());
}

bool ZAXMatValue::IsSame(const QVariant& other) const
{
    const int type = other.typeId();
    if (m_kind == Number && type == QMetaType::Double)
        return m_content.number == ContentOf<double>(other);
    if (m_kind == Text && type == QMetaType::QString)
        return GetText() == ContentOf<QString>(other);
    return ZAXMatIsSameValue(ToVariant(), other);
}
