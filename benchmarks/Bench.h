#ifndef BENCH_H
#define BENCH_H

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// What the benchmarks share: how a cost is measured against a floor, and how the figures are told.
namespace bench {

/// Seconds of processor time that this process has used, so that other programs on the machine do not count.
double CpuSeconds();
/// Seconds of a clock on the wall, for what waits for a disk.
double WallSeconds();

/// Seconds that \a work takes by \a clock.
double Measure(const std::function<void()>& work, double (*clock)() = CpuSeconds);

/// The middle one of \a values, which must not be empty.
double Median(QList<double> values);

/// A cost and what the least conceivable code takes for the same.
struct Cost
{
    double value = 0;
    double floor = 0;
};

/// Keeps the compiler from leaving a computation out whose result nobody uses.
template <typename T>
void Keep(const T& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

/// One program's figures.
class Bench
{
public:
    /// \a arguments are those of the program: "--smoke" for tiny sizes, one round and no judgement on the figures,
    /// "--output FILE" to have each figure appended to FILE, its fields separated by tabs.
    explicit Bench(const QStringList& arguments);

    /// \a full, or \a smoke when it only matters that the program works.
    int Size(int full, int smoke) const;
    /// \a value and \a floor, each giving the seconds it took, in turns; the medians of all rounds.
    Cost Interleave(const std::function<double()>& value, const std::function<double()>& floor, int rounds = 7) const;
    /// \a values in turns; the median of each.
    QList<double> Interleave(const QList<std::function<double()>>& values, int rounds) const;

    /// Prints a figure: both costs times \a scale in \a unit, their ratio and the \a limit to that, if there is one.
    void Add(const QString& name, Cost cost, const char* unit, double scale, std::optional<double> limit);
    /// Tells that there is no figure, since what was to be measured does not work; counts as above its limit.
    void AddFailure(const QString& name);
    /// Keeps a point of a curve for the plot: \a value at \a size. \a what names the curve.
    void AddPoint(const QString& what, double size, double value);

    /// The exit code: 1 when a ratio was above its limit.
    int ExitCode() const;

private:
    void Append(const QStringList& fields) const;

    const bool m_isSmoke;
    const QString m_output;
    bool m_isWithinLimits = true;
};

} // namespace bench

#endif
