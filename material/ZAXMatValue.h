#ifndef ZAXMATVALUE_H
#define ZAXMATVALUE_H

// Private to the library: not installed, and free to change.

#include <QSharedData>
#include <QVariant>

#include <cstddef>
#include <optional>
#include <utility>

/// A value of a record: what a QVariant holds, in half the room. Numbers and the like stand in it; a text, or whatever
/// else, stands elsewhere and is shared by all copies.
class ZAXMatValue
{
public:
    /// An invalid QVariant.
    ZAXMatValue() = default;
    explicit ZAXMatValue(const QVariant& value);
    explicit ZAXMatValue(std::nullptr_t) : m_kind(Null) {}
    explicit ZAXMatValue(bool value) : m_kind(Boolean) { m_content.integer = value; }
    explicit ZAXMatValue(qlonglong value) : m_kind(Integer) { m_content.integer = value; }
    explicit ZAXMatValue(double value) : m_kind(Number) { m_content.number = value; }

    ZAXMatValue(const ZAXMatValue& other) : m_content(other.m_content), m_kind(other.m_kind) { Keep(); }
    ZAXMatValue(ZAXMatValue&& other) noexcept : m_content(other.m_content), m_kind(std::exchange(other.m_kind, Invalid))
    {
    }
    ZAXMatValue& operator=(ZAXMatValue other) noexcept
    {
        std::swap(m_content, other.m_content);
        std::swap(m_kind, other.m_kind);
        return *this;
    }
    ~ZAXMatValue()
    {
        if (m_kind >= Text && !m_content.shared->ref.deref())
            delete m_content.shared;
    }

    /// The QVariant that it was made from, type and all.
    QVariant ToVariant() const;
    /// The number if it is a whole one; null otherwise.
    std::optional<qlonglong> ToInteger() const;

    /// Whether a catalogue takes the two for the same, as ZAXMatIsSameValue() does.
    bool IsSame(const ZAXMatValue& other) const;
    bool IsSame(const QVariant& other) const;

private:
    struct Shared : QSharedData
    {
        explicit Shared(const QVariant& value) : value(value) {}
        const QVariant value;
    };

    /// Those from Text on are shared.
    enum Kind : quint8
    {
        Invalid,
        Null,
        Boolean,
        Integer,
        Number,
        Text,
        Other,
    };

    void Keep() const
    {
        if (m_kind >= Text)
            m_content.shared->ref.ref();
    }
    const QString& GetText() const;

    union Content {
        qlonglong integer;
        double number;
        Shared* shared;
    };

    Content m_content{};
    Kind m_kind = Invalid;
};

Q_DECLARE_TYPEINFO(ZAXMatValue, Q_RELOCATABLE_TYPE);

#endif
