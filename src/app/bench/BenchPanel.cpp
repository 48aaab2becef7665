#include "app/bench/BenchPanel.h"

#include "config/AppConfig.h"
#include "run/MachineWiring.h"
#include "ui_BenchPanel.h"
#include "widgets/Look.h"

#include <QScreen>
#include <QWindow>

static constexpr int REFRESH_MS = 50;
static constexpr int START_HOLD_MS = 200;        // longer than the supervision loop's tick, however short the click
static constexpr qint64 STANDS_AFTER_MS = 300;   // without a step
static constexpr double PLATE_BELOW = 10.0;      // mm

static const QString LAMP_ON = QStringLiteral("background-color: rgb(60, 230, 60);color: rgb(0, 0, 0);");
static const QString LAMP_OFF = QStringLiteral("background-color: rgb(40, 70, 40);color: rgb(190, 190, 190);");

CBenchPanel::stWiring CBenchPanel::WiringOfSettings()
{
    stWiring wiring;
    wiring.machine = MachineOfSettings(true);
    for (auto it = AppConfig::m_lstIPs.cbegin(); it != AppConfig::m_lstIPs.cend(); ++it)
        wiring.lstInputs.push_back({QStringLiteral("Input %1").arg(it.key()), it.value()});
    wiring.lstOutputs.push_back({QStringLiteral("Program runs"), AppConfig::m_iPgmStatusOutput});
    for (auto it = AppConfig::m_lstMCodesPin.cbegin(); it != AppConfig::m_lstMCodesPin.cend(); ++it) {
        const quint16 iCode = it.key();
        const QString strName = iCode == 3   ? QStringLiteral("Spindle CW")
                                : iCode == 4 ? QStringLiteral("Spindle CCW")
                                             : QStringLiteral("M%1").arg(iCode);
        wiring.lstOutputs.push_back({strName, it.value()});
    }
    return wiring;
}

CBenchPanel::CBenchPanel(CVirtualMachine& machine, const stWiring& wiring)
    : m_Machine(machine), m_Wiring(wiring.machine), m_pUi(new Ui::CBenchPanel)
{
    m_pUi->setupUi(this);
    setAttribute(Qt::WA_QuitOnClose, false);
    AddSwitch(m_pUi->Btn_EStop, m_Wiring.iEStopPin);
    AddSwitch(m_pUi->Btn_Probe, m_Wiring.iProbePin);
    m_pUi->Btn_Plate->setEnabled(m_Wiring.iProbePin >= 0);
    m_pUi->Btn_Start->setEnabled(m_Wiring.iStartPin >= 0);
    QPushButton* const lstHome[] = {m_pUi->Btn_Home_X, m_pUi->Btn_Home_Y, m_pUi->Btn_Home_Z, m_pUi->Btn_Home_A,
                                    m_pUi->Btn_Home_B};
    m_lstPositions = {m_pUi->Lbl_Pos_X, m_pUi->Lbl_Pos_Y, m_pUi->Lbl_Pos_Z, m_pUi->Lbl_Pos_A, m_pUi->Lbl_Pos_B};
    for (size_t axis = 0; axis < m_lstPositions.size(); ++axis) {
        AddSwitch(lstHome[axis], m_Wiring.axes[axis].iPulsePin >= 0 ? m_Wiring.axes[axis].iHomePin : -1);
        m_lstPositions[axis]->setFont(CLook::FixedFont(16));
    }
    for (const stPin& input : wiring.lstInputs) {
        auto* pButton = new QPushButton(input.strName, this);
        pButton->setObjectName("Btn_" + QString(input.strName).remove(' '));
        pButton->setCheckable(true);
        pButton->setMinimumHeight(44);
        m_pUi->Layout_Inputs->addWidget(pButton);
        AddSwitch(pButton, input.iPin);
    }
    for (const stPin& output : wiring.lstOutputs) AddLamp(output);
    m_SinceStep.start();
    connect(&m_Timer, &QTimer::timeout, this, &CBenchPanel::Refresh);
    m_Timer.start(REFRESH_MS);
    Refresh();
}

CBenchPanel::~CBenchPanel() = default;

