#include "ZAXMatJsonFileProvider.h"

#include "ZAXMatCatalogueReader.h"
#include "ZAXMatCatalogueWriter.h"
#include "ZAXMatExtensionPlugin.h"
#include "ZAXMatJsonFileProviderPrivate.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QMap>
#include <QMetaProperty>
#include <QSaveFile>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace {

Q_LOGGING_CATEGORY(logJson, "zax.material.json")

void Warn(const char* what, const QString& path, const QString& reason)
{
    qCWarning(logJson).noquote().nospace() << what << ' ' << path << ": " << reason;
}

/// Which of the extension classes of a plug-in is asked for.
using PluginMetaObject = const QMetaObject* (ZAXMatExtensionPlugin::*)() const;

constexpr PluginMetaObject materialExtension = &ZAXMatExtensionPlugin::GetMaterialExtensionMetaObject;
constexpr PluginMetaObject packagingExtension = &ZAXMatExtensionPlugin::GetPackagingExtensionMetaObject;

QList<const QMetaObject*> ExtensionClasses(PluginMetaObject metaObject)
{
    QList<const QMetaObject*> classes;
    const QList<ZAXMatExtensionPlugin*> plugins = ZAXMatExtensionPlugin::GetPlugins();
    for (const ZAXMatExtensionPlugin* const plugin : plugins)
        classes.append((plugin->*metaObject)());
    return classes;
}

QList<QByteArray> ExtensionNames(PluginMetaObject metaObject)
{
    QList<QByteArray> names;
    const QList<const QMetaObject*> classes = ExtensionClasses(metaObject);
    for (const QMetaObject* const extensionClass : classes)
        names.append(QByteArray(extensionClass->className()));
    return names;
}

/// The names of the properties that \a type declares and those that its bases do, from the class \a first down.
QList<QByteArray> PropertyNames(const QMetaObject& type, const QMetaObject& first)
{
    QList<QByteArray> names;
    for (int i = first.propertyOffset(); i < type.propertyCount(); ++i)
        names.append(QByteArray(type.property(i).name()));
    return names;
}

/// The same for the extension class of every plug-in that is named \a extension.
QList<QByteArray> ExtensionPropertyNames(PluginMetaObject metaObject, const QByteArray& extension,
                                         const QMetaObject& first)
{
    QList<QByteArray> names;
    const QList<const QMetaObject*> classes = ExtensionClasses(metaObject);
    for (const QMetaObject* const extensionClass : classes) {
        if (extension == extensionClass->className())
            names.append(PropertyNames(*extensionClass, first));
    }
    return names;
}

/// The root object of a file; empty, with the reason logged, when the file is malformed.
QJsonObject Parse(const QString& path, const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        Warn("Malformed", path,
             QStringLiteral("%1 (at byte %2)").arg(error.errorString(), QString::number(error.offset)));
    else if (!document.isObject())
        Warn("Malformed", path, QStringLiteral("the file holds no JSON object"));
    return document.object();
}

/// The records of a file's text, in the order of the members of its root object; none, with the reason logged, when it
/// is malformed.
ZAXMatCatalogueReader::Records ParseRecords(const QString& path, const QByteArray& text)
{
    ZAXMatCatalogueReader::Records records;
    const QJsonObject root = Parse(path, text);
    for (auto member = root.begin(); member != root.end(); ++member)
        records.emplace_back().FromJson(member.value());
    return records;
}

bool IsMaterial(const ZAXMatDefinition& record)
{
    return record.IsValid() && record.GetType() == ZAXMatDefinition::Material;
}

bool IsPackaging(const ZAXMatDefinition& record)
{
    return record.IsValid() && record.GetType() == ZAXMatDefinition::Packaging;
}

/// Links each packaging of \a records to its material, one after the other.
ZAXMatJsonFileProviderPrivate::Links MakeLinks(const ZAXMatRecordTable::Records& records)
{
    ZAXMatJsonFileProviderPrivate::Links links;
    for (const ZAXMatDefinition& record : records) {
        if (IsPackaging(record))
            links.insert(record.GetMaterialKey(), record.GetKey());
    }
    return links;
}

/// What \a file, which is open, holds from its start; null, and file.error() tells why, when it cannot be read to its
/// end.
std::optional<QByteArray> ReadAll(QFile& file)
{
    // What was read before a failure Qt gives without a word: only the next attempt tells of it.
    QByteArray text = file.readAll();
    for (QByteArray more = file.readAll(); !more.isEmpty(); more = file.readAll())
        text.append(more);
    return file.error() == QFileDevice::NoError ? std::optional(text) : std::nullopt;
}

