#include "screens/settings/DlgRpiController.h"

#include "hardware/HeaderPins.h"
#include "ui_DlgRpiController.h"
#include "widgets/ButtonStyle.h"

static constexpr int REFRESH_MS = 200;   // a finger on a switch sees it; costs 28 reads
static constexpr char ROLE[] = "role", LEVEL[] = "level";

static QPushButton* PinButton(const QWidget& page, int iPin)
{
    return page.findChild<QPushButton*>(QStringLiteral("Btn_RpiGPIO_%1").arg(iPin));
}

dlgRpiController::dlgRpiController(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::dlgRpiController>())
{
    m_pUi->setupUi(this);
    for (int iPin = 0; iPin < HEADER_PINS; ++iPin)
        PinButton(*this, iPin)->setAttribute(Qt::WA_TransparentForMouseEvents);   // shows, and takes no press
    connect(&m_Timer, &QTimer::timeout, this, &dlgRpiController::ShowLevels);
    ConfigSettings();
}

dlgRpiController::~dlgRpiController() = default;

void dlgRpiController::ConfigSettings()
{
    const QMap<int, QString> roles = PinRoles();
    for (int iPin = 0; iPin < HEADER_PINS; ++iPin) {
        PinButton(*this, iPin)->setProperty(ROLE, roles.value(iPin));
        PinButton(*this, iPin)->setProperty(LEVEL, QVariant());
    }
    ShowLevels();
}

// Only what has changed is painted anew.
void dlgRpiController::ShowLevels()
{
    for (int iPin = 0; iPin < HEADER_PINS; ++iPin) {
        QPushButton* pButton = PinButton(*this, iPin);
        const int iLevel = IsPinHigh(iPin) ? 1 : 0;
        if (pButton->property(LEVEL) == iLevel) continue;
        pButton->setProperty(LEVEL, iLevel);
        const QString strRole = pButton->property(ROLE).toString();
        pButton->setText(QStringLiteral("GPIO %1: %2\n%3")
                             .arg(iPin)
                             .arg(iLevel)
                             .arg(strRole.isEmpty() ? QStringLiteral("not used") : strRole));
        pButton->setStyleSheet(iLevel ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    }
}

void dlgRpiController::showEvent(QShowEvent* pEvent)
{
    ShowLevels();
    m_Timer.start(REFRESH_MS);
    QDialog::showEvent(pEvent);
}

void dlgRpiController::hideEvent(QHideEvent* pEvent)
{
    m_Timer.stop();
    QDialog::hideEvent(pEvent);
}
