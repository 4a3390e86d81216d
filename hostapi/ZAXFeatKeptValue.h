#ifndef ZAXFEATKEPTVALUE_H
#define ZAXFEATKEPTVALUE_H

#include <QByteArray>
#include <QColor>
#include <QDataStream>
#include <QIODevice>
#include <QString>

#include <bit>
#include <type_traits>
#include <variant>

/// What the stream operator of a type writes for a value of it.
struct ZAXFeatStreamedValue
{
    QByteArray bytes;
};

/// The value of a property as undo keeps it. It outlives the module of the property: what is of none of these types is
/// kept as its bytes, which need no code of its type any more.
using ZAXFeatKeptValue = std::variant<bool, double, QString, QByteArray, QColor, ZAXFeatStreamedValue>;

namespace ZAXFeatKeptValues {

template <typename T>
inline constexpr bool isKeptAsItIs =
    std::is_same_v<T, bool> || std::is_same_v<T, double> || std::is_same_v<T, QString> ||
    std::is_same_v<T, QByteArray> || std::is_same_v<T, QColor>;

template <typename T>
ZAXFeatStreamedValue Streamed(const T& value)
{
    ZAXFeatStreamedValue streamed;
    QDataStream stream(&streamed.bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << value;
    return streamed;
}

template <typename T>
ZAXFeatKeptValue Keep(const T& value)
{
    if constexpr (isKeptAsItIs<T>)
        return value;
    else
        return Streamed(value);
}

/// The value that Keep() was given; \a kept must come from a T.
template <typename T>
T Restored(const ZAXFeatKeptValue& kept)
{
    if constexpr (isKeptAsItIs<T>) {
        return std::get<T>(kept);
    } else {
        QDataStream stream(std::get<ZAXFeatStreamedValue>(kept).bytes);
        stream.setVersion(QDataStream::Qt_6_4);
        T value{};
        stream >> value;
        return value;
    }
}

inline bool IsSame(bool a, bool b)
{
    return a == b;
}

inline bool IsSame(double a, double b)
{
    return std::bit_cast<quint64>(a) == std::bit_cast<quint64>(b);
}

inline bool IsSame(const QString& a, const QString& b)
{
    return a == b && a.isNull() == b.isNull();
}

inline bool IsSame(const QByteArray& a, const QByteArray& b)
{
    return a == b && a.isNull() == b.isNull();
}

inline bool IsSame(const ZAXFeatStreamedValue& a, const ZAXFeatStreamedValue& b)
{
    return a.bytes == b.bytes;
}

inline bool IsSame(const QColor& a, const QColor& b)
{
    // Of other models, colours that are stored differently may be equal.
    return a.spec() == QColor::Rgb && b.spec() == QColor::Rgb ? a == b : IsSame(Streamed(a), Streamed(b));
}

/// Whether both are stored as the same bytes: bit for bit, and what is null is not what is empty.
inline bool IsSame(const ZAXFeatKeptValue& a, const ZAXFeatKeptValue& b)
{
    return a.index() == b.index() &&
           std::visit([&b](const auto& value) { return IsSame(value, std::get<std::decay_t<decltype(value)>>(b)); }, a);
}

} // namespace ZAXFeatKeptValues

#endif
