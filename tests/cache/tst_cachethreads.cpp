// SPDX-License-Identifier: MIT
#include "cache/asyncfilecache.h"
#include "cache/cachesupport.h"
#include "cache/diskcache.h"
#include "frame/checksum.h"

#include <QRandomGenerator>
#include <QTemporaryFile>
#include <QTest>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using Vela::AsyncFileCache;
using Vela::StreamCache;

namespace {

constexpr int workers = 4;
constexpr unsigned int encoding = 7;

// Tells of itself how long it is and what it holds.
QByteArray content(int key)
{
    return QByteArray::number(key).rightJustified(6, '0').repeated(1 + key % 700);
}

bool holds(StreamCache::Item *item, int key)
{
    const QByteArray data = content(key);
    return item->isEqualTo(data, Vela::CRC32(data.constData(), std::size_t(data.size())));
}

void runOnThreads(const std::function<void(int)> &work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < workers; ++i)
        threads.emplace_back(work, i);
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace

/// What the thread sanitizer is to see. Without it the tests still see lost items and mixed
/// streams.
class TestCacheThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workersAddChangeAndRelease_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("memory") << int(StreamCache::Memory);
        QTest::newRow("disk") << int(StreamCache::Disk);
    }

    void workersAddChangeAndRelease()
    {
        QFETCH(const int, type);
        BackwardsCodec codec;
        std::unique_ptr<StreamCache> cache(StreamCache::instance(&codec, StreamCache::Type(type)));
        std::atomic<int> wrong{0};
        std::vector<std::pair<StreamCache::Item *, int>> kept[workers];
        runOnThreads([&](int worker) {
            QRandomGenerator random(quint32(worker + 1));
            auto &mine = kept[worker];
            for (int i = 0; i < 400; ++i) {
                const std::size_t at = std::size_t(random.bounded(40));
                const int key = random.bounded(100000) * workers + worker;
                if (at >= mine.size()) {
                    mine.emplace_back(cache->addItem(QVariant()), 0);
                    mine.back().first->setData(content(0), encoding, nullptr, 0);
                }
                auto &[item, stored] = mine[std::min(at, mine.size() - 1)];
                wrong += item->data() != content(stored);
                stored = key;
                // Packed streams make the checksums wait for the first comparison.
                item->setRawData(BackwardsCodec::encoded(encoding, content(key)), encoding, nullptr,
                                 0);
                wrong += !holds(item, key);
                if (i % 5 == 0) {
                    item->release();
                    std::swap(mine[std::min(at, mine.size() - 1)], mine.back());
                    mine.pop_back();
                }
            }
        });
        QCOMPARE(wrong.load(), 0);
        for (const auto &mine : kept) {
            for (const auto &[item, key] : mine) {
                StreamCache::Item *found = cache->find(content(key), nullptr);
                QVERIFY(found == item || (found && cache->find(content(key), found) == item));
            }
        }
    }

    // One thread stores, so that the streams move in the file; the others read.
    void readsDuringStores()
    {
        Vela::DiskCache cache(nullptr);
        std::vector<StreamCache::Item *> steady;
        for (int i = 0; i < 20; ++i) {
            steady.push_back(cache.addItem(QVariant()));
            QVERIFY(steady.back()->setData(content(i * 37), 0, nullptr, 0));
        }
        std::atomic<bool> stop{false};
        std::atomic<int> wrong{0};
        std::atomic<int> reads{0};
        std::vector<std::thread> readers;
        for (int reader = 0; reader < workers; ++reader)
            readers.emplace_back([&, reader] {
                for (int i = reader; !stop; ++i) {
                    const int n = i % int(steady.size());
                    wrong += steady[std::size_t(n)]->data() != content(n * 37);
                    ++reads;
                }
            });
        StreamCache::Item *changing = cache.addItem(QVariant());
        for (int i = 0; i < 300 || reads < 1000; ++i) {
            const QByteArray data = content(i * 13);
            wrong +=
                !changing->setRawData(data, encoding, nullptr, 1) || changing->rawData() != data;
        }
        stop = true;
        for (std::thread &reader : readers)
            reader.join();
        QCOMPARE(wrong.load(), 0);
    }

    void loadsWhileItemsComeAndGo()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        constexpr int streams = 300;
        std::vector<AsyncFileCache::Item::Info> infos;
        for (int n = 0; n < streams; ++n) {
            AsyncFileCache::Item::Info info;
            info.offset = file.pos();
            info.size = quint32(content(n).size());
            infos.push_back(info);
            file.write(content(n));
        }
        file.flush();

        AsyncFileCache cache(nullptr, new Vela::DiskCache(nullptr));
        cache.setFileName(file.fileName());
        std::atomic<int> loaded{0};
        connect(
            &cache, &AsyncFileCache::itemLoaded, this,
            [&loaded](const AsyncFileCache::Item *item) { loaded += item->size() > 0; },
            Qt::DirectConnection);
        std::atomic<int> wrong{0};
        runOnThreads([&](int worker) {
            for (int n = worker; n < streams; n += workers) {
                AsyncFileCache::Item *item = cache.addAsyncItem(infos[std::size_t(n)]);
                wrong += item->data() != content(n);
                switch (n % 3) {
                case 0:
                    item->release(); // perhaps before it is loaded
                    break;
                case 1:
                    wrong += !item->setData(content(n + 1), 0, nullptr, 0)
                        || item->data() != content(n + 1);
                    break;
                default:
                    wrong += !holds(item, n);
                }
            }
        });
        QCOMPARE(wrong.load(), 0);
        cache.setFileName(file.fileName()); // waits for all
        QCOMPARE(loaded.load(), streams);
    }
};

QTEST_GUILESS_MAIN(TestCacheThreads)
#include "tst_cachethreads.moc"
