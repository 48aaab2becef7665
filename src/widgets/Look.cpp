#include "widgets/Look.h"

#include <QApplication>
#include <QIcon>
#include <QPalette>
#include <QStyleFactory>

static const QString FONT_FAMILY = QStringLiteral("DejaVu Sans");
static const QString FIXED_FAMILY = QStringLiteral("DejaVu Sans Mono");
static constexpr int TEXT_SIZE = 14;   // pixels, readable at arm's length

const QString CLook::WINDOW_STYLE = QStringLiteral("QMainWindow, QDialog {background-color: rgb(60, 60, 60);}");
const QString CLook::VALUE_STYLE =
    QStringLiteral("background-color: rgb(40, 40, 40);color: rgb(255, 255, 255);border: 1px solid rgb(110, 110, 110);");
const QString CLook::HEADING_STYLE = QStringLiteral("color: rgb(140, 200, 255);font-weight: bold;");

// Sizes in boxes and in the file dialog, which no form of ours lays out, are set here; on screens the forms rule.
static const QString SHEET = QStringLiteral(R"(
QPushButton {color: rgb(0, 0, 0); border-style: solid; border-width: 2px; border-color: black;
    background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5,
        stop:0 rgba(255, 255, 255, 255), stop:1 rgba(100, 100, 100, 255));}
QPushButton:pressed {border-color: rgb(0, 120, 255);
    background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5,
        stop:0 rgba(255, 255, 255, 255), stop:1 rgba(0, 0, 255, 255));}
QPushButton:disabled {background-color: rgb(124, 124, 124); color: rgb(70, 70, 70);
    border-color: rgb(95, 95, 95);}
QLineEdit, QPlainTextEdit, QTextEdit, QListView, QTreeView, QTableView {background-color: rgb(40, 40, 40);
    color: rgb(255, 255, 255); border: 1px solid rgb(110, 110, 110); selection-background-color: rgb(0, 90, 170);
    selection-color: rgb(255, 255, 255);}
QLineEdit:disabled {color: rgb(150, 150, 150); background-color: rgb(60, 60, 60);}
QFrame[frameShape="1"], QFrame[frameShape="6"] {border: 1px solid rgb(110, 110, 110); border-radius: 4px;}
QGroupBox {border: 1px solid rgb(110, 110, 110); border-radius: 4px; margin-top: 9px;}
QGroupBox::title {subcontrol-origin: margin; left: 10px; padding: 0 3px; color: rgb(140, 200, 255);}
QComboBox {background-color: rgb(85, 85, 85); color: rgb(255, 255, 255); border: 2px solid black; padding-left: 8px;}
QComboBox:disabled {background-color: rgb(124, 124, 124); color: rgb(70, 70, 70);}
QComboBox QAbstractItemView {background-color: rgb(40, 40, 40); color: rgb(255, 255, 255);
    border: 1px solid rgb(110, 110, 110);}
QComboBox QAbstractItemView::item {min-height: 40px;}
QCheckBox::indicator, QRadioButton::indicator {width: 28px; height: 28px;}
QScrollBar:vertical {width: 25px;}
QScrollBar:horizontal {height: 25px;}
QMessageBox QLabel {font-size: 16px; min-width: 260px;}
QMessageBox QLabel#qt_msgboxex_icon_label {min-width: 0;}
QMessageBox QPushButton {font-size: 16px; min-width: 100px; min-height: 44px;}
QFileDialog QPushButton {min-width: 90px; min-height: 38px;}
QFileDialog QLineEdit, QFileDialog QComboBox {min-height: 38px;}
QFileDialog QToolButton {min-width: 36px; min-height: 36px; background-color: rgb(150, 150, 150);
    border: 2px solid black;}
QFileDialog QToolButton:disabled {background-color: rgb(90, 90, 90);}
QFileDialog QListView::item, QFileDialog QTreeView::item {min-height: 32px;}
QFileDialog QHeaderView::section {background-color: rgb(85, 85, 85); color: rgb(255, 255, 255); padding: 4px;}
QToolTip {background-color: rgb(40, 40, 40); color: rgb(255, 255, 255); border: 1px solid rgb(110, 110, 110);}
)");

static QPalette DarkPalette()
{
    const QColor ground(60, 60, 60), deep(40, 40, 40), text(240, 240, 240), dim(150, 150, 150);
    QPalette palette(ground);
    palette.setColor(QPalette::Window, ground);
    palette.setColor(QPalette::Base, deep);
    palette.setColor(QPalette::AlternateBase, QColor(50, 50, 50));
    palette.setColor(QPalette::Button, QColor(85, 85, 85));
    palette.setColor(QPalette::Highlight, QColor(0, 90, 170));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, dim);
    palette.setColor(QPalette::Link, QColor(140, 200, 255));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, dim);
    }
    return palette;
}

// Outside of any namespace, as the macro wants it: without it the linker drops the icons of a static library.
static void InitIcons()
{
    Q_INIT_RESOURCE(vantor);
}

void CLook::Apply(QApplication& app)
{
    InitIcons();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/res/Vantor.png")));
    QFont::insertSubstitution(QStringLiteral("MyFont"), FONT_FAMILY);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(DarkPalette());
    QApplication::setFont(Font(TEXT_SIZE));
    app.setStyleSheet(SHEET);
}

QFont CLook::Font(int iPixelSize, bool bBold)
{
    QFont font(FONT_FAMILY);
    font.setPixelSize(iPixelSize);
    font.setBold(bBold);
    return font;
}

QFont CLook::FixedFont(int iPixelSize)
{
    QFont font(FIXED_FAMILY);
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(iPixelSize);
    return font;
}
