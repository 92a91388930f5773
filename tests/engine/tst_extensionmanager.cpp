// SPDX-License-Identifier: MIT
#include "engine/extensionmanager.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Vela;

namespace {

// Says when it dies.
class TestExtension : public Extension
{
public:
    TestExtension(Type type, const char *format, const char *identifier, QStringList *deaths)
        : m_type(type)
        , m_format(format)
        , m_identifier(identifier)
        , m_deaths(deaths)
    {
    }
    ~TestExtension() override
    {
        m_deaths->append(QLatin1String(m_identifier));
    }
    void release() override
    {
        delete this;
    }
    Type type() const override
    {
        return m_type;
    }
    const char *format() const override
    {
        return m_format;
    }
    const char *identifier() const override
    {
        return m_identifier;
    }

private:
    Type m_type;
    const char *m_format;
    const char *m_identifier;
    QStringList *m_deaths;
};

QString modulePath(const char *name)
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/modules/")
        + QLatin1String(name);
}

} // namespace

class TestExtensionManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyModulesOfTheNameAndTheFunctionRegister();
    void firstOfAnIdentifierStays_data();
    void firstOfAnIdentifierStays();
    void extensionsDieByTypeFromLastToFirst();
};

void TestExtensionManager::onlyModulesOfTheNameAndTheFunctionRegister()
{
    QTemporaryDir folder;
    QVERIFY(QFile::copy(modulePath("goodx.so"), folder.filePath(QStringLiteral("toyx.so"))));
    QVERIFY(QFile::copy(modulePath("goodx.so"), folder.filePath(QStringLiteral("toy.so"))));
    QVERIFY(QFile::copy(modulePath("plainx.so"), folder.filePath(QStringLiteral("plainx.so"))));
    QFile text(folder.filePath(QStringLiteral("textx.so")));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no library") > 0);
    text.close();
    {
        ExtensionManager manager(folder.path());
        const QList<Extension *> &formats = manager.list(Extension::ArchiveFormat);
        QCOMPARE(formats.size(), 1);
        QCOMPARE(formats.first()->identifier(), "first");
        QVERIFY(!formats.first()->openArchive(QStringLiteral("any"), Extension::ReadMode));
    }
    QVERIFY(ExtensionManager::list(Extension::ArchiveFormat).isEmpty());
}

void TestExtensionManager::firstOfAnIdentifierStays_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("byFormat");
    QTest::addColumn<bool>("byIdentifier");
    QTest::newRow("archive") << int(Extension::ArchiveFormat) << false << true;
    QTest::newRow("plugin") << int(Extension::Plugin) << true << false;
}

void TestExtensionManager::firstOfAnIdentifierStays()
{
    QFETCH(int, type);
    const auto kind = Extension::Type(type);
    QStringList deaths;
    ExtensionManager manager{QString()};
    auto *first = new TestExtension(kind, "zip", "one", &deaths);
    QVERIFY(manager.add(first));
    auto *sameFormat = new TestExtension(kind, "zip", "two", &deaths);
    QTEST(manager.add(sameFormat), "byFormat");
    auto *sameIdentifier = new TestExtension(kind, "tar", "one", &deaths);
    QTEST(manager.add(sameIdentifier), "byIdentifier");
    QVERIFY(deaths.isEmpty());
    QCOMPARE(manager.list(kind).first(), first);
    QCOMPARE(manager.list(kind).size(), 2);
    if (!manager.list(kind).contains(sameFormat))
        delete sameFormat;
    if (!manager.list(kind).contains(sameIdentifier))
        delete sameIdentifier;
}

void TestExtensionManager::extensionsDieByTypeFromLastToFirst()
{
    QStringList deaths;
    {
        ExtensionManager manager{QString()};
        QVERIFY(manager.add(new TestExtension(Extension::Plugin, "", "plugin", &deaths)));
        QVERIFY(manager.add(new TestExtension(Extension::ArchiveFormat, "a", "a", &deaths)));
        QVERIFY(manager.add(new TestExtension(Extension::ArchiveFormat, "b", "b", &deaths)));
    }
    QCOMPARE(deaths.join(QLatin1Char(' ')), QStringLiteral("b a plugin"));
}

QTEST_GUILESS_MAIN(TestExtensionManager)
#include "tst_extensionmanager.moc"
