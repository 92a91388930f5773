// SPDX-License-Identifier: MIT
#include "studio/window/searchdock.h"

#include "studio/window/openfiles.h"

#include <QDir>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace Studio {

namespace {

enum Role {
    PathRole = Qt::UserRole, ///< of a file
    LinesRole,               ///< of a match: the lines that hold it
    StartRole,               ///< of a match: where it is in the text of the row
    EndRole
};

constexpr int MostRows = 10000; // of matches that are listed; all of them are counted

QStandardItem *itemOf(const Vela::ProjectFile::SearchResult &result)
{
    const QString line = result.text.section(QLatin1Char('\n'), 0, 0);
    const QString shown = line.trimmed();
    const QString number = QStringLiteral("%1: ").arg(result.line + 1);
    auto *item = new QStandardItem(QString(number + shown));
    const int start = result.column - line.indexOf(shown);
    item->setEditable(false);
    item->setData(result.text, LinesRole);
    item->setData(number.size() + qBound(0, start, shown.size()), StartRole);
    item->setData(number.size() + qBound(0, start + result.length, shown.size()), EndRole);
    return item;
}

/// A row with the match in bold.
class MatchDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        if (!index.data(StartRole).isValid())
            return QStyledItemDelegate::paint(painter, option, index);
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        const QStyle *style = row.widget->style();
        const QRect area = style->subElementRect(QStyle::SE_ItemViewItemText, &row, row.widget);
        QTextLayout text(row.text, row.font);
        row.text.clear();
        style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

        const int start = index.data(StartRole).toInt();
        QTextLayout::FormatRange match{start, index.data(EndRole).toInt() - start, {}};
        match.format.setFontWeight(QFont::Bold);
        text.setFormats({match});
        text.beginLayout();
        const QTextLine line = text.createLine();
        text.endLayout();
        const bool isSelected = row.state & QStyle::State_Selected;
        painter->save();
        painter->setClipRect(option.rect);
        painter->setPen(row.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
        const int margin =
            style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, row.widget) + 1;
        text.draw(painter, area.topLeft() + QPointF(margin, (area.height() - line.height()) / 2));
        painter->restore();
    }
};

/// Returns the index of the match that a row of the list shows, -1 if it is gone: the text may have
/// changed since.
int presentMatch(const QModelIndex &row, const ProjectSearch::Results &now)
{
    if (row.model()->rowCount(row.parent()) == now.size())
        return row.row();
    const QString lines = row.data(LinesRole).toString();
    int nearest = -1;
    for (int i = 0; i < now.size(); ++i) {
        const bool isNearer = nearest < 0 || qAbs(i - row.row()) < qAbs(nearest - row.row());
        if (isNearer && now.at(i).text == lines)
            nearest = i;
    }
    return nearest;
}

} // namespace

SearchDock::SearchDock(const OpenFiles &files, QWidget *parent)
    : QDockWidget(tr("Search"), parent)
    , m_files(files)
    , m_search([&files](const QString &path) { return files.file(path); })
    , m_find(makeSearchEdit("searchText", tr("Find in all files")))
    , m_replace(makeSearchEdit("searchReplacement", tr("Replace with")))
    , m_options("search")
    , m_start(makeSearchButton("searchStart", tr("Find All"), tr("Find in all files")))
    , m_stop(makeSearchButton("searchStop", tr("Stop"), tr("Stop searching")))
    , m_replaceAll(makeSearchButton("searchReplaceAll", tr("Replace All"),
                                    tr("Replace every match in all files")))
    , m_note(new QLabel)
    , m_view(new QTreeView)
    , m_model(new QStandardItemModel(this))
{
    setObjectName(QStringLiteral("searchDock"));
    m_note->setObjectName(QStringLiteral("searchNote"));
    m_note->setTextFormat(Qt::PlainText);
    m_view->setObjectName(QStringLiteral("searchResults"));
    m_view->setAccessibleName(tr("Matches"));
    m_view->setModel(m_model);
    m_view->setHeaderHidden(true);
    m_view->setUniformRowHeights(true);
    m_view->setItemDelegate(new MatchDelegate(m_view));
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(4, 4, 4, 0);
    layout->setSpacing(4);
    layout->addLayout(makeFields());
    layout->addWidget(m_note);
    layout->addWidget(m_view);
    setWidget(content);

    connect(m_start, &QToolButton::clicked, this, &SearchDock::start);
    connect(m_stop, &QToolButton::clicked, this, [this] {
        m_search.stop();
        m_note->setText(tr("Stopped.") + QLatin1Char(' ') + summary());
        updateButtons();
    });
    connect(m_replaceAll, &QToolButton::clicked, this, &SearchDock::replaceAll);
    connect(m_find, &QLineEdit::textChanged, this, &SearchDock::updateButtons);
    connect(&m_search, &ProjectSearch::found, this, &SearchDock::add);
    connect(&m_search, &ProjectSearch::finished, this, &SearchDock::finish);
    connect(m_view, &QTreeView::clicked, this, &SearchDock::choose);
    connect(m_view, &QTreeView::activated, this, &SearchDock::choose);
    updateButtons();
}