void CBenchPanel::AddSwitch(QPushButton* pButton, int iPin)
{
    pButton->setEnabled(iPin >= 0);
    if (iPin < 0) return;
    m_lstSwitches.push_back({pButton, iPin});
    if (pButton == m_pUi->Btn_EStop) return;   // has a slot of its own
    connect(pButton, &QPushButton::clicked, this, [iPin](bool bOn) { CVirtualPins::SetInput(iPin, bOn ? 1 : 0); });
}

void CBenchPanel::AddLamp(const stPin& output)
{
    auto* pLabel = new QLabel(output.strName, this);
    pLabel->setObjectName("Lamp_" + QString(output.strName).remove(' '));
    pLabel->setAlignment(Qt::AlignCenter);
    pLabel->setMinimumHeight(26);
    const int iLamp = static_cast<int>(m_lstLamps.size());
    m_pUi->Layout_Lamps->addWidget(pLabel, iLamp / 2, iLamp % 2);
    m_lstLamps.push_back({pLabel, output.iPin, -1});
}

void CBenchPanel::Refresh()
{
    StayReachable();
    for (const stSwitch& input : m_lstSwitches) input.pButton->setChecked(CVirtualPins::Level(input.iPin) != 0);
    for (stLamp& lamp : m_lstLamps) {
        const int iLevel = lamp.iPin >= 0 ? CVirtualPins::Level(lamp.iPin) : 0;
        if (iLevel != lamp.iShown) lamp.pLabel->setStyleSheet(iLevel ? LAMP_ON : LAMP_OFF);
        lamp.iShown = iLevel;
    }
    for (size_t axis = 0; axis < m_lstPositions.size(); ++axis) {
        const bool bWired = m_Wiring.axes[axis].iPulsePin >= 0;
        const qint64 lPulses = m_Machine.Carriage(static_cast<int>(axis));
        if (lPulses != m_lstShown[axis]) m_SinceStep.start();
        m_lstShown[axis] = lPulses;
        m_lstPositions[axis]->setText(bWired ? QString::number(m_Machine.CarriageMm(static_cast<int>(axis)), 'f', 4) +
                                                   " mm"
                                             : QStringLiteral("-"));
    }
}

void CBenchPanel::on_Btn_Start_pressed()
{
    m_Machine.PressStart(true);
}

void CBenchPanel::on_Btn_Start_released()
{
    QTimer::singleShot(START_HOLD_MS, this, [this] {
        if (!m_pUi->Btn_Start->isDown()) m_Machine.PressStart(false);
    });
}

bool CBenchPanel::HasStood()
{
    Refresh();
    return m_SinceStep.elapsed() >= STANDS_AFTER_MS;
}

// The surface is read by the threads that step: it changes only while the machine stands.
void CBenchPanel::on_Btn_Plate_clicked(bool bOn)
{
    if (!HasStood()) return m_pUi->Btn_Plate->setChecked(!bOn);
    if (bOn)
        m_Machine.SetFlatSurface(m_Machine.CarriageMm(2) - PLATE_BELOW);
    else
        m_Machine.SetFlatSurface(-std::numeric_limits<double>::infinity());
}

CBenchPanel::stPlaces CBenchPanel::PlacesOn(const QRect& screen, const QRect& window, QSize panel)
{
    static constexpr int GAP = 8;   // pixels
    const auto Within = [](int iPlace, int iFirst, int iEnd) { return std::max(iFirst, std::min(iPlace, iEnd)); };
    const int iTop = Within(window.top(), screen.top(), screen.top() + screen.height() - window.height());
    const int iRoom = screen.width() - window.width() - GAP - panel.width();
    const int iLeft = Within(window.left(), screen.left(), screen.left() + std::max(0, iRoom));
    return {{iLeft, iTop}, {iRoom < 0 ? screen.left() : iLeft + window.width() + GAP, iTop}};
}

void CBenchPanel::ShowBeside(QWidget& window)
{
    adjustSize();
    const stPlaces places = PlacesOn(window.screen()->availableGeometry(), window.frameGeometry(), size());
    window.move(places.window);
    move(places.panel);
    show();
    connect(&window, &QObject::destroyed, this, &QWidget::close);
}

// A modal box blocks every window that is not its own: the panel becomes its own until the box goes.
void CBenchPanel::StayReachable()
{
    QWindow* pModal = QGuiApplication::modalWindow();
    if (pModal && windowHandle() && windowHandle()->transientParent() != pModal)
        windowHandle()->setTransientParent(pModal);
}
