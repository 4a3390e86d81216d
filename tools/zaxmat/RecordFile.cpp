#include "RecordFile.h"

#include "Failure.h"
#include "JsonText.h"
#include "Records.h"
#include "Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace zaxmat {

namespace {

Failure Unreadable(const QString& path, const QString& why)
{
    return {ExitCode::FileFailure, Text::tr("The catalogue %1 cannot be read: %2.").arg(QuotedPath(path), why)};
}

QJsonObject ParseCatalogue(const QString& path)
{
    const QByteArray bytes = ReadRecordFile(path);
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (document.isObject())
        return document.object();
    const auto error = ParseJsonText(bytes).error;
    const TextPosition position = error ? TextPositions(bytes).At(error->offset) : TextPosition();
    const QString where =
        error ? Text::tr("%1 at line %2, column %3")
                    .arg(error->message, QString::number(position.line), QString::number(position.column))
              : Text::tr("it holds no JSON object");
    throw Failure(ExitCode::FileFailure, Text::tr("The catalogue %1 is damaged: %2.").arg(QuotedPath(path), where));
}

} // namespace

QString CatalogueFileAt(const QString& path)
{
    return QFileInfo(path).isDir() ? QDir(path).filePath(QLatin1String("materials.json")) : path;
}

QByteArray ReadRecordFile(const QString& path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        throw Unreadable(path, Text::tr("it is no file"));
    QFile file(path);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QByteArray bytes = isOpen ? file.readAll() : QByteArray();
    if (file.error() != QFile::NoError)
        throw Unreadable(path, file.errorString());
    return bytes;
}

QList<ZAXMatDefinition> ReadRecords(const QString& path)
{
    QHash<QByteArray, ZAXMatDefinition> materials;
    QHash<QByteArray, ZAXMatDefinition> stockForms;
    const QJsonObject root = ParseCatalogue(path);
    for (const QJsonValue& value : root) {
        ZAXMatDefinition record;
        record.FromJson(value);
        if (!record.IsValid())
            continue;
        if (record.GetType() == ZAXMatDefinition::Material)
            materials.insert(record.GetKey(), record);
        else if (record.GetType() == ZAXMatDefinition::Packaging)
            stockForms.insert(record.GetKey(), record);
    }
    QList<ZAXMatDefinition> first = materials.values();
    QList<ZAXMatDefinition> second = stockForms.values();
    SortRecords(first);
    SortRecords(second);
    return first + second;
}

} // namespace zaxmat
