// SPDX-License-Identifier: MIT
// The checksums against the plain loop and zlib, the find of a miss against the plain walk over the
// items, and stores that change the length of streams against appends to the same file and against
// blobs in SQLite. All times are of one thread's work.
#include "cache/diskcache.h"
#include "frame/checksum.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QVector>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>

#ifdef VELA_HAS_ZLIB
#include <zlib.h>
#endif
#ifdef VELA_HAS_SQLITE
#include <sqlite3.h>
#endif

using Vela::StreamCache;

namespace {

constexpr int streams = 10000;
constexpr unsigned int packed = 1; // an encoding: the cache does not compress the stream

QByteArray noise(QRandomGenerator &random, int length)
{
    QByteArray data(length, Qt::Uninitialized);
    for (char &byte : data)
        byte = char(random.generate());
    return data;
}

// Checksums: all compute that of the same bytes and say what it is.

template <typename Crc>
Crc plainCrc(const QByteArray &data, Crc polynomial)
{
    static const std::array<Crc, 256> table = [polynomial] {
        std::array<Crc, 256> filled;
        for (unsigned int i = 0; i < 256; ++i) {
            filled[i] = i;
            for (int bit = 0; bit < 8; ++bit)
                filled[i] = (filled[i] >> 1) ^ ((filled[i] & 1) != 0 ? polynomial : 0);
        }
        return filled;
    }();
    Crc crc = ~Crc(0);
    for (const char byte : data)
        crc = table[(static_cast<unsigned char>(byte) ^ crc) & 255] ^ (crc >> 8);
    return crc;
}

quint64 plain32(const QByteArray &data)
{
    return plainCrc<quint32>(data, 0xEDB88320);
}

quint64 plain64(const QByteArray &data)
{
    return plainCrc<quint64>(data, Q_UINT64_C(0x95AC9329AC4BC9B5));
}

quint64 vela32(const QByteArray &data)
{
    return Vela::CRC32(data.constData(), std::size_t(data.size()));
}

quint64 vela64(const QByteArray &data)
{
    return Vela::CRC64(reinterpret_cast<const unsigned char *>(data.constData()),
                       std::size_t(data.size()));
}

void checksum(benchmark::State &state, quint64 (*crc)(const QByteArray &),
              quint64 (*same)(const QByteArray &))
{
    QRandomGenerator random(1);
    const QByteArray data = noise(random, int(state.range(0)));
    if (crc(data) != same(data))
        state.SkipWithError("the checksums differ");
    for (auto _ : state)
        benchmark::DoNotOptimize(crc(data));
    state.SetBytesProcessed(state.iterations() * data.size());
}

BENCHMARK_CAPTURE(checksum, crc32, vela32, plain32)->Range(4096, 1 << 20);
#ifdef VELA_HAS_ZLIB
quint64 zlib32(const QByteArray &data)
{
    return ~quint32(crc32(0, reinterpret_cast<const Bytef *>(data.constData()), uInt(data.size())));
}

BENCHMARK_CAPTURE(checksum, crc32_zlib, zlib32, plain32)->Range(4096, 1 << 20);
#endif
BENCHMARK_CAPTURE(checksum, crc32_plain, plain32, plain32)->Range(4096, 1 << 20);
BENCHMARK_CAPTURE(checksum, crc64, vela64, plain64)->Range(4096, 1 << 20);
BENCHMARK_CAPTURE(checksum, crc64_plain, plain64, plain64)->Range(4096, 1 << 20);

// Finds: a cache of streams of 2 to 64 KB, each of which is there twice.

class FilledCache
{
public:
    explicit FilledCache(int count)
        : cache(nullptr)
    {
        QRandomGenerator random(2);
        for (int i = 0; i < count / 2; ++i)
            add(noise(random, random.bounded(2 << 10, 64 << 10)));
        for (int i = 0; i < count / 2; ++i)
            add(items.at(random.bounded(count / 2))->data());
        miss = noise(random, 16 << 10);
    }