QLayout *SearchDock::makeFields()
{
    auto *fields = new QHBoxLayout;
    fields->addWidget(m_find, 2);
    for (QToolButton *button :
         {m_options.matchesCase, m_options.isWholeWords, m_options.isExpression, m_start, m_stop})
        fields->addWidget(button);
    fields->addWidget(m_replace, 1);
    fields->addWidget(m_replaceAll);
    return fields;
}

void SearchDock::open(const SearchTerm &term)
{
    if (!term.text.isEmpty())
        m_options.setTerm(term, *m_find);
    show();
    raise();
    m_find->setFocus();
    m_find->selectAll();
}

void SearchDock::search(const SearchTerm &term)
{
    open(term);
    start();
}

void SearchDock::clear()
{
    m_search.stop();
    m_model->clear();
    m_count = 0;
    m_note->clear();
    updateButtons();
}

void SearchDock::keyPressEvent(QKeyEvent *event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && m_find->hasFocus())
        start();
    else if (event->key() == Qt::Key_Down && m_find->hasFocus())
        enterList();
    else if (event->key() == Qt::Key_Escape)
        Q_EMIT left();
    else
        QDockWidget::keyPressEvent(event);
}

void SearchDock::enterList()
{
    m_view->setFocus();
    if (!m_view->currentIndex().parent().isValid())
        m_view->setCurrentIndex(m_model->index(0, 0, m_model->index(0, 0)));
}

void SearchDock::start()
{
    const SearchTerm term = m_options.term(*m_find);
    clear();
    m_expression = term.expression();
    if (term.text.isEmpty())
        return;
    if (!m_expression.isValid()) {
        m_note->setText(tr("The expression is not valid: %1.").arg(m_expression.errorString()));
        return;
    }
    m_note->setText(tr("Searching..."));
    m_search.start(m_files.paths(), m_expression);
    updateButtons();
}

void SearchDock::add(const QString &path, const ProjectSearch::Results &results)
{
    auto *file = new QStandardItem(
        QStringLiteral("%1 (%2)").arg(QDir::toNativeSeparators(path)).arg(results.size()));
    file->setEditable(false);
    file->setData(path, PathRole);
    const int room = qMax(0, MostRows - m_count);
    for (const Vela::ProjectFile::SearchResult &result : results.mid(0, room))
        file->appendRow(itemOf(result));
    m_model->appendRow(file);
    m_view->expand(file->index());
    m_count += results.size();
}

void SearchDock::finish()
{
    m_note->setText(m_count == 0 ? tr("Not found.") : summary());
    updateButtons();
}

QString SearchDock::summary() const
{
    return tr("Matches: %1, files: %2").arg(m_count).arg(m_model->rowCount());
}

// What was found may have moved since: each file is searched again before it is changed.
void SearchDock::replaceAll()
{
    int count = 0;
    int changed = 0;
    QStringList refused;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QString path = m_model->item(row)->data(PathRole).toString();
        Vela::ProjectFile *file = m_files.file(path);
        if (!file)
            continue;
        const ProjectSearch::Results results = ProjectSearch::searchAll(*file, m_expression);
        if (results.isEmpty())
            continue;
        if (!file->canSave() || file->isReadOnly()) {
            refused.append(QDir::toNativeSeparators(path));
            continue;
        }
        file->replace(results, m_replace->text());
        count += results.size();
        ++changed;
    }
    clear();
    QString text = tr("Replaced: %1, files: %2").arg(count).arg(changed);
    if (!refused.isEmpty())
        text += QLatin1Char(' ')
            + tr("Not changed, as they cannot be saved: %1")
                  .arg(refused.join(QStringLiteral(", ")));
    m_note->setText(text);
    Q_EMIT replaced();
}

void SearchDock::choose(const QModelIndex &index)
{
    const QString path = index.parent().data(PathRole).toString();
    Vela::ProjectFile *file = m_files.file(path);
    if (!file)
        return;
    const ProjectSearch::Results now = ProjectSearch::searchAll(*file, m_expression);
    const int match = presentMatch(index, now);
    if (match < 0)
        return m_note->setText(tr("This match is no longer there."));
    Q_EMIT matchWanted(path, now.at(match).line, now.at(match).column, now.at(match).length);
}

void SearchDock::updateButtons()
{
    m_start->setEnabled(!m_find->text().isEmpty());
    m_stop->setEnabled(m_search.isRunning());
    m_replaceAll->setEnabled(m_count > 0 && !m_search.isRunning());
}

} // namespace Studio
