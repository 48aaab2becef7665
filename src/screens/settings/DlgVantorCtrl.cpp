#include "screens/settings/DlgVantorCtrl.h"

#include "config/AppConfig.h"
#include "ui_DlgVantorCtrl.h"

dlgVantorCtrl::dlgVantorCtrl(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::dlgVantorCtrl>())
{
    m_pUi->setupUi(this);
}

dlgVantorCtrl::~dlgVantorCtrl() = default;

void dlgVantorCtrl::ConfigSettings()
{
    m_pUi->LW_MCodes->clear();
    const auto& pins = AppConfig::m_lstMCodesPin;
    for (auto it = pins.cbegin(); it != pins.cend(); ++it)
        m_pUi->LW_MCodes->addItem(QStringLiteral("M%1: output %2").arg(it.key()).arg(it.value()));
    if (pins.isEmpty()) m_pUi->LW_MCodes->addItem(QStringLiteral("No M code has an output"));
}
