// SPDX-License-Identifier: MIT
// The smallest host: it answers every question with nothing, and says which engines it found.
#include <velacore.h>

#include <QApplication>
#include <QColor>
#include <QTextCharFormat>
#include <QTextStream>

namespace {

class ToyHost : public Vela::Interface
{
public:
    QString translate(int) const override
    {
        return QString();
    }
    QWidget *mainWindow() const override
    {
        return nullptr;
    }
    QString userFolder() const override
    {
        return QStringLiteral("/nonexistent/user");
    }
    QString libraryFolder() const override
    {
        return QStringLiteral("/nonexistent/library");
    }
    QString dataFolder() const override
    {
        return QStringLiteral("/nonexistent/data");
    }
    Vela::FileSaver *editorForFile(Vela::ProjectFile *, int) override
    {
        return nullptr;
    }
    unsigned int parentProjectCount() const override
    {
        return 0;
    }
    Vela::ParentProject *parentProject(unsigned int) const override
    {
        return nullptr;
    }
    int scaleToDPI(int length) const override
    {
        return length;
    }
    QIcon icon(const QString &) const override
    {
        return QIcon();
    }
    QVariant option(const QString &, const QVariant &defaultValue) const override
    {
        return defaultValue;
    }
    void setOption(const QString &, const QVariant &) override
    {
    }
    void refreshProjects() override
    {
    }
    Vela::ProgressProvider *progress() const override
    {
        return nullptr;
    }
    Vela::Engine *engine() const override
    {
        return nullptr;
    }
    Vela::Editor *currentEditor() const override
    {
        return nullptr;
    }
    Vela::Editor *editor(const char *) const override
    {
        return nullptr;
    }
    Vela::Project *currentProject() const override
    {
        return nullptr;
    }
    QColor colorOption(const QString &) const override
    {
        return QColor();
    }
    QTextCharFormat formatOption(const QString &) const override
    {
        return QTextCharFormat();
    }
    void status(int, const QString &) override
    {
    }
    QWidget *createControl(const QString &, const Vela::ControlDescriptor *) override
    {
        return nullptr;
    }
    void addWidget(const QString &, QWidget *) override
    {
    }
    QWidget *controlWidget(const QString &) const override
    {
        return nullptr;
    }
    Vela::Menu *menu(const char *) override
    {
        return nullptr;
    }
    QAction *createAction(const char *, const char *, Vela::Translator *, int, bool, QObject *,
                          const char *, const char *, Vela::Menu *) override
    {
        return nullptr;
    }
    QAction *action(const char *) const override
    {
        return nullptr;
    }
    QAction *editorAction(const char *, Vela::Translator *, int) override
    {
        return nullptr;
    }
    Vela::OrganizerEditor *organizer(int) const override
    {
        return nullptr;
    }
    void switchEditor(Vela::Editor *) override
    {
    }
    void showExtraEditor(Vela::ExtraEditor *, int) override
    {
    }
    void setWorkspace(Vela::Workspace *) override
    {
    }
    QString hostName() const override
    {
        return QStringLiteral("toy host");
    }
    QString hostVersion() const override
    {
        return QStringLiteral("1");
    }
    QString language() const override
    {
        return QStringLiteral("en");
    }
    Vela::ParentProject *currentParentProject() const override
    {
        return nullptr;
    }
    Vela::Workspace *currentWorkspace() const override
    {
        return nullptr;
    }
    void openFile(Vela::ProjectFile *, unsigned int, unsigned int) override
    {
    }
    void log(const QString &) override
    {
    }
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    ToyHost host;
    setGlobalInterface(&host);
    {
        Vela::TextCodecs::initialize();
        const Vela::ExtensionManager manager(application.arguments().value(1));
        QTextStream out(stdout);
        out << host.hostName() << " of library " VELA_VERSION_STRING ":";
        for (Vela::Extension *extension : manager.list(Vela::Extension::EngineProvider)) {
            const Vela::Engine *engine = static_cast<Vela::EngineExtension *>(extension)->engine();
            out << ' ' << engine->queryString(Vela::Engine::DisplayName, 0) << " found";
        }
        out << '\n';
    }
    setGlobalInterface(nullptr);
}
