// SPDX-License-Identifier: MIT
// How a text looks: its size, its colours and what the editor shows beside it.
#include "studio/windowfixture.h"

#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "studio/window/editors.h"
#include "studio/window/fileview.h"
#include "studio/window/settingsdialog.h"
#include "studio/window/theme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolButton>
#include <QTreeWidget>
#include <QWheelEvent>

using namespace Studio;

namespace {

const QString gamePath = QStringLiteral("game.lantern");
const QString mainPath = QStringLiteral("rowan/rowan.lantern");
const QString motionPath = QStringLiteral("rowan/rowan.motion");
const QString scriptPath = QStringLiteral("rowan/scripts/rowan.script");

const QByteArray script = "[script rowan]\nwhen held left  walk, lift (lantern (high))\n";

} // namespace

class TestTextLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void textIsZoomed_data();
    void textIsZoomed();
    void smallTurnsOfTheWheelAddUp();
    void findBarMarksAllMatches();
    void switchOfTheTextPageActsAtOnce_data();
    void switchOfTheTextPageActsAtOnce();
    void bracketsAreMatchedIfWanted();
    void fontIsChosen();
    void formatOfATokenIsChosen();
    void themeIsSwitched();

private:
    void turnWheel(int angle, Qt::KeyboardModifiers modifiers);
    void clickSwitch(QWidget &dialog, const char *name);
    QTextCharFormat formatOf(const QString &word) const;

    std::unique_ptr<WindowFixture> f;
    Vela::CodeEditor *text = nullptr;
};

void TestTextLook::init()
{
    f = std::make_unique<WindowFixture>();
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
    text = f->window->editors().code().editor();
}

void TestTextLook::cleanup()
{
    f.reset();
}

