// How the cost of what touches a whole catalogue or document grows with its size: ten times the size should be ten
// times the cost. The points of the curves go to the plot.

#include "Bench.h"
#include "Catalogue.h"
#include "Document.h"

#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"
#include "ZAXMatRoot.h"
#include "ZAXSysStartup.h"

#include <QBuffer>
#include <QCoreApplication>

#include <memory>

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
          m_cache(ZAXMatProviderCache::GetCache(m_provider.GetProviderId()))
    {
        // Fills the cache.
        Find();
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
    std::unique_ptr<ZAXMatProviderCache> m_cache;
};

/// A document of one size.
class DocumentSubject
{
public:
    DocumentSubject(int materials, int repetitions) : m_repetitions(repetitions)
    {
        Fill(m_document, MakeBareDocument(materials));
        m_bytes = m_document.Encode();
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

private:
    const int m_repetitions;
    ZAXHostDocument m_document;
    QByteArray m_bytes;
};

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    ZAXSysStartup::Start();
    const int smallest = bench.Size(1000, 2);

    const auto measure = [&](const char* what, auto&& subjects, auto operation) {
        QList<std::function<double()>> operations;
        for (auto& subject : subjects)
            operations.append([&subject, operation] { return operation(*subject); });
        const QList<double> costs = bench.Interleave(operations, 5);
        int size = smallest;
        for (qsizetype i = 0; i < costs.size(); ++i, size *= 10) {
            bench.AddPoint(QString::fromUtf8(what), size, costs[i]);
            if (i > 0)
                bench.Add(QLatin1String("%1, from %2 to %3 materials")
                              .arg(QString::fromUtf8(what), QString::number(size / 10), QString::number(size)),
                          {costs[i], 10 * costs[i - 1]}, "ms", 1e3, 1.2);
        }
    };
    {
        std::vector<std::unique_ptr<Subject>> catalogues;
        for (const int factor : {1, 10, 100})
            catalogues.push_back(std::make_unique<Subject>(factor * smallest, 100 / factor));
        measure("open", catalogues, [](Subject& subject) { return subject.Open(); });
        measure("commit", catalogues, [](Subject& subject) { return subject.Commit(); });
        measure("find", catalogues, [](Subject& subject) { return subject.Find(); });
    }
    {
        std::vector<std::unique_ptr<DocumentSubject>> documents;
        for (const int factor : {1, 10, 100})
            documents.push_back(std::make_unique<DocumentSubject>(factor * smallest, 30 / factor + 1));
        measure("save", documents, [](DocumentSubject& subject) { return subject.Save(); });
        measure("load", documents, [](DocumentSubject& subject) { return subject.Load(); });
    }
    return bench.ExitCode();
}