using Members = std::vector<ZAXMatCatalogueWriter::Member>;

/// The text that the file at \a path is to hold, made by Qt; null, with the reason logged, when nobody could read it.
std::optional<QByteArray> ToTextByQt(const QString& path, const Members& members)
{
    // In the order of a JSON object's members, which shifts them at every insertion but one at its end.
    QMap<QString, const ZAXMatDefinition*> records;
    for (const auto& [key, record] : members)
        records.insert(QString::fromUtf8(key), record);
    QJsonObject root;
    for (auto record = records.begin(); record != records.end(); ++record)
        root.insert(record.key(), record.value()->ToJson());
    const QByteArray text = QJsonDocument(root).toJson(QJsonDocument::Indented);
    // Qt nests values more deeply than it reads them back, and a file that nobody can read is a catalogue lost.
    QJsonParseError error;
    QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        Warn("Cannot write", path, error.errorString());
        return std::nullopt;
    }
    return text;
}

/// The same, made by Qt if need be.
std::optional<QByteArray> ToText(const QString& path, const Members& members)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const bool isWritten = ZAXMatCatalogueWriter(buffer).Write(members) == ZAXMatCatalogueWriter::Result::Written;
    return isWritten ? buffer.data() : ToTextByQt(path, members);
}

/// False, after logging why the file cannot be written.
bool Refuse(const QFileDevice& file)
{
    // A device that is full takes a part of the bytes first, for which Qt knows no reason.
    Warn("Cannot write", file.fileName(), errno != 0 ? qt_error_string(errno) : file.errorString());
    return false;
}

/// Hands all of \a text to the system. False, with the reason logged, when it does not take it.
bool WriteAll(QFileDevice& file, const QByteArray& text)
{
    errno = 0;
    // Flushed here: QSaveFile does not look at what goes wrong with the last bytes when it closes the file.
    return (file.write(text) == text.size() && file.flush()) || Refuse(file);
}

/// Writes \a members into \a file. False, with the reason logged, when the system does not take them or nobody could
/// read them.
bool WriteMembers(QSaveFile& file, const Members& members)
{
    errno = 0;
    switch (ZAXMatCatalogueWriter(file).Write(members)) {
    case ZAXMatCatalogueWriter::Result::Written:
        return file.flush() || Refuse(file);
    case ZAXMatCatalogueWriter::Result::Refused:
        return Refuse(file);
    case ZAXMatCatalogueWriter::Result::Unusual:
        break;
    }
    const std::optional<QByteArray> text = ToTextByQt(file.fileName(), members);
    errno = 0;
    return text && ((file.resize(0) && file.seek(0)) || Refuse(file)) && WriteAll(file, *text);
}

/// Replaces the file by \a members as a whole. False, with the reason logged, when it stays as it was.
bool WriteAside(QSaveFile& file, const Members& members)
{
    // QSaveFile gives the new file the permissions of the old one, but counts in what the current user may do: for the
    // superuser that is everything.
    constexpr auto currentUser = QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser;
    if (QFileInfo::exists(file.fileName()))
        file.setPermissions(QFile::permissions(file.fileName()) & ~currentUser);

    const bool isWritten = WriteMembers(file, members);
    if (!isWritten)
        file.cancelWriting();
    const bool isReplaced = file.commit();
    if (isWritten && !isReplaced)
        Warn("Cannot write", file.fileName(), file.errorString());
    return isWritten && isReplaced;
}

/// Cuts the file to \a size. False, with the reason logged, when the system refuses.
bool Resize(QFile& file, qint64 size)
{
    if (file.resize(size))
        return true;
    Warn("Cannot write", file.fileName(), file.errorString());
    return false;
}

/// Overwrites the file, which must be unbuffered, by \a text. False, with the reason logged, when that fails; the file
/// holds what it held before then, unless the system does not even take that back.
bool Overwrite(QFile& file, const QByteArray& text)
{
    const std::optional<QByteArray> before = ReadAll(file);
    if (!before) {
        Warn("Cannot write", file.fileName(), file.errorString());
        return false;
    }
    file.seek(0);
    if (WriteAll(file, text) && Resize(file, text.size()))
        return true;
    file.seek(0);
    file.write(*before);
    file.resize(before->size());
    return false;
}

