// SPDX-License-Identifier: MIT
#include "studio/window/formatspage.h"

#include "studio/colors.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <iterator>

namespace Studio {

namespace {

constexpr int KeyRole = Qt::UserRole;
constexpr int SampleLines = 9;

/// A piece of the sample and the format that it has.
struct SamplePiece
{
    const char *key;
    const char *text;
};

constexpr SamplePiece samplePieces[] = {
    {"comment", "# The lantern swings\n"},
    {"section", "[animation walk]"},
    {"foreground", " "},
    {"string", "\"Walking home\"\n"},
    {"property", "speed"},
    {"operator", " = "},
    {"number", "1.5\n"},
    {"keyword", "loop"},
    {"foreground", " plain text "},
    {"paren", "("},
    {"number", "12"},
    {"paren", ")\n"},
    {"function", "ring"},
    {"foreground", " "},
    {"information", "mill-bell\n"},
    {"error", "an error"},
    {"foreground", ", "},
    {"warning", "a warning"},
    {"foreground", ", "},
    {"search", "what was found"},
};

} // namespace

FormatsPage::FormatsPage(Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_colors(colors)
    , m_list(new QTreeWidget)
    , m_sample(new QPlainTextEdit)
{
    m_list->setObjectName(QStringLiteral("formats"));
    m_list->setAccessibleName(tr("Kinds of words"));
    m_list->setHeaderHidden(true);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_sample->setObjectName(QStringLiteral("formatSample"));
    m_sample->setAccessibleName(tr("Sample"));
    m_sample->setReadOnly(true);
    m_sample->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_sample->setFixedHeight(SampleLines * m_sample->fontMetrics().lineSpacing());

    auto *upper = new QHBoxLayout;
    upper->addWidget(m_list, 1);
    upper->addWidget(makeControls());
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(upper);
    layout->addWidget(m_sample);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &FormatsPage::showCurrent);
    fill();
}

QWidget *FormatsPage::makeControls()
{
    auto *controls = new QWidget;
    auto *layout = new QVBoxLayout(controls);
    layout->setContentsMargins(0, 0, 0, 0);
    m_foreground = makeButton(tr("&Colour..."), "formatForeground");
    m_background = makeButton(tr("&Background..."), "formatBackground");
    m_bold = makeStyle(tr("B&old"), "formatBold");
    m_italic = makeStyle(tr("&Italic"), "formatItalic");
    m_underline = makeStyle(tr("&Underlined"), "formatUnderline");
    m_reset = makeButton(tr("&Default"), "resetFormat");
    for (QWidget *control : {static_cast<QWidget *>(m_foreground),
                             static_cast<QWidget *>(m_background), static_cast<QWidget *>(m_bold),
                             static_cast<QWidget *>(m_italic), static_cast<QWidget *>(m_underline)})
        layout->addWidget(control);
    layout->addStretch();
    layout->addWidget(m_reset);
    connect(m_foreground, &QPushButton::clicked, this, [this] { chooseColor(false); });
    connect(m_background, &QPushButton::clicked, this, [this] { chooseColor(true); });
    connect(m_reset, &QPushButton::clicked, this, [this] {
        m_colors.resetFormat(currentKey());
        showAll();
    });
    return controls;
}

QCheckBox *FormatsPage::makeStyle(const QString &text, const char *name)
{
    auto *box = new QCheckBox(text);
    box->setObjectName(QLatin1String(name));
    connect(box, &QCheckBox::toggled, this, &FormatsPage::takeStyles);
    return box;
}

QPushButton *FormatsPage::makeButton(const QString &text, const char *name)
{
    auto *button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    return button;
}

void FormatsPage::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // The defaults of a light and of a dark palette are others.
    if (event->type() == QEvent::PaletteChange)
        showAll();
}

void FormatsPage::fill()
{
    for (const ColorInfo &info : Colors::table()) {
        const bool isUsed = std::any_of(
            std::begin(samplePieces), std::end(samplePieces),
            [&info](const SamplePiece &piece) { return qstrcmp(piece.key, info.key) == 0; });
        if (!isUsed)
            continue;
        auto *item = new QTreeWidgetItem(m_list, {Colors::text(info)});
        item->setData(0, KeyRole, QLatin1String(info.key));
    }
    m_list->setCurrentItem(m_list->topLevelItem(0));
    showAll();
}

void FormatsPage::showAll()
{
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem *item = m_list->topLevelItem(row);
        QFont changed = font();
        changed.setBold(m_colors.isFormatChosen(item->data(0, KeyRole).toString()));
        item->setFont(0, changed);
    }
    showCurrent();
    showSample();
}

void FormatsPage::showCurrent()
{
    const QTextCharFormat format = m_colors.format(currentKey());
    const QSignalBlocker quiet[] = {QSignalBlocker(m_bold), QSignalBlocker(m_italic),
                                    QSignalBlocker(m_underline)};
    m_bold->setChecked(format.fontWeight() > QFont::Normal);
    m_italic->setChecked(format.fontItalic());
    m_underline->setChecked(format.fontUnderline());
    m_reset->setEnabled(m_colors.isFormatChosen(currentKey()));
}

void FormatsPage::showSample()
{
    QPalette own = m_sample->palette();
    own.setColor(QPalette::Base, m_colors.color(QStringLiteral("background")));
    own.setColor(QPalette::Text, m_colors.color(QStringLiteral("foreground")));
    if (own != m_sample->palette())
        m_sample->setPalette(own);
    m_sample->clear();
    QTextCursor cursor(m_sample->document());
    for (const SamplePiece &piece : samplePieces)
        cursor.insertText(QString::fromUtf8(piece.text), m_colors.format(QLatin1String(piece.key)));
}

void FormatsPage::chooseColor(bool background)
{
    QTextCharFormat format = m_colors.format(currentKey());
    const QBrush present = background ? format.background() : format.foreground();
    const QColor chosen =
        QColorDialog::getColor(present.color(), this, QString(), QColorDialog::DontUseNativeDialog);
    if (!chosen.isValid())
        return;
    if (background)
        format.setBackground(chosen);
    else
        format.setForeground(chosen);
    store(format);
}

void FormatsPage::takeStyles()
{
    QTextCharFormat format = m_colors.format(currentKey());
    format.setFontWeight(m_bold->isChecked() ? QFont::Bold : QFont::Normal);
    format.setFontItalic(m_italic->isChecked());
    format.setFontUnderline(m_underline->isChecked());
    store(format);
}

void FormatsPage::store(const QTextCharFormat &format)
{
    m_colors.setFormat(currentKey(), format);
    showAll();
}

QString FormatsPage::currentKey() const
{
    const QTreeWidgetItem *item = m_list->currentItem();
    return item ? item->data(0, KeyRole).toString() : QString();
}

} // namespace Studio
