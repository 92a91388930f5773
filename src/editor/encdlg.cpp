// SPDX-License-Identifier: MIT
#include "editor/encdlg.h"

#include "frame/ftranslator.h"
#include "frame/textcodecs.h"

#include <QDialogButtonBox>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Vela {

namespace {

constexpr int encodingTextId = 105;
constexpr int initialWidth = 70;  // characters
constexpr int initialHeight = 24; // lines

} // namespace

EncDlg::EncDlg(int codec, QWidget *parent)
    : QDialog(parent)
    , m_encodings(new QTreeWidget)
{
    setWindowTitle(FTranslator::instance()->translate(encodingTextId));
    m_encodings->setAccessibleName(windowTitle());
    m_encodings->setRootIsDecorated(false);
    m_encodings->setUniformRowHeights(true);
    m_encodings->setHeaderLabels({tr("Encoding"), tr("Names")});
    for (int i = 0; i < TextCodecs::count(); ++i) {
        auto *const item =
            new QTreeWidgetItem(m_encodings, {TextCodecs::displayName(i), TextCodecs::aliases(i)});
        item->setToolTip(0, TextCodecs::languages(i));
    }
    m_encodings->resizeColumnToContents(0);
    m_encodings->setCurrentItem(m_encodings->topLevelItem(codec));
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_encodings, &QTreeWidget::itemActivated, this, &QDialog::accept);

    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_encodings);
    rows->addWidget(buttons);
    const QFontMetrics metrics = fontMetrics();
    resize(metrics.averageCharWidth() * initialWidth, metrics.lineSpacing() * initialHeight);
}

int EncDlg::codec() const
{
    return m_encodings->indexOfTopLevelItem(m_encodings->currentItem());
}

} // namespace Vela