/// Defines every pair that a provider supports, without a value.
template <typename PropertiesOf>
void DefineSchema(ZAXMatDefinition& record, QList<QByteArray> extensions, PropertiesOf propertiesOf)
{
    extensions.prepend(QByteArray());
    for (const QByteArray& extension : std::as_const(extensions)) {
        const QList<QByteArray> properties = propertiesOf(extension);
        for (const QByteArray& property : properties)
            record.SetValue(property, QVariant(), extension);
    }
}

/// A record that no provider has yet.
ZAXMatDefinition NewRecord(ZAXMatDefinition::Type type, const QString& name)
{
    ZAXMatDefinition record;
    record.SetKey(QUuid::createUuid().toByteArray(QUuid::WithBraces));
    record.SetName(name);
    record.SetType(type);
    return record;
}

} // namespace

ZAXMatJsonFileProviderPrivate::ZAXMatJsonFileProviderPrivate(const QByteArray& id, const std::optional<QString>& label,
                                                             const QString& directory)
    : id(id),
      label(label),
      filePath(directory + QDir::separator() + QLatin1String("materials.json")),
      fileTime(filePath),
      lastFileTime(QDateTime::currentMSecsSinceEpoch())
{
}

void ZAXMatJsonFileProviderPrivate::LoadIfChanged()
{
    if (!mustLoad && fileTime.Get() == lastFileTime)
        return;

    QFile file(filePath);
    errno = 0;
    const bool isOpen = file.open(QIODevice::ReadOnly);
    // A file that is not there yet is nothing to report.
    if (!isOpen && errno == ENOENT)
        return;
    // The time of the very file that is read: should another take its place meanwhile, that is read the next time.
    const ZAXMatFileTime::Time timeRead = fileTime.GetOpen(file);
    const QString failure = isOpen ? TakeText(file) : file.errorString();
    if (!failure.isNull()) {
        // Once, not for every operation that tries again.
        if (!std::exchange(isReadFailureLogged, true))
            Warn("Cannot read", filePath, failure);
        return;
    }
    lastFileTime = timeRead;
    mustLoad = false;
    isReadFailureLogged = false;
}

QString ZAXMatJsonFileProviderPrivate::TakeText(QFile& file)
{
    try {
        std::optional<ZAXMatCatalogueReader::Records> records;
        // What stands in for a file, such as a device, may not be read twice.
        const bool isRereadable = !file.isSequential();
        if (isRereadable)
            records = ZAXMatCatalogueReader(file).Read();
        if (file.error() != QFileDevice::NoError)
            return file.errorString();
        if (!records) {
            const std::optional<QByteArray> text = !isRereadable || file.seek(0) ? ReadAll(file) : std::nullopt;
            if (!text)
                return file.errorString();
            records = ParseRecords(filePath, *text);
        }
        TakeRecords(*records);
        return {};
    } catch (const std::bad_alloc&) {
        return qt_error_string(ENOMEM);
    }
}

void ZAXMatJsonFileProviderPrivate::TakeRecords(const ZAXMatRecordTable::Records& records)
{
    // Aside, so that the tables stay as they are should there be no memory for others.
    ZAXMatRecordTable newMaterials;
    ZAXMatRecordTable newPackagings;
    std::optional<Links> newLinks;
    newMaterials.Reserve(std::ranges::count_if(records, IsMaterial));
    const qsizetype packagingCount = std::ranges::count_if(records, IsPackaging);
    newPackagings.Reserve(packagingCount);
    for (const ZAXMatDefinition& record : records) {
        if (IsMaterial(record))
            newMaterials.Insert(record.GetKey(), record);
        else if (IsPackaging(record))
            newPackagings.Insert(record.GetKey(), record);
    }
    // A packaging that is there twice is linked twice.
    if (newPackagings.GetKeys().size() != packagingCount)
        newLinks = MakeLinks(records);
    materials.Swap(newMaterials);
    packagings.Swap(newPackagings);
    materialPackagings.swap(newLinks);
}

ZAXMatJsonFileProviderPrivate::Links& ZAXMatJsonFileProviderPrivate::GetLinks()
{
    if (!materialPackagings)
        materialPackagings = MakeLinks(packagings.GetRecords());
    return *materialPackagings;
}

QList<QByteArray> ZAXMatJsonFileProviderPrivate::GetPackagingKeys(const QByteArray& materialKey)
{
    return GetLinks().values(materialKey);
}

