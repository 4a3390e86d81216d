#include "Catalogue.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QUuid>

#include <array>
#include <cmath>

namespace bench {

namespace {

struct Grade
{
    const char* name;
    const char* type;
    const char* category;
    double density;
    const char* comment;
};

constexpr std::array grades{
    Grade{"Structural steel S235JR", "S235JR", "Metal", 7.85, "EN 10025-2"},
    Grade{"Cold-rolled steel DC01", "DC01", "Metal", 7.85, "EN 10130"},
    Grade{"Stainless steel 1.4301", "1.4301", "Metal", 7.9, "EN 10088-2"},
    Grade{"Aluminium EN AW-5754 H22", "EN AW-5754 H22", "Metal", 2.67, "EN 485-2"},
    Grade{"Polycarbonate", "PC", "Plastic", 1.2, ""},
    Grade{"Birch plywood", "Birch plywood", "Wood", 0.68, "EN 636"},
    Grade{"Polyethylene foam", "PE foam", "Foam", 0.03, "Closed cells"},
};

constexpr std::array thicknesses{0.5, 0.8, 1.0, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0, 6.0, 8.0, 10.0, 12.7, 15.0, 20.0};

struct Form
{
    const char* name;
    const char* form;
    double length;
    double width;
    const char* comment;
};

constexpr std::array forms{
    Form{"Sheet 1000 x 2000", "Rectangular", 2000, 1000, "Small format"},
    Form{"Sheet 1500 x 3000", "Rectangular", 3000, 1500, "Large format"},
    Form{"Sheet 48 x 96 in", "Rectangular", 2438.4, 1219.2, ""},
    Form{"Coil 1250", "Roll", 50000, 1250, ""},
};

template <std::size_t size, typename T>
const T& Any(const std::array<T, size>& items, QRandomGenerator& random)
{
    return items[random.bounded(static_cast<quint32>(size))];
}

QString Text(const char* text)
{
    return QString::fromUtf8(text);
}

QString NewKey(QRandomGenerator& random)
{
    std::array<quint32, 4> numbers{};
    random.fillRange(numbers.data(), numbers.size());
    return QUuid::fromRfc4122(QByteArrayView(reinterpret_cast<const char*>(numbers.data()), sizeof numbers)).toString();
}

QJsonObject Record(const QString& key, const QString& materialKey, const QString& name, int type,
                   const QJsonObject& properties)
{
    return {{Text("key"), key},
            {Text("materialKey"), materialKey},
            {Text("name"), name},
            {Text("type"), type},
            {Text("properties"), QJsonObject{{QString(), properties}}}};
}

QJsonObject Material(const QString& key, QRandomGenerator& random)
{
    const Grade& grade = Any(grades, random);
    const double thickness = Any(thicknesses, random);
    return Record(key, QString(), QLatin1String("%1, %2 mm").arg(Text(grade.name)).arg(thickness), 0,
                  {{Text("materialId"), QJsonValue::Null},
                   {Text("isMaterialIdCustomized"), QJsonValue::Null},
                   {Text("materialType"), Text(grade.type)},
                   {Text("thickness"), thickness},
                   {Text("category"), Text(grade.category)},
                   {Text("density"), grade.density},
                   {Text("comment"), Text(grade.comment)},
                   {Text("materialExtensions"), QJsonValue::Null}});
}

QJsonObject StockForm(const QString& key, const QString& materialKey, bool isActive, QRandomGenerator& random)
{
    const Form& form = Any(forms, random);
    // Each supplier has a number of its own for what it sells.
    const QString article = QLatin1String("%1, article %2").arg(Text(form.comment)).arg(random.bounded(1000000));
    return Record(key, materialKey, Text(form.name), 1,
                  {{Text("length"), form.length},
                   {Text("width"), form.width},
                   {Text("form"), Text(form.form)},
                   {Text("cost"), std::round(random.bounded(1000.0) * 100) / 100},
                   {Text("comment"), article},
                   {Text("isActive"), isActive},
                   {Text("packagingExtensions"), QJsonValue::Null}});
}

} // namespace

QJsonObject MakeCatalogue(int materials)
{
    QRandomGenerator random(1);
    // Sorted first: a JSON object shifts its members at every insertion but one at its end.
    QMap<QString, QJsonObject> records;
    for (int i = 0; i < materials; ++i) {
        const QString materialKey = NewKey(random);
        records.insert(materialKey, Material(materialKey, random));
        for (const bool isActive : {true, false, false}) {
            const QString key = NewKey(random);
            records.insert(key, StockForm(key, materialKey, isActive, random));
        }
    }
    QJsonObject root;
    for (auto record = records.begin(); record != records.end(); ++record)
        root.insert(record.key(), record.value());
    return root;
}

CatalogueFile::CatalogueFile(int materials) : m_directory(QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX"))
{
    QFile file(Path());
    if (file.open(QIODevice::WriteOnly))
        file.write(QJsonDocument(MakeCatalogue(materials)).toJson());
}

QString CatalogueFile::Directory() const
{
    return m_directory.path();
}

QString CatalogueFile::Path() const
{
    return m_directory.filePath(QLatin1String("materials.json"));
}

QByteArray CatalogueFile::Read() const
{
    QFile file(Path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace bench
