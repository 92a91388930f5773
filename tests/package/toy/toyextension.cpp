// SPDX-License-Identifier: MIT
// The smallest extension: an engine that knows its name and opens nothing.
#include <velacore.h>

namespace {

class ToyEngine : public Vela::Engine
{
public:
    ToyEngine()
        : Engine(QStringLiteral("toy"))
    {
    }
    QString queryString(StringType what, unsigned int) const override
    {
        return what == DisplayName ? QStringLiteral("toy engine") : QString();
    }
    QMap<int, QString> singleFileFilters() const override
    {
        return {{Vela::Project::Main, QStringLiteral("*.toy")}};
    }
    Vela::ProjectFile *createFile(int, Vela::Project *) override
    {
        return nullptr;
    }
    bool canOpen(const QString &) const override
    {
        return false;
    }
    Vela::ParentProject *openParentProject(const QString &, QString *) override
    {
        return nullptr;
    }
    Vela::Project *openProject(Vela::ParentProject *, const QString &, QString *) override
    {
        return nullptr;
    }
    QString createParentProject(const QString &, const QString &, QString *) override
    {
        return QString();
    }
};

class ToyExtension : public Vela::EngineExtension
{
public:
    void release() override
    {
        delete this;
    }
    const char *format() const override
    {
        return "toy";
    }
    const char *identifier() const override
    {
        return "toy";
    }
    Vela::Engine *engine() override
    {
        return &m_engine;
    }

private:
    ToyEngine m_engine;
};

} // namespace

extern "C" Q_DECL_EXPORT void registerExtension(Vela::ExtensionManager *manager)
{
    Vela::Extension *extension = new ToyExtension;
    if (!manager->add(extension))
        extension->release();
}
