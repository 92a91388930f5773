// SPDX-License-Identifier: MIT
#include "frame/filebrowseedit.h"

#include "frame/filebrowseedit_p.h"
#include "frame/filesystemarchive.h"
#include "frame/fileutils.h"

#include <QCompleter>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRegExpValidator>
#include <QToolButton>

namespace Vela {

namespace {

const int minimumEditWidth = 150;

/// Returns the patterns of a file dialog's filter: "*.png" and "*.bmp" of
/// "Images (*.png *.bmp);;All files (*.*)" and so on.
QStringList namePatterns(const QString &filter)
{
    QRegExp named(QStringLiteral("[^()]*\\(([^()]*)\\)"));
    QStringList patterns;
    const QStringList groups = filter.split(QStringLiteral(";;"));
    for (const QString &group : groups) {
        const QString text = named.exactMatch(group.trimmed()) ? named.cap(1) : group;
        patterns += text.split(QRegExp(QStringLiteral("[\\s;]+")), Qt::SkipEmptyParts);
    }
    return patterns;
}

} // namespace

FileBrowseEditPrivate::FileBrowseEditPrivate(FileBrowseEdit *widget)
    : q(widget)
    , edit(new QLineEdit(widget))
    , archive(&FileSystemArchive::instance())
{
    edit->setMinimumWidth(minimumEditWidth);
    edit->setValidator(new QRegExpValidator(QRegExp(QStringLiteral("^[^<>:\"\\|\\?\\*]*$")), edit));
    auto *completer = new QCompleter(&model, edit);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    edit->setCompleter(completer);
}

void FileBrowseEditPrivate::updateFolder()
{
    const QString text = edit->text();
    const QString ownFolder = text.left(text.lastIndexOf(QLatin1Char('/')) + 1);
    // Asked for as a name: of a path that ends with "/" a store may give the folder above.
    const QString newFolder = archive->absoluteFileName(underBase(ownFolder));
    if (newFolder == folder)
        return;
    model.setPrefix(ownFolder);
    folder = newFolder;
    refill();
}

void FileBrowseEditPrivate::refill()
{
    QStringList names;
    if (!folder.isEmpty()) {
        names = archive->entries(folder, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        names += archive->entries(folder, namePatterns(filter), QDir::Files, QDir::Name);
    }
    model.setStringList(names);
}

void FileBrowseEditPrivate::browse()
{
    const QString current = underBase(edit->text());
    const QString start = archive->fileExists(current) ? current : basePath;
    const QString chosen = getOpenFileName(q, QString(), start, filter);
    if (!chosen.isEmpty())
        edit->setText(relativeToBase(chosen));
}

QString FileBrowseEditPrivate::underBase(const QString &relative) const
{
    if (basePath.isEmpty() || basePath.endsWith(QLatin1Char('/')))
        return basePath + relative;
    return basePath + QLatin1Char('/') + relative;
}

QString FileBrowseEditPrivate::relativeToBase(const QString &path) const
{
    QString base = archive->absoluteFileName(basePath);
    if (base.isEmpty())
        return path;
    if (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    return archive->relativePath(path, archive, base);
}

FileBrowseEdit::FileBrowseEdit(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<FileBrowseEditPrivate>(this))
{
    auto *button = new QToolButton(this);
    button->setText(QStringLiteral("..."));
    button->setAccessibleName(tr("Browse"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(d->edit);
    layout->addWidget(button);
    setFocusProxy(d->edit);

    connect(button, &QToolButton::clicked, this, [this] { d->browse(); });
    connect(d->edit, &QLineEdit::textChanged, this, [this](const QString &text) {
        d->updateFolder();
        Q_EMIT valueChanged(text);
    });
}

FileBrowseEdit::~FileBrowseEdit()
{
    // The completer must let go of the model, which ends before the children do.
    d->edit->setCompleter(nullptr);
}

QString FileBrowseEdit::value() const
{
    return d->edit->text();
}

void FileBrowseEdit::setValue(const QString &value)
{
    d->edit->setText(value);
}

QString FileBrowseEdit::basePath() const
{
    return d->basePath;
}

void FileBrowseEdit::setBasePath(Archive *archive, const QString &path)
{
    if (!archive)
        archive = &FileSystemArchive::instance();
    if (archive == d->archive && path == d->basePath)
        return;
    const bool isOtherStore = archive != d->archive;
    d->archive = archive;
    d->basePath = path;
    d->updateFolder();
    // The folder of the same name in another store holds other files.
    if (isOtherStore)
        d->refill();
}

QString FileBrowseEdit::filter() const
{
    return d->filter;
}

void FileBrowseEdit::setFilter(const QString &filter)
{
    if (filter == d->filter)
        return;
    d->filter = filter;
    d->refill();
}

} // namespace Vela