    StreamCache::Item *plainFind(const QByteArray &data) const
    {
        const unsigned int crc = unsigned(vela32(data));
        for (StreamCache::Item *item : items) {
            if (item->isEqualTo(data, crc))
                return item;
        }
        return nullptr;
    }

    Vela::DiskCache cache;
    QVector<StreamCache::Item *> items;
    QByteArray miss;

private:
    void add(const QByteArray &data)
    {
        items.append(cache.addItem(QVariant()));
        items.last()->setRawData(data, packed, nullptr, 0);
    }
};

void find(benchmark::State &state, bool plain, bool hit)
{
    FilledCache filled{int(state.range(0))};
    const int last = filled.items.size() / 2 - 1;
    const QByteArray data = hit ? filled.items.at(last)->data() : filled.miss;
    if (filled.cache.find(data, nullptr) != filled.plainFind(data))
        state.SkipWithError("another item is found");
    for (auto _ : state)
        benchmark::DoNotOptimize(plain ? filled.plainFind(data) : filled.cache.find(data, nullptr));
}

BENCHMARK_CAPTURE(find, miss, false, false)->RangeMultiplier(10)->Range(100, streams);
BENCHMARK_CAPTURE(find, miss_plain, true, false)->RangeMultiplier(10)->Range(100, streams);
BENCHMARK_CAPTURE(find, hit, false, true)->RangeMultiplier(10)->Range(100, streams);
BENCHMARK_CAPTURE(find, hit_plain, true, true)->RangeMultiplier(10)->Range(100, streams);

// Stores: the streams are cut out of one block of noise.

class Streams
{
public:
    Streams()
        : m_noise(noise(m_random, 128 << 10))
    {
        for (int i = 0; i < streams; ++i)
            first.append(any());
        for (int i = 0; i < streams; ++i)
            later.append({m_random.bounded(streams), any()});
    }

    QVector<QByteArray> first;
    QVector<QPair<int, QByteArray>> later; // which item, and what it is to hold

private:
    QByteArray any()
    {
        const int length = m_random.bounded(2 << 10, 64 << 10);
        return m_noise.mid(m_random.bounded(m_noise.size() - length), length);
    }

    QRandomGenerator m_random{3};
    QByteArray m_noise;
};

class Store
{
public:
    virtual ~Store() = default;
    virtual bool append(const QByteArray &data) = 0;
    virtual bool change(int index, const QByteArray &data) = 0;
    virtual QByteArray read(int index) = 0;
};

class VelaStore : public Store
{
public:
    bool append(const QByteArray &data) override
    {
        m_items.append(m_cache.addItem(QVariant()));
        return change(m_items.size() - 1, data);
    }

    bool change(int index, const QByteArray &data) override
    {
        // A checksum given is not computed, as in the other store.
        return m_items.at(index)->setRawData(data, packed, nullptr, 1);
    }

    QByteArray read(int index) override
    {
        return m_items.at(index)->rawData();
    }

private:
    Vela::DiskCache m_cache{nullptr};
    QVector<StreamCache::Item *> m_items;
};

#ifdef VELA_HAS_SQLITE
// As fast as it gets: one transaction, no journal, no waiting for the disk.
class SqliteStore : public Store
{
public:
    SqliteStore()
    {
        const QByteArray name = m_folder.filePath(QStringLiteral("blobs")).toLocal8Bit();
        sqlite3_open(name.constData(), &m_db);
        for (const char *command :
             {"PRAGMA journal_mode = OFF", "PRAGMA synchronous = OFF",
              "CREATE TABLE streams (id INTEGER PRIMARY KEY, data BLOB)", "BEGIN"})
            sqlite3_exec(m_db, command, nullptr, nullptr, nullptr);
        m_append = prepare("INSERT INTO streams (data) VALUES (?)");
        m_change = prepare("UPDATE streams SET data = ? WHERE id = ?");
        m_read = prepare("SELECT data FROM streams WHERE id = ?");
    }

