#include "ZAXDocumentBytes.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

// Writes the golden documents into a folder; those that are there are left alone.

namespace {

using Class = ZAXDocumentBytes::Class;

const QList<Class> hostClasses{{"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"ZAXFeatFolder", 1, 1}};
constexpr quint32 folder = 2;

/// The fields of a ZAXProbeNote: text, a link, a list of links. The numbers are places in the table of references.
QByteArray Note(const QString& label, const QString& text, quint32 link, const QList<quint32>& links)
{
    QByteArray payload = ZAXDocumentBytes::Feature(label);
    QDataStream data(&payload, QIODevice::Append);
    data.setVersion(QDataStream::Qt_6_4);
    data << text << link << qint32(links.size());
    for (const quint32 place : links)
        data << place;
    return payload;
}

QByteArray Empty()
{
    return ZAXDocumentBytes(0, {}).End();
}

QByteArray Folders()
{
    return ZAXDocumentBytes(9, hostClasses)
        .Object(folder, 1, 0, 0, ZAXDocumentBytes::Feature(QString::fromUtf8("Bleche für Öfen")))
        .Object(folder, 2, 1, 0, ZAXDocumentBytes::Feature(QLatin1String("Steel")))
        .Object(folder, 4, 2, 0, ZAXDocumentBytes::Feature(QString(), false))
        .Object(folder, 3, 1, 1)
        .Object(folder, 7, 0, 1, ZAXDocumentBytes::Feature(QLatin1String("Wood")))
        .End();
}

QByteArray Notes()
{
    constexpr quint32 note = 3;
    return ZAXDocumentBytes(40, hostClasses + QList<Class>{{"ZAXProbeNote", 1, 1}})
        .Object(folder, 1, 0, 0, ZAXDocumentBytes::Feature(QLatin1String("Notes")))
        .Object(note, 2, 1, 0, Note(QString(), QLatin1String("to the next and to nothing"), 1, {2, 0}), {3, 33})
        .Object(note, 3, 1, 1, Note(QLatin1String("Back"), QLatin1String("to itself and back"), 1, {1, 2, 2}), {3, 2})
        .Object(note, 5, 3, 0, Note(QString(), QLatin1String("to the parents"), 1, {2}), {3, 1})
        .Object(note, 6, 0, 1, Note(QString(), QString(), 0, {}))
        .End();
}

QByteArray Foreign()
{
    const QList<Class> classes{{"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"AlienBase", 3, 1},
                               {"AlienMachine", 12, 2},   {"AlienTool", 1, 2},     {"ZAXFeatFolder", 1, 1},
                               {"ZAXFeatFolder", 9, 1}};
    return ZAXDocumentBytes(99, classes)
        .Object(3, 3, 0, 0, QByteArray(200, '\xa5'), {4, 5, 3})
        .Object(4, 4, 3, 0, QByteArray("\0\1\2\3", 4), {3})
        .Object(5, 5, 4, 0, ZAXDocumentBytes::Feature(QLatin1String("Known below unknown")))
        .Object(4, 6, 5, 0, QByteArray(), {99})
        .Object(6, 7, 0, 1, QByteArray("a folder of a newer program"))
        .End();
}

QByteArray Deep()
{
    ZAXDocumentBytes document(30, hostClasses);
    for (quint64 id = 1; id <= 30; ++id)
        document.Object(folder, id, id - 1, 0, ZAXDocumentBytes::Feature(QString::number(id)));
    return document.End();
}

/// Data that look like the frames around them.
QByteArray Deceptive()
{
    const QList<Class> classes{
        {"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"AlienTool", 1, 1}, {"ZAXFeatFolder", 1, 1}};
    const QByteArray decoy = ZAXDocumentBytes(9, {}).Object(3, 3, 0, 0).Bytes();
    return ZAXDocumentBytes(12, classes)
        .Object(2, 1, 0, 0, "OBJ OBJ END " + QByteArray(16, '\0') + "OBJ \xff\xff\xff\xff")
        .Object(2, 2, 0, 1, decoy + ZAXDocumentBytes(0, {}).End())
        .Object(3, 3, 0, 2, ZAXDocumentBytes::Feature(QLatin1String("OBJ ")))
        .Object(2, 4, 0, 3, QByteArray(512, '\0'))
        .Object(2, 5, 0, 4, QByteArray(512, '\xff'))
        .End();
}

/// Folders within folders, as a planner files a year's jobs.
QByteArray Archive()
{
    ZAXDocumentBytes document(200, hostClasses);
    quint64 id = 0;
    for (quint32 month = 0; month < 12; ++month) {
        const quint64 parent = ++id;
        document.Object(folder, parent, 0, month, ZAXDocumentBytes::Feature(QString::number(month + 1)));
        for (quint32 week = 0; week < 5; ++week)
            document.Object(folder, ++id, parent, week, ZAXDocumentBytes::Feature(QString(), week != 2));
    }
    return document.End();
}

/// Notes that all refer to themselves and to each other.
QByteArray Web()
{
    constexpr quint32 note = 2;
    constexpr quint64 count = 15;
    ZAXDocumentBytes document(count, {{"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"ZAXProbeNote", 1, 1}});
    for (quint64 id = 1; id <= count; ++id) {
        QList<quint64> references{id};
        QList<quint32> places;
        for (quint64 other = 1; other <= count; ++other) {
            if (other != id)
                references.append(other);
            places.append(quint32(references.indexOf(other) + 1));
        }
        document.Object(note, id, 0, quint32(id - 1), Note(QString(), QString::number(id), 1, places), references);
    }
    return document.End();
}

/// Few objects with much data of a class that nobody knows.
QByteArray Bulky()
{
    const QList<Class> classes{{"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"AlienImage", 2, 1}};
    const auto pixels = [](quint32 seed) {
        QByteArray data;
        // Numerical Recipes' linear congruential generator.
        for (int i = 0; i < 1230; ++i)
            data.append(char((seed = seed * 1664525 + 1013904223) >> 24));
        return data;
    };
    return ZAXDocumentBytes(3, classes)
        .Object(2, 1, 0, 0, pixels(1))
        .Object(2, 2, 1, 0, pixels(2))
        .Object(2, 3, 0, 1, pixels(3), {1, 2, 3})
        .End();
}

/// A table of many classes, each derived from the one before it.
QByteArray Ancestry()
{
    QList<Class> classes{{"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}};
    for (qint32 i = 2; i < 110; ++i)
        classes.append({"AlienGeneration" + QByteArray::number(i), quint32(i), i - 1});
    ZAXDocumentBytes document(8, classes);
    for (quint32 i = 0; i < 8; ++i)
        document.Object(109 - i * 13, i + 1, i, 0, QByteArray(8, char(i)));
    return document.End();
}

/// Objects below one another, each referring to the one above and the one at the top.
QByteArray Ladder()
{
    const QList<Class> classes{{"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"AlienRung", 1, 1}};
    ZAXDocumentBytes document(1000, classes);
    for (quint64 id = 1; id <= 63; ++id)
        document.Object(2, id * 7, (id - 1) * 7, 0, QByteArray::number(id), {(id - 1) * 7, 7});
    return document.End();
}

} // namespace

int main(int argc, char** argv)
{
    QTextStream out(stdout);
    if (argc != 2) {
        out << "usage: write_documents FOLDER\n";
        return 2;
    }
    const QDir target(QFile::decodeName(argv[1]));
    const std::pair<const char*, QByteArray> documents[] = {
        {"empty", Empty()}, {"folders", Folders()},     {"notes", Notes()},     {"foreign", Foreign()},
        {"deep", Deep()},   {"deceptive", Deceptive()}, {"archive", Archive()}, {"web", Web()},
        {"bulky", Bulky()}, {"ancestry", Ancestry()},   {"ladder", Ladder()}};
    for (const auto& [name, bytes] : documents) {
        QFile file(target.filePath(QLatin1String(name) + QLatin1String(".zaxdoc")));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            file.write(bytes);
        out << file.fileName() << ": " << bytes.size() << '\n';
    }
    return 0;
}
