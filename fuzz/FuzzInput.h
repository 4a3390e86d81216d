#ifndef FUZZINPUT_H
#define FUZZINPUT_H

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

/// Ends the program unless \a holds, so that the fuzzer keeps the input as a finding.
inline void Require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
}

/// Takes an input apart, from its front. Behind the end there are zeros.
class FuzzInput
{
public:
    FuzzInput(const uint8_t* data, size_t size)
        : m_bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size))
    {
    }

    bool IsEmpty() const { return m_bytes.isEmpty(); }
    quint8 Byte() { return static_cast<quint8>(Bytes(1).isEmpty() ? 0 : m_taken.front()); }
    /// A number below \a limit, which is at most 256.
    int Below(qsizetype limit) { return static_cast<int>(Byte() % limit); }
    template <typename T>
    const T& OneOf(const QList<T>& choices)
    {
        return choices.at(Below(choices.size()));
    }
    QByteArray Bytes(qsizetype count)
    {
        m_taken = m_bytes.first(std::min(count, m_bytes.size()));
        m_bytes = m_bytes.sliced(m_taken.size());
        return m_taken.toByteArray();
    }
    QByteArray Rest() { return Bytes(m_bytes.size()); }

private:
    QByteArrayView m_bytes;
    QByteArrayView m_taken;
};

/// A folder of this program alone, in memory if there is room for it there. It goes with the program.
QString FuzzFolder();

#endif
