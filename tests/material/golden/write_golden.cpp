// Writes the stored features of every version, byte by byte: see README.md.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>
#include <QString>

#include <bit>
#include <cstdio>

namespace {

/// A feature's payload and its table of references.
class Bytes
{
public:
    Bytes& Number(quint64 value, int bytes)
    {
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
            m_payload.append(static_cast<char>(value >> shift));
        return *this;
    }

    Bytes& Flag(bool value) { return Number(value ? 1 : 0, 1); }
    Bytes& Integer(qint32 value) { return Number(static_cast<quint32>(value), 4); }
    Bytes& Double(double value) { return Number(std::bit_cast<quint64>(value), 8); }
    Bytes& Null() { return Number(0xFFFFFFFFu, 4); }

    Bytes& Text(const QString& value)
    {
        Number(static_cast<quint64>(value.size()) * 2, 4);
        for (const QChar character : value)
            Number(character.unicode(), 2);
        return *this;
    }

    Bytes& ByteString(const QByteArray& value)
    {
        Number(static_cast<quint64>(value.size()), 4);
        m_payload.append(value);
        return *this;
    }

    /// An RGB colour of 8 bits a channel.
    Bytes& Color(int red, int green, int blue, int alpha)
    {
        Number(1, 1);
        for (const int channel : {alpha, red, green, blue})
            Number(static_cast<quint64>(channel) * 0x101, 2);
        return Number(0, 2);
    }

    /// A reference to the feature \a id, 0 for none.
    Bytes& Reference(quint64 id)
    {
        if (id == 0)
            return Number(0, 4);
        if (!m_references.contains(id))
            m_references.append(id);
        return Number(static_cast<quint64>(m_references.indexOf(id)) + 1, 4);
    }

    QByteArray File() const
    {
        Bytes table;
        table.Number(static_cast<quint64>(m_references.size()), 4);
        for (const quint64 reference : m_references)
            table.Number(reference, 8);
        return table.m_payload + m_payload;
    }

private:
    QByteArray m_payload;
    QList<quint64> m_references;
};

QString Text(const char* text)
{
    return QString::fromUtf8(text);
}

/// What every feature begins with.
Bytes Feature(const char* label)
{
    return Bytes().Text(Text(label)).Flag(true);
}

/// What all versions of a material begin with.
Bytes Material()
{
    return Feature("Steel sheet")
        .Text(Text("S235 - 3 mm ø"))
        .Text(Text("S235"))
        .Double(3.0)
        .Text(Text("Structural"))
        .Double(7.85)
        .Text(Text("from the rack"));
}

Bytes Material1(quint64 active)
{
    return Material().Reference(active);
}

Bytes Material2()
{
    return Material().Reference(4).ByteString("json").Text(Text("dropped"));
}

Bytes Material3()
{
    return Material().Reference(4).ByteString("json").ByteString("{key}");
}

Bytes Material4(quint64 active)
{
    return Material().Reference(active).ByteString("json").ByteString("{key}").Color(10, 20, 30, 255);
}

Bytes Material5()
{
    return Material().ByteString("json").ByteString("{key}").Color(10, 20, 30, 255);
}

Bytes Material6()
{
    return Material5().Integer(2).Reference(6).Reference(5);
}

Bytes Material7()
{
    return Material6().Flag(true);
}

Bytes Material7WithEmptyItem()
{
    return Material5().Integer(3).Reference(6).Reference(0).Reference(5).Flag(false);
}

Bytes Material7AsNew()
{
    return Bytes()
        .Null()
        .Flag(true)
        .Text(Text("Material - 0.5 mm"))
        .Text(Text("Generic"))
        .Double(0.5)
        .Text(Text("Metal"))
        .Double(0.1)
        .Text(QString())
        .Null()
        .Null()
        .Color(255, 0, 127, 255)
        .Integer(0)
        .Flag(false);
}

Bytes Packaging1(qint32 form)
{
    return Feature("Coil").Double(30000.0).Double(1250.5).Integer(form).Double(480.25).Text(Text("from the mill"));
}

Bytes Packaging2()
{
    return Packaging1(1).ByteString("{key}");
}

Bytes Packaging3()
{
    return Packaging2().Flag(true);
}

Bytes Packaging4()
{
    return Packaging3().Integer(2).Reference(9).Reference(8);
}

Bytes Packaging4AsNew()
{
    return Bytes()
        .Null()
        .Flag(true)
        .Double(1000.0)
        .Double(500.0)
        .Integer(0)
        .Double(1.0)
        .Null()
        .ByteString(QByteArray())
        .Flag(false)
        .Integer(0);
}

bool Write(const QDir& folder, const char* name, const Bytes& bytes)
{
    QFile file(folder.filePath(Text(name)));
    if (file.exists())
        return true;
    return file.open(QIODevice::WriteOnly) && file.write(bytes.File()) == bytes.File().size() && file.flush();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: write_golden FOLDER\n", stderr);
        return 2;
    }
    const QDir folder(QFile::decodeName(argv[1]));
    bool ok = true;
    ok &= Write(folder, "ZAXMatMaterial.v1.bin", Material1(4));
    ok &= Write(folder, "ZAXMatMaterial.v1.nothing-active.bin", Material1(0));
    ok &= Write(folder, "ZAXMatMaterial.v2.bin", Material2());
    ok &= Write(folder, "ZAXMatMaterial.v3.bin", Material3());
    ok &= Write(folder, "ZAXMatMaterial.v4.bin", Material4(4));
    ok &= Write(folder, "ZAXMatMaterial.v4.lost-active.bin", Material4(7777));
    ok &= Write(folder, "ZAXMatMaterial.v5.bin", Material5());
    ok &= Write(folder, "ZAXMatMaterial.v6.bin", Material6());
    ok &= Write(folder, "ZAXMatMaterial.v7.bin", Material7());
    ok &= Write(folder, "ZAXMatMaterial.v7.empty-item.bin", Material7WithEmptyItem());
    ok &= Write(folder, "ZAXMatMaterial.v7.as-new.bin", Material7AsNew());
    ok &= Write(folder, "ZAXMatPackaging.v1.bin", Packaging1(1));
    ok &= Write(folder, "ZAXMatPackaging.v1.rectangular.bin", Packaging1(0));
    ok &= Write(folder, "ZAXMatPackaging.v2.bin", Packaging2());
    ok &= Write(folder, "ZAXMatPackaging.v3.bin", Packaging3());
    ok &= Write(folder, "ZAXMatPackaging.v4.bin", Packaging4());
    ok &= Write(folder, "ZAXMatPackaging.v4.as-new.bin", Packaging4AsNew());
    ok &= Write(folder, "ZAXMatMaterialExtension.v1.bin", Feature("Piercing").Flag(true));
    ok &= Write(folder, "ZAXMatMaterialExtension.v1.disabled.bin", Feature("Piercing").Flag(false));
    ok &= Write(folder, "ZAXMatPackagingExtension.v1.bin", Feature("Grain").Flag(true));
    ok &= Write(folder, "ZAXMatPackagingExtension.v1.disabled.bin", Feature("Grain").Flag(false));
    ok &= Write(folder, "ZAXMatRoot.v1.bin", Feature("Job 12"));
    return ok ? 0 : 1;
}
