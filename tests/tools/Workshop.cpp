#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>

#include <unistd.h>

const QString Workshop::onFullDisk = "ulimit -f 0; trap '' XFSZ; exec \"$@\"";

QString Workshop::AsOrdinaryUser()
{
    return geteuid() != 0 ? "exec \"$@\""
                          : "exec setpriv --bounding-set=-dac_override,-dac_read_search "
                            "--inh-caps=-dac_override,-dac_read_search \"$@\"";
}

Workshop::Workshop() : m_folder(QDir::tempPath() + "/zax ø XXXXXX")
{
    QDir().mkpath(CatalogueFolder());
    QDir().mkpath(Path("home ø"));
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    for (const auto* const name : {"PATH", "LC_ALL", "LANG", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LD_LIBRARY_PATH"}) {
        const QString key = QString::fromLatin1(name);
        environment.insert(key, own.value(key));
    }
    // What the operating system says is to be English under every locale.
    environment.insert("LANGUAGE", "C");
    environment.insert("HOME", Path("home ø"));
    environment.insert("XDG_DATA_HOME", DataFolder());
    environment.insert("ZAXMAT_CATALOGUE", CatalogueFolder());
}

Workshop::~Workshop()
{
    // What a test took away, so that all of it can be removed.
    for (const QString& folder : {m_folder.path(), CatalogueFolder()})
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QString Workshop::Path(const QString& name) const
{
    return m_folder.filePath(name);
}

QString Workshop::CatalogueFolder() const
{
    return Path("catalogue ø");
}

QString Workshop::CatalogueFile() const
{
    return CatalogueFolder() + "/materials.json";
}

QString Workshop::DataFolder() const
{
    return Path("home ø/data");
}

void Workshop::Write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("The test cannot write %s.", qUtf8Printable(path));
}

QByteArray Workshop::Read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Workshop::WriteCatalogue(const QList<QJsonObject>& records) const
{
    QJsonObject root;
    for (const QJsonObject& record : records)
        root.insert(record.value("key").toString(), record);
    Write(CatalogueFile(), QJsonDocument(root).toJson());
}

Run Workshop::Zaxmat(const QStringList& arguments) const
{
    return ZaxmatThrough("exec \"$@\"", arguments);
}

Run Workshop::ZaxmatThrough(const QString& script, const QStringList& arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder.path());
    process.start("sh", QStringList{"-c", script, "sh", QStringLiteral(ZAXMAT_PROGRAM)} + arguments);
    Run run;
    if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit)
        run.code = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

namespace {

QJsonObject Record(const QString& key, const QString& materialKey, const QString& name, int type,
                   const QJsonObject& properties)
{
    return {{"key", key},
            {"materialKey", materialKey},
            {"name", name},
            {"type", type},
            {"properties", QJsonObject{{QString(), properties}}}};
}

QJsonObject Steel(double thickness)
{
    return {{"materialType", "S235JR"},
            {"thickness", thickness},
            {"category", "Metal"},
            {"density", 7.85},
            {"comment", "EN 10025-2"}};
}

QJsonObject Form(const QString& form, double length, double width, double cost, bool isActive)
{
    return {{"form", form}, {"length", length},     {"width", width},
            {"cost", cost}, {"isActive", isActive}, {"comment", QString()}};
}

} // namespace

QJsonObject Material(const QString& key, const QString& name, const QJsonObject& properties)
{
    return Record(key, QString(), name, 0, properties);
}

QJsonObject StockForm(const QString& key, const QString& materialKey, const QString& name,
                      const QJsonObject& properties)
{
    return Record(key, materialKey, name, 1, properties);
}

QList<QJsonObject> SmallCatalogue()
{
    const QString sheet = "Rectangular";
    return {
        Material("steel-2", "Structural steel", Steel(2)),
        StockForm("steel-2-small", "steel-2", "Sheet small", Form(sheet, 2000, 1000, 31.4, false)),
        StockForm("steel-2-large", "steel-2", "Sheet large", Form(sheet, 3000, 1500, 70.65, true)),
        StockForm("steel-2-coil", "steel-2", "Coil", Form("Roll", 50000, 1500, 1083.3, false)),
        Material("steel-3", "Structural steel", Steel(3)),
        StockForm("steel-3-small", "steel-3", "Sheet small", Form(sheet, 2000, 1000, 47.1, true)),
        Material(
            "acrylic-12.7", "Acrylic, cast",
            {{"materialType", "PMMA"}, {"thickness", "0.5 in"}, {"category", "Plastic"}, {"density", "1190 kg/m³"}})};
}