bool ZAXMatJsonFileProviderPrivate::Write()
{
    try {
        // A packaging takes the place of a material of its key.
        Members members;
        members.reserve(std::size_t(materials.GetKeys().size() + packagings.GetKeys().size()));
        const auto toMember = [](const QByteArray& key, const ZAXMatDefinition& record) {
            return ZAXMatCatalogueWriter::Member(key, &record);
        };
        for (const ZAXMatRecordTable* const table : {&materials, &packagings})
            std::ranges::transform(table->GetKeys(), table->GetRecords(), std::back_inserter(members), toMember);

        QSaveFile aside(filePath);
        if (aside.open(QIODevice::WriteOnly))
            return WriteAside(aside, members);
        // A directory that takes no new file may still hold one that can be written to.
        QFile inPlace(filePath);
        if (inPlace.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
            const std::optional<QByteArray> text = ToText(filePath, members);
            return text && WriteInPlace(inPlace, *text);
        }
        Warn("Cannot write", filePath, aside.errorString());
        return false;
    } catch (const std::bad_alloc&) {
        Warn("Cannot write", filePath, qt_error_string(ENOMEM));
        return false;
    }
}

bool ZAXMatJsonFileProviderPrivate::WriteInPlace(QFile& file, const QByteArray& text)
{
    const bool wasRead = !mustLoad && fileTime.GetOpen(file) == lastFileTime;
    const bool isWritten = Overwrite(file, text);
    // The attempt alone gave the file a new time. Read again, it would take the records that are not in it away.
    if (!isWritten && wasRead)
        lastFileTime = fileTime.GetOpen(file);
    return isWritten;
}

void ZAXMatJsonFileProviderPrivate::AddPackaging(const ZAXMatDefinition& packaging)
{
    Links& links = GetLinks();
    packagings.Insert(packaging.GetKey(), packaging);
    links.insert(packaging.GetMaterialKey(), packaging.GetKey());
}

bool ZAXMatJsonFileProviderPrivate::RemovePackaging(const QByteArray& key)
{
    const ZAXMatDefinition* const packaging = std::as_const(packagings).Find(key);
    if (!packaging)
        return false;
    GetLinks().remove(packaging->GetMaterialKey(), key);
    return packagings.Remove(key);
}

ZAXMatRecordTable& ZAXMatJsonFileProviderPrivate::RecordsOf(ZAXMatDefinition::Type type)
{
    return type == ZAXMatDefinition::Material ? materials : packagings;
}

ZAXMatJsonFileProvider::ZAXMatJsonFileProvider() : ZAXMatJsonFileProvider(QLatin1String("C:/JSONDOC")) {}

ZAXMatJsonFileProvider::ZAXMatJsonFileProvider(const QString& directory)
    : ZAXMatJsonFileProvider(std::make_unique<ZAXMatJsonFileProviderPrivate>(QByteArray("ZAXMatJsonFileProvider"),
                                                                             std::nullopt, directory))
{
}

ZAXMatJsonFileProvider::ZAXMatJsonFileProvider(const QByteArray& id, const QString& label, const QString& directory)
    : ZAXMatJsonFileProvider(std::make_unique<ZAXMatJsonFileProviderPrivate>(id, label, directory))
{
}

ZAXMatJsonFileProvider::ZAXMatJsonFileProvider(std::unique_ptr<ZAXMatJsonFileProviderPrivate> data)
    : ZAXMatProvider(data->id), d_ptr(std::move(data))
{
    d_ptr->LoadIfChanged();
}

ZAXMatJsonFileProvider::~ZAXMatJsonFileProvider() = default;

bool ZAXMatJsonFileProvider::IsReadOnly() const
{
    return false;
}

QList<QByteArray> ZAXMatJsonFileProvider::GetSupportedMaterialExtensions() const
{
    return ExtensionNames(materialExtension);
}

bool ZAXMatJsonFileProvider::HasPackaging() const
{
    return true;
}

QList<QByteArray> ZAXMatJsonFileProvider::GetSupportedPackagingExtensions() const
{
    return ExtensionNames(packagingExtension);
}

QList<QByteArray> ZAXMatJsonFileProvider::GetSupportedMaterialProperties(const QByteArray& extension) const
{
    const QMetaObject& material = ZAXMatMaterial::staticMetaObject;
    QList<QByteArray> names = extension.isEmpty() ? PropertyNames(material, material)
                                                  : ExtensionPropertyNames(materialExtension, extension,
                                                                           ZAXMatMaterialExtension::staticMetaObject);
    names.removeAll(QByteArray(ZAXMatMaterial::Property_providerId));
    names.removeAll(QByteArray(ZAXMatMaterial::Property_remoteKey));
    names.removeAll(QByteArray(ZAXMatMaterial::Property_nestingColor));
    return names;
}

