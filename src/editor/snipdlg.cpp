// SPDX-License-Identifier: MIT
#include "editor/snipdlg.h"

#include "code/codedocument.h"
#include "editor/plaintext.h"
#include "editor/snipfielddlg.h"
#include "editor/snipfieldsmodel.h"
#include "editor/snippetdialog.h"
#include "editor/snippetmanager.h"
#include "editor/snippetxml.h"
#include "engine/engine.h"
#include "frame/fileutils.h"
#include "frame/interface.h"
#include "project/project.h"

#include "ui_snipdlg.h"

#include <QFileInfo>
#include <QSaveFile>

namespace Vela {

class SnipDlgPrivate
{
public:
    explicit SnipDlgPrivate(Interface &owner)
        : host(owner)
    {
    }

    void load(const QString &fileName);
    QString xml() const;
    /// Returns -1 without a selection.
    int selectedRow() const;

    Interface &host;
    Ui::SnipDlg form;
    SnipFieldsModel model;
    CodeDocument *scratch = nullptr; ///< shown by the edit; may be null
    QString path;                    ///< empty for a new snippet
    QString name;
};

namespace {

// Returns null if the engine has no document for code; the caller releases the document.
CodeDocument *makeScratch(const Interface &host)
{
    Engine *const engine = host.engine();
    ProjectFile *const file =
        engine ? engine->createFile(Project::Scripts, host.currentProject()) : nullptr;
    auto *const document = dynamic_cast<CodeDocument *>(file);
    if (file && !document)
        file->release();
    if (document) {
        // It has no project that would say so.
        const QString highlight = QStringLiteral("highlightCode");
        document->setOption(highlight, document->option(highlight, true), false, false);
    }
    return document;
}

// The old file stands until the new one is complete.
void save(const QString &path, const QString &text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(text.toUtf8());
    commitFile(file);
}

} // namespace

// A file that cannot be read is not taken as the snippet's own: saving would put an empty one in
// its place.
void SnipDlgPrivate::load(const QString &fileName)
{
    const std::optional<Snippet> snippet = readSnippetFile(fileName);
    if (!snippet)
        return;
    path = fileName;
    name = QFileInfo(fileName).completeBaseName();
    for (const FieldElement &element : snippet->fields)
        model.append(makeField(element));
    form.snipEdit->setPlainText(snippet->code);
    showSnippetError(host, *snippet);
}

QString SnipDlgPrivate::xml() const
{
    return writeSnippet(model.fields(), plainText(form.snipEdit->document()));
}

int SnipDlgPrivate::selectedRow() const
{
    return form.snipFields->selectionModel()->selectedIndexes().value(0).row();
}

SnipDlg::SnipDlg(Interface &host, const QString &pathOrText)
    : QDialog(host.mainWindow())
    , d(std::make_unique<SnipDlgPrivate>(host))
{
    d->form.setupUi(this);
    setWindowIcon(host.icon(QStringLiteral("code_snippet_insert")));
    d->form.snipFields->setModel(&d->model);
    d->scratch = makeScratch(host);
    if (d->scratch)
        d->form.snipEdit->setDocument(d->scratch);

    // A text that happens to be the name of a file in the current folder is none: saving would
    // put the snippet in that file's place.
    const QFileInfo file(pathOrText);
    if (file.isAbsolute() && file.isFile())
        d->load(pathOrText);
    else
        d->form.snipEdit->setPlainText(pathOrText);
}

SnipDlg::~SnipDlg()
{
    // The edit must not outlive the document that it shows.
    delete d->form.snipEdit;
    if (d->scratch)
        d->scratch->release();
}

void SnipDlg::on_saveBut_clicked()
{
    const QString path = !d->path.isEmpty()
        ? d->path
        : getSaveFileName(this, tr("Save code snippet"), SnippetManager::instance()->folder(),
                          tr("Extensible Markup Language (*.xml)"));
    if (!path.isEmpty())
        save(path, d->xml());
}

void SnipDlg::on_previewBut_clicked()
{
    askSnippetValues(d->host, readSnippet(d->xml()), d->name);
}

void SnipDlg::on_saveTSBut_clicked()
{
    const QString path = getSaveFileName(this, tr("Save for translation"), QString(),
                                         tr("Qt translation sources (*.ts)"));
    if (!path.isEmpty())
        save(path, SnippetManager::translationSource(d->host, d->xml(), d->name));
}

void SnipDlg::on_insertBut_clicked()
{
    const int row = d->selectedRow();
    if (row >= 0)
        d->form.snipEdit->insertPlainText(QLatin1Char('@') + d->model.fields()[size_t(row)]->name);
}

void SnipDlg::on_add_clicked()
{
    SnipFieldDlg dialog(this);
    if (dialog.exec() == QDialog::Accepted)
        d->model.append(std::unique_ptr<SnipField>(dialog.createField()));
}

void SnipDlg::on_del_clicked()
{
    d->model.remove(d->selectedRow());
}

void SnipDlg::on_up_clicked()
{
    d->model.moveUp(d->selectedRow());
}

void SnipDlg::on_down_clicked()
{
    const int row = d->selectedRow();
    if (row >= 0)
        d->model.moveUp(row + 1);
}

} // namespace Vela
