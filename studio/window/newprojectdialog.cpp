// SPDX-License-Identifier: MIT
#include "studio/window/newprojectdialog.h"

#include "engine/engine.h"
#include "frame/fileutils.h"
#include "studio/session/projectsession.h"
#include "ui_newprojectdialog.h"

#include <QDir>
#include <QFileInfo>
#include <QPushButton>
#include <QRegularExpression>

namespace Studio {

namespace {

/// Returns a name for a folder: what some file system refuses becomes "_".
QString folderName(const QString &name)
{
    static const QRegularExpression refused(QStringLiteral("[\\x00-\\x1f/\\\\:*?\"<>|]"));
    QString result = name.simplified();
    result.replace(refused, QStringLiteral("_"));
    while (result.endsWith(QLatin1Char('.')))
        result.chop(1);
    return result.trimmed();
}

} // namespace

NewProjectDialog::NewProjectDialog(const QList<Vela::Engine *> &engines, const QString &place,
                                   QWidget *parent)
    : QDialog(parent)
    , m_engines(engines)
    , m_ui(std::make_unique<Ui::NewProjectDialog>())
{
    m_ui->setupUi(this);
    m_ui->place->setText(QDir::toNativeSeparators(place));
    for (const Vela::Engine *engine : engines)
        m_ui->engine->addItem(engine->queryString(Vela::Engine::DisplayName, 0));
    m_ui->buttons->button(QDialogButtonBox::Ok)->setText(tr("Create"));
    connect(m_ui->name, &QLineEdit::textChanged, this, &NewProjectDialog::check);
    connect(m_ui->place, &QLineEdit::textChanged, this, &NewProjectDialog::check);
    connect(m_ui->browse, &QToolButton::clicked, this, &NewProjectDialog::browse);
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    check();
}

NewProjectDialog::~NewProjectDialog() = default;

QString NewProjectDialog::name() const
{
    return m_ui->name->text().simplified();
}

QString NewProjectDialog::place() const
{
    return ProjectSession::normalizedPath(m_ui->place->text());
}

QString NewProjectDialog::folder() const
{
    return QDir(place()).filePath(folderName(m_ui->name->text()));
}

Vela::Engine *NewProjectDialog::engine() const
{
    return m_engines.value(m_ui->engine->currentIndex());
}

void NewProjectDialog::browse()
{
    const QString chosen = Vela::getExistingDirectory(this, tr("Choose a folder"), place());
    if (!chosen.isEmpty())
        m_ui->place->setText(QDir::toNativeSeparators(chosen));
}

void NewProjectDialog::check()
{
    const bool named = !folderName(m_ui->name->text()).isEmpty() && !m_ui->place->text().isEmpty();
    const QFileInfo target(named ? folder() : QString());
    const bool isFree =
        named && (!target.exists() || (target.isDir() && QDir(target.filePath()).isEmpty()));
    const QString shown = QDir::toNativeSeparators(target.filePath());
    m_ui->result->setText(!named       ? tr("The project gets a folder of its own.")
                              : isFree ? tr("Makes %1").arg(shown)
                                       : tr("%1 exists and is not empty.").arg(shown));
    m_ui->buttons->button(QDialogButtonBox::Ok)->setEnabled(isFree);
}

} // namespace Studio
