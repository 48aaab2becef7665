#include "config/SettingsTable.h"

#include "config/AppConfig.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

namespace {
using A = AppConfig;
using Choices = std::vector<qint64>;   // the values of an integer that mean something; empty: all of its width

struct stElement
{
    std::function<QString()> fnText;
    std::function<bool(const QString& strValue, QString& strWhy)> fnSet;
};

struct stSetting
{
    QString strName;
    std::vector<stElement> lstElements;
    bool bArray = false;
    // The text of a refusal, or empty: the member follows from another one, as things stand.
    std::function<QString(int iIndex)> fnRuledBy;
};

// ---- From and to text ----

QString Text(double fValue)
{
    return QString::number(fValue, 'g', QLocale::FloatingPointShortest);
}
QString Text(qint64 lValue)
{
    return QString::number(lValue);
}

bool ReadFloat(const QString& strValue, double& fValue, QString& strWhy)
{
    bool bOk = false;
    const double fRead = strValue.toDouble(&bOk);
    if (!bOk || !std::isfinite(fRead)) {
        strWhy = QStringLiteral("\"%1\" is not a finite number").arg(strValue);
        return false;
    }
    fValue = fRead;
    return true;
}

bool ReadFlag(const QString& strValue, bool& bValue, QString& strWhy)
{
    const bool bTrue = strValue == QLatin1String("1") || strValue == QLatin1String("true");
    if (!bTrue && strValue != QLatin1String("0") && strValue != QLatin1String("false")) {
        strWhy = QStringLiteral("\"%1\" is none of 0, 1, false, true").arg(strValue);
        return false;
    }
    bValue = bTrue;
    return true;
}

bool ReadInteger(const QString& strValue, qint64 lMin, qint64 lMax, const Choices& choices, qint64& lValue,
                 QString& strWhy)
{
    bool bOk = false;
    const qint64 lRead = strValue.toLongLong(&bOk);
    if (!bOk) {
        strWhy = QStringLiteral("\"%1\" is not a whole number").arg(strValue);
        return false;
    }
    if (!choices.empty() && std::find(choices.begin(), choices.end(), lRead) == choices.end()) {
        QStringList lstAllowed;
        for (const qint64 lChoice : choices) lstAllowed += QString::number(lChoice);
        strWhy = QStringLiteral("%1 is none of %2").arg(strValue, lstAllowed.join(QStringLiteral(", ")));
        return false;
    }
    if (lRead < lMin || lRead > lMax) {
        strWhy = QStringLiteral("%1 is not from %2 to %3").arg(strValue).arg(lMin).arg(lMax);
        return false;
    }
    lValue = lRead;
    return true;
}

// ---- Elements ----

template <class T> struct stPlain
{
    using Type = T;
};
template <class T> struct stPlain<CShared<T>>
{
    using Type = T;
};

template <class M> stElement Element(M& member, const Choices& choices)
{
    using T = typename stPlain<M>::Type;
    if constexpr (std::is_same_v<T, QString>) {
        return {[&member] { return member; },
                [&member](const QString& strValue, QString&) {
                    member = strValue;
                    return true;
                }};
    } else if constexpr (std::is_same_v<T, bool>) {
        return {[&member] { return Text(qint64(bool(member))); },
                [&member](const QString& strValue, QString& strWhy) {
                    bool bValue = false;
                    if (!ReadFlag(strValue, bValue, strWhy)) return false;
                    member = bValue;
                    return true;
                }};
    } else if constexpr (std::is_same_v<T, double>) {
        return {[&member] { return Text(double(member)); },
                [&member](const QString& strValue, QString& strWhy) {
                    double fValue = 0.0;
                    if (!ReadFloat(strValue, fValue, strWhy)) return false;
                    member = fValue;
                    return true;
                }};
    } else {
        return {[&member] { return Text(static_cast<qint64>(static_cast<T>(member))); },
                [&member, choices](const QString& strValue, QString& strWhy) {
                    qint64 lValue = 0;
                    using L = std::numeric_limits<std::conditional_t<std::is_enum_v<T>, qint32, T>>;
                    if (!ReadInteger(strValue, L::min(), L::max(), choices, lValue, strWhy)) return false;
                    member = static_cast<T>(lValue);
                    return true;
                }};
    }
}

template <class M> stSetting Setting(const char* szName, M& member, const Choices& choices = {})
{
    stSetting setting;
    setting.strName = QString::fromLatin1(szName);
    setting.lstElements.push_back(Element(member, choices));
    return setting;
}
template <class M, size_t N> stSetting Setting(const char* szName, M (&members)[N], const Choices& choices = {})
{
    stSetting setting;
    setting.strName = QString::fromLatin1(szName);
    setting.bArray = true;
    for (M& member : members) setting.lstElements.push_back(Element(member, choices));
    return setting;
}

// ---- What follows from what ----

bool IsPiBoard()
{
    return A::m_eVantorCtrl == VTR3_CTRL || A::m_eVantorCtrl == VTR5_CTRL;
}
QString Board(int)
{
    return IsPiBoard() ? QStringLiteral("it follows from m_eVantorCtrl") : QString();
}
QString BoardAxesAB(int iIndex)
{
    return A::m_eVantorCtrl == VTR5_CTRL && iIndex >= A_AXIS ? Board(iIndex) : QString();
}
std::function<QString(int)> Always(const char* szMembers)
{
    const QString strText = QStringLiteral("it follows from %1").arg(QString::fromLatin1(szMembers));
    return [strText](int) { return strText; };
}
stSetting Ruled(stSetting setting, std::function<QString(int)> fnRuledBy)
{
    setting.fnRuledBy = std::move(fnRuledBy);
    return setting;
}
// The grid itself has no text form.
stSetting Grid()
{
    stSetting setting;
    setting.strName = QStringLiteral("m_ZProfileInfo.lstPoints");
    setting.fnRuledBy = [](int) { return QStringLiteral("it comes from a Z-profile file"); };
    return setting;
}

#define S(member, ...) Setting(#member, A::member __VA_OPT__(, ) __VA_ARGS__)

std::vector<stSetting> AxisSettings()
{
    return {Ruled(S(m_iMchType, {3, 5}), Board),
            Ruled(S(m_iAxisPulseOutput), BoardAxesAB),
            Ruled(S(m_iAxisDirOutput), BoardAxesAB),
            Ruled(S(m_iAxisMchHomeSensorInput), BoardAxesAB),
            S(m_iSpindlePwmOutput),
            S(m_iPgmStatusOutput),
            Ruled(S(m_iEStopInput), Board),
            Ruled(S(m_iPgmStartInput), Board),
            Ruled(S(m_iZProbeInput), Board),
            S(m_PlaneSel, {17, 18, 19}),
            S(m_eAxisHomeDir, {DIR_CW, DIR_CCW}),
            S(m_eAxisPosDir, {DIR_CW, DIR_CCW}),
            S(m_fAxisPosDirLimit),
            S(m_fAxisNegDirLimit),
            S(m_fAxisHomeFeed),
            S(m_fAxisFeedPercent),
            Ruled(S(m_fAxisFeed), Always("m_fUserAxisFeed and m_fAxisFeedPercent")),
            S(m_fMaxAxisFeed),
            S(m_fUserAxisFeed),
            S(m_fAxisAcc),
            S(m_fAxisRateOfAcc),
            S(m_fAxisDutyCycle),
            S(m_fAxisMovPerPulse),
            S(m_fEndMillDia),
            S(m_fAxisJogFeed),
            S(m_fZSafePos),
            S(m_iVelAccSamplingTime),
            S(m_fAxisManualToolChngPos),
            S(m_bMultipassImgCarving),
            Ruled(S(m_fMinMaxAxisFeed), Always("m_fMaxAxisFeed")),
            Ruled(S(m_fPlungeFeed), Always("m_fUserAxisFeed[2]")),
            S(m_fHomeRepeatOffset)};
}

std::vector<stSetting> MachineSettings()
{
    return {S(m_eVantorCtrl, {VTR3_CTRL, VTR5_CTRL, SPI_CTRL_16, SPI_CTRL_24}),
            S(m_bHomeSensorsUsed),
            S(m_bPWMCtrlUsed),
            S(m_bKeyboardCtrlUsed),
            S(m_fAxisWorkZero),
            S(m_bAppPassword),
            S(m_strAppPassword),
            S(m_eSelUnits, {0, 1}),
            S(m_bShutdownRPI),
            S(m_eAxisFeedtype, {0, 1}),
            S(m_bAutoHmOnStartup),
            S(m_iSpindleSpeeds),
            S(m_bAutoSpindleOnCW),
            S(m_bAutoSpindleOnCCW),
            S(m_bAutoSpindleOff),
            S(m_bEnlManualToolChange),
            S(m_bEnlAutoToolChange),
            S(m_bUseG01FeedForJog)};
}

std::vector<stSetting> JobSettings()
{
    return {S(m_stPwmSpndlSettings.iMinFreq),
            S(m_stPwmSpndlSettings.iMaxFreq),
            S(m_stPwmSpndlSettings.iFreqStep),
            S(m_stPwmSpndlSettings.iMinSpeed),
            S(m_stPwmSpndlSettings.iMaxSpeed),
            S(m_stPwmSpndlSettings.iTimeDelay),
            Ruled(S(m_stPwmSpndlSettings.iCurFreq),
                  Always("m_stPwmSpndlSettings.iMinFreq, iMaxFreq, iMinSpeed and iMaxSpeed")),
            S(m_GCodeRunSettings.sAbsRel, {0, 1}),
            S(m_GCodeRunSettings.iState, {G00_MOVE, G01_MOVE}),
            S(m_GCodeRunSettings.iHomeRef, {0, 2, 4, 6, 8}),
            S(m_GCodeRunSettings.fFeed),
            S(m_GCodeRunSettings.bUsePrgmFeed),
            S(m_GCodeRunSettings.bSaveExecStatus),
            S(m_GCodeRunSettings.bUsePrgmSpindleSpeed),
            S(m_GCodeRunSettings.strFile),
            S(m_GCodeRunSettings.iCurLine),
            S(m_GCodeRunSettings.fAxisStep),
            S(m_ZProfileInfo.fZRange),
            S(m_ZProfileInfo.fXYStep),
            S(m_ZProfileInfo.fLength),
            S(m_ZProfileInfo.fWidth),
            S(m_ZProfileInfo.fZStart),
            Grid(),
            S(m_strAxisNames),
            S(m_strLastFolderPath),
            S(m_bEmergencyStopON),
            S(m_bSimulationMode),
            S(m_bSpindleOn),
            S(m_bSpindleOnOffStatusChangeInGCode),
            S(m_bSpindleDirInGcode),
            S(m_bUseZProfile),
            S(m_iGCodeFileReaderCurIndex)};
}
#undef S

const std::vector<stSetting>& Settings()
{
    static const std::vector<stSetting> lstAll = [] {
        std::vector<stSetting> lst = AxisSettings();
        for (auto part : {MachineSettings(), JobSettings()})
            lst.insert(lst.end(), std::make_move_iterator(part.begin()), std::make_move_iterator(part.end()));
        return lst;
    }();
    return lstAll;
}

// ---- Maps: the index is a key, and new keys may come ----

bool IsKeyOfBoard(const QString& strMap, int iKey)
{
    if (!IsPiBoard()) return false;
    if (strMap == QLatin1String("m_lstIPs")) return iKey == 1;
    const bool bEither = iKey == 3 || iKey == 4 || iKey == 7 || iKey == 8 || iKey == 80;
    const bool bVtr3 = A::m_eVantorCtrl == VTR3_CTRL && iKey >= 200 && iKey <= 210 && iKey % 2 == 0;
    return bEither || bVtr3;
}

template <class Key, class Value>
bool SetInMap(QMap<Key, Value>& map, const QString& strMap, int iKey, const QString& strValue, QString& strWhy)
{
    if (iKey < 0 || iKey > std::numeric_limits<Key>::max()) {
        strWhy = QStringLiteral("%1 takes a number in brackets, from 0 to %2")
                     .arg(strMap)
                     .arg(std::numeric_limits<Key>::max());
        return false;
    }
    if (IsKeyOfBoard(strMap, iKey)) {
        strWhy = Board(iKey);
        return false;
    }
    qint64 lValue = 0;
    if (!ReadInteger(strValue, std::numeric_limits<Value>::min(), std::numeric_limits<Value>::max(), {}, lValue,
                     strWhy))
        return false;
    map[static_cast<Key>(iKey)] = static_cast<Value>(lValue);
    return true;
}

template <class Map> void ListMap(QStringList& lst, const char* szName, const Map& map)
{
    for (auto it = map.begin(); it != map.end(); ++it)
        lst += QStringLiteral("%1[%2]=%3").arg(QString::fromLatin1(szName)).arg(int(it.key())).arg(int(it.value()));
}

// ---- Assignment ----

struct stAssignment
{
    QString strName, strValue;
    int iIndex = -1;   // none
};

bool Split(const QString& strAssignment, stAssignment& parts, QString& strWhy)
{
    const qsizetype iEqual = strAssignment.indexOf(QLatin1Char('='));
    if (iEqual < 1) {
        strWhy = QStringLiteral("expected NAME=VALUE");
        return false;
    }
    parts.strName = strAssignment.left(iEqual).trimmed();
    parts.strValue = strAssignment.mid(iEqual + 1);
    const qsizetype iBracket = parts.strName.indexOf(QLatin1Char('['));
    if (iBracket < 0) return true;
    bool bOk = false;
    const QString strIndex = parts.strName.mid(iBracket + 1);
    if (strIndex.endsWith(QLatin1Char(']'))) parts.iIndex = strIndex.chopped(1).toUShort(&bOk);
    if (!bOk) strWhy = QStringLiteral("unreadable index");
    parts.strName.truncate(iBracket);
    return bOk;
}

bool IsSettable(const stSetting& setting, size_t n, QString& strWhy)
{
    if (setting.fnRuledBy) strWhy = setting.fnRuledBy(static_cast<int>(n));
    return strWhy.isEmpty();
}

bool SetElements(const stSetting& setting, const stAssignment& parts, QString& strWhy)
{
    if (setting.lstElements.empty()) return IsSettable(setting, 0, strWhy);
    if (parts.iIndex >= 0 && (!setting.bArray || size_t(parts.iIndex) >= setting.lstElements.size())) {
        strWhy = setting.bArray ? QStringLiteral("its index goes from 0 to %1").arg(setting.lstElements.size() - 1)
                                : QStringLiteral("it takes no index");
        return false;
    }
    const size_t uFirst = parts.iIndex < 0 ? 0 : size_t(parts.iIndex);
    const size_t uEnd = parts.iIndex < 0 ? setting.lstElements.size() : uFirst + 1;
    for (size_t n = uFirst; n < uEnd; ++n)
        if (!IsSettable(setting, n, strWhy)) return false;
    for (size_t n = uFirst; n < uEnd; ++n)   // of one kind: what the first one reads, all read
        if (!setting.lstElements[n].fnSet(parts.strValue, strWhy)) return false;
    return true;
}

bool SetByName(const stAssignment& parts, QString& strWhy)
{
    if (parts.strName == QLatin1String("m_lstMCodesPin"))
        return SetInMap(A::m_lstMCodesPin, parts.strName, parts.iIndex, parts.strValue, strWhy);
    if (parts.strName == QLatin1String("m_lstIPs"))
        return SetInMap(A::m_lstIPs, parts.strName, parts.iIndex, parts.strValue, strWhy);
    for (const stSetting& setting : Settings()) {
        if (setting.strName != parts.strName) continue;
        const qint32 eBoard = A::m_eVantorCtrl;
        if (!SetElements(setting, parts, strWhy)) return false;
        if (A::m_eVantorCtrl != eBoard) {
            A::WithdrawBoardPins();
            A::ApplyBoardPins();
        }
        return true;
    }
    strWhy = QStringLiteral("there is no setting of this name");
    return false;
}
}   // namespace

bool CSettingsTable::Set(const QString& strAssignment, QString& strWhy)
{
    stAssignment parts;
    QString strReason;
    if (Split(strAssignment, parts, strReason) && SetByName(parts, strReason)) return true;
    strWhy = QStringLiteral("%1: %2").arg(strAssignment, strReason);
    return false;
}

void CSettingsTable::ApplySettings()
{
    AppConfig::ApplyBoardPins();
    AppConfig::DeriveFeeds();
    AppConfig::DerivePwmFrequency();
}

QStringList CSettingsTable::List()
{
    QStringList lst;
    for (const stSetting& setting : Settings()) {
        for (size_t n = 0; n < setting.lstElements.size(); ++n) {
            const QString strIndex = setting.bArray ? QStringLiteral("[%1]").arg(n) : QString();
            lst += setting.strName + strIndex + QLatin1Char('=') + setting.lstElements[n].fnText();
        }
    }
    ListMap(lst, "m_lstMCodesPin", AppConfig::m_lstMCodesPin);
    ListMap(lst, "m_lstIPs", AppConfig::m_lstIPs);
    return lst;
}