QList<QByteArray> ZAXMatJsonFileProvider::GetSupportedPackagingProperties(const QByteArray& extension) const
{
    const QMetaObject& packaging = ZAXMatPackaging::staticMetaObject;
    QList<QByteArray> names = extension.isEmpty() ? PropertyNames(packaging, packaging)
                                                  : ExtensionPropertyNames(packagingExtension, extension,
                                                                           ZAXMatPackagingExtension::staticMetaObject);
    names.removeAll(QByteArray(ZAXMatPackaging::Property_remoteKey));
    return names;
}

QList<QByteArray> ZAXMatJsonFileProvider::GetMaterialKeys() const
{
    d_ptr->LoadIfChanged();
    return d_ptr->materials.GetKeys();
}

ZAXMatDefinition ZAXMatJsonFileProvider::GetMaterial(const QByteArray& key) const
{
    d_ptr->LoadIfChanged();
    return d_ptr->materials.Value(key);
}

ZAXMatDefinition ZAXMatJsonFileProvider::CreateMaterial(const QString& name)
{
    Q_D(ZAXMatJsonFileProvider);
    d->LoadIfChanged();
    ZAXMatDefinition material = NewRecord(ZAXMatDefinition::Material, name);
    DefineSchema(material, GetSupportedMaterialExtensions(),
                 [this](const QByteArray& extension) { return GetSupportedMaterialProperties(extension); });
    d->materials.Insert(material.GetKey(), material);
    return material;
}

bool ZAXMatJsonFileProvider::RemoveMaterial(const QByteArray& key)
{
    Q_D(ZAXMatJsonFileProvider);
    d->LoadIfChanged();
    const QList<QByteArray> packagingKeys = d->GetPackagingKeys(key);
    const auto remove = [this](const QByteArray& packagingKey) { return RemovePackaging(packagingKey); };
    return std::ranges::all_of(packagingKeys, remove) && d->materials.Remove(key);
}

QList<QByteArray> ZAXMatJsonFileProvider::GetPackagingKeys(const QByteArray& materialKey) const
{
    d_ptr->LoadIfChanged();
    return d_ptr->GetPackagingKeys(materialKey);
}

ZAXMatDefinition ZAXMatJsonFileProvider::GetPackaging(const QByteArray& key) const
{
    d_ptr->LoadIfChanged();
    return d_ptr->packagings.Value(key);
}

ZAXMatDefinition ZAXMatJsonFileProvider::CreatePackaging(const QString& name, const QByteArray& materialKey)
{
    Q_D(ZAXMatJsonFileProvider);
    d->LoadIfChanged();
    ZAXMatDefinition packaging = NewRecord(ZAXMatDefinition::Packaging, name);
    packaging.SetMaterialKey(materialKey);
    DefineSchema(packaging, GetSupportedPackagingExtensions(),
                 [this](const QByteArray& extension) { return GetSupportedPackagingProperties(extension); });
    d->AddPackaging(packaging);
    return packaging;
}

bool ZAXMatJsonFileProvider::RemovePackaging(const QByteArray& key)
{
    Q_D(ZAXMatJsonFileProvider);
    d->LoadIfChanged();
    return d->RemovePackaging(key);
}

bool ZAXMatJsonFileProvider::Update(const ZAXMatDefinition& definition)
{
    Q_D(ZAXMatJsonFileProvider);
    d->LoadIfChanged();
    if (!definition.IsValid())
        return false;
    ZAXMatDefinition* const stored = d->RecordsOf(definition.GetType()).Find(definition.GetKey());
    if (!stored)
        return false;
    stored->CopyValues(definition);
    stored->SetName(definition.GetName());
    return true;
}

QString ZAXMatJsonFileProvider::GetProviderLabel() const
{
    Q_D(const ZAXMatJsonFileProvider);
    return d->label.value_or(QCoreApplication::translate("ZAXMatJsonFileProvider", "JSON File Provider"));
}

QByteArray ZAXMatJsonFileProvider::GetProviderId() const
{
    Q_D(const ZAXMatJsonFileProvider);
    return d->id;
}

void ZAXMatJsonFileProvider::Commit()
{
    Q_D(ZAXMatJsonFileProvider);
    if (d->Write())
        d->mustLoad = true;
}
