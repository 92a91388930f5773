// SPDX-License-Identifier: MIT
#include "frame/progressivedeleter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <memory>

using Vela::ProgressiveDeleter;

namespace {

QStringList gone; // names, in the order of the deletions

class Named : public ProgressiveDeleter::Object
{
public:
    explicit Named(const char *name)
        : m_name(QLatin1String(name))
    {
    }

    ~Named() override
    {
        gone.append(m_name);
    }

private:
    const QString m_name;
};

class Released : public Vela::Object
{
public:
    void release() override
    {
        ++released;
    }

    int released = 0;
};

} // namespace

/// Each test has an application of its own, as the end of one is part of what is tested.
class TestProgressiveDeleter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        gone.clear();
        m_app = std::make_unique<QCoreApplication>(m_argc, m_argv);
    }

    void cleanup()
    {
        m_app.reset();
    }

    void oneForEachTimeout()
    {
        constexpr int count = 8;
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < count; ++i)
            ProgressiveDeleter::enqueue(new Named("x"), nullptr);
        QTRY_COMPARE(gone.size(), count);
        // Timeouts may come late, but not early.
        QVERIFY2(timer.elapsed() >= 10 * count, qPrintable(QString::number(timer.elapsed())));
    }

    // The tree is Q in P and R in Q. P waits for Q, that for R, which goes; those who wait go
    // behind all others, the last one to be asked first.
    void childrenGoFirst()
    {
        auto *p = new Named("P");
        auto *q = new Named("Q");
        ProgressiveDeleter::enqueue(p, nullptr);
        ProgressiveDeleter::enqueue(q, p);
        ProgressiveDeleter::enqueue(new Named("R"), q);
        ProgressiveDeleter::enqueue(new Named("S"), nullptr);
        QTRY_COMPARE(gone.size(), 4);
        QCOMPARE(gone.join(QLatin1Char(' ')), QStringLiteral("R S Q P"));
    }

    void releasesObjects()
    {
        Released object;
        auto *parent = new Named("parent");
        ProgressiveDeleter::enqueue(parent, nullptr);
        ProgressiveDeleter::enqueue(&object, parent);
        QTRY_COMPARE(gone.size(), 1);
        QCOMPARE(object.released, 1);
    }

    // Also where the tree is deeper than the stack, and where a destructor brings more.
    void restGoesWithTheApplication()
    {
        struct Bringer : Named
        {
            using Named::Named;
            ~Bringer() override
            {
                ProgressiveDeleter::enqueue(new Named("brought"), nullptr);
            }
        };
        constexpr int depth = 200000;
        ProgressiveDeleter::Object *parent = nullptr;
        for (int i = 0; i < depth; ++i) {
            auto *object = new Named("x");
            ProgressiveDeleter::enqueue(object, parent);
            parent = object;
        }
        ProgressiveDeleter::enqueue(new Bringer("bringer"), nullptr);
        m_app.reset();
        QCOMPARE(gone.size(), depth + 2);
        QVERIFY(gone.contains(QStringLiteral("brought")));
    }

    void worksWithoutApplication()
    {
        m_app.reset();
        ProgressiveDeleter::enqueue(new Named("before"), nullptr);
        m_app = std::make_unique<QCoreApplication>(m_argc, m_argv);
        ProgressiveDeleter::enqueue(new Named("after"), nullptr);
        QTRY_COMPARE(gone.size(), 2);
    }

private:
    char m_name[5] = "test";
    char *m_argv[2] = {m_name, nullptr};
    int m_argc = 1;
    std::unique_ptr<QCoreApplication> m_app;
};

QTEST_APPLESS_MAIN(TestProgressiveDeleter)
#include "tst_progressivedeleter.moc"