void TestTextLook::turnWheel(int angle, Qt::KeyboardModifiers modifiers)
{
    const QPointF place = text->viewport()->rect().center();
    QWheelEvent event(place, text->viewport()->mapToGlobal(place.toPoint()), QPoint(),
                      QPoint(0, angle), Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(text->viewport(), &event);
}

void TestTextLook::clickSwitch(QWidget &dialog, const char *name)
{
    auto *box = dialog.findChild<QCheckBox *>(QLatin1String(name));
    QVERIFY2(box && box->isVisible(), name);
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
}

/// Returns the format in which the first letter of a word of the text is painted.
QTextCharFormat TestTextLook::formatOf(const QString &word) const
{
    const QTextCursor found = text->document()->find(word);
    const int place = found.selectionStart() - found.block().position();
    const QVector<QTextLayout::FormatRange> ranges = found.block().layout()->formats();
    for (const QTextLayout::FormatRange &range : ranges) {
        if (range.start <= place && place < range.start + range.length)
            return range.format;
    }
    return QTextCharFormat();
}

void TestTextLook::textIsZoomed_data()
{
    QTest::addColumn<int>("key"); // 0 for the wheel
    QTest::addColumn<int>("angle");
    QTest::addColumn<bool>("wider");
    QTest::newRow("wheel up") << 0 << 120 << true;
    QTest::newRow("wheel down") << 0 << -120 << false;
    QTest::newRow("plus") << int(Qt::Key_Plus) << 0 << true;
    QTest::newRow("minus") << int(Qt::Key_Minus) << 0 << false;
}

void TestTextLook::textIsZoomed()
{
    QFETCH(int, key);
    QFETCH(int, angle);
    QFETCH(bool, wider);
    QVERIFY(f->open({mainPath}));
    text->setFocus();
    const int size = text->font().pointSize();
    const QString before = text->toPlainText();
    const auto shown = [this] { return text->cursorRect(text->textCursor()).height(); };
    const int height = shown();
    if (key)
        f->press(key, Qt::ControlModifier);
    else
        turnWheel(angle, Qt::ControlModifier);
    QCOMPARE(text->font().pointSize() > size, wider);
    QCOMPARE(text->font().pointSize() < size, !wider);
    QCOMPARE(shown() > height, wider);
    f->press(Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(text->font().pointSize(), size);
    QCOMPARE(text->toPlainText(), before);
}

void TestTextLook::smallTurnsOfTheWheelAddUp()
{
    QVERIFY(f->open({mainPath}));
    const int size = text->font().pointSize();
    for (int turn = 0; turn < 7; ++turn)
        turnWheel(15, Qt::ControlModifier);
    QCOMPARE(text->font().pointSize(), size);
    turnWheel(15, Qt::ControlModifier);
    const int step = text->font().pointSize() - size;
    QVERIFY(step > 0);
    turnWheel(240, Qt::ControlModifier);
    QCOMPARE(text->font().pointSize(), size + 3 * step);
    // Without the key the wheel scrolls.
    turnWheel(-120, Qt::NoModifier);
    QCOMPARE(text->font().pointSize(), size + 3 * step);
}

void TestTextLook::findBarMarksAllMatches()
{
    QVERIFY(f->open({motionPath}));
    text->setFocus();
    const auto marked = [this] {
        const QColor color = f->host->colors().color(QStringLiteral("search"));
        QStringList words;
        const QList<QTextEdit::ExtraSelection> selections = text->extraSelections();
        for (const QTextEdit::ExtraSelection &selection : selections) {
            if (selection.format.background().color() == color && selection.cursor.hasSelection())
                words.append(selection.cursor.selectedText());
        }
        return words.join(QLatin1Char(' '));
    };
    f->press(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(f->find<QLineEdit>("findText"), QStringLiteral("walk-\\d"));
    QTest::mouseClick(f->find<QToolButton>("findExpression"), Qt::LeftButton);
    f->find<QLineEdit>("findText")->setFocus();
    f->press(Qt::Key_Return);
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("walk-1"));
    QCOMPARE(marked(), QStringLiteral("walk-1 walk-2"));
    f->press(Qt::Key_Escape);
    QCOMPARE(marked(), QString());
    // With the bar closed a search only goes on.
    f->press(Qt::Key_F3);
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("walk-2"));
    QCOMPARE(marked(), QString());
}

void TestTextLook::switchOfTheTextPageActsAtOnce_data()
{
    QTest::addColumn<QString>("key");
    for (const char *key : {"code_line_numbers", "code_folding_markers", "code_highlight_line",
                            "code_highlight_blocks", "show_code_bar"})
        QTest::newRow(key) << key;
}

void TestTextLook::switchOfTheTextPageActsAtOnce()
{
    QFETCH(QString, key);
    QApplication::setCursorFlashTime(0);
    QVERIFY(SmallGame::writeFile(f->meadow() + QLatin1Char('/') + scriptPath, script));
    for (const SettingInfo &info : Settings::known()) {
        if (info.page == SettingInfo::TextPage && info.defaultValue.userType() == QMetaType::Bool)
            f->host->setOption(QLatin1String(info.key), false);
    }
    QVERIFY(f->open({scriptPath}));
    f->press(Qt::Key_Down);
    SettingsDialog dialog(*f->host, f->window.get());
    dialog.show();
    dialog.showPage(2);
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const auto picture = [this] { return f->window->editors().code().widget()->grab().toImage(); };
    const QImage first = picture();
    clickSwitch(dialog, qPrintable(key));
    QTRY_VERIFY(picture() != first);
    const QImage with = picture();
    clickSwitch(dialog, qPrintable(key));
    QTRY_VERIFY(picture() != with);
    const QImage plain = picture();
    clickSwitch(dialog, qPrintable(key));
    QTRY_VERIFY(picture() != plain);
    clickSwitch(dialog, qPrintable(key));
    QTRY_VERIFY(picture() == plain);
}

// Lantern's texts have no brackets that the editor would match.
void TestTextLook::bracketsAreMatchedIfWanted()
{
    SettingsDialog dialog(*f->host, f->window.get());
    dialog.show();
    dialog.showPage(2);
    QVERIFY(text->syntaxFormatting().parenMatching);
    clickSwitch(dialog, "code_paren_matching");
    QTRY_VERIFY(!text->syntaxFormatting().parenMatching);
}

void TestTextLook::fontIsChosen()
{
    QVERIFY(f->open({mainPath}));
    SettingsDialog dialog(*f->host, f->window.get());
    dialog.show();
    dialog.showPage(2);
    auto *size = dialog.findChild<QSpinBox *>(QStringLiteral("font_size"));
    size->selectAll();
    QTest::keyClicks(size, QStringLiteral("17"));
    QTRY_COMPARE(text->font().pointSize(), 17);
    // Nothing that is typed gives letters that nobody could read or the memory could not hold.
    size->selectAll();
    QTest::keyClicks(size, QStringLiteral("99999"));
    QTRY_VERIFY(text->font().pointSize() != 17);
    QVERIFY(text->font().pointSize() >= 1 && text->font().pointSize() <= 200);
    auto *fonts = dialog.findChild<QFontComboBox *>(QStringLiteral("font_name"));
    QVERIFY(fonts->count() > 0);
    const int other = fonts->currentIndex() == 0 ? fonts->count() - 1 : 0;
    fonts->setCurrentIndex(other);
    QTRY_COMPARE(text->font().family(), fonts->itemText(other));
}

void TestTextLook::formatOfATokenIsChosen()
{
    const QString number = QStringLiteral("320");
    QVERIFY(f->open({}));
    const QTextCharFormat standard = formatOf(number);
    QVERIFY(standard.fontWeight() <= QFont::Normal);
    QCOMPARE(standard.foreground().color(), f->host->colors().color(QStringLiteral("number")));
    SettingsDialog dialog(*f->host, f->window.get());
    dialog.show();
    dialog.showPage(4);
    auto *list = dialog.findChild<QTreeWidget *>(QStringLiteral("formats"));
    const auto *sample = dialog.findChild<QPlainTextEdit *>(QStringLiteral("formatSample"));
    const auto *reset = dialog.findChild<QPushButton *>(QStringLiteral("resetFormat"));
    const auto sampleWeight = [sample] {
        return sample->document()->find(QStringLiteral("1.5")).charFormat().fontWeight();
    };
    list->setCurrentItem(list->findItems(QStringLiteral("Numbers"), Qt::MatchExactly).value(0));
    QVERIFY(list->currentItem() && !reset->isEnabled());
    clickSwitch(dialog, "formatBold");
    QCOMPARE(sampleWeight(), int(QFont::Bold));
    QTRY_COMPARE(formatOf(number).fontWeight(), int(QFont::Bold));
    QCOMPARE(formatOf(number).foreground(), standard.foreground());
    clickSwitch(dialog, "formatItalic");
    QTRY_VERIFY(formatOf(number).fontItalic());
    // A text that is opened later has them, too.
    QVERIFY(f->clickFile(motionPath));
    QVERIFY(formatOf(QStringLiteral("-16")).fontItalic());
    QVERIFY(f->clickFile(gamePath));

    QVERIFY(reset->isEnabled());
    QTest::mouseClick(const_cast<QPushButton *>(reset), Qt::LeftButton);
    QVERIFY(sampleWeight() <= QFont::Normal);
    QTRY_VERIFY(formatOf(number) == standard);
    QVERIFY(!reset->isEnabled());
}

void TestTextLook::themeIsSwitched()
{
    const QPalette before = QApplication::palette();
    {
        const Theme theme(f->host->settings());
        QVERIFY(f->open({}));
        SettingsDialog dialog(*f->host, f->window.get());
        dialog.show();
        dialog.showPage(0);
        auto *choice = dialog.findChild<QComboBox *>(QStringLiteral("theme"));
        const auto corner = [this] { // without letters
            const QImage image = text->viewport()->grab().toImage();
            return image.pixelColor(image.width() - 2, image.height() - 2);
        };
        const auto expect = [&](const char *key, bool dark) {
            const auto &table = Colors::table();
            const auto info = std::find_if(table.begin(), table.end(), [key](const ColorInfo &one) {
                return qstrcmp(one.key, key) == 0;
            });
            return QColor(dark ? info->dark : info->light);
        };
        for (const Theme::Choice wanted : {Theme::Dark, Theme::Light, Theme::Dark}) {
            const bool dark = wanted == Theme::Dark;
            QTest::keyClick(choice, dark ? Qt::Key_End : Qt::Key_Up);
            QCOMPARE(choice->currentIndex(), int(wanted));
            QTRY_COMPARE(corner(), expect("background", dark));
            QTRY_COMPARE(formatOf(QStringLiteral("320")).foreground().color(),
                         expect("number", dark));
            QCOMPARE(QApplication::palette().color(QPalette::Window).lightness() < 128, dark);
        }
        QTest::keyClick(choice, Qt::Key_Home);
        QCOMPARE(QApplication::palette(), before);
    }
    QApplication::setPalette(before);
}

QTEST_MAIN(TestTextLook)
#include "tst_textlook.moc"
