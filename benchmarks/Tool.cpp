// What the commands of zaxmat cost on a large catalogue, start and end included, against an empty program and parsing
// the catalogue's file; for what changes the catalogue, and printing and writing it again.

#include "Bench.h"
#include "Catalogue.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace bench;

namespace {

double Seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

/// Runs a program of the build folder, without anybody reading its output. The seconds of processor time that it took;
/// -1 when it failed.
double Run(const QByteArrayList& command)
{
    QByteArray program = QFile::encodeName(QCoreApplication::applicationDirPath()) + '/' + command.first();
    QByteArrayList words = command;
    std::vector<char*> arguments;
    for (QByteArray& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const bool isRunning =
        posix_spawn(&process, program.constData(), &actions, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    rusage usage{};
    if (!isRunning || wait4(process, &status, 0, &usage) != process || status != 0)
        return -1;
    return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

double MustRun(const QByteArrayList& command)
{
    const double seconds = Run(command);
    if (seconds < 0)
        qFatal("%s fails.", command.join(' ').constData());
    return seconds;
}

double RunEmpty()
{
    return MustRun({"bench_EmptyProgram"});
}

void Write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())
        qFatal("%s cannot be written.", qUtf8Printable(path));
    ::fsync(file.handle());
}

/// A row for each material of the catalogue, with another density.
QByteArray Rows(const QJsonObject& catalogue)
{
    QByteArray rows("type,key,density\n");
    for (auto member = catalogue.begin(); member != catalogue.end(); ++member) {
        if (member.value().toObject().value(QLatin1String("type")).toInt() == 0)
            rows += "material," + member.key().toUtf8() + ",1.25\n";
    }
    return rows;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const CatalogueFile file(bench.Size(10000, 20));
    const QByteArray text = file.Read();
    const QJsonObject catalogue = QJsonDocument::fromJson(text).object();
    const QByteArray directory = QFile::encodeName(file.Directory());
    const QByteArray rowsPath = directory + "/rows.csv";
    const QByteArray key = catalogue.keys().constFirst().toUtf8();
    Write(QFile::decodeName(rowsPath), Rows(catalogue));

    const Cost start = bench.Interleave([] { return MustRun({"zaxmat", "--version"}); }, RunEmpty, 21);
    bench.Add(QLatin1String("zaxmat --version"), start, "ms", 1e3, 2.0);

    const auto parse = [&] {
        return RunEmpty() + Measure([&] { Keep(QJsonDocument::fromJson(file.Read()).object().size()); });
    };
    const QList<QByteArrayList> readers{{"list"}, {"show", key}, {"find", "thickness=2", "materialType=DC01"}};
    for (const QByteArrayList& reader : readers) {
        const QByteArrayList command = QByteArrayList{"zaxmat"} + reader + QByteArrayList{"--catalogue", directory};
        const QString name = QLatin1String("zaxmat ") + QString::fromUtf8(reader.first());
        if (Run(command) < 0) {
            bench.AddFailure(name);
            continue;
        }
        const Cost cost = bench.Interleave([&] { return MustRun(command); }, parse, 7);
        bench.Add(name, cost, "ms", 1e3, 1.5);
    }

    const QByteArrayList importCommand{"zaxmat", "import", rowsPath, "--catalogue", directory};
    if (Run(importCommand) < 0) {
        bench.AddFailure(QLatin1String("zaxmat import"));
        return bench.ExitCode();
    }
    const Cost import = bench.Interleave(
        [&] {
            Write(file.Path(), text);
            return MustRun(importCommand);
        },
        [&] { return parse() + Measure([&] { Write(file.Path(), QJsonDocument(catalogue).toJson()); }); }, 7);
    bench.Add(QLatin1String("zaxmat import"), import, "ms", 1e3, 2.0);
    return bench.ExitCode();
}
