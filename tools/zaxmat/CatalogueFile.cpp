#include "CatalogueFile.h"

#include "Failure.h"
#include "FileContents.h"
#include "Text.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QStandardPaths>

namespace zaxmat {

namespace {

QString HowToChoose()
{
    return Text::tr("Name the folder of a catalogue with --catalogue DIR or in ZAXMAT_CATALOGUE.");
}

QString HowToMend(const QString& path)
{
    return Text::tr("Correct it, or put a good copy in its place. Nothing is written to %1 until it can be read.")
        .arg(QuotedPath(path));
}

/// Where the byte at \a offset stands, for someone with an editor.
QString PositionText(const QByteArray& text, qsizetype offset)
{
    const QByteArray before = text.first(qBound(qsizetype(0), offset, text.size()));
    const qsizetype lineStart = before.lastIndexOf('\n') + 1;
    return Text::tr("line %1, column %2")
        .arg(QString::number(before.count('\n') + 1),
             QString::number(QString::fromUtf8(before.sliced(lineStart)).size() + 1));
}

Failure Malformed(const QString& path, const QString& why)
{
    return {ExitCode::FileFailure,
            Text::tr("The catalogue %1 is damaged: %2.\n%3").arg(QuotedPath(path), why, HowToMend(path))};
}

Failure Unreadable(const QString& path, const QString& why)
{
    return {ExitCode::FileFailure,
            Text::tr("The catalogue %1 cannot be read: %2.\n%3").arg(QuotedPath(path), why, HowToChoose())};
}

} // namespace

QString DefaultCatalogueDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString CatalogueFilePath(const CatalogueOptions& options)
{
    const QLatin1String fileName("materials.json");
    const QFileInfo given(options.directory);
    if (given.isFile() && given.fileName() == fileName)
        return options.directory;
    const QString directory = options.directory.isEmpty() ? DefaultCatalogueDirectory() : options.directory;
    return QDir(directory).filePath(fileName);
}

QByteArray ReadCatalogueFile(const QString& path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        throw Unreadable(path, Text::tr("it is no file"));
    const FileContents contents = ReadFileContents(path);
    if (!contents.IsRead())
        throw Unreadable(path, contents.failure);
    return contents.bytes;
}

QJsonObject ParseCatalogue(const QString& path, const QByteArray& bytes)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    // The parser's offset lies behind the byte that it stumbled over.
    if (error.error != QJsonParseError::NoError)
        throw Malformed(path, Text::tr("%1 at %2").arg(error.errorString(), PositionText(bytes, error.offset - 1)));
    if (!document.isObject())
        throw Malformed(path, Text::tr("it holds no JSON object"));
    return document.object();
}

} // namespace zaxmat
