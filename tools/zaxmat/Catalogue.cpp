#include "Catalogue.h"

#include "Failure.h"
#include "Records.h"
#include "Text.h"

#include "ZAXMatDefinition.h"
#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QStandardPaths>

#include <algorithm>

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

/// \throws Failure unless \a path is a file, as opposed to a folder or a pipe, that can be read.
void RequireFile(const QString& path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        throw Unreadable(path, Text::tr("it is no file"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Unreadable(path, file.errorString());
}

/// \throws Failure unless the file \a path holds a JSON object.
void RequireJsonObject(const QString& path)
{
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (file.error() != QFile::NoError)
        throw Unreadable(path, file.errorString());
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    // The parser's offset lies behind the byte that it stumbled over.
    if (error.error != QJsonParseError::NoError)
        throw Malformed(path, Text::tr("%1 at %2").arg(error.errorString(), PositionText(bytes, error.offset - 1)));
    if (!document.isObject())
        throw Malformed(path, Text::tr("it holds no JSON object"));
}

/// \a records, all of which are there as long as nobody changes the file meanwhile.
QList<ZAXMatDefinition> Complete(const QList<ZAXMatDefinition>& records, const QString& path)
{
    if (!std::ranges::all_of(records, &ZAXMatDefinition::IsValid))
        throw Unreadable(path, Text::tr("it was changed meanwhile"));
    return records;
}

} // namespace

QString DefaultCatalogueDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

Catalogue::Catalogue(const CatalogueOptions& options)
{
    const QString directory = options.directory.isEmpty() ? DefaultCatalogueDirectory() : options.directory;
    m_filePath = QDir(directory).filePath(QLatin1String("materials.json"));
    RequireFile(m_filePath);
    m_provider = std::make_unique<ZAXMatJsonFileProvider>(directory);
    m_cache.reset(ZAXMatProviderCache::GetCache(m_provider->GetProviderId()));
    // The provider takes a file that it cannot parse for an empty one. Where it finds something, it has parsed it.
    if (m_cache->GetMaterialKeys().isEmpty())
        RequireJsonObject(m_filePath);
}

Catalogue::~Catalogue() = default;

QString Catalogue::GetFilePath() const
{
    return m_filePath;
}

QByteArray Catalogue::GetProviderId() const
{
    return m_provider->GetProviderId();
}

QList<ZAXMatDefinition> Catalogue::GetMaterials() const
{
    QList<ZAXMatDefinition> materials;
    const QList<QByteArray> keys = m_cache->GetMaterialKeys();
    for (const QByteArray& key : keys)
        materials.append(m_cache->GetMaterial(key));
    SortRecords(materials);
    return Complete(materials, m_filePath);
}

QList<ZAXMatDefinition> Catalogue::GetStockForms(const QByteArray& materialKey) const
{
    QList<ZAXMatDefinition> stockForms;
    const QList<QByteArray> keys = m_cache->GetPackagingKeys(materialKey);
    for (const QByteArray& key : keys)
        stockForms.append(m_cache->GetPackaging(key));
    SortRecords(stockForms);
    return Complete(stockForms, m_filePath);
}

qsizetype Catalogue::CountStockForms(const QByteArray& materialKey) const
{
    return m_cache->GetPackagingKeys(materialKey).size();
}

} // namespace zaxmat
