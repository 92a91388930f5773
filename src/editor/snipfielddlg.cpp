// SPDX-License-Identifier: MIT
#include "editor/snipfielddlg.h"

#include "editor/plaintext.h"
#include "editor/snipfield.h"
#include "frame/interface.h"

#include "ui_snipfielddlg.h"

namespace Vela {

namespace {

// The row of the combo box of types that stands behind the regular ones.
constexpr int itemsRow = 3;

// Each line of the edit is a part of a list.
QString listFrom(const QPlainTextEdit *edit)
{
    return plainText(edit->document()).replace(QLatin1Char('\n'), QLatin1Char(','));
}

} // namespace

SnipFieldDlg::SnipFieldDlg(QWidget *parent)
    : QDialog(parent)
    , m_form(std::make_unique<Ui::SnipFieldDlg>())
{
    m_form->setupUi(this);
    if (const Interface *const host = Interface::instance())
        setWindowIcon(host->icon(QStringLiteral("code_snippet_edit")));
    connect(m_form->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_form->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    on_type_currentIndexChanged(m_form->type->currentIndex());
}

SnipFieldDlg::~SnipFieldDlg() = default;

SnipField *SnipFieldDlg::createField() const
{
    const QLatin1String regularTypes[itemsRow] = {SnipFieldType::Text, SnipFieldType::Integer,
                                                  SnipFieldType::Float};
    const int row = m_form->type->currentIndex();
    SnipField *field = nullptr;
    if (row == itemsRow)
        field = new ComboSnipField(listFrom(m_form->values), listFrom(m_form->titles));
    else
        field = new RegularSnipField(regularTypes[row]);
    field->name = m_form->name->text();
    field->title = m_form->title->text();
    return field;
}

void SnipFieldDlg::on_type_currentIndexChanged(int index)
{
    const bool hasItems = index == itemsRow;
    m_form->valuesLb->setVisible(hasItems);
    m_form->values->setVisible(hasItems);
    m_form->titlesLb->setVisible(hasItems);
    m_form->titles->setVisible(hasItems);
    adjustSize();
}

} // namespace Vela
