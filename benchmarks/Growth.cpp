// How the cost of what touches a whole catalogue or document grows with its size: ten times the size should be ten
// times the cost. How that of the least conceivable code grows stands beside it. The points of the curves go to the
// plot.

#include "Bench.h"
#include "Catalogue.h"
#include "CatalogueFloor.h"
#include "Document.h"

#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"
#include "ZAXMatRoot.h"
#include "ZAXSysStartup.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <functional>
#include <memory>
#include <optional>

using namespace bench;

namespace {

/// A catalogue and a document of one size.
class Subject
{
public:
    Subject(int materials, int repetitions)
        : m_repetitions(repetitions),
          m_file(materials),
          m_provider(QByteArray::number(materials), QString(), m_file.Directory()),
          m_cache(ZAXMatProviderCache::GetCache(m_provider.GetProviderId())),
          m_tables(*m_cache)
    {
    }

    /// Each operation, in seconds.
    double Open() const
    {
        return Repeat([this] {
            return Measure([&] {
                const ZAXMatJsonFileProvider provider(m_file.Directory());
                const QList<QByteArray> materials = provider.GetMaterialKeys();
                for (const QByteArray& material : materials)
                    Keep(provider.GetPackagingKeys(material).size());
            });
        });
    }
    double Commit()
    {
        return Repeat([this] {
            m_provider.GetMaterialKeys();
            return Measure([&] { m_provider.Commit(); });
        });
    }
    double Find() const
    {
        return Repeat(
            [this] { return Measure([&] { Keep(m_cache->FindMaterials(QLatin1String("DC01"), 2.5).size()); }); });
    }
    double OpenFloor() const
    {
        return Repeat([this] { return Measure([&] { Keep(Parse(m_file).object().size()); }); });
    }
    double CommitFloor() const
    {
        const QJsonDocument tree = Parse(m_file);
        return Repeat([&] { return Measure([&] { Write(m_other.Path(), tree); }); });
    }
    double FindFloor() const
    {
        return Repeat([this] { return Measure([&] { Keep(m_tables.Count(QLatin1String("DC01"), 2.5)); }); });
    }

private:
    template <typename Work>
    double Repeat(Work work) const
    {
        double sum = 0;
        for (int i = 0; i < m_repetitions; ++i)
            sum += work();
        return sum / m_repetitions;
    }

    const int m_repetitions;
    CatalogueFile m_file;
    ZAXMatJsonFileProvider m_provider;
    const CatalogueFile m_other{1};
    std::unique_ptr<ZAXMatProviderCache> m_cache;
    /// Made through the cache, which holds all materials from then on.
    const MaterialTables m_tables;
};

/// A document of one size.
class DocumentSubject
{
public:
    DocumentSubject(int materials, int repetitions) : m_repetitions(repetitions), m_bare(MakeBareDocument(materials))
    {
        Fill(m_document, m_bare);
        m_bytes = m_document.Encode();
        m_bareBytes = bench::Save(m_bare);
    }

    double Save()
    {
        double sum = 0;
        for (int i = 0; i < m_repetitions; ++i) {
            QBuffer buffer;
            buffer.open(QIODevice::WriteOnly);
            sum += Measure([&] { Require(m_document.Save(&buffer)); });
        }
        return sum / m_repetitions;
    }
    double Load()
    {
        double sum = 0;
        for (int i = 0; i < m_repetitions; ++i) {
            QBuffer buffer;
            buffer.setData(m_bytes);
            buffer.open(QIODevice::ReadOnly);
            ZAXHostDocument document;
            sum += Measure([&] { Require(document.Load(&buffer)); });
        }
        return sum / m_repetitions;
    }

    double SaveFloor() const
    {
        double sum = 0;
        for (int i = 0; i < m_repetitions; ++i)
            sum += Measure([&] { Keep(bench::Save(m_bare).size()); });
        return sum / m_repetitions;
    }
    double LoadFloor() const
    {
        double sum = 0;
        for (int i = 0; i < m_repetitions; ++i) {
            BareDocument loaded;
            sum += Measure([&] { loaded = bench::Load(m_bareBytes); });
        }
        return sum / m_repetitions;
    }

private:
    const int m_repetitions;
    const BareDocument m_bare;
    ZAXHostDocument m_document;
    QByteArray m_bytes;
    QByteArray m_bareBytes;
};

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    ZAXSysStartup::Start();
    const int smallest = bench.Size(1000, 2);

    // How \a operation grows, and, without a limit, how \a floor does.
    const auto measure = [&](const char* what, auto&& subjects, auto operation, auto floor) {
        const auto grow = [&](const QString& name, auto work, std::optional<double> limit) {
            QList<std::function<double()>> operations;
            for (auto& subject : subjects)
                operations.append([&subject, work] { return ((*subject).*work)(); });
            const QList<double> costs = bench.Interleave(operations, 5);
            int size = smallest;
            for (qsizetype i = 0; i < costs.size(); ++i, size *= 10) {
                if (limit)
                    bench.AddPoint(name, size, costs[i]);
                if (i > 0)
                    bench.Add(QLatin1String("%1, from %2 to %3 materials")
                                  .arg(name, QString::number(size / 10), QString::number(size)),
                              {costs[i], 10 * costs[i - 1]}, "ms", 1e3, limit);
            }
        };
        const QString name = QString::fromUtf8(what);
        grow(name, operation, 1.2);
        grow(name + QLatin1String(" (floor)"), floor, {});
    };
    {
        std::vector<std::unique_ptr<Subject>> catalogues;
        for (const int factor : {1, 10, 100})
            catalogues.push_back(std::make_unique<Subject>(factor * smallest, 100 / factor));
        measure("open", catalogues, &Subject::Open, &Subject::OpenFloor);
        measure("commit", catalogues, &Subject::Commit, &Subject::CommitFloor);
        measure("find", catalogues, &Subject::Find, &Subject::FindFloor);
    }
    {
        std::vector<std::unique_ptr<DocumentSubject>> documents;
        for (const int factor : {1, 10, 100})
            documents.push_back(std::make_unique<DocumentSubject>(factor * smallest, 30 / factor + 1));
        measure("save", documents, &DocumentSubject::Save, &DocumentSubject::SaveFloor);
        measure("load", documents, &DocumentSubject::Load, &DocumentSubject::LoadFloor);
    }
    return bench.ExitCode();
}
