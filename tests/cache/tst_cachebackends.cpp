// SPDX-License-Identifier: MIT
#include "cache/cachesupport.h"
#include "cache/diskcache.h"
#include "frame/checksum.h"
#include "support/limits_unix.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <thread>

using Vela::DiskCache;
using Vela::FileCache;
using Vela::StreamCache;

namespace {

constexpr unsigned int encoding = 7;

QByteArray noise(QRandomGenerator &random, int length)
{
    QByteArray data(length, Qt::Uninitialized);
    for (char &byte : data)
        byte = char(random.generate());
    return data;
}

bool store(StreamCache::Item *item, const QByteArray &raw, unsigned int form = encoding)
{
    return item->setRawData(raw, form, nullptr, 1);
}

QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "unreadable";
}

QByteArray readOnAnotherThread(StreamCache::Item *item)
{
    QByteArray data;
    std::thread([&] { data = item->rawData(); }).join();
    return data;
}

} // namespace

class TestCacheBackends : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Temporary files go to a folder of the test's own.
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        qputenv("TMPDIR", m_folder->path().toLocal8Bit());
    }

    void cleanup()
    {
        qunsetenv("TMPDIR");
    }

    void packedKeepsStreams_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("memory") << int(StreamCache::Memory);
        QTest::newRow("disk") << int(StreamCache::Disk);
    }

    void packedKeepsStreams()
    {
        QFETCH(const int, type);
        std::unique_ptr<StreamCache> cache(StreamCache::instance(nullptr, StreamCache::Type(type)));
        const QByteArray data(100000, 'x');
        StreamCache::Item *item = cache->addItem(QStringLiteral("plays no part"));
        QVERIFY(item->rawData().isEmpty());
        for (const unsigned int form : {0U, encoding}) {
            QVERIFY(store(item, data, form));
            QCOMPARE(item->size(), 100000U);
            QCOMPARE(item->rawData(), data);
            QCOMPARE(readOnAnotherThread(item), data);
            QVERIFY(store(item, QByteArray(), form));
            QCOMPARE(item->size(), 0U);
            QVERIFY(item->rawData().isEmpty());
        }
    }

    // 100 KB of the same letter take hardly any space unless a codec has had them.
    void packsWhatNoCodecHasPacked()
    {
        DiskCache cache(nullptr);
        StreamCache::Item *item = cache.addItem(QVariant());
        QVERIFY(store(item, QByteArray(100000, 'x'), 0));
        QVERIFY(diskFile().size() < 1000);
        QVERIFY(store(item, QByteArray(100000, 'x'), encoding));
        QVERIFY(diskFile().size() >= 100000);
    }

    void diskFileGoesWithItsCache()
    {
        auto cache = std::make_unique<DiskCache>(nullptr);
        QVERIFY(store(cache->addItem(QVariant()), "abc"));
        QCOMPARE(diskFile().size(), 3);
        cache.reset();
        QVERIFY(!diskFile().exists());
    }

    void diskGrowsInTheMiddle()
    {
        DiskCache cache(nullptr);
        StreamCache::Item *items[3];
        for (StreamCache::Item *&item : items)
            item = cache.addItem(QVariant());
        QVERIFY(store(items[0], QByteArray(40000, 'a')) && store(items[1], "b")
                && store(items[2], QByteArray(70000, 'c')));
        for (const int length : {50000, 3, 0, 100000}) {
            QVERIFY(store(items[1], QByteArray(length, 'b')));
            QCOMPARE(items[0]->rawData(), QByteArray(40000, 'a'));
            QCOMPARE(items[1]->rawData(), QByteArray(length, 'b'));
            QCOMPARE(readOnAnotherThread(items[2]), QByteArray(70000, 'c'));
        }
    }

    // Whatever comes, changes and goes, each stream stays, and the file is at most twice as large
    // as the largest sum of the streams, with the one that is stored last.
    void diskKeepsManyStreams()
    {
        QRandomGenerator random(5);
        DiskCache cache(nullptr);
        QVector<QPair<StreamCache::Item *, QByteArray>> model;
        qint64 sum = 0;
        qint64 most = 0;
        for (int i = 0; i < 3000; ++i) {
            const int at = random.bounded(60);
            const int length =
                random.bounded(10) == 0 ? 0 : random.bounded(1 << random.bounded(1, 18));
            if (at >= model.size())
                model.append({cache.addItem(QVariant()), QByteArray()});
            auto &[item, data] = model[std::min(at, int(model.size()) - 1)];
            sum += length - data.size();
            most = std::max(most, sum);
            data = noise(random, length);
            QVERIFY(store(item, data));
            QVERIFY(diskFile().size() <= 2 * most + (1 << 17));
            if (random.bounded(20) == 0) {
                const auto [gone, last] = model.takeAt(random.bounded(model.size()));
                gone->release();
                sum -= last.size();
            }
            if (i % 50 == 0 || i > 2990) {
                for (const auto &[kept, bytes] : qAsConst(model))
                    QCOMPARE(kept->rawData(), bytes);
            }
        }
    }

    void diskWithoutFile()
    {
        qputenv("TMPDIR", file("nofolder", "").toLocal8Bit());
        DiskCache cache(nullptr);
        StreamCache::Item *item = cache.addItem(QVariant());
        QVERIFY(!store(item, "abc"));
        QCOMPARE(item->size(), 0U);
        QVERIFY(item->rawData().isEmpty());
        QVERIFY(readOnAnotherThread(item).isEmpty());
        QVERIFY(store(item, QByteArray()));
    }

    void fullDiskKeepsTheOldStream()
    {
        DiskCache cache(nullptr);
        StreamCache::Item *item = cache.addItem(QVariant());
        StreamCache::Item *other = cache.addItem(QVariant());
        QVERIFY(store(item, QByteArray(3000, 'a')) && store(other, "other"));
        {
            const FullDisk full(4096);
            QVERIFY(!item->setRawData(QByteArray(30000, 'b'), 8, nullptr, 2));
            QVERIFY(store(other, "again"));
        }
        QCOMPARE(item->size(), 3000U);
        QCOMPARE(item->encoding(), encoding);
        QCOMPARE(item->crc(), 1U);
        QCOMPARE(item->rawData(), QByteArray(3000, 'a'));
        QCOMPARE(other->rawData(), QByteArray("again"));
        QVERIFY(store(item, QByteArray(30000, 'b')));
        QCOMPARE(item->rawData(), QByteArray(30000, 'b'));
    }

    // The stream is so short that a buffer of the file would take it.
    void fullDiskLeavesNothingBehind()
    {
        DiskCache cache(nullptr);
        StreamCache::Item *item = cache.addItem(QVariant());
        StreamCache::Item *other = cache.addItem(QVariant());
        QVERIFY(store(item, QByteArray(3000, 'a')));
        {
            const FullDisk full(4096);
            QVERIFY(!store(other, QByteArray(10000, 'b')));
            QCOMPARE(item->rawData(), QByteArray(3000, 'a'));
        }
        QVERIFY(store(other, "other"));
        QCOMPARE(other->rawData(), QByteArray("other"));
        QCOMPARE(item->rawData(), QByteArray(3000, 'a'));
    }

    // A stream that cannot be moved to the gap in front of it stays.
    void fullDiskStopsTheMoves()
    {
        DiskCache cache(nullptr);
        StreamCache::Item *items[3];
        for (StreamCache::Item *&item : items)
            item = cache.addItem(QVariant());
        QVERIFY(store(items[0], QByteArray(10000, 'a')) && store(items[1], QByteArray(3000, 'b'))
                && store(items[2], QByteArray(2000, 'c')));
        const auto check = [&items] {
            QCOMPARE(items[1]->rawData(), QByteArray(3000, 'b'));
            QCOMPARE(items[2]->rawData(), QByteArray(2000, 'c'));
        };
        {
            const FullDisk full(100);
            QVERIFY(store(items[0], QByteArray()));
            check();
        }
        QVERIFY(store(items[0], "again"));
        check();
        QCOMPARE(items[0]->rawData(), QByteArray("again"));
    }

    void diskFileGoneUnderneath()
    {
        DiskCache cache(nullptr);
        StreamCache::Item *item = cache.addItem(QVariant());
        QVERIFY(store(item, "abc"));
        QVERIFY(QFile::resize(diskFile().filePath(), 2));
        QVERIFY(item->rawData().isEmpty());
        QVERIFY(QFile::remove(diskFile().filePath()));
        QVERIFY(readOnAnotherThread(item).isEmpty());
        QCOMPARE(item->size(), 3U);
    }

    void fileItemKnowsItsFile()
    {
        BackwardsCodec codec;
        FileCache cache(&codec);
        const QString name = file("a.back", BackwardsCodec::encoded(encoding, "abc"));
        int mark = 0;
        auto *item = addFile(cache, QVariant::fromValue(FileCache::ItemInfo(name, &mark)));
        QCOMPARE(item->encoding(), encoding);
        QCOMPARE(item->codecData(), &mark);
        QCOMPARE(item->size(), 4U);
        QCOMPARE(item->crc(), 0U);
        QVERIFY(item->isValid());
        QCOMPARE(item->data(), QByteArray("abc"));
        QCOMPARE(cache.find("abc", nullptr), item);
        QCOMPARE(item->crc(), 0xCADBBE3DU);

        const QString renamed = path("b.back");
        QVERIFY(item->rename(renamed));
        QCOMPARE(item->fileName(), renamed);
        QCOMPARE(item->data(), QByteArray("abc"));
        QVERIFY(!item->rename(path("missing/c.back")));
        QCOMPARE(item->fileName(), renamed);
        QVERIFY(item->remove());
        QVERIFY(!QFile::exists(renamed));
        QVERIFY(!item->remove());
        QVERIFY(item->rawData().isEmpty());

        QVERIFY(!addFile(cache, file("empty.back", ""))->isValid());
        QVERIFY(!addFile(cache, path("missing"))->isValid());
        // Of no encoding that the codec knows.
        auto *plain = addFile(cache, file("a.txt", "plain"));
        QCOMPARE(plain->encoding(), 0U);
        QCOMPARE(cache.find("plain", nullptr), plain);
    }

    void fileItemWritesItsFile()
    {
        BackwardsCodec codec;
        FileCache cache(&codec);
        const QString name = file("a.back", "\7cba");
        auto *item = addFile(cache, name);
        QVERIFY(!item->setRawData("x", 0, nullptr, 0));
        QVERIFY(!item->setData("x", 0, nullptr, 0));
        QCOMPARE(readFile(name), QByteArray("\7cba"));
        QVERIFY(item->setData("longer", encoding, nullptr, 0));
        QCOMPARE(readFile(name), QByteArray("\7regnol"));
        QCOMPARE(item->size(), 7U);
        QVERIFY(item->setData("x", 8, nullptr, 0));
        QCOMPARE(readFile(name), QByteArray("\10x"));
        {
            const FullDisk full(100);
            QVERIFY(!item->setData(QByteArray(300, 'x'), 8, nullptr, 0));
        }
        QCOMPARE(readFile(name), QByteArray("\10x"));
        QCOMPARE(item->data(), QByteArray("x"));
        QVERIFY(!addFile(cache, path("missing/a.back"))->setData("x", encoding, nullptr, 0));
        QVERIFY(addFile(cache, path("new.back"))->setData("x", encoding, nullptr, 0));
        QCOMPARE(readFile(path("new.back")), QByteArray("\7x"));
    }

private:
    QString path(const char *name) const
    {
        return m_folder->filePath(QLatin1String(name));
    }

    QString file(const char *name, const QByteArray &content) const
    {
        QFile device(path(name));
        if (!device.open(QIODevice::WriteOnly) || device.write(content) != content.size())
            qFatal("the test can't write");
        return device.fileName();
    }

    static FileCache::Item *addFile(FileCache &cache, const QVariant &source)
    {
        return static_cast<FileCache::Item *>(cache.addItem(source));
    }

    QFileInfo diskFile() const
    {
        const QFileInfoList files = QDir(m_folder->path()).entryInfoList(QDir::Files);
        return files.isEmpty() ? QFileInfo() : files.first();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestCacheBackends)
#include "tst_cachebackends.moc"
