#ifndef ZAX_TESTS_WORKSHOP_H
#define ZAX_TESTS_WORKSHOP_H

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// How a run of zaxmat ended.
struct Run
{
    /// The exit code; -1 when the program did not start or crashed.
    int code = -1;
    QString out;
    QString err;
};

/// A folder of its own for one test, with a space and an 'ø' in every name, and zaxmat run in an environment that leads
/// nowhere else.
class Workshop
{
public:
    Workshop();
    ~Workshop();
    Q_DISABLE_COPY_MOVE(Workshop)

    /// The path of \a name in the folder.
    QString Path(const QString& name) const;
    /// The folder of the catalogue; there at first, and empty.
    QString CatalogueFolder() const;
    QString CatalogueFile() const;
    /// What zaxmat takes for the user's folder for data of applications.
    QString DataFolder() const;

    /// Makes \a bytes the contents of the file \a path.
    static void Write(const QString& path, const QByteArray& bytes);
    /// The contents of the file \a path; null when it cannot be read.
    static QByteArray Read(const QString& path);

    void WriteCatalogue(const QList<QJsonObject>& records) const;

    /// Runs zaxmat in the folder. Without a --catalogue among \a arguments the catalogue of the folder is named by
    /// the environment.
    Run Zaxmat(const QStringList& arguments) const;
    /// The same through the shell \a script, in which "$@" is the command.
    Run ZaxmatThrough(const QString& script, const QStringList& arguments) const;

    /// The environment that zaxmat is run in.
    QProcessEnvironment environment;

    /// Scripts for ZaxmatThrough(): no file can grow; and the permissions of files count, for the superuser too.
    static const QString onFullDisk;
    static QString AsOrdinaryUser();

private:
    QTemporaryDir m_folder;
};

/// The record of a material.
QJsonObject Material(const QString& key, const QString& name, const QJsonObject& properties);
/// The record of a stock form of the material \a materialKey.
QJsonObject StockForm(const QString& key, const QString& materialKey, const QString& name,
                      const QJsonObject& properties);

/// A small catalogue: S235JR of 2 mm and 3 mm with stock forms, and an acrylic without any.
QList<QJsonObject> SmallCatalogue();

#endif
