// SPDX-License-Identifier: MIT
#include "frame/checksum.h"

#include <QTest>
#include <algorithm>
#include <thread>
#include <vector>

namespace {

/// The definition, a bit at a time.
template <typename Crc>
Crc plainCrc(const QByteArray &data, Crc polynomial)
{
    Crc crc = ~Crc(0);
    for (const char byte : data) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? polynomial : 0);
    }
    return crc;
}

quint64 crc64(const QByteArray &data)
{
    return Vela::CRC64(reinterpret_cast<const unsigned char *>(data.constData()),
                       std::size_t(data.size()));
}

} // namespace

class TestChecksum : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstUseOnManyThreads()
    {
        std::vector<std::thread> threads;
        std::atomic<int> wrong{0};
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&wrong] {
                if (Vela::CRC32("abc", 3) != 0xCADBBE3D
                    || crc64("abc") != Q_UINT64_C(0xf10896efc03e0514))
                    ++wrong;
            });
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(wrong.load(), 0);
    }

    // The 32 bits are the complement of what Python's zlib.crc32 gives, the 64 bits come from a
    // loop over the bits in Python.
    void knownValues_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<quint32>("crc32");
        QTest::addColumn<quint64>("crc64");
        QByteArray all;
        for (int i = 0; i < 512; ++i)
            all += char(i);
        QTest::newRow("nothing") << QByteArray() << 0xFFFFFFFFU << ~Q_UINT64_C(0);
        QTest::newRow("letters") << QByteArray("abc") << 0xCADBBE3DU
                                 << Q_UINT64_C(0xf10896efc03e0514);
        QTest::newRow("digits") << QByteArray("123456789") << 0x340BC6D9U
                                << Q_UINT64_C(0xcaa717168609f281);
        QTest::newRow("blocks") << all << 0xE39ECA89U << Q_UINT64_C(0x2ad4972f2443abde);
    }

    void knownValues()
    {
        QFETCH(const QByteArray, data);
        QTEST(Vela::CRC32(data.constData(), std::size_t(data.size())), "crc32");
        QTEST(crc64(data), "crc64");
    }

    void everyLengthAndAlignment()
    {
        QByteArray source;
        quint32 random = 1;
        for (int i = 0; i < 300; ++i)
            source += char((random = random * 1664525 + 1013904223) >> 24);
        for (int offset = 0; offset < 9; ++offset) {
            for (int length = 0; offset + length <= source.size(); ++length) {
                const QByteArray data =
                    QByteArray::fromRawData(source.constData() + offset, length);
                QCOMPARE(Vela::CRC32(data.constData(), std::size_t(length)),
                         plainCrc<quint32>(data, 0xEDB88320));
                QCOMPARE(crc64(data), plainCrc<quint64>(data, Q_UINT64_C(0x95AC9329AC4BC9B5)));
            }
        }
    }
};

QTEST_APPLESS_MAIN(TestChecksum)
#include "tst_checksum.moc"
