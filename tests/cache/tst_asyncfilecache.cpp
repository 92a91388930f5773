// SPDX-License-Identifier: MIT
#include "cache/asyncfilecache.h"

#include "cache/cachesupport.h"
#include "cache/diskcache.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QtConcurrent>
#include <thread>

using Vela::AsyncFileCache;
using Vela::StreamCache;

namespace {

using Info = AsyncFileCache::Item::Info;

constexpr unsigned int encoding = 7;
constexpr int streams = 200; // in the large file

QByteArray stream(int n)
{
    return QByteArray::number(n).rightJustified(8, '0').repeated(1 + n % 50);
}

/// Lets the pool have no thread for loads while it lives.
class BusyPool
{
public:
    BusyPool()
    {
        QThreadPool *pool = QThreadPool::globalInstance();
        m_threads = pool->maxThreadCount();
        pool->setMaxThreadCount(1);
        m_task = QtConcurrent::run(&m_gate, &QSemaphore::acquire, 1);
    }

    ~BusyPool()
    {
        m_gate.release();
        m_task.waitForFinished();
        QThreadPool::globalInstance()->setMaxThreadCount(m_threads);
    }

private:
    int m_threads;
    QSemaphore m_gate;
    QFuture<void> m_task;
};

/// Its items store when they are let.
class GatedCache : public Vela::StreamCache
{
public:
    class Item : public Vela::StreamCache::Item
    {
    public:
        explicit Item(GatedCache *cache)
            : Vela::StreamCache::Item(cache)
            , m_gated(cache)
        {
        }

        QByteArray rawData() override
        {
            return QByteArray();
        }

        bool setRawData(const QByteArray &data, unsigned int form, void *codecData,
                        unsigned int crc) override
        {
            m_gated->begun.release();
            m_gated->gate.acquire();
            m_gated->stored = true;
            return Vela::StreamCache::Item::setRawData(data, form, codecData, crc);
        }

    private:
        GatedCache *const m_gated;
    };

    GatedCache()
        : StreamCache(nullptr)
    {
    }

    ~GatedCache() override
    {
        clear();
    }

    Type type() const override
    {
        return Files;
    }

    Item *newItem(const QVariant &) override
    {
        return new Item(this);
    }

    QSemaphore begun;
    QSemaphore gate;
    std::atomic<bool> stored{false};
};

} // namespace

class TestAsyncFileCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_fileName = m_folder.filePath(QStringLiteral("large"));
        QFile file(m_fileName);
        QVERIFY(file.open(QIODevice::WriteOnly));
        for (int n = 0; n < streams; ++n) {
            Info info;
            info.offset = file.pos();
            info.size = quint32(stream(n).size());
            m_infos.append(info);
            file.write(stream(n));
        }
    }

    void loadsInTheBackground()
    {
        AsyncFileCache cache(nullptr, new Vela::MemoryCache(nullptr));
        QCOMPARE(cache.type(), StreamCache::Memory);
        cache.setFileName(m_fileName);
        QCOMPARE(cache.fileName(), m_fileName);
        QVector<const StreamCache::Item *> loaded;
        // The receiver lives on this thread, so it is called from the event loop.
        connect(&cache, &AsyncFileCache::itemLoaded, this,
                [&loaded](const AsyncFileCache::Item *item) {
                    QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
                    loaded.append(item);
                });
        QVector<AsyncFileCache::Item *> items;
        for (const Info &info : qAsConst(m_infos))
            items.append(cache.addAsyncItem(info));
        QTRY_COMPARE(loaded.size(), streams);
        // What is loaded needs no file.
        QVERIFY(QFile::rename(m_fileName, m_fileName + QLatin1Char('x')));
        for (int n = 0; n < streams; ++n) {
            QVERIFY(loaded.contains(items.at(n)));
            QCOMPARE(items.at(n)->data(), stream(n));
            QCOMPARE(cache.find(stream(n), nullptr), items.at(n));
        }
        QVERIFY(QFile::rename(m_fileName + QLatin1Char('x'), m_fileName));
    }

    void readsTheFileUntilLoaded()
    {
        BackwardsCodec codec;
        AsyncFileCache cache(&codec, new Vela::MemoryCache(&codec));
        cache.setFileName(write("packed", "...\7cba..."));
        int mark = 0;
        Info info;
        info.offset = 3;
        info.size = 4;
        info.encoding = encoding;
        info.codecData = &mark;
        AsyncFileCache::Item *item = nullptr;
        const auto check = [&] {
            QCOMPARE(item->rawData(), QByteArray("\7cba"));
            QCOMPARE(item->data(), QByteArray("abc"));
            QCOMPARE(item->size(), 4U);
            QCOMPARE(item->encoding(), encoding);
            QCOMPARE(item->codecData(), &mark);
        };
        {
            const BusyPool busy;
            item = cache.addAsyncItem(info);
            check();
            QCOMPARE(item->crc(), 0U);
            QCOMPARE(cache.find("abc", nullptr), item);
            QCOMPARE(item->crc(), 0xCADBBE3DU);
        }
        item->waitForDataReady();
        check();
        QCOMPARE(item->crc(), 0xCADBBE3DU);
        QCOMPARE(cache.find("abc", nullptr), item);
    }

    void storesBehindTheLoad()
    {
        AsyncFileCache cache(nullptr, new Vela::MemoryCache(nullptr));
        cache.setFileName(m_fileName);
        AsyncFileCache::Item *item = cache.addAsyncItem(m_infos.at(3));
        QVERIFY(item->setData("other", 0, nullptr, 0));
        QCOMPARE(item->data(), QByteArray("other"));
        QCOMPARE(item->size(), 5U);
        QCOMPARE(cache.find("other", nullptr), item);

        StreamCache::Item *empty = cache.addItem(QVariant());
        QCOMPARE(empty->size(), 0U);
        QVERIFY(empty->setData("abc", 0, nullptr, 0));
        QCOMPARE(empty->data(), QByteArray("abc"));
        QCOMPARE(empty->crc(), 0xCADBBE3DU);
    }

    void badRegionsTakeNoMemory_data()
    {
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<quint32>("size");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("too long") << Q_INT64_C(2) << 0xFFFFFFFFU << QByteArray("cde");
        QTest::newRow("behind") << Q_INT64_C(100) << 0xFFFFFFFFU << QByteArray();
        QTest::newRow("far behind") << std::numeric_limits<qint64>::max() << 10U << QByteArray();
        QTest::newRow("before") << Q_INT64_C(-1) << 10U << QByteArray();
    }

    void badRegionsTakeNoMemory()
    {
        QFETCH(const qint64, offset);
        QFETCH(const quint32, size);
        AsyncFileCache cache(nullptr, new Vela::MemoryCache(nullptr));
        cache.setFileName(write("short", "abcde"));
        Info info;
        info.offset = offset;
        info.size = size;
        AsyncFileCache::Item *item = cache.addAsyncItem(info);
        QTEST(item->data(), "data");
        item->waitForDataReady();
        QTEST(item->data(), "data");
    }

    void failedLoadLeavesTheItem()
    {
        qputenv("TMPDIR", m_fileName.toLocal8Bit()); // which is no folder
        // The second target cannot keep anything, but the file can still be read.
        for (const bool fileMissing : {true, false}) {
            AsyncFileCache cache(nullptr, new Vela::DiskCache(nullptr));
            cache.setFileName(fileMissing ? m_folder.filePath(QStringLiteral("none")) : m_fileName);
            QSignalSpy loaded(&cache, &AsyncFileCache::itemLoaded);
            AsyncFileCache::Item *item = cache.addAsyncItem(m_infos.at(9));
            item->waitForDataReady();
            QVERIFY(loaded.isEmpty());
            QCOMPARE(item->size(), m_infos.at(9).size);
            QCOMPARE(item->data(), fileMissing ? QByteArray() : stream(9));
            QVERIFY(!item->setData("abc", 0, nullptr, 0));
            QCOMPARE(item->size(), m_infos.at(9).size);
        }
        qunsetenv("TMPDIR");
    }

    void deletionWaitsForTheLoad()
    {
        auto *target = new GatedCache;
        AsyncFileCache cache(nullptr, target);
        cache.setFileName(m_fileName);
        AsyncFileCache::Item *item = cache.addAsyncItem(m_infos.at(0));
        target->begun.acquire();
        // The pause only gives a deletion that does not wait the time to be found out.
        std::thread opener([target] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            target->gate.release();
        });
        item->release();
        QVERIFY(target->stored);
        opener.join();
    }

    void anotherFileInTheMiddle()
    {
        const QString other = write("other", "other file");
        AsyncFileCache cache(nullptr, new Vela::DiskCache(nullptr));
        cache.setFileName(m_fileName);
        for (const Info &info : qAsConst(m_infos))
            cache.addAsyncItem(info);
        cache.setFileName(other);
        QVERIFY(!cache.find(stream(0), nullptr));
        Info info;
        info.size = 5;
        AsyncFileCache::Item *item = cache.addAsyncItem(info);
        item->waitForDataReady();
        QCOMPARE(item->data(), QByteArray("other"));
        // The cache ends with loads under way, too.
        for (int i = 0; i < streams; ++i)
            cache.addAsyncItem(info);
    }

private:
    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(m_folder.filePath(QLatin1String(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("the test can't write");
        return file.fileName();
    }

    QTemporaryDir m_folder;
    QString m_fileName;
    QVector<Info> m_infos;
};

QTEST_GUILESS_MAIN(TestAsyncFileCache)
#include "tst_asyncfilecache.moc"
