#include "Bench.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace bench {

namespace {

double Seconds(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

QString ArgumentAfter(const QStringList& arguments, const QString& option)
{
    return arguments.value(arguments.indexOf(option) + 1, QString());
}

QString Number(double value)
{
    return QString::number(value, 'g', 4);
}

} // namespace

double CpuSeconds()
{
    return Seconds(CLOCK_PROCESS_CPUTIME_ID);
}

double WallSeconds()
{
    return Seconds(CLOCK_MONOTONIC);
}

double Measure(const std::function<void()>& work, double (*clock)())
{
    const double start = clock();
    work();
    return clock() - start;
}

double Median(QList<double> values)
{
    const auto middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

Bench::Bench(const QStringList& arguments)
    : m_isSmoke(arguments.contains(QLatin1String("--smoke"))),
      m_output(arguments.contains(QLatin1String("--output")) ? ArgumentAfter(arguments, QLatin1String("--output"))
                                                             : QString())
{
}

int Bench::Size(int full, int smoke) const
{
    return m_isSmoke ? smoke : full;
}

Cost Bench::Interleave(const std::function<double()>& value, const std::function<double()>& floor, int rounds) const
{
    const QList<double> costs = Interleave({value, floor}, rounds);
    return {costs[0], costs[1]};
}

QList<double> Bench::Interleave(const QList<std::function<double()>>& values, int rounds) const
{
    QList<QList<double>> costs(values.size());
    for (int round = 0; round < Size(rounds, 1); ++round) {
        for (qsizetype i = 0; i < values.size(); ++i)
            costs[i].append(values[i]());
    }
    QList<double> medians;
    std::ranges::transform(costs, std::back_inserter(medians), Median);
    return medians;
}

void Bench::Add(const QString& name, Cost cost, const char* unit, double scale, std::optional<double> limit)
{
    const double ratio = cost.value / cost.floor;
    const bool isWithinLimit = !limit || ratio <= *limit;
    m_isWithinLimits &= isWithinLimit;
    const QStringList fields{name,
                             Number(cost.value * scale),
                             QString::fromUtf8(unit),
                             Number(cost.floor * scale),
                             QString::number(ratio, 'f', 2),
                             limit ? Number(*limit) : QString()};
    std::printf("%-52s %9s %-6s %9s %7s %5s%s\n", qUtf8Printable(fields[0]), qUtf8Printable(fields[1]),
                qUtf8Printable(fields[2]), qUtf8Printable(fields[3]), qUtf8Printable(fields[4]),
                qUtf8Printable(fields[5]), isWithinLimit ? "" : "  above");
    std::fflush(stdout);
    Append(QStringList{QLatin1String("figure")} + fields +
           QStringList{QLatin1String(!limit          ? ""
                                     : isWithinLimit ? "met"
                                                     : "**above**")});
}

void Bench::AddFailure(const QString& name)
{
    m_isWithinLimits = false;
    std::printf("%-52s fails\n", qUtf8Printable(name));
    std::fflush(stdout);
    const QString none = QLatin1String("-");
    Append({QLatin1String("figure"), name, none, none, none, none, none, QLatin1String("**fails**")});
}

void Bench::AddPoint(const QString& what, double size, double value)
{
    Append({QLatin1String("point"), what, Number(size), Number(value)});
}

int Bench::ExitCode() const
{
    return m_isWithinLimits || m_isSmoke ? 0 : 1;
}

void Bench::Append(const QStringList& fields) const
{
    if (m_output.isEmpty())
        return;
    QFile file(m_output);
    if (file.open(QIODevice::Append))
        file.write(fields.join(u'\t').toUtf8() + '\n');
}

} // namespace bench
