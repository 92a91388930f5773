// SPDX-License-Identifier: MIT
#include "cache/streamcache.h"

#include "cache/asyncfilecache.h"
#include "cache/cachesupport.h"
#include "cache/diskcache.h"
#include "frame/checksum.h"
#include "support/recordinghost.h"

#include <QRandomGenerator>
#include <QTest>
#include <memory>

using Vela::StreamCache;

namespace {

constexpr unsigned int encoding = 7;
constexpr unsigned int unknown = 0;  // as a checksum
const QByteArray zeroCrc(4, '\xff'); // takes the checksum from all ones to 0

unsigned int crcOf(const QByteArray &data)
{
    return Vela::CRC32(data.constData(), std::size_t(data.size()));
}

// Streams of equal length and checksum: each takes the checksum to 0 before its end.
QByteArray twin(char first)
{
    QByteArray data(1, first);
    const unsigned int crc = crcOf(data);
    for (int i = 0; i < 4; ++i)
        data += char(crc >> (8 * i));
    return data + "end";
}

StreamCache::Item *add(StreamCache &cache, const QByteArray &data, unsigned int form = 0)
{
    StreamCache::Item *item = cache.addItem(QVariant());
    item->setData(data, form, nullptr, unknown);
    return item;
}

// Packed by somebody else, who does not know the checksum.
StreamCache::Item *addPacked(StreamCache &cache, const QByteArray &data)
{
    StreamCache::Item *item = cache.addItem(QVariant());
    item->setRawData(BackwardsCodec::encoded(encoding, data), encoding, nullptr, unknown);
    return item;
}

class Handle : public Vela::StreamCacheData
{
public:
    using StreamCacheData::createItem;
    using StreamCacheData::StreamCacheData;

    int freed = 0;

protected:
    void free() override
    {
        ++freed;
    }
};

} // namespace

class TestStreamCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingDecides_data()
    {
        QTest::addColumn<QVariant>("setting");
        QTest::addColumn<int>("type");
        QTest::newRow("unset") << QVariant() << 1;
        QTest::newRow("0") << QVariant(0) << 1;
        QTest::newRow("1") << QVariant(1) << 1;
        QTest::newRow("2") << QVariant(2) << 2;
        QTest::newRow("text") << QVariant(QStringLiteral("3")) << 2;
    }

    void settingDecides()
    {
        QFETCH(const QVariant, setting);
        BackwardsCodec codec;
        RecordingHost host;
        if (setting.isValid())
            host.options.insert(QStringLiteral("cache_type"), setting);
        const auto typeFor = [&codec](StreamCache::Type type) {
            std::unique_ptr<StreamCache> cache(StreamCache::instance(&codec, type));
            return cache->codec() == &codec ? int(cache->type()) : -1;
        };
        QTEST(typeFor(StreamCache::Default), "type");
        for (const StreamCache::Type type :
             {StreamCache::Memory, StreamCache::Disk, StreamCache::Files})
            QCOMPARE(typeFor(type), int(type));
    }

    void memoryWithoutHost()
    {
        std::unique_ptr<StreamCache> cache(StreamCache::instance(nullptr, StreamCache::Default));
        QCOMPARE(cache->type(), StreamCache::Memory);
    }

    void itemTellsWhatItHolds()
    {
        BackwardsCodec codec;
        PlainCache cache(&codec);
        int mark = 0;
        StreamCache::Item *item = cache.addItem(QVariant());
        QCOMPARE(item->refCount(), 1);
        QCOMPARE(item->crc(), unknown);
        QVERIFY(item->setData("abc", encoding, &mark, unknown));
        QCOMPARE(item->size(), 4U);
        QCOMPARE(item->crc(), 0xCADBBE3DU);
        QCOMPARE(item->encoding(), encoding);
        QCOMPARE(item->codecData(), &mark);
        QCOMPARE(item->rawData(), QByteArray("\7cba"));
        QCOMPARE(item->data(), QByteArray("abc"));

        // The codec refuses: all stays.
        QVERIFY(!item->setData(QByteArray(), 8, nullptr, unknown));
        QCOMPARE(item->encoding(), encoding);
        QCOMPARE(item->crc(), 0xCADBBE3DU);
        QCOMPARE(item->data(), QByteArray("abc"));

        QVERIFY(item->setRawData("\7ba", 8, nullptr, unknown));
        QCOMPARE(item->crc(), unknown);
        QVERIFY(item->data().isEmpty()); // another encoding than the stream's
        QVERIFY(item->setRawData("abc", 0, nullptr, unknown));
        QCOMPARE(item->crc(), 0xCADBBE3DU);
        QVERIFY(item->setRawData("abc", 0, nullptr, 5));
        QCOMPARE(item->crc(), 5U);

        PlainCache bare(nullptr);
        StreamCache::Item *plain = add(bare, "abc", encoding);
        QCOMPARE(plain->encoding(), 0U);
        QCOMPARE(plain->rawData(), QByteArray("abc"));
    }

    void equality()
    {
        BackwardsCodec codec;
        PlainCache cache(&codec);
        StreamCache::Item *plain = add(cache, "abc");
        StreamCache::Item *packed = addPacked(cache, "abc");
        StreamCache::Item *packedTwin = addPacked(cache, "abc");
        StreamCache::Item *other = add(cache, twin('a'));
        StreamCache::Item *collision = add(cache, twin('b'));
        StreamCache::Item *empty = add(cache, "");
        StreamCache::Item *fresh = cache.addItem(QVariant());
        StreamCache::Item *zero = add(cache, zeroCrc);
        StreamCache::Item *packedZero = addPacked(cache, zeroCrc);
        QCOMPARE(other->crc(), collision->crc());

        QVERIFY(cache.isEqual(plain, packed));
        QVERIFY(cache.isEqual(packed, packedTwin));
        QVERIFY(!cache.isEqual(other, collision));
        QVERIFY(cache.isEqual(empty, empty));
        QVERIFY(!cache.isEqual(empty, fresh));
        QVERIFY(!cache.isEqual(add(cache, ""), empty));
        QCOMPARE(zero->crc(), unknown);
        QVERIFY(cache.isEqual(zero, packedZero));
        QVERIFY(!cache.isEqual(zero, plain));
        QVERIFY(!cache.isEqual(packed, "abd", crcOf("abd")));
        QVERIFY(!cache.isEqual(plain, "abd", plain->crc()));
        QVERIFY(!cache.isEqual(empty, "", crcOf("")));
        QVERIFY(packedZero->isEqualTo(zeroCrc, 0));
    }

    void readsNoMoreThanItNeeds()
    {
        BackwardsCodec codec;
        PlainCache cache(&codec);
        StreamCache::Item *a = addPacked(cache, "abc");
        StreamCache::Item *b = addPacked(cache, "abc");
        QVERIFY(a->isEqualTo("abc", crcOf("abc")));
        QCOMPARE(codec.decoded.load(), 1); // for the checksum, then used for the bytes
        QVERIFY(b->isEqualTo("abc", crcOf("abc")));
        QCOMPARE(codec.decoded.load(), 2);
        QVERIFY(cache.isEqual(a, b)); // packed
        QCOMPARE(codec.decoded.load(), 2);
        const int reads = cache.reads;
        QVERIFY(!cache.isEqual(a, add(cache, "abd")));
        QCOMPARE(cache.reads, reads);
    }

    void aMissReadsNothingTwice()
    {
        BackwardsCodec codec;
        PlainCache cache(&codec);
        for (int i = 0; i < 1000; ++i) {
            add(cache, QByteArray::number(i));
            addPacked(cache, QByteArray::number(i));
            cache.addItem(QVariant());
        }
        QVERIFY(!cache.find("nothing", nullptr));
        QCOMPARE(cache.reads, 2000);
        QCOMPARE(codec.decoded.load(), 1000);
        QVERIFY(!cache.find("nothing", nullptr));
        QCOMPARE(cache.reads, 2000);
    }

    void findsAsAPlainWalk_data()
    {
        QTest::addColumn<int>("seed");
        QTest::addColumn<int>("type");
        for (int seed = 1; seed <= 6; ++seed)
            QTest::addRow("%d", seed) << seed << 1 + seed % 3;
    }

    // The plain walk is over what was stored, not over what the cache says of it.
    void findsAsAPlainWalk()
    {
        QFETCH(const int, seed);
        QFETCH(const int, type);
        BackwardsCodec codec;
        std::unique_ptr<StreamCache> cache;
        if (type == 3)
            cache = std::make_unique<Vela::AsyncFileCache>(&codec, new Vela::MemoryCache(nullptr));
        else
            cache.reset(StreamCache::instance(&codec, StreamCache::Type(type)));
        QRandomGenerator random{quint32(seed)};
        QVector<QByteArray> pool{QByteArray(), zeroCrc, twin('a'), twin('b'), twin('c')};
        while (pool.size() < 25)
            pool.append(QByteArray::number(random.generate()));
        const auto any = [&random, &pool] { return pool.at(random.bounded(pool.size())); };
        const auto change = [&random](StreamCache::Item *item, const QByteArray &data) {
            const unsigned int crc = random.bounded(2) == 0 ? unknown : crcOf(data);
            switch (data.isEmpty() ? 0 : random.bounded(4)) {
            case 0:
                return item->setData(data, 0, nullptr, crc);
            case 1:
                return item->setData(data, encoding, nullptr, crc);
            case 2:
                return item->setRawData(data, 0, nullptr, crc);
            default:
                return item->setRawData(BackwardsCodec::encoded(encoding, data), encoding, nullptr,
                                        crc);
            }
        };

        QVector<QPair<StreamCache::Item *, QByteArray>> model;
        for (int i = 0; i < 4000; ++i) {
            const int at = model.isEmpty() ? -1 : random.bounded(model.size());
            const int action = random.bounded(10);
            if (at < 0 || action < 2) {
                model.append({cache->addItem(QVariant()), QByteArray()});
                if (random.bounded(8) != 0) {
                    model.last().second = any();
                    QVERIFY(change(model.last().first, model.last().second));
                }
            } else if (action < 3 || model.size() > 60) {
                cache->removeItem(model.takeAt(at).first);
            } else if (action < 6) {
                model[at].second = any();
                QVERIFY(change(model[at].first, model[at].second));
            } else {
                const QByteArray data = any();
                const StreamCache::Item *exclude = action < 8 ? model.at(at).first : nullptr;
                StreamCache::Item *expected = nullptr;
                for (int n = model.size() - 1; n >= 0 && !data.isEmpty(); --n) {
                    if (model.at(n).first != exclude && model.at(n).second == data)
                        expected = model.at(n).first;
                }
                QCOMPARE(cache->find(data, exclude), expected);
            }
        }
        for (const auto &[item, data] : qAsConst(model))
            QCOMPARE(item->data(), data);
    }

    void itemsDieByTheirCount()
    {
        PlainCache cache(nullptr);
        StreamCache::Item *item = add(cache, "abc");
        item->addRef();
        cache.removeItem(item);
        QCOMPARE(cache.find("abc", nullptr), item);
        item->release();
        QVERIFY(!cache.find("abc", nullptr));
        cache.newItem(QVariant())->release(); // never entered

        add(cache, "abc")->addRef();
        cache.clear();
        QVERIFY(!cache.find("abc", nullptr));
        QVERIFY(cache.find("abd", nullptr) != add(cache, "abd"));
    }

    void handleWithoutItem()
    {
        Handle handle(nullptr);
        QVERIFY(!handle.cache() && !handle.codecData() && handle.isEmpty());
        QCOMPARE(handle.crc() + handle.encoding(), 0U);
        handle.reset();
        QVERIFY(!handle.fromData("abc", 0, nullptr, unknown));
        QVERIFY(!handle.fromRawData("abc", 0, nullptr, unknown));
        QVERIFY(handle.toData().isEmpty() && handle.toRawData().isEmpty());
        QVERIFY(handle.isEqualTo(nullptr));
        QVERIFY(!handle.isEqualToData("", crcOf("")));
        PlainCache cache(nullptr);
        QVERIFY(!handle.isEqualTo(add(cache, "abc")));
    }

    void handleHoldsItsItem()
    {
        BackwardsCodec codec;
        PlainCache cache(&codec);
        {
            Handle handle(nullptr);
            handle.createItem(&cache, QVariant());
            QCOMPARE(handle.item()->refCount(), 1);
            QVERIFY(handle.isEmpty());
            QVERIFY(handle.fromData("abc", encoding, nullptr, unknown));
            QCOMPARE(handle.cache(), &cache);
            QCOMPARE(handle.encoding(), encoding);
            QCOMPARE(handle.toRawData(), QByteArray("\7cba"));
            QCOMPARE(handle.toData(), QByteArray("abc"));
            QVERIFY(handle.isEqualToData("abc", 0xCADBBE3D));
            QVERIFY(!handle.isEqualTo(nullptr));
            handle.createItem(&cache, QVariant());
            QVERIFY(!cache.find("abc", nullptr));
            QVERIFY(handle.fromRawData("abc", 0, nullptr, unknown));
            QCOMPARE(cache.find("abc", nullptr), handle.item());
            handle.reset();
            QVERIFY(handle.isEmpty() && handle.item());
            QVERIFY(handle.fromData("abc", 0, nullptr, unknown));

            handle.addRef();
            handle.release();
            QCOMPARE(handle.freed, 0);
            handle.release();
            QCOMPARE(handle.freed, 1);
        }
        QVERIFY(!cache.find("abc", nullptr));
    }

    void holderOfATwinChangesOver()
    {
        PlainCache cache(nullptr);
        PlainCache foreign(nullptr);
        StreamCache::Item *first = add(cache, "abc");
        Handle one(first);
        Handle two(add(cache, "abc"));
        QCOMPARE(cache.find("abc", first), two.item());
        two.itemSwap(add(foreign, "abc"));
        QCOMPARE(two.cache(), &cache);
        two.itemSwap(cache.find("abc", two.item()));
        QCOMPARE(two.item(), first);
        QCOMPARE(first->refCount(), 2);
        QVERIFY(!cache.find("abc", first)); // the twin went with its last holder
        two.itemSwap(first);
        QCOMPARE(first->refCount(), 2);
        two.itemSwap(nullptr);
        QCOMPARE(first->refCount(), 1);
        two.itemSwap(first);
        QCOMPARE(first->refCount(), 2);
    }
};

QTEST_GUILESS_MAIN(TestStreamCache)
#include "tst_streamcache.moc"