    ~SqliteStore() override
    {
        for (sqlite3_stmt *statement : {m_append, m_change, m_read})
            sqlite3_finalize(statement);
        sqlite3_close(m_db);
    }

    bool append(const QByteArray &data) override
    {
        return run(m_append, data);
    }

    bool change(int index, const QByteArray &data) override
    {
        sqlite3_bind_int(m_change, 2, index + 1);
        return run(m_change, data);
    }

    QByteArray read(int index) override
    {
        sqlite3_bind_int(m_read, 1, index + 1);
        QByteArray data;
        if (sqlite3_step(m_read) == SQLITE_ROW)
            data = QByteArray(static_cast<const char *>(sqlite3_column_blob(m_read, 0)),
                              sqlite3_column_bytes(m_read, 0));
        sqlite3_reset(m_read);
        return data;
    }

private:
    sqlite3_stmt *prepare(const char *text)
    {
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(m_db, text, -1, &statement, nullptr);
        return statement;
    }

    static bool run(sqlite3_stmt *statement, const QByteArray &data)
    {
        sqlite3_bind_blob(statement, 1, data.constData(), data.size(), SQLITE_STATIC);
        const bool done = sqlite3_step(statement) == SQLITE_DONE;
        sqlite3_reset(statement);
        return done;
    }

    QTemporaryDir m_folder;
    sqlite3 *m_db = nullptr;
    sqlite3_stmt *m_append = nullptr;
    sqlite3_stmt *m_change = nullptr;
    sqlite3_stmt *m_read = nullptr;
};
#endif

enum class Job { Append, Change, Read };

bool fill(Store &store, const Streams &data)
{
    return std::all_of(data.first.cbegin(), data.first.cend(),
                       [&store](const QByteArray &stream) { return store.append(stream); });
}

bool change(Store &store, const Streams &data)
{
    return std::all_of(data.later.cbegin(), data.later.cend(), [&store](const auto &later) {
        return store.change(later.first, later.second);
    });
}

bool holds(Store &store, const QVector<QByteArray> &expected)
{
    for (int i = 0; i < expected.size(); ++i) {
        if (store.read(i) != expected.at(i))
            return false;
    }
    return true;
}

template <typename AnyStore>
void stores(benchmark::State &state, Job job)
{
    const Streams data;
    QVector<QByteArray> changed = data.first;
    for (const auto &[index, stream] : data.later)
        changed[index] = stream;
    bool right = true;
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<AnyStore>();
        right = right && (job == Job::Append || fill(*store, data))
            && (job != Job::Read || change(*store, data));
        state.ResumeTiming();
        right = right
            && (job == Job::Append       ? fill(*store, data)
                    : job == Job::Change ? change(*store, data)
                                         : holds(*store, changed));
        state.PauseTiming();
        right = right && holds(*store, job == Job::Append ? data.first : changed);
        store.reset();
        state.ResumeTiming();
    }
    if (!right)
        state.SkipWithError("a stream is lost");
    state.SetItemsProcessed(state.iterations() * streams);
}

template <typename AnyStore>
void registerStores(const char *name)
{
    const std::pair<Job, const char *> jobs[] = {
        {Job::Append, "append"}, {Job::Change, "change"}, {Job::Read, "read"}};
    for (const auto &[job, text] : jobs)
        benchmark::RegisterBenchmark((std::string(name) + '/' + text).c_str(), stores<AnyStore>,
                                     job)
            ->Unit(benchmark::kMillisecond)
            ->Iterations(3);
}

} // namespace

int main(int argc, char *argv[])
{
    benchmark::Initialize(&argc, argv);
    registerStores<VelaStore>("diskcache");
#ifdef VELA_HAS_SQLITE
    registerStores<SqliteStore>("sqlite");
#endif
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
